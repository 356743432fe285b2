// CVariant: construction, assignment, type changes and setValue.
#include "qv/core/Variant.h"

#include "qv/core/VariantStorage.h"
#include "qv/core/WideChar.h"

namespace qv {

CVariant::CVariant() = default;
CVariant::CVariant(bool v) {
    Store(Bool, uint8_t(v));
}
CVariant::CVariant(char v) {
    Store(Int8, int8_t(v));
}
CVariant::CVariant(int8_t v) {
    Store(Int8, v);
}
CVariant::CVariant(uint8_t v) {
    Store(UInt8, v);
}
CVariant::CVariant(int16_t v) {
    Store(Int16, v);
}
CVariant::CVariant(uint16_t v) {
    Store(UInt16, v);
}
CVariant::CVariant(int32_t v) {
    Store(Int32, v);
}
CVariant::CVariant(uint32_t v) {
    Store(UInt32, v);
}
CVariant::CVariant(int64_t v) {
    Store(Int64, v);
}
CVariant::CVariant(uint64_t v) {
    Store(UInt64, v);
}
CVariant::CVariant(float v) {
    Store(Flt32, v);
}
CVariant::CVariant(double v) {
    Store(Flt64, v);
}

CVariant::CVariant(char16_t const *s) : type(String), text(s ? s : u"") {}

CVariant::CVariant(EType t) : type(t) {}

CVariant::CVariant(void const *p, uint32_t n) : type(Blob) {
    SetBlob(p, n);
}

CVariant::CVariant(int64_t v, TArray<SEnumValue> const &e) : enumValues(e) {
    Store(Enum, v);
}

CVariant::CVariant(CVariant const &other) {
    CopyFrom(other);
}

CVariant::~CVariant() = default;

CVariant &CVariant::operator=(CVariant const &other) {
    if (&other == this) return *this;
    Destroy();
    CopyFrom(other);
    return *this;
}

template <class T> CVariant &CVariant::AssignScalar(EType t, T v) {
    Destroy();
    Store(t, v);
    return *this;
}

CVariant &CVariant::operator=(bool v) {
    return AssignScalar(Bool, uint8_t(v));
}
CVariant &CVariant::operator=(char v) {
    return AssignScalar(Int8, int8_t(v));
}
CVariant &CVariant::operator=(int8_t v) {
    return AssignScalar(Int8, v);
}
CVariant &CVariant::operator=(uint8_t v) {
    return AssignScalar(UInt8, v);
}
CVariant &CVariant::operator=(int16_t v) {
    return AssignScalar(Int16, v);
}
CVariant &CVariant::operator=(uint16_t v) {
    return AssignScalar(UInt16, v);
}
CVariant &CVariant::operator=(int32_t v) {
    return AssignScalar(Int32, v);
}
CVariant &CVariant::operator=(uint32_t v) {
    return AssignScalar(UInt32, v);
}
CVariant &CVariant::operator=(int64_t v) {
    return AssignScalar(Int64, v);
}
CVariant &CVariant::operator=(uint64_t v) {
    return AssignScalar(UInt64, v);
}
CVariant &CVariant::operator=(float v) {
    return AssignScalar(Flt32, v);
}
CVariant &CVariant::operator=(double v) {
    return AssignScalar(Flt64, v);
}

CVariant &CVariant::operator=(char16_t const *s) {
    CString assigned(s ? s : u""); // s may point into our own text
    Destroy();
    text = assigned;
    type = String;
    return *this;
}

// Into a destroyed (or new) variant.
void CVariant::CopyFrom(CVariant const &other) {
    type = other.type;
    std::memcpy(value, other.value, sizeof value);
    if (type == String) text = other.text;
    if (type == Enum) enumValues = other.enumValues;
    if (type == Blob) blob = other.blob;
}

void CVariant::SetBlob(void const *p, uint32_t n) {
    blob.Reset();
    if (p && n) blob.Write(p, n);
    blob.SeekToBegin();
}

void CVariant::setValue(CVariant const &v) {
    switch (type) {
    case Bool:
        Store(Bool, uint8_t(v.ToBool()));
        break;
    case Flt32:
        Store(Flt32, v.ToFlt32());
        break;
    case Flt64:
        Store(Flt64, v.ToFlt64());
        break;
    case String:
        text = v.ToString();
        break;
    case Blob:
        if (&v == this) break;
        if (v.type == Blob)
            SetBlob(v.blob.GetData(), v.blob.nItems());
        else
            blob.Reset();
        break;
    case Enum:
        Store(Enum, v.type == String ? GetEnumValueFromName(v.text) : v.ToInt64());
        break;
    case Undefined:
        break;
    default:
        StoreInteger(v.IntegerBits(IsWideInteger(type)));
        break; // what v.ToX() gives
    }
}

CVariant::EType CVariant::getType() const {
    return type;
}

void CVariant::setType(EType t) {
    Destroy();
    type = t;
}

void CVariant::Destroy() {
    text.Copy(u"");
    blob.Destroy();
    blob.SeekToBegin();
    enumValues.Empty();
    type = Undefined;
}

namespace {
constexpr char16_t const *kTypeNames[] = {u"Undefined", u"Bool",  u"Int8",   u"UInt8", u"Int16",
                                          u"UInt16",    u"Int32", u"UInt32", u"Int64", u"UInt64",
                                          u"Flt32",     u"Flt64", u"String", u"Blob",  u"Enum"};
constexpr uint32_t kTypeCount = sizeof kTypeNames / sizeof kTypeNames[0];
} // namespace

CVariant::EType CVariant::ParseType(char16_t const *s) {
    if (!s) return Undefined;
    for (uint32_t t = 0; t < kTypeCount; ++t)
        if (_wcsicmp(s, kTypeNames[t]) == 0) return EType(t);
    return Undefined;
}

char16_t const *CVariant::TypeToString(EType t) {
    return t < kTypeCount ? kTypeNames[t] : kTypeNames[Undefined];
}

} // namespace qv
