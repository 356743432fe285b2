// The free text helpers, written once for char and char16_t.
#include "qv/core/StringFunctions.h"

#include <cstring>
#include <string>
#include <type_traits>

#include "qv/core/WideChar.h"

namespace qv {

namespace {

// Narrow white space by the ASCII rules, never the process locale.
bool IsSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
bool IsSpace(char16_t c) {
    return iswspace(c);
}

template <class C> size_t LengthUpTo(C const *s, size_t limit) {
    C const *end = std::char_traits<C>::find(s, limit, C(0));
    return end ? size_t(end - s) : limit;
}

template <class C> C *CopyBounded(C *dst, C const *src, size_t n) {
    if (n == 0) return dst;
    size_t count = LengthUpTo(src, n - 1);
    std::memmove(dst, src, count * sizeof(C));
    dst[count] = 0;
    return dst;
}

template <class C> C *AppendBounded(C *dst, C const *src, size_t n) {
    if (n == 0) return dst;
    size_t have = LengthUpTo(dst, n - 1);
    CopyBounded(dst + have, src, n - have);
    return dst;
}

template <class C> int CompareUnits(C const *a, C const *b) {
    using Unit = std::make_unsigned_t<C>;
    for (; *a && *a == *b; ++a, ++b) {
    }
    Unit x = Unit(*a), y = Unit(*b);
    return (x > y) - (x < y);
}

template <class C> C *SkipSpace(C *s) {
    while (IsSpace(*s))
        ++s;
    return s;
}

// Trailing white space becomes terminators; the text never moves.
template <class C> C *TrimBoth(C *s) {
    C *first = SkipSpace(s);
    C *end = first + std::char_traits<C>::length(first);
    while (end > first && IsSpace(end[-1]))
        *--end = 0;
    return first;
}

} // namespace

char *StrCpy(char *dst, char const *src, size_t n) {
    return CopyBounded(dst, src, n);
}
char16_t *StrCpy(char16_t *dst, char16_t const *src, size_t n) {
    return CopyBounded(dst, src, n);
}
char *StrCat(char *dst, char const *src, size_t n) {
    return AppendBounded(dst, src, n);
}
char16_t *StrCat(char16_t *dst, char16_t const *src, size_t n) {
    return AppendBounded(dst, src, n);
}

int StrCmp(char const *a, char const *b) {
    return CompareUnits(a, b);
}
int StrCmp(char16_t const *a, char16_t const *b) {
    return CompareUnits(a, b);
}
int StrICmp(char const *a, char const *b) {
    return _stricmp(a, b);
}
int StrICmp(char16_t const *a, char16_t const *b) {
    return _wcsicmp(a, b);
}
int StrNCmp(char const *a, char const *b, size_t n) {
    return std::strncmp(a, b, n);
}
int StrNCmp(char16_t const *a, char16_t const *b, size_t n) {
    return wcsncmp(a, b, n);
}
int StrNICmp(char const *a, char const *b, size_t n) {
    return _strnicmp(a, b, n);
}
int StrNICmp(char16_t const *a, char16_t const *b, size_t n) {
    return _wcsnicmp(a, b, n);
}
size_t StrLen(char const *s) {
    return std::strlen(s);
}
size_t StrLen(char16_t const *s) {
    return wcslen(s);
}

char *LTrim(char *s) {
    return SkipSpace(s);
}
char16_t *LTrim(char16_t *s) {
    return SkipSpace(s);
}
char *Trim(char *s) {
    return TrimBoth(s);
}
char16_t *Trim(char16_t *s) {
    return TrimBoth(s);
}

} // namespace qv
