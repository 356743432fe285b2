// CString's searches and comparisons. A null string finds nothing, compares
// -1 and equals nothing: callers depend on these answers.
#include <algorithm>
#include <string_view>

#include "qv/core/String.h"
#include "qv/core/WideChar.h"

namespace qv {

namespace {

int Sign(int v) {
    return (v > 0) - (v < 0);
}
char16_t const *OrEmpty(char16_t const *s) {
    return s ? s : u"";
}
int64_t Length(char16_t const *s) {
    return s ? int64_t(wcslen(s)) : 0;
}

bool InSet(char16_t c, char16_t const *set) {
    for (; *set; ++set)
        if (*set == c) return true;
    return false;
}

bool EqualNoCase(char16_t const *a, char16_t const *b, int64_t n) {
    for (int64_t i = 0; i < n; ++i)
        if (towupper(a[i]) != towupper(b[i])) return false;
    return true;
}

} // namespace

int CString::FindChar(char16_t c) const {
    return FindChar(0, c);
}
int CString::FindChar(char16_t const *set) const {
    return FindChar(0, set);
}

int CString::FindChar(int start, char16_t c) const {
    if (!rep || !rep->text) return -1;
    for (int i = std::max(start, 0); i < rep->length; ++i)
        if (rep->text[i] == c) return i;
    return -1;
}

int CString::FindChar(int start, char16_t const *set) const {
    if (!rep || !rep->text || !set || !*set) return -1;
    for (int i = std::max(start, 0); i < rep->length; ++i)
        if (InSet(rep->text[i], set)) return i;
    return -1;
}

int CString::ReverseFindChar(char16_t c) const {
    return ReverseFindChar(GetLength(), c);
}
int CString::ReverseFindChar(char16_t const *set) const {
    return ReverseFindChar(GetLength(), set);
}

int CString::ReverseFindChar(int start, char16_t c) const {
    if (!rep || !rep->text) return -1;
    for (int i = start < rep->length ? start : rep->length - 1; i >= 0; --i)
        if (rep->text[i] == c) return i;
    return -1;
}

int CString::ReverseFindChar(int start, char16_t const *set) const {
    if (!rep || !rep->text || !set || !*set) return -1;
    for (int i = start < rep->length ? start : rep->length - 1; i >= 0; --i)
        if (InSet(rep->text[i], set)) return i;
    return -1;
}

int CString::FindString(char16_t const *s, bool caseSensitive) const {
    return FindString(0, s, caseSensitive);
}

int CString::FindString(int start, char16_t const *s, bool caseSensitive) const {
    int64_t wanted = Length(s);
    if (!rep || start > rep->length - wanted) return -1;
    start = std::max(start, 0);
    if (wanted == 0) return start;
    if (caseSensitive) {
        size_t at = std::u16string_view(rep->text, size_t(rep->length)).find(s, size_t(start), size_t(wanted));
        return at == std::u16string_view::npos ? -1 : int(at);
    }
    for (int64_t at = start; at <= rep->length - wanted; ++at)
        if (EqualNoCase(rep->text + at, s, wanted)) return int(at);
    return -1;
}

bool CString::Contains(char16_t const *s, bool caseSensitive) const {
    return FindString(0, s, caseSensitive) >= 0;
}
bool CString::ContainsNoCase(char16_t const *s) const {
    return FindString(0, s, false) >= 0;
}

int CString::Compare(char16_t const *s, int n) const {
    if (!rep) return -1;
    if (n < 0) return Sign(wcscmp(TextOrEmpty(), OrEmpty(s)));
    return wcsncmp(TextOrEmpty(), OrEmpty(s), size_t(n));
}

int CString::CompareTo(char16_t const *s, int n) const {
    return Compare(s, n);
}

int CString::CompareNoCase(char16_t const *s, int n) const {
    if (!rep) return -1;
    if (n < 0) return _wcsicmp(TextOrEmpty(), OrEmpty(s));
    return _wcsnicmp(TextOrEmpty(), OrEmpty(s), size_t(n));
}

int CString::Compare(char16_t const *a, char16_t const *b) {
    return Sign(wcscmp(OrEmpty(a), OrEmpty(b)));
}
int CString::CompareNoCase(char16_t const *a, char16_t const *b) {
    return _wcsicmp(OrEmpty(a), OrEmpty(b));
}

bool CString::Equals(char16_t const *s) const {
    return rep && Compare(s) == 0;
}
bool CString::EqualsNoCase(char16_t const *s) const {
    return rep && CompareNoCase(s) == 0;
}
bool CString::StartsWith(char16_t const *s) const {
    return Compare(s, int(Length(s))) == 0;
}
bool CString::StartsWithNoCase(char16_t const *s) const {
    return rep && CompareNoCase(s, int(Length(s))) == 0;
}

// The end is found by scanning for the terminator, not by trusting length.
bool CString::EndsWith(char16_t const *s) const {
    if (!rep) return false;
    int64_t have = Length(TextOrEmpty()), wanted = Length(s);
    return wanted <= have && wcscmp(TextOrEmpty() + have - wanted, OrEmpty(s)) == 0;
}

bool CString::EndsWithNoCase(char16_t const *s) const {
    if (!rep) return false;
    int64_t have = Length(TextOrEmpty()), wanted = Length(s);
    return wanted <= have && _wcsicmp(TextOrEmpty() + have - wanted, OrEmpty(s)) == 0;
}

} // namespace qv
