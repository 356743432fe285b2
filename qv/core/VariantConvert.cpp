// CVariant: conversions to numbers and text, and FromString.
#include <climits>

#include "qv/core/BoolConversions.h"
#include "qv/core/FloatNarrow.h"
#include "qv/core/FloatToInt.h"
#include "qv/core/HexDigit.h"
#include "qv/core/TextOrEmpty.h"
#include "qv/core/Variant.h"
#include "qv/core/VariantStorage.h"
#include "qv/core/WideChar.h"

namespace qv {

namespace {

// The longest blob whose text a CString can hold.
constexpr uint32_t kMaxHexBytes = (INT_MAX - 1) / 2;

CString BlobToHex(unsigned char const *bytes, uint32_t n) {
    static constexpr char16_t kDigits[] = u"0123456789ABCDEF";
    if (n > kMaxHexBytes) n = kMaxHexBytes;
    CString out;
    char16_t *p = out.GetBuffer(int(2 * n));
    for (uint32_t i = 0; i < n; ++i) {
        p[2 * i] = kDigits[bytes[i] >> 4];
        p[2 * i + 1] = kDigits[bytes[i] & 0xF];
    }
    p[2 * n] = 0;
    out.ReleaseBuffer();
    return out;
}

// A unit that is no hexadecimal digit counts as 0.
unsigned char HexPair(char16_t high, char16_t low) {
    int h = detail::HexDigitValue(high), l = detail::HexDigitValue(low);
    return static_cast<unsigned char>((h < 0 ? 0 : h) << 4 | (l < 0 ? 0 : l));
}

} // namespace

bool CVariant::IsWideInteger(EType t) {
    return t == Int64 || t == UInt64;
}

int64_t CVariant::IntegerBits(bool sixtyFourBit) const {
    switch (type) {
    case Bool:
        return Stored<uint8_t>() != 0;
    case Int8:
        return Stored<int8_t>();
    case UInt8:
        return Stored<uint8_t>();
    case Int16:
        return Stored<int16_t>();
    case UInt16:
        return Stored<uint16_t>();
    case Int32:
        return Stored<int32_t>();
    case UInt32:
        return Stored<uint32_t>();
    case Int64:
    case Enum:
        return Stored<int64_t>();
    case UInt64:
        return static_cast<int64_t>(Stored<uint64_t>());
    case Flt32:
        return TruncateToInt64(Stored<float>());
    case Flt64:
        return TruncateToInt64(Stored<double>());
    // _wtol saturates at 32 bits; callers depend on it.
    case String:
        return sixtyFourBit ? _wtoi64(detail::TextOrEmpty(text)) : _wtol(detail::TextOrEmpty(text));
    case Blob:
    case Undefined:
        break;
    }
    return 0;
}

void CVariant::StoreInteger(int64_t bits) {
    switch (type) {
    case Int8:
        Store(Int8, int8_t(bits));
        break;
    case UInt8:
        Store(UInt8, uint8_t(bits));
        break;
    case Int16:
        Store(Int16, int16_t(bits));
        break;
    case UInt16:
        Store(UInt16, uint16_t(bits));
        break;
    case Int32:
        Store(Int32, int32_t(bits));
        break;
    case UInt32:
        Store(UInt32, uint32_t(bits));
        break;
    case Int64:
        Store(Int64, bits);
        break;
    case UInt64:
        Store(UInt64, uint64_t(bits));
        break;
    default:
        break;
    }
}

template <class F> F CVariant::ToFloating() const {
    switch (type) {
    case Flt32:
        return FloatFromDouble<F>(Stored<float>());
    case Flt64:
        return FloatFromDouble<F>(Stored<double>());
    case String:
        return FloatFromDouble<F>(_wtof(detail::TextOrEmpty(text)));
    case Blob:
    case Undefined:
        return 0;
    default:
        return static_cast<F>(IntegerBits(true)); // an uint64 goes through the signed conversion
    }
}

bool CVariant::ToBool() const {
    switch (type) {
    case Flt32:
        return !(Stored<float>() == 0); // NaN is true
    case Flt64:
        return !(Stored<double>() == 0);
    // Only the words: a string "1" is false, as callers expect.
    case String:
        return _wcsicmp(detail::TextOrEmpty(text), u"true") == 0 || _wcsicmp(detail::TextOrEmpty(text), u"yes") == 0;
    case Blob:
    case Undefined:
        return false;
    default:
        return IntegerBits(true) != 0;
    }
}

int8_t CVariant::ToInt8() const {
    return static_cast<int8_t>(IntegerBits(false));
}
uint8_t CVariant::ToUInt8() const {
    return static_cast<uint8_t>(IntegerBits(false));
}
int16_t CVariant::ToInt16() const {
    return static_cast<int16_t>(IntegerBits(false));
}
uint16_t CVariant::ToUInt16() const {
    return static_cast<uint16_t>(IntegerBits(false));
}
int32_t CVariant::ToInt32() const {
    return static_cast<int32_t>(IntegerBits(false));
}
uint32_t CVariant::ToUInt32() const {
    return static_cast<uint32_t>(IntegerBits(false));
}
int64_t CVariant::ToInt64() const {
    return IntegerBits(true);
}
uint64_t CVariant::ToUInt64() const {
    return static_cast<uint64_t>(IntegerBits(true));
}
float CVariant::ToFlt32() const {
    return ToFloating<float>();
}
double CVariant::ToFlt64() const {
    return ToFloating<double>();
}

CString CVariant::ToString() const {
    switch (type) {
    case Bool:
        return CString(ToBool() ? u"true" : u"false");
    case UInt32:
        return CString::FromFormat(u"%u", Stored<uint32_t>());
    case Int64:
        return CString::FromFormat(u"%I64d", Stored<int64_t>());
    case UInt64:
        return CString::FromFormat(u"%I64u", Stored<uint64_t>());
    case Flt32:
    case Flt64:
        return CString::FromFormat(u"%g", ToFlt64());
    case String:
        return text;
    case Blob:
        return BlobToHex(blob.GetData(), blob.nItems());
    case Enum:
        return CString(GetEnumNameFromValue(Stored<int64_t>()));
    case Undefined:
        return CString();
    default:
        return CString::FromFormat(u"%d", ToInt32()); // int8 to int32
    }
}

CVariant::operator bool() const {
    return ToBool();
}
CVariant::operator int8_t() const {
    return ToInt8();
}
CVariant::operator uint8_t() const {
    return ToUInt8();
}
CVariant::operator int16_t() const {
    return ToInt16();
}
CVariant::operator uint16_t() const {
    return ToUInt16();
}
CVariant::operator int32_t() const {
    return ToInt32();
}
CVariant::operator uint32_t() const {
    return ToUInt32();
}
CVariant::operator int64_t() const {
    return ToInt64();
}
CVariant::operator uint64_t() const {
    return ToUInt64();
}
CVariant::operator float() const {
    return ToFlt32();
}
CVariant::operator double() const {
    return ToFlt64();
}
CVariant::operator CString() const {
    return ToString();
}

void CVariant::BlobFromHex(char16_t const *s) {
    uint32_t n = 0;
    while (n < UINT32_MAX / 2 && s[2 * size_t(n)] && s[2 * size_t(n) + 1])
        ++n;
    blob.Reset();
    if (!blob.SetSize(n)) return;
    unsigned char *bytes = blob.GetData();
    for (uint32_t i = 0; i < n; ++i)
        bytes[i] = HexPair(s[2 * size_t(i)], s[2 * size_t(i) + 1]);
}

CVariant &CVariant::FromString(char16_t const *s) {
    if (!s) s = u"";
    switch (type) {
    case Bool:
        Store(Bool, uint8_t(CBool::Parse(s)));
        break;
    case Flt32:
        Store(Flt32, NarrowToFloat(_wtof(s)));
        break;
    case Flt64:
        Store(Flt64, _wtof(s));
        break;
    case String:
        text = s;
        break;
    case Blob:
        BlobFromHex(s);
        break;
    case Enum:
        Store(Enum, GetEnumValueFromName(s));
        break;
    case Undefined:
        break;
    // _wtol saturates, so a uint32 above 2147483647 reads as that: files depend on it.
    default:
        StoreInteger(IsWideInteger(type) ? _wtoi64(s) : _wtol(s));
        break;
    }
    return *this;
}

} // namespace qv
