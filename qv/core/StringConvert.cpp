// CString's code page conversions: UTF-8 in, the narrow cache out, and the
// thin static conversions.
#include <cstdint>
#include <cstring>
#include <new>

#include "qv/core/CodePage.h"
#include "qv/core/String.h"
#include "qv/core/WideChar.h"

namespace qv {

namespace {

int Terminated(int result, char *out, int outLen) {
    if (out && result >= 0 && result < outLen) out[result] = 0;
    return result;
}

int Terminated(int result, char16_t *out, int outLen) {
    if (out && result >= 0 && result < outLen) out[result] = 0;
    return result;
}

} // namespace

void CString::Copy(char const *s, int n) {
    if (!s) s = "";
    size_t bytes = std::strlen(s);
    if (n >= 0 && size_t(n) < bytes) bytes = size_t(n);
    if (bytes > size_t(INT32_MAX)) throw std::bad_alloc(); // as operator new refuses absurd sizes
    int units = bytes ? MultiByteToWideChar(CP_UTF8, s, int(bytes), nullptr, 0) : 0;
    Unshare();
    Reserve(units, false);
    if (units) MultiByteToWideChar(CP_UTF8, s, int(bytes), rep->text, units);
    rep->text[units] = 0;
    rep->length = units;
}

// Converted again on every call into the record's one narrow block, without
// detaching: the block is shared by every string on the record.
char *CString::ConvertToCodePage(uint32_t codePage) const {
    static char empty[1];
    if (!rep) return &(empty[0] = 0);
    char16_t const *text = TextOrEmpty();
    int needed = WideCharToMultiByte(codePage, text, -1, nullptr, 0);
    int size = (needed > 0 ? needed : 0) + 1;
    if (rep->narrowSize < size) {
        ::operator delete(rep->narrow);
        rep->narrow = nullptr;
        rep->narrowSize = 0;
        rep->narrow = static_cast<char *>(::operator new(size_t(size)));
        rep->narrowSize = size;
    }
    if (WideCharToMultiByte(codePage, text, -1, rep->narrow, rep->narrowSize) <= 0) rep->narrow[0] = 0;
    return rep->narrow;
}

char *CString::ConvertToUTF8() const {
    return ConvertToCodePage(CP_UTF8);
}
char const *CString::GetUTF8() const {
    return ConvertToUTF8();
}

// The length counts the converted terminator (one more than the visible
// text): existing callers depend on it.
void CString::FromCodePage(uint32_t codePage, char const *s) {
    if (!s) s = "";
    int units = MultiByteToWideChar(codePage, s, -1, nullptr, 0);
    if (units < 0) units = 0;
    Unshare();
    Reserve(units, false);
    if (units) MultiByteToWideChar(codePage, s, -1, rep->text, units);
    rep->text[units] = 0;
    rep->length = units;
}

int CString::ConvertToUTF8(char16_t const *w, int wlen, char *out, int outLen) {
    return ConvertToCodePage(CP_UTF8, w, wlen, out, outLen);
}

int CString::ConvertToCodePage(uint32_t codePage, char16_t const *w, int wlen, char *out, int outLen) {
    return Terminated(WideCharToMultiByte(codePage, w, wlen, out, outLen), out, outLen);
}

int CString::ConvertFromCodePage(uint32_t codePage, char const *s, int len, char16_t *out, int outLen) {
    return Terminated(MultiByteToWideChar(codePage, s, len, out, outLen), out, outLen);
}

int CString::ConvertToUTF16(char const *s, int len, char16_t *out, int outLen) {
    return ConvertFromCodePage(CP_UTF8, s, len, out, outLen);
}

int CString::ConvertToTCHAR(char const *s, int len, char16_t *out, int outLen) {
    return ConvertToUTF16(s, len, out, outLen);
}

int CString::ConvertToTCHAR(char16_t const *s, int len, char16_t *out, int outLen) {
    int length = len < 0 ? int(wcslen(s)) : len;
    if (outLen == 0 || !out) return length;
    if (outLen < length) return -1;
    std::memmove(out, s, size_t(length) * sizeof(char16_t));
    return Terminated(length, out, outLen);
}

} // namespace qv
