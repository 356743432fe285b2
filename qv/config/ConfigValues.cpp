// IConfigStore's typed values, each a text form over GetString / SetString.
#include "qv/config/IConfigStore.h"

#include "qv/core/IntegerConversions.h"
#include "qv/core/WideChar.h"
#include "qv/core/WideFormat.h"
#include "qv/core/WideScan.h"

namespace qv {

namespace {

CString DoubleText(double value) {
    return CString::FromFormat(u"%.14e", value);
}

CString UnsignedText(uint32_t value) {
    return CString::FromFormat(u"%u", value);
}

uint32_t ParseUnsigned(CString const &text) {
    return static_cast<uint32_t>(_wtoi64(text));
}

constexpr char16_t kRectForm[] = u"{ %d, %d, %d, %d }";
constexpr char16_t kColourForm[] = u"RGB(%d, %d, %d)";
constexpr char16_t kFontForm[] = u"{ %d, %d, %d, %d, %d, %d, %d, %d, %d, %d, %d, %d, %d, \"%s\" }";
// The same fields scanned; the face name stops at the quote and fits the record.
constexpr char16_t kFontScan[] = u"{ %d, %d, %d, %d, %d, %d, %d, %d, %d, %d, %d, %d, %d, \"%31[^\"]";

} // namespace

double IConfigStore::GetDouble(char16_t const *name, double defaultValue) {
    return _wtof(GetString(name, DoubleText(defaultValue)));
}

bool IConfigStore::SetDouble(char16_t const *name, double value) {
    return SetString(name, DoubleText(value));
}

float IConfigStore::GetFloat(char16_t const *name, float defaultValue) {
    return static_cast<float>(_wtof(GetString(name, DoubleText(defaultValue))));
}

bool IConfigStore::SetFloat(char16_t const *name, float value) {
    return SetString(name, DoubleText(value));
}

int32_t IConfigStore::GetLong(char16_t const *name, int32_t defaultValue) {
    return CInt32::Parse(GetString(name, CInt32::ToString(defaultValue)));
}

bool IConfigStore::SetLong(char16_t const *name, int32_t value) {
    return SetString(name, CInt32::ToString(value));
}

uint32_t IConfigStore::GetDWORD(char16_t const *name, uint32_t defaultValue) {
    return ParseUnsigned(GetString(name, UnsignedText(defaultValue)));
}

bool IConfigStore::SetDWORD(char16_t const *name, uint32_t value) {
    return SetString(name, UnsignedText(value));
}

uint64_t IConfigStore::GetQWORD(char16_t const *name, uint64_t defaultValue) {
    return CUInt64::Parse(GetString(name, CUInt64::ToString(defaultValue)));
}

bool IConfigStore::SetQWORD(char16_t const *name, uint64_t value) {
    return SetString(name, CUInt64::ToString(value));
}

uint16_t IConfigStore::GetWORD(char16_t const *name, uint16_t defaultValue) {
    return static_cast<uint16_t>(ParseUnsigned(GetString(name, UnsignedText(defaultValue & 0xFFFFu))) & 0xFFFFu);
}

bool IConfigStore::SetWORD(char16_t const *name, uint16_t value) {
    return SetString(name, UnsignedText(value));
}

uint8_t IConfigStore::GetBYTE(char16_t const *name, uint8_t defaultValue) {
    return static_cast<uint8_t>(ParseUnsigned(GetString(name, UnsignedText(defaultValue & 0xFFu))) & 0xFFu);
}

bool IConfigStore::SetBYTE(char16_t const *name, uint8_t value) {
    return SetString(name, UnsignedText(value));
}

bool IConfigStore::GetBool(char16_t const *name, bool defaultValue) {
    return GetBYTE(name, defaultValue ? 1 : 0) != 0;
}

bool IConfigStore::SetBool(char16_t const *name, bool value) {
    return SetBYTE(name, value ? 1 : 0);
}

RECT IConfigStore::GetRect(char16_t const *name, RECT defaultValue) {
    CString def =
        CString::FromFormat(kRectForm, defaultValue.top, defaultValue.left, defaultValue.bottom, defaultValue.right);
    RECT r = {0, 0, 0, 0};
    int top = 0, left = 0, bottom = 0, right = 0;
    // Existing settings depend on a malformed text reading as all zeros.
    if (swscanf(GetString(name, def), kRectForm, &top, &left, &bottom, &right) == 4) r = {left, top, right, bottom};
    return r;
}

bool IConfigStore::SetRect(char16_t const *name, RECT value) {
    return SetString(name, CString::FromFormat(kRectForm, value.top, value.left, value.bottom, value.right));
}

COLORREF IConfigStore::GetClr(char16_t const *name, COLORREF defaultValue) {
    CString def = CString::FromFormat(kColourForm, int(defaultValue & 0xFF), int((defaultValue >> 8) & 0xFF),
                                      int((defaultValue >> 16) & 0xFF));
    int red = 0, green = 0, blue = 0;
    // Callers test a malformed colour against 0xFFFFFFFF, not their default.
    if (swscanf(GetString(name, def), kColourForm, &red, &green, &blue) != 3) return 0xFFFFFFFFu;
    return (uint32_t(red) & 0xFF) | ((uint32_t(green) & 0xFF) << 8) | ((uint32_t(blue) & 0xFF) << 16);
}

bool IConfigStore::SetClr(char16_t const *name, COLORREF value) {
    return SetString(
        name, CString::FromFormat(kColourForm, int(value & 0xFF), int((value >> 8) & 0xFF), int((value >> 16) & 0xFF)));
}

namespace {

CString FontText(LOGFONTW const &f) {
    char16_t face[LF_FACESIZE + 1] = {};
    for (int i = 0; i < LF_FACESIZE && f.lfFaceName[i]; ++i)
        face[i] = f.lfFaceName[i];
    return CString::FromFormat(kFontForm, f.lfHeight, f.lfWidth, f.lfEscapement, f.lfOrientation, f.lfWeight,
                               int(f.lfItalic), int(f.lfUnderline), int(f.lfStrikeOut), int(f.lfCharSet),
                               int(f.lfOutPrecision), int(f.lfClipPrecision), int(f.lfQuality), int(f.lfPitchAndFamily),
                               face);
}

// Fields that scanned replace the default's; the rest keep it.
LOGFONTW ScanFont(CString const &text, LOGFONTW font) {
    int v[13];
    int32_t *longs[5] = {&font.lfHeight, &font.lfWidth, &font.lfEscapement, &font.lfOrientation, &font.lfWeight};
    uint8_t *bytes[8] = {&font.lfItalic,       &font.lfUnderline,     &font.lfStrikeOut, &font.lfCharSet,
                         &font.lfOutPrecision, &font.lfClipPrecision, &font.lfQuality,   &font.lfPitchAndFamily};
    char16_t face[LF_FACESIZE] = {};
    int got = swscanf(text, kFontScan, &v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], &v[7], &v[8], &v[9], &v[10],
                      &v[11], &v[12], face);
    for (int i = 0; i < got && i < 13; ++i) {
        if (i < 5)
            *longs[i] = v[i];
        else
            *bytes[i - 5] = static_cast<uint8_t>(v[i]);
    }
    if (got == 14) {
        for (int i = 0; i < LF_FACESIZE; ++i)
            font.lfFaceName[i] = face[i];
    }
    return font;
}

} // namespace

LOGFONTW IConfigStore::GetFont(char16_t const *name, LOGFONTW defaultValue) {
    return ScanFont(GetString(name, FontText(defaultValue)), defaultValue);
}

bool IConfigStore::SetFont(char16_t const *name, LOGFONTW value) {
    return SetString(name, FontText(value));
}

} // namespace qv
