/// @file
/// Internal: the one printf engine behind the wide and the narrow families.
/// It is a template over the text's unit type and over the source of the
/// arguments, so the library reads a va_list while a fuzz target can hand in
/// safe values for any directive. It allocates nothing: numbers are built in a
/// stack buffer, zeros and padding are counted rather than stored, and text
/// longer than the caller's buffer is only counted.
#pragma once

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "qv/core/FormatSyntax.h"
#include "qv/core/Utf.h"

namespace qv::detail {

/// Arguments from a va_list. The designed runtime's long is 32 bits, so %ld
/// reads an int; %lld, %I64d and the size_t forms read 64 bits.
class VaListArgs {
public:
    explicit VaListArgs(va_list args) { va_copy(list, args); }
    ~VaListArgs() { va_end(list); }
    VaListArgs(VaListArgs const &) = delete;
    VaListArgs &operator=(VaListArgs const &) = delete;

    int32_t Int32() { return va_arg(list, int); }
    int64_t Int64() { return va_arg(list, long long); }
    double Double() { return va_arg(list, double); }
    void const *Pointer() { return va_arg(list, void const *); }
    char16_t const *WideText() { return va_arg(list, char16_t const *); }
    char const *NarrowText() { return va_arg(list, char const *); }

private:
    va_list list;
};

/// Writes what fits in the caller's buffer (keeping a unit for the
/// terminator) and counts the whole text.
template <class Char> class FormatOutput {
public:
    FormatOutput(Char *buf, size_t size) : buf(size ? buf : nullptr), room(buf && size ? size - 1 : 0) {}

    void Put(Char const *text, size_t n) {
        if (count < room) std::memcpy(buf + count, text, std::min(n, room - count) * sizeof(Char));
        count += n;
    }
    void Put(Char c) { Put(&c, 1); }
    void Fill(Char c, size_t n) {
        if (count < room) std::fill_n(buf + count, std::min(n, room - count), c);
        count += n;
    }
    void PutAscii(char const *text, size_t n) {
        if constexpr (std::is_same_v<Char, char>) {
            Put(text, n);
        } else {
            size_t fits = count < room ? std::min(n, room - count) : 0;
            for (size_t i = 0; i < fits; ++i)
                buf[count + i] = Char(static_cast<unsigned char>(text[i]));
            count += n;
        }
    }
    void Terminate() {
        if (buf) buf[std::min(count, room)] = 0;
    }
    size_t Count() const { return count; }

private:
    Char *buf;
    size_t room;
    size_t count = 0;
};

/// @copydoc FormatEngine.h
struct FormatDirective {
    bool left = false, plus = false, space = false, alt = false, zero = false;
    bool widthArg = false, precisionArg = false;
    int width = 0;
    int precision = -1; ///< none
    ArgSize size = ArgSize::None;
    char conversion = 0; ///< 0: the directive is unknown and prints as it stands
};

inline bool IsIntegerConversion(char c) {
    return std::strchr("diuoxX", c) != nullptr;
}
inline bool IsFloatConversion(char c) {
    return std::strchr("eEfFgGaA", c) != nullptr;
}

inline bool SizeFits(ArgSize size, char conversion) {
    switch (conversion) {
    case 'n':
        return true;
    case 'p':
        return size == ArgSize::None;
    case 'c':
    case 'C':
    case 's':
    case 'S':
        return size == ArgSize::None || size == ArgSize::Short || size == ArgSize::Long || size == ArgSize::Wide;
    default:
        break;
    }
    if (IsIntegerConversion(conversion)) return size != ArgSize::LongDouble && size != ArgSize::Wide;
    if (IsFloatConversion(conversion))
        return size == ArgSize::None || size == ArgSize::Long || size == ArgSize::LongDouble;
    return false;
}

/// p points past the '%'. Returns the position after the directive; a
/// directive cut short by the end of the format ends at the terminator.
template <class Char> Char const *ParseDirective(Char const *p, FormatDirective &directive) {
    if (*p == '%') return directive.conversion = '%', p + 1;
    for (;; ++p) {
        if (*p == '-')
            directive.left = true;
        else if (*p == '+')
            directive.plus = true;
        else if (*p == ' ')
            directive.space = true;
        else if (*p == '#')
            directive.alt = true;
        else if (*p == '0')
            directive.zero = true;
        else
            break;
    }
    if (*p == '*')
        directive.widthArg = true, ++p;
    else
        p = ParseCount(p, directive.width);
    if (*p == '.') {
        ++p;
        if (*p == '*')
            directive.precisionArg = true, ++p;
        else
            p = ParseCount(p, directive.precision);
    }
    p = ParseArgSize(p, directive.size);
    if (!*p) return p;
    auto c = static_cast<std::make_unsigned_t<Char>>(*p++);
    if (c < 0x80 && std::strchr("diuoxXeEfFgGaAcCsSpn", int(c)) && SizeFits(directive.size, char(c)))
        directive.conversion = char(c);
    return p;
}

/// The parts of a formatted number, left to right; zeros are counts.
struct NumberParts {
    char prefix[3] = {};
    size_t prefixLength = 0; ///< sign, then "0x" of %#x and %a
    size_t leadingZeros = 0; ///< zeros the precision asks for
    char const *body = "";
    size_t bodyLength = 0;
    size_t trailingZeros = 0; ///< zeros past the last digit that can be nonzero
    char const *suffix = "";
    size_t suffixLength = 0; ///< exponent
    bool zeroPadding = true; ///< whether the 0 flag may pad (not for inf, nan)

