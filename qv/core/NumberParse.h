/// @file
/// Internal: number parsing shared by _wtof/wcstod/c_strtod and the scanf
/// engine, for either unit type and never depending on the process locale.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace qv::detail {

template <class Char> bool IsDigitUnit(Char c) {
    return c >= '0' && c <= '9';
}

template <class Char> Char AsciiLowerUnit(Char c) {
    return c >= 'A' && c <= 'Z' ? Char(c + ('a' - 'A')) : c;
}

/// @copydoc NumberParse.h
struct ParsedNumber {
    double value;
    size_t length; ///< units taken; 0 when there is no number
};

/// Reads units of a terminated text, never past limit units.
template <class Char> class BoundedText {
public:
    BoundedText(Char const *s, size_t limit) : s(s), limit(limit) {}
    /// The unit at i, or 0 past the limit. Callers look at i only after every
    /// unit before it was nonzero, so the terminator is never passed.
    Char operator[](size_t i) const { return i < limit ? s[i] : Char(0); }
    /// Length of word (lower case ASCII) matched without regard to case at i, or 0.
    size_t Match(size_t i, char const *word) const {
        size_t n = 0;
        for (; word[n]; ++n)
            if (AsciiLowerUnit((*this)[i + n]) != Char(word[n])) return 0;
        return n;
    }

private:
    Char const *s;
    size_t limit;
};

template <class Char> bool IsNanCharacter(Char c) {
    Char lower = AsciiLowerUnit(c);
    return IsDigitUnit(c) || (lower >= 'a' && lower <= 'z') || c == '_';
}

template <class Char> ParsedNumber ParseNamedDouble(BoundedText<Char> const &text, size_t i, bool negative) {
    constexpr double kInf = std::numeric_limits<double>::infinity();
    if (size_t n = text.Match(i, "infinity")) return {negative ? -kInf : kInf, i + n};
    if (size_t n = text.Match(i, "inf")) return {negative ? -kInf : kInf, i + n};
    size_t n = text.Match(i, "nan");
    if (!n) return {0.0, 0};
    i += n;
    if (text[i] == '(') { // nan(chars)
        size_t j = i + 1;
        while (IsNanCharacter(text[j])) ++j;
        if (text[j] == ')') i = j + 1;
    }
    double nan = std::numeric_limits<double>::quiet_NaN();
    return {negative ? -nan : nan, i};
}

/// strtod in the "C" locale on at most limit units: optional sign, digits with
/// at most one point, an optional exponent; "inf", "infinity", "nan" and
/// "nan(...)" in any case. No leading white space, no hexadecimal form.
/// Correctly rounded: the digits go to std::from_chars, cut to more
/// significant digits than any double needs, with a sticky digit for the rest.
template <class Char> ParsedNumber ParseDouble(Char const *s, size_t limit) {
    constexpr size_t kKeep = 780;
    BoundedText<Char> text(s, limit);
    size_t i = 0;
    bool negative = text[0] == '-';
    if (text[0] == '-' || text[0] == '+') ++i;
    size_t start = i;
    char digits[kKeep + 32];
    size_t kept = 0;
    int64_t exponent = 0; // value = digits * 10^exponent
    bool sticky = false, any = false;
    auto take = [&](Char c, bool fraction) {
        any = true;
        if (kept == 0 && c == '0') {
            exponent -= fraction;
        } else if (kept < kKeep) {
            digits[kept++] = char(c);
            exponent -= fraction;
        } else {
            exponent += !fraction;
            sticky |= c != '0';
        }
    };
    for (; IsDigitUnit(text[i]); ++i) take(text[i], false);
    if (text[i] == '.')
        for (++i; IsDigitUnit(text[i]); ++i) take(text[i], true);
    if (!any) return ParseNamedDouble(text, start, negative);
    if (AsciiLowerUnit(text[i]) == 'e') {
        size_t j = i + 1;
        bool down = text[j] == '-';
        if (text[j] == '-' || text[j] == '+') ++j;
        if (IsDigitUnit(text[j])) {
            int64_t e = 0;
            for (; IsDigitUnit(text[j]); ++j) e = e < 100000000 ? e * 10 + (text[j] - '0') : e;
            exponent += down ? -e : e;
            i = j;
        }
    }
    double value = 0.0;
    if (kept) {
        if (sticky) digits[kept++] = '1', --exponent;
        int64_t leading = exponent + int64_t(kept) - 1; // decimal exponent of the first digit
        if (leading > 400) {
            value = std::numeric_limits<double>::infinity();
        } else if (leading >= -400) {
            digits[kept] = 'e';
            auto end = std::to_chars(digits + kept + 1, digits + sizeof digits, exponent).ptr;
            if (std::from_chars(digits, end, value).ec == std::errc::result_out_of_range)
                value = leading > 0 ? std::numeric_limits<double>::infinity() : 0.0;
        }
    }
    return {negative ? -value : value, i};
}

} // namespace qv::detail
