// _wtol, _wtoi64, _wtof, wcstod and their narrow twins: locale-free, with
// saturation where the designed runtime saturates.
#include <cstdint>
#include <limits>

#include "qv/core/NumberParse.h"
#include "qv/core/WideChar.h"

namespace qv {

namespace {

bool IsSpaceUnit(char16_t c) {
    return iswspace(c);
}
bool IsSpaceUnit(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

template <class Char> Char const *SkipSpace(Char const *s) {
    while (IsSpaceUnit(*s)) ++s;
    return s;
}

// Decimal integer after optional white space and sign, clamped to lo..hi.
int64_t ParseClamped(char16_t const *s, int64_t lo, int64_t hi) {
    if (!s) return 0;
    s = SkipSpace(s);
    bool negative = *s == u'-';
    if (*s == u'-' || *s == u'+') ++s;
    uint64_t limit = negative ? uint64_t(0) - uint64_t(lo) : uint64_t(hi);
    uint64_t value = 0;
    for (; detail::IsDigitUnit(*s); ++s) {
        unsigned digit = unsigned(*s - u'0');
        value = value > (limit - digit) / 10 ? limit : value * 10 + digit;
    }
    return negative ? int64_t(0 - value) : int64_t(value);
}

template <class Char> double ParseDoubleText(Char const *s, Char const **end) {
    if (!s) {
        if (end) *end = s;
        return 0.0;
    }
    Char const *start = SkipSpace(s);
    detail::ParsedNumber number = detail::ParseDouble(start, SIZE_MAX);
    if (end) *end = number.length ? start + number.length : s;
    return number.value;
}

} // namespace

int32_t _wtol(char16_t const *s) {
    return int32_t(ParseClamped(s, INT32_MIN, INT32_MAX));
}

int64_t _wtoi64(char16_t const *s) {
    return ParseClamped(s, INT64_MIN, INT64_MAX);
}

double _wtof(char16_t const *s) {
    return ParseDoubleText<char16_t>(s, nullptr);
}

double wcstod(char16_t const *s, char16_t const **end) {
    return ParseDoubleText(s, end);
}

double c_strtod(char const *s, char const **end) {
    return ParseDoubleText(s, end);
}

double c_atof(char const *s) {
    return ParseDoubleText<char>(s, nullptr);
}

} // namespace qv
