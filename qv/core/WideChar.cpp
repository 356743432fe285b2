// Lengths, compares and character classes of UTF-16 text, by unsigned code
// unit and independent of the process locale.
#include "qv/core/WideChar.h"

namespace qv {

namespace {

template <class Char, class Fold> int Compare(Char const *a, Char const *b, size_t n, Fold fold) {
    for (; n; --n, ++a, ++b) {
        auto x = fold(*a), y = fold(*b);
        if (x != y) return x < y ? -1 : 1;
        if (!x) return 0;
    }
    return 0;
}

char16_t Same(char16_t c) {
    return c;
}
template <class Unit> Unit AsciiLower(Unit c) {
    return c >= 'A' && c <= 'Z' ? Unit(c + ('a' - 'A')) : c;
}
// ASCII inline; the tables only for the rest.
char16_t Lower(char16_t c) {
    return c < 0x80 ? AsciiLower(c) : towlower(c);
}

int CompareNarrowNoCase(char const *a, char const *b, size_t n) {
    // Narrow text is compared as unsigned bytes, folding ASCII only.
    return Compare(reinterpret_cast<unsigned char const *>(a), reinterpret_cast<unsigned char const *>(b), n,
                   AsciiLower<unsigned char>);
}

} // namespace

size_t wcslen(char16_t const *s) {
    char16_t const *p = s;
    while (*p) ++p;
    return size_t(p - s);
}

int wcscmp(char16_t const *a, char16_t const *b) {
    return Compare(a, b, SIZE_MAX, Same);
}
int wcsncmp(char16_t const *a, char16_t const *b, size_t n) {
    return Compare(a, b, n, Same);
}
int _wcsicmp(char16_t const *a, char16_t const *b) {
    return Compare(a, b, SIZE_MAX, Lower);
}
int _wcsnicmp(char16_t const *a, char16_t const *b, size_t n) {
    return Compare(a, b, n, Lower);
}
int _stricmp(char const *a, char const *b) {
    return CompareNarrowNoCase(a, b, SIZE_MAX);
}
int _strnicmp(char const *a, char const *b, size_t n) {
    return CompareNarrowNoCase(a, b, n);
}

// The Unicode White_Space set of the BMP.
bool iswspace(char16_t c) {
    if (c <= 0x20) return c == 0x20 || (c >= 0x09 && c <= 0x0D);
    if (c < 0x85) return false;
    return c == 0x85 || c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 ||
           c == 0x202F || c == 0x205F || c == 0x3000;
}

// ASCII digits only: the number parsers accept no other digits either.
bool iswdigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

} // namespace qv
