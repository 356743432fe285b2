// STypedData element access, dispatched per call (not for loops: the typed
// array operations have their own).
#include <cstddef>
#include <cstring>

#include "qv/numerics/ElementCast.h"
#include "qv/numerics/TypedData.h"
#include "qv/numerics/TypedDispatch.h"

namespace qv {

using namespace numerics_detail;

namespace {

template <class T> unsigned char *ElementAddress(STypedData const &data, int index) {
    return static_cast<unsigned char *>(data.Data) + ptrdiff_t(index) * ptrdiff_t(sizeof(T));
}

// R read from element index in the buffer's type; zero for types without arithmetic.
template <class R> R ReadAs(STypedData const &data, int index) {
    R result = 0;
    DispatchOne(data.Type, [&](auto tag) {
        using T = typename decltype(tag)::type;
        T v;
        std::memcpy(&v, ElementAddress<T>(data, index), sizeof v);
        result = ElementCast<R>(v);
    });
    return result;
}

template <class V> void WriteFrom(STypedData const &data, int index, V value) {
    DispatchOne(data.Type, [&](auto tag) {
        using T = typename decltype(tag)::type;
        T v = ElementCast<T>(value);
        std::memcpy(ElementAddress<T>(data, index), &v, sizeof v);
    });
}

bool IsFloating(EDataType type) { return type == DT_Float || type == DT_Double; }

} // namespace

int DataTypeSize(EDataType type) {
    int size = 0;
    DispatchOne(type, [&](auto tag) { size = int(sizeof(typename decltype(tag)::type)); });
    return size;
}

STypedData::VALUE::operator double() const { return ReadAs<double>(*Owner, Index); }

STypedData::VALUE &STypedData::VALUE::operator=(double v) {
    WriteFrom(*Owner, Index, v);
    return *this;
}

int64_t STypedData::VALUE::GetInt64() const { return ReadAs<int64_t>(*Owner, Index); }

void STypedData::VALUE::SetInt64(int64_t v) { WriteFrom(*Owner, Index, v); }

STypedData::VALUE &STypedData::VALUE::operator=(VALUE const &other) {
    if (IsFloating(other.Owner->Type))
        WriteFrom(*Owner, Index, double(other));
    else
        WriteFrom(*Owner, Index, other.GetInt64());
    return *this;
}

} // namespace qv
