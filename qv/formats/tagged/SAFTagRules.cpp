// The checks that keep a tag's text readable as the same tag: the reader
// splits a line at its first blank, ends it at CR or LF, takes at most 511
// bytes before the LF and treats HdSize, DATA and saf_padding lines apart.
#include "qv/core/CodePage.h"
#include "qv/core/WideChar.h"
#include "qv/formats/tagged/SAFLayout.h"

namespace qv::saf {

namespace {

bool Contains(char16_t const *text, char16_t const *set) {
    for (; text && *text; ++text)
        for (char16_t const *s = set; *s; ++s)
            if (*text == *s) return true;
    return false;
}

uint64_t Utf8Bytes(char16_t const *text) {
    if (!text || !*text) return 0;
    int withTerminator = WideCharToMultiByte(CP_UTF8, text, -1, nullptr, 0);
    return withTerminator > 0 ? uint64_t(withTerminator - 1) : 0;
}

bool IsName(char16_t const *name, char16_t const *word) {
    return _wcsicmp(name ? name : u"", word) == 0;
}

} // namespace

bool IsReservedName(char16_t const *name) {
    return IsName(name, kHdSize) || IsName(name, kData) || IsName(name, kPadding);
}

bool IsWritableName(char16_t const *name) {
    return !Contains(name, u" \r\n");
}

bool IsWritableValue(char16_t const *name, char16_t const *value) {
    if (Contains(value, u"\r\n")) return false;
    if (IsName(name, kHdSize) && !IsName(value, u"auto")) return false;
    return Utf8Bytes(name) + 1 + Utf8Bytes(value) <= kMaxLineText;
}

} // namespace qv::saf