    void AddPrefix(char c) { prefix[prefixLength++] = c; }
};

template <class Char>
void PutPadded(FormatOutput<Char> &out, FormatDirective const &directive, NumberParts const &parts) {
    size_t length =
        parts.prefixLength + parts.leadingZeros + parts.bodyLength + parts.trailingZeros + parts.suffixLength;
    size_t padding = size_t(directive.width) > length ? size_t(directive.width) - length : 0;
    bool zeros = directive.zero && !directive.left && parts.zeroPadding;
    if (!directive.left && !zeros) out.Fill(' ', padding);
    out.PutAscii(parts.prefix, parts.prefixLength);
    out.Fill('0', parts.leadingZeros + (zeros ? padding : 0));
    out.PutAscii(parts.body, parts.bodyLength);
    out.Fill('0', parts.trailingZeros);
    out.PutAscii(parts.suffix, parts.suffixLength);
    if (directive.left) out.Fill(' ', padding);
}

inline void AddSign(NumberParts &parts, FormatDirective const &directive, bool negative) {
    if (negative)
        parts.AddPrefix('-');
    else if (directive.plus)
        parts.AddPrefix('+');
    else if (directive.space)
        parts.AddPrefix(' ');
}

template <class Char>
void PutInteger(FormatOutput<Char> &out, FormatDirective directive, uint64_t magnitude, bool negative, bool isSigned) {
    char c = directive.conversion;
    unsigned base = c == 'o' ? 8 : (c == 'x' || c == 'X' || c == 'p') ? 16 : 10;
    char const *digitChars = (c == 'x') ? "0123456789abcdef" : "0123456789ABCDEF";
    char digits[24];
    char *end = digits + sizeof digits, *first = end;
    if (magnitude || directive.precision != 0) do
            *--first = digitChars[magnitude % base];
        while (magnitude /= base);
    NumberParts parts;
    parts.body = first;
    parts.bodyLength = size_t(end - first);
    if (isSigned) AddSign(parts, directive, negative);
    // The designed runtime prefixes 0x for %#x even when the value is 0.
    if (directive.alt && base == 16) parts.AddPrefix('0'), parts.AddPrefix(c == 'x' ? 'x' : 'X');
    if (directive.precision > 0 && size_t(directive.precision) > parts.bodyLength)
        parts.leadingZeros = size_t(directive.precision) - parts.bodyLength;
    if (directive.alt && base == 8 && !parts.leadingZeros && (!parts.bodyLength || *first != '0'))
        parts.leadingZeros = 1;
    if (directive.precision >= 0) directive.zero = false; // a precision turns the 0 flag off
    PutPadded(out, directive, parts);
}

/// Exact decimal expansions of a double have at most 1074 fraction digits and
/// 767 significant digits; precision beyond that only adds zeros.
///@{
constexpr int kMaxFixedDigits = 1074;
constexpr int kMaxSignificantDigits = 800;
constexpr size_t kFloatBuffer = 309 + 1 + kMaxFixedDigits + 8;
///@}

/// @copydoc FormatEngine.h
struct FloatText {
    char body[kFloatBuffer];
    char exponent[8];
    NumberParts parts;
};

inline void FixedDigits(FloatText &text, double value, int precision) {
    int exact = std::min(precision, kMaxFixedDigits);
    auto r = std::to_chars(text.body, text.body + sizeof text.body, value, std::chars_format::fixed, exact);
    text.parts.body = text.body;
    text.parts.bodyLength = size_t(r.ptr - text.body);
    text.parts.trailingZeros = size_t(precision - exact);
}

/// Mantissa into body; returns the decimal exponent. Exponents print with at
/// least three digits, as the designed runtime does and existing files hold.
inline int ScientificDigits(FloatText &text, double value, int precision, char e) {
    int exact = std::min(precision, kMaxSignificantDigits);
    auto r = std::to_chars(text.body, text.body + sizeof text.body, value, std::chars_format::scientific, exact);
    char const *mark = std::find(text.body, r.ptr, 'e');
    int exponent = 0;
    std::from_chars(mark + (mark[1] == '+' ? 2 : 1), r.ptr, exponent);
    text.parts.body = text.body;
    text.parts.bodyLength = size_t(mark - text.body);
    text.parts.trailingZeros = size_t(precision - exact);
    char *x = text.exponent;
    *x++ = e;
    *x++ = exponent < 0 ? '-' : '+';
    int magnitude = exponent < 0 ? -exponent : exponent;
    *x++ = char('0' + magnitude / 100);
    *x++ = char('0' + magnitude / 10 % 10);
    *x++ = char('0' + magnitude % 10);
    text.parts.suffix = text.exponent;
    text.parts.suffixLength = size_t(x - text.exponent);
    return exponent;
}

inline void HexDigits(FloatText &text, double value, int precision, bool upper) {
    constexpr int kHexFractionDigits = 13;
    int exact = std::min(precision, kHexFractionDigits);
    auto r = std::to_chars(text.body, text.body + sizeof text.body, value, std::chars_format::hex, exact);
    char *mark = std::find(text.body, r.ptr, 'p');
    size_t suffixLength = size_t(r.ptr - mark);
    std::memcpy(text.exponent, mark, suffixLength);
    if (upper) {
        std::transform(text.body, mark, text.body, [](char c) { return c >= 'a' && c <= 'f' ? char(c - 32) : c; });
        text.exponent[0] = 'P';
    }
    text.parts.body = text.body;
    text.parts.bodyLength = size_t(mark - text.body);
    text.parts.trailingZeros = size_t(precision - exact);
    text.parts.suffix = text.exponent;
    text.parts.suffixLength = suffixLength;
}

/// Removes the zeros ending the fraction, and the point if nothing is left.
inline void StripFractionZeros(NumberParts &parts) {
    parts.trailingZeros = 0;
    if (!std::memchr(parts.body, '.', parts.bodyLength)) return;
    while (parts.body[parts.bodyLength - 1] == '0')
        --parts.bodyLength;
    if (parts.body[parts.bodyLength - 1] == '.') --parts.bodyLength;
}

/// %g: %e or %f by the exponent, as C defines it.
inline void GeneralDigits(FloatText &text, double value, int precision, bool alt, char e) {
    int significant = precision == 0 ? 1 : precision;
    int exponent = value == 0 ? 0 : ScientificDigits(text, value, significant - 1, e);
    if (exponent >= -4 && exponent < significant) {
        FixedDigits(text, value, significant - 1 - exponent);
        text.parts.suffixLength = 0;
    }
    if (!alt) StripFractionZeros(text.parts);
}

/// Appends the point that '#' asks for when no digit follows it.
inline void ForcePoint(NumberParts &parts, char *body) {
    if (std::memchr(parts.body, '.', parts.bodyLength)) return;
    body[parts.bodyLength++] = '.';
}

template <class Char> void PutFloat(FormatOutput<Char> &out, FormatDirective const &directive, double value) {
    char c = directive.conversion;
    bool upper = c == 'E' || c == 'F' || c == 'G' || c == 'A';
    FloatText text;
    NumberParts &parts = text.parts;
    AddSign(parts, directive, std::signbit(value) && !std::isnan(value));
    if (!std::isfinite(value)) {
        parts.body = std::isnan(value) ? (upper ? "NAN" : "nan") : (upper ? "INF" : "inf");
        parts.bodyLength = 3;
        parts.zeroPadding = false;
        PutPadded(out, directive, parts);
        return;
    }
    double magnitude = std::fabs(value);
    char e = upper ? 'E' : 'e';
    switch (c) {
    case 'f':
    case 'F':
        FixedDigits(text, magnitude, directive.precision < 0 ? 6 : directive.precision);
        break;
    case 'e':
    case 'E':
        ScientificDigits(text, magnitude, directive.precision < 0 ? 6 : directive.precision, e);
        break;
    case 'g':
    case 'G':
        GeneralDigits(text, magnitude, directive.precision < 0 ? 6 : directive.precision, directive.alt, e);
        break;
    default: // a, A: 13 hex digits unless a precision is given, as the designed runtime prints
        parts.AddPrefix('0'), parts.AddPrefix(upper ? 'X' : 'x');
        HexDigits(text, magnitude, directive.precision < 0 ? 13 : directive.precision, upper);
        break;
    }
    if (directive.alt) ForcePoint(parts, text.body);
    PutPadded(out, directive, parts);
}

/// Text of one unit type into another, one whole code point at a time, at
/// most limit output units. Returns the units produced.
template <class Char, class Src, class Emit> size_t Transcode(Src const *s, size_t limit, Emit emit) {
    size_t count = 0;
    while (count < limit && *s) {
        Decoded d;
        if constexpr (std::is_same_v<Src, char>)
            d = DecodeUtf8(reinterpret_cast<unsigned char const *>(s), SIZE_MAX);
        else
            d = DecodeUtf16(s, SIZE_MAX);
        Char units[4];
        size_t n;
        if constexpr (std::is_same_v<Char, char>)
            n = EncodeUtf8(d.codePoint, units);
        else
            n = EncodeUtf16(d.codePoint, units);
        if (count + n > limit) break;
        emit(units, n);
        count += n;
        s += d.length;
    }
    return count;
}

template <class Char>
void PadText(FormatOutput<Char> &out, FormatDirective const &directive, size_t length, bool before) {
    if (size_t(directive.width) <= length || directive.left == before) return;
    // The designed runtime pads text with zeros too when the 0 flag is given.
    out.Fill(directive.zero && !directive.left ? Char('0') : Char(' '), size_t(directive.width) - length);
}

template <class Char, class Src> void PutText(FormatOutput<Char> &out, FormatDirective const &directive, Src const *s) {
    static constexpr Src kNull[] = {'(', 'n', 'u', 'l', 'l', ')', 0};
    if (!s) s = kNull;
    size_t limit = directive.precision < 0 ? SIZE_MAX : size_t(directive.precision);
    if constexpr (std::is_same_v<Char, Src>) {
        size_t length = 0;
        while (length < limit && s[length])
            ++length;
        PadText(out, directive, length, true);
        out.Put(s, length);
        PadText(out, directive, length, false);
    } else {
        size_t length = Transcode<Char>(s, limit, [](Char const *, size_t) {});
        PadText(out, directive, length, true);
        Transcode<Char>(s, limit, [&](Char const *units, size_t n) { out.Put(units, n); });
        PadText(out, directive, length, false);
    }
}

template <class Char, class Src>
void PutCharacter(FormatOutput<Char> &out, FormatDirective const &directive, Src unit) {
    Char units[4];
    size_t n = 1;
    if constexpr (std::is_same_v<Char, Src>) {
        units[0] = unit;
    } else {
        Decoded d;
        if constexpr (std::is_same_v<Src, char>)
            d = DecodeUtf8(reinterpret_cast<unsigned char const *>(&unit), 1);
        else
            d = DecodeUtf16(&unit, 1);
        if constexpr (std::is_same_v<Char, char>)
            n = EncodeUtf8(d.codePoint, units);
        else
            n = EncodeUtf16(d.codePoint, units);
    }
    PadText(out, directive, n, true);
    out.Put(units, n);
    PadText(out, directive, n, false);
}

/// Whether %s/%c of this directive takes wide text: l and w say wide, h narrow,
/// otherwise the lower-case letter is the format's own kind.
template <class Char> bool TakesWide(FormatDirective const &directive) {
    if (directive.size == ArgSize::Long || directive.size == ArgSize::Wide) return true;
    if (directive.size == ArgSize::Short) return false;
    bool own = directive.conversion == 's' || directive.conversion == 'c';
    return own == std::is_same_v<Char, char16_t>;
}

template <class Args> uint64_t ReadUnsigned(ArgSize size, Args &args) {
    switch (size) {
    case ArgSize::Char:
        return uint8_t(args.Int32());
    case ArgSize::Short:
        return uint16_t(args.Int32());
    case ArgSize::LongLong:
    case ArgSize::Int64:
    case ArgSize::SizeT:
        return uint64_t(args.Int64());
    default:
        return uint32_t(args.Int32());
    }
}

template <class Args> int64_t ReadSigned(ArgSize size, Args &args) {
    switch (size) {
    case ArgSize::Char:
        return int8_t(args.Int32());
    case ArgSize::Short:
        return int16_t(args.Int32());
    case ArgSize::LongLong:
    case ArgSize::Int64:
    case ArgSize::SizeT:
        return args.Int64();
    default:
        return args.Int32();
    }
}

template <class Args> void ReadStars(FormatDirective &directive, Args &args) {
    if (directive.widthArg) {
        int width = args.Int32();
        if (width < 0) directive.left = true, width = width == INT_MIN ? INT_MAX : -width;
        directive.width = width;
    }
    if (directive.precisionArg) {
        int precision = args.Int32();
        directive.precision = precision < 0 ? -1 : precision;
    }
}

template <class Char, class Args> void Convert(FormatOutput<Char> &out, FormatDirective directive, Args &args) {
    char c = directive.conversion;
    switch (c) {
    case '%':
        out.Put(Char('%'));
        return;
    case 'n':
        args.Pointer();
        return; // never writes through the pointer
    case 'p': {
        directive.precision = int(2 * sizeof(void *)); // full width, upper-case digits
        auto value = reinterpret_cast<uintptr_t>(args.Pointer());
        PutInteger(out, directive, uint64_t(value), false, false);
        return;
    }
    case 's':
    case 'S':
        if (TakesWide<Char>(directive))
            PutText(out, directive, args.WideText());
        else
            PutText(out, directive, args.NarrowText());
        return;
    case 'c':
    case 'C':
        if (TakesWide<Char>(directive))
            PutCharacter(out, directive, char16_t(args.Int32()));
        else
            PutCharacter(out, directive, char(args.Int32()));
        return;
    case 'd':
    case 'i': {
        int64_t value = ReadSigned(directive.size, args);
        uint64_t magnitude = value < 0 ? 0 - uint64_t(value) : uint64_t(value);
        PutInteger(out, directive, magnitude, value < 0, true);
        return;
    }
    default:
        break;
    }
    if (IsIntegerConversion(c))
        PutInteger(out, directive, ReadUnsigned(directive.size, args), false, false);
    else
        PutFloat(out, directive, args.Double());
}

/// Formats into buf (size units with the terminator; buf may be null when
/// size is 0) and returns the length of the whole text, or -1 if that is above
/// INT_MAX. A null format gives -1.
template <class Char, class Args> int FormatText(Char *buf, size_t size, Char const *fmt, Args &args) {
    FormatOutput<Char> out(buf, size);
    if (!fmt) return out.Terminate(), -1;
    while (*fmt) {
        Char const *percent = fmt;
        while (*percent && *percent != '%')
            ++percent;
        out.Put(fmt, size_t(percent - fmt));
        if (!*percent) break;
        FormatDirective directive;
        fmt = ParseDirective(percent + 1, directive);
        if (!directive.conversion) {
            out.Put(percent, size_t(fmt - percent)); // unknown: prints as it stands
            continue;
        }
        ReadStars(directive, args);
        Convert(out, directive, args);
    }
    out.Terminate();
    return out.Count() > size_t(INT_MAX) ? -1 : int(out.Count());
}

} // namespace qv::detail
