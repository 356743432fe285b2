// The SBF file's typed value: its file form and its conversions.
#include <cstring>

#include "qv/core/FloatToInt.h"
#include "qv/core/WideChar.h"
#include "qv/files/IFile.h"
#include "qv/formats/tagged/SBFString.h"
#include "qv/formats/tagged/SBFile.h"

namespace qv {

using VARIANT = CSBFile::VARIANT;

VARIANT::VARIANT(bool v) : type(VT_BOOL) { value.b = v; }
VARIANT::VARIANT(char v) : type(VT_CHAR) { value.c = v; }
VARIANT::VARIANT(unsigned char v) : type(VT_UCHAR) { value.uc = v; }
VARIANT::VARIANT(int16_t v) : type(VT_SHORT) { value.s = v; }
VARIANT::VARIANT(uint16_t v) : type(VT_USHORT) { value.us = v; }
VARIANT::VARIANT(int32_t v) : type(VT_LONG) { value.l = v; }
VARIANT::VARIANT(uint32_t v) : type(VT_ULONG) { value.ul = v; }
VARIANT::VARIANT(int64_t v) : type(VT_INT64) { value.i64 = v; }
VARIANT::VARIANT(uint64_t v) : type(VT_UINT64) { value.u64 = v; }
VARIANT::VARIANT(float v) : type(VT_FLOAT) { value.f = v; }
VARIANT::VARIANT(double v) : type(VT_DOUBLE) { value.d = v; }
VARIANT::VARIANT(char16_t const *v) : type(VT_STRING) {
    if (v) text = v;
}
VARIANT::VARIANT(CString const &v) : type(VT_STRING), text(v) {}
VARIANT::VARIANT(void const *p, uint32_t size) : type(VT_BINARY) {
    if (p && size && binary.SetSize(size)) std::memcpy(binary.GetData(), p, size);
}

void VARIANT::Destroy() {
    type = VT_NONE;
    value = {};
    text.Destroy();
    binary.Destroy();
}

uint8_t const *VARIANT::GetBinary() const {
    return type == VT_BINARY ? binary.GetData() : nullptr;
}

uint32_t VARIANT::GetBinarySize() const {
    return type == VT_BINARY ? binary.nItems() : 0;
}

bool VARIANT::Save(IFile *f) const {
    if (!f || type > VT_BINARY || !f->PutBYTE(type)) return false;
    switch (type) {
    case VT_NONE: return true;
    case VT_BOOL: return f->PutBool(value.b);
    case VT_CHAR: return f->PutChar(value.c);
    case VT_UCHAR: return f->PutBYTE(value.uc);
    case VT_SHORT: return f->PutShort(value.s);
    case VT_USHORT: return f->PutWORD(value.us);
    case VT_LONG: return f->PutLong(value.l);
    case VT_ULONG: return f->PutDWORD(value.ul);
    case VT_INT64: return f->PutInt64(value.i64);
    case VT_UINT64: return f->PutQWORD(value.u64);
    case VT_FLOAT: return f->PutFloat(value.f);
    case VT_DOUBLE: return f->PutDouble(value.d);
    case VT_STRING: return sbf::PutString(*f, text);
    case VT_BINARY: return f->PutDWORD(binary.nItems()) && f->WriteBytes(binary.GetData(), binary.nItems());
    }
    return false;
}

bool VARIANT::Load(IFile *f) {
    Destroy();
    uint8_t t = 0;
    if (!f || !f->GetBYTE(t) || t > VT_BINARY) return false;
    type = EType(t);
    uint32_t size = 0;
    switch (type) {
    case VT_NONE: return true;
    case VT_BOOL: return f->GetBool(value.b);
    case VT_CHAR: return f->GetChar(value.c);
    case VT_UCHAR: return f->GetBYTE(value.uc);
    case VT_SHORT: return f->GetShort(value.s);
    case VT_USHORT: return f->GetWORD(value.us);
    case VT_LONG: return f->GetLong(value.l);
    case VT_ULONG: return f->GetDWORD(value.ul);
    case VT_INT64: return f->GetInt64(value.i64);
    case VT_UINT64: return f->GetQWORD(value.u64);
    case VT_FLOAT: return f->GetFloat(value.f);
    case VT_DOUBLE: return f->GetDouble(value.d);
    case VT_STRING: return sbf::GetString(*f, text);
    case VT_BINARY:
        if (!f->GetDWORD(size) || int64_t(size) > f->GetRemaining() || !binary.SetSize(size)) return false;
        return f->ReadBytes(binary.GetData(), size);
    }
    return false;
}

template <class T> T VARIANT::Number() const {
    switch (type) {
    case VT_BOOL: return T(value.b ? 1 : 0);
    case VT_CHAR: return T(value.c);
    case VT_UCHAR: return T(value.uc);
    case VT_SHORT: return T(value.s);
    case VT_USHORT: return T(value.us);
    case VT_LONG: return T(value.l);
    case VT_ULONG: return T(value.ul);
    case VT_INT64: return T(value.i64);
    case VT_UINT64: return T(value.u64);
    case VT_FLOAT:
    case VT_DOUBLE: {
        double d = type == VT_FLOAT ? double(value.f) : value.d;
        if constexpr (std::is_floating_point_v<T>) return T(d);
        else return FloatToInt<T>(d);
    }
    case VT_STRING:
        if constexpr (std::is_floating_point_v<T>) return T(_wtof(text.GetUTF16()));
        else return T(_wtol(text.GetUTF16()));
    default: return T(0);
    }
}

VARIANT::operator bool() const {
    if (type == VT_STRING)
        return text.GetUTF16() && (_wcsicmp(text.GetUTF16(), u"true") == 0 || _wcsicmp(text.GetUTF16(), u"yes") == 0);
    if (type == VT_FLOAT || type == VT_DOUBLE) return Number<double>() != 0.0;
    return type != VT_BINARY && Number<int64_t>() != 0;
}
VARIANT::operator char() const { return Number<char>(); }
VARIANT::operator unsigned char() const { return Number<unsigned char>(); }
VARIANT::operator int16_t() const { return Number<int16_t>(); }
VARIANT::operator uint16_t() const { return Number<uint16_t>(); }
VARIANT::operator int32_t() const { return Number<int32_t>(); }
VARIANT::operator uint32_t() const { return Number<uint32_t>(); }
VARIANT::operator float() const { return Number<float>(); }
VARIANT::operator double() const { return Number<double>(); }

VARIANT::operator char16_t const *() const {
    switch (type) {
    case VT_BOOL: scratch = value.b ? u"true" : u"false"; break;
    case VT_CHAR:
    case VT_UCHAR:
    case VT_SHORT:
    case VT_USHORT:
    case VT_LONG: scratch.Format(u"%d", Number<int32_t>()); break;
    case VT_ULONG: scratch.Format(u"%u", value.ul); break;
    case VT_INT64: scratch.Format(u"%I64d", value.i64); break;
    case VT_UINT64: scratch.Format(u"%I64u", value.u64); break;
    case VT_FLOAT:
    case VT_DOUBLE: scratch.Format(u"%e", Number<double>()); break;
    case VT_STRING: return text.GetUTF16() ? text.GetUTF16() : u"";
    default: return u"";
    }
    return scratch.GetUTF16();
}

} // namespace qv
