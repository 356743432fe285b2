/// @file
/// Internal: one code point at a time between UTF-8, UTF-16 and UTF-32, with
/// the replacement rules the code pages and printf share: each maximal invalid
/// subpart of UTF-8 and each lone surrogate decode as one U+FFFD.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qv::detail {

constexpr char32_t kReplacementChar = 0xFFFD;

/// @copydoc Utf.h
struct Decoded {
    char32_t codePoint;
    size_t length; ///< units taken from the input, at least 1
};

inline bool IsContinuation(unsigned char b, unsigned char lo = 0x80, unsigned char hi = 0xBF) {
    return b >= lo && b <= hi;
}

/// s has at least one byte and n >= 1 readable bytes; a terminated text may
/// pass SIZE_MAX, since the terminator is no continuation byte.
inline Decoded DecodeUtf8(unsigned char const *s, size_t n) {
    unsigned char b = s[0];
    if (b < 0x80) return {b, 1};
    size_t need;
    char32_t cp;
    unsigned char lo = 0x80, hi = 0xBF; // range of the second byte
    if (b >= 0xC2 && b <= 0xDF) {
        need = 1, cp = b & 0x1F;
    } else if (b >= 0xE0 && b <= 0xEF) {
        need = 2, cp = b & 0x0F;
        if (b == 0xE0) lo = 0xA0; // no overlong forms
        if (b == 0xED) hi = 0x9F; // no encoded surrogates
    } else if (b >= 0xF0 && b <= 0xF4) {
        need = 3, cp = b & 0x07;
        if (b == 0xF0) lo = 0x90;
        if (b == 0xF4) hi = 0x8F; // nothing above U+10FFFF
    } else {
        return {kReplacementChar, 1};
    }
    for (size_t i = 1; i <= need; ++i) {
        if (i >= n || !IsContinuation(s[i], i == 1 ? lo : 0x80, i == 1 ? hi : 0xBF)) return {kReplacementChar, i};
        cp = (cp << 6) | (s[i] & 0x3F);
    }
    return {cp, need + 1};
}

inline bool IsHighSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}
inline bool IsLowSurrogate(char32_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}

/// s has n >= 1 readable units; a terminated text may pass SIZE_MAX.
inline Decoded DecodeUtf16(char16_t const *s, size_t n) {
    char16_t c = s[0];
    if (c < 0xD800 || c > 0xDFFF) return {c, 1};
    if (IsHighSurrogate(c) && n > 1 && IsLowSurrogate(s[1]))
        return {0x10000 + ((char32_t(c) - 0xD800) << 10) + (s[1] - 0xDC00), 2};
    return {kReplacementChar, 1};
}

inline size_t Utf8Length(char32_t cp) {
    return cp < 0x80 ? 1 : cp < 0x800 ? 2 : cp < 0x10000 ? 3 : 4;
}

/// out has room for Utf8Length(cp) bytes.
inline size_t EncodeUtf8(char32_t cp, char *out) {
    size_t n = Utf8Length(cp);
    if (n == 1) {
        out[0] = char(cp);
        return 1;
    }
    static constexpr unsigned char kLead[] = {0, 0, 0xC0, 0xE0, 0xF0};
    for (size_t i = n - 1; i > 0; --i, cp >>= 6) out[i] = char(0x80 | (cp & 0x3F));
    out[0] = char(kLead[n] | cp);
    return n;
}

inline size_t Utf16Length(char32_t cp) {
    return cp < 0x10000 ? 1 : 2;
}

/// out has room for Utf16Length(cp) units.
inline size_t EncodeUtf16(char32_t cp, char16_t *out) {
    if (cp < 0x10000) {
        out[0] = char16_t(cp);
        return 1;
    }
    cp -= 0x10000;
    out[0] = char16_t(0xD800 + (cp >> 10));
    out[1] = char16_t(0xDC00 + (cp & 0x3FF));
    return 2;
}

} // namespace qv::detail
