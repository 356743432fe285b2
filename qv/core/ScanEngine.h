/// @file
/// Internal: the one scanf engine behind the wide and the narrow families, a
/// template over the text's unit type and over where results go, so the
/// library writes through va_list pointers while a fuzz target can hand in
/// scratch storage. Semantics follow the designed runtime: white space in the
/// format matches any amount of white space (none too); a literal that does
/// not match stops; widths bound every field; integers wrap rather than
/// saturate; numbers are read in the "C" locale.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "qv/core/FormatSyntax.h"
#include "qv/core/NumberParse.h"
#include "qv/core/WideChar.h"

namespace qv::detail {

/// Destinations from a va_list: every assigning conversion takes the next pointer.
class VaListTargets {
public:
    explicit VaListTargets(va_list args) { va_copy(list, args); }
    ~VaListTargets() { va_end(list); }
    VaListTargets(VaListTargets const &) = delete;
    VaListTargets &operator=(VaListTargets const &) = delete;

    template <class T> T *Next() { return static_cast<T *>(va_arg(list, void *)); }

private:
    va_list list;
};

inline bool IsScanSpace(char16_t c) {
    return iswspace(c);
}
inline bool IsScanSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// @copydoc ScanEngine.h
struct ScanDirective {
    bool suppress = false;
    size_t width = SIZE_MAX; ///< none given
    ArgSize size = ArgSize::None;
    char conversion = 0;
};

inline bool IsIntegerSize(ArgSize size) {
    return size != ArgSize::Wide;
}

template <class Char> bool ScanSizeFits(ArgSize size, char conversion) {
    switch (conversion) {
    case 'd':
    case 'i':
    case 'u':
    case 'o':
    case 'x':
    case 'X':
    case 'n':
        return IsIntegerSize(size);
    case 'e':
    case 'E':
    case 'f':
    case 'F':
    case 'g':
    case 'G':
    case 'a':
    case 'A':
        return size == ArgSize::None || size == ArgSize::Long || size == ArgSize::LongDouble;
    case 'c':
    case 's':
    case '[':
        // Text is stored in the format's own unit type only.
        return size == ArgSize::None ||
               (std::is_same_v<Char, char16_t> && (size == ArgSize::Long || size == ArgSize::Wide));
    default:
        return false;
    }
}

/// @copydoc ScanEngine.h
template <class Char, class Targets> class Scanner {
public:
    Scanner(Char const *input, Targets &targets) : in(input), start(input), targets(targets) {}

    /// Returns the number of assigned fields, or -1 if the input ended before
    /// the first conversion.
    int Run(Char const *fmt) {
        while (*fmt && !stopped) {
            if (IsScanSpace(*fmt)) {
                while (IsScanSpace(*fmt))
                    ++fmt;
                SkipSpace();
            } else if (*fmt != '%' || fmt[1] == '%') {
                fmt += *fmt == '%' ? 2 : 1;
                MatchLiteral(fmt[-1]);
            } else {
                fmt = Directive(fmt + 1);
            }
        }
        return inputFailure && !converted ? -1 : assigned;
    }

private:
    void SkipSpace() {
        while (IsScanSpace(*in))
            ++in;
    }
    void Fail() { stopped = true; }
    /// Whether input is left for a field; input ending here is an input failure.
    ///@{
    bool HaveInput() {
        if (*in) return true;
        inputFailure = true;
        Fail();
        return false;
    }
    void MatchLiteral(Char c) {
        if (!HaveInput()) return;
        if (*in == c)
            ++in;
        else
            Fail();
    }
    void Completed(bool stored) {
        converted = true;
        assigned += stored;
    }
    ///@}

    Char const *Directive(Char const *fmt) {
        ScanDirective directive;
        if (*fmt == '*') directive.suppress = true, ++fmt;
        int width = 0;
        fmt = ParseCount(fmt, width);
        if (width > 0) directive.width = size_t(width);
        fmt = ParseArgSize(fmt, directive.size);
        auto c = static_cast<std::make_unsigned_t<Char>>(*fmt);
        if (!c || c >= 0x80 || !ScanSizeFits<Char>(directive.size, char(c))) {
            Fail(); // unknown directives end the scan
            return fmt;
        }
        directive.conversion = char(c);
        ++fmt;
        switch (directive.conversion) {
        case 'n':
            StoreInteger(directive, uint64_t(in - start));
            return fmt;
        case 'c':
            ScanCharacters(directive);
            return fmt;
        case 's':
            ScanWord(directive);
            return fmt;
        case '[':
            return ScanSet(directive, fmt);
        case 'e':
        case 'E':
        case 'f':
        case 'F':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
            ScanFloat(directive);
            return fmt;
        default:
            ScanInteger(directive);
            return fmt;
        }
    }

    void StoreInteger(ScanDirective const &directive, uint64_t value) {
        if (directive.suppress) return;
        switch (directive.size) {
        case ArgSize::Char:
            *targets.template Next<int8_t>() = int8_t(value);
            break;
        case ArgSize::Short:
            *targets.template Next<int16_t>() = int16_t(value);
            break;
        case ArgSize::LongLong:
        case ArgSize::Int64:
        case ArgSize::SizeT:
        case ArgSize::LongDouble:
            *targets.template Next<int64_t>() = int64_t(value);
            break;
        default:
            *targets.template Next<int32_t>() = int32_t(value);
            break; // int and the 32-bit long
        }
    }

    static int DigitValue(Char c) {
        if (c >= '0' && c <= '9') return c - '0';
        Char lower = AsciiLowerUnit(c);
        return lower >= 'a' && lower <= 'z' ? lower - 'a' + 10 : 99;
    }

    void ScanInteger(ScanDirective const &directive) {
        SkipSpace();
        if (!HaveInput()) return;
        BoundedText<Char> text(in, directive.width);
        char c = directive.conversion;
        unsigned base = c == 'o' ? 8 : (c == 'x' || c == 'X') ? 16 : c == 'i' ? 0 : 10;
        size_t i = 0;
        bool negative = text[0] == '-';
        if (text[0] == '-' || text[0] == '+') ++i;
        bool hexPrefix = text[i] == '0' && AsciiLowerUnit(text[i + 1]) == 'x' && DigitValue(text[i + 2]) < 16;
        if ((base == 16 || base == 0) && hexPrefix) base = 16, i += 2;
        if (base == 0) base = text[i] == '0' ? 8 : 10;
        uint64_t value = 0;
        size_t first = i;
        for (int d; (d = DigitValue(text[i])) < int(base); ++i)
            value = value * base + unsigned(d);
        if (i == first) return Fail();
        in += i;
        StoreInteger(directive, negative ? 0 - value : value);
        Completed(!directive.suppress);
    }

    void ScanFloat(ScanDirective const &directive) {
        SkipSpace();
        if (!HaveInput()) return;
        ParsedNumber number = ParseDouble(in, directive.width);
        if (!number.length) return Fail();
        in += number.length;
        if (!directive.suppress) {
            if (directive.size == ArgSize::None)
                *targets.template Next<float>() = float(number.value);
            else
                *targets.template Next<double>() = number.value;
        }
        Completed(!directive.suppress);
    }

    /// Copies n units of input to the next destination, terminated if asked.
    void StoreText(ScanDirective const &directive, size_t n, bool terminate) {
        if (!directive.suppress) {
            Char *out = targets.template Next<Char>();
            for (size_t i = 0; i < n; ++i)
                out[i] = in[i];
            if (terminate) out[n] = 0;
        }
        in += n;
        Completed(!directive.suppress);
    }

    void ScanCharacters(ScanDirective const &directive) {
        if (!HaveInput()) return;
        size_t width = directive.width == SIZE_MAX ? 1 : directive.width;
        size_t n = 0;
        while (n < width && in[n])
            ++n;
        StoreText(directive, n, false);
    }

    void ScanWord(ScanDirective const &directive) {
        SkipSpace();
        if (!HaveInput()) return;
        size_t n = 0;
        while (n < directive.width && in[n] && !IsScanSpace(in[n]))
            ++n;
        StoreText(directive, n, true);
    }

    /// set points past the '[' (and '^'); a ']' right there is a member.
    static bool InSet(Char const *set, Char const *end, Char c) {
        for (Char const *p = set; p < end; ++p) {
            if (p[1] == '-' && p + 2 < end) {
                Char lo = p[0] < p[2] ? p[0] : p[2], hi = p[0] < p[2] ? p[2] : p[0];
                if (c >= lo && c <= hi) return true;
                p += 2;
            } else if (*p == c) {
                return true;
            }
        }
        return false;
    }

    Char const *ScanSet(ScanDirective const &directive, Char const *fmt) {
        bool negate = *fmt == '^';
        Char const *set = fmt + negate;
        Char const *end = set + (*set == ']');
        while (*end && *end != ']')
            ++end;
        if (!*end) {
            Fail(); // no closing bracket: not a directive
            return end;
        }
        if (!HaveInput()) return end + 1;
        size_t n = 0;
        while (n < directive.width && in[n] && InSet(set, end, in[n]) != negate)
            ++n;
        if (!n)
            Fail();
        else
            StoreText(directive, n, true);
        return end + 1;
    }

    Char const *in;
    Char const *start;
    Targets &targets;
    int assigned = 0;
    bool converted = false; ///< a conversion completed, assigned or suppressed
    bool inputFailure = false;
    bool stopped = false;
};

template <class Char, class Targets> int ScanText(Char const *input, Char const *fmt, Targets &targets) {
    if (!input || !fmt) return -1;
    return Scanner<Char, Targets>(input, targets).Run(fmt);
}

} // namespace qv::detail
