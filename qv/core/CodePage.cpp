// UTF-16 to and from UTF-8 and 1252, built in; other code pages through the
// platform's iconv. One pass both counts and writes, so asking for the size
// and converting can never disagree.
#include <algorithm>
#include <climits>
#include <cstring>

#include "qv/core/CodePage.h"
#include "qv/core/Utf.h"
#include "qv/core/WideChar.h"
#include "qv/platform/Iconv.h"

namespace qv {

namespace {

// Writes what fits below size and counts everything.
template <class Unit> struct Sink {
    Unit *out;
    size_t size;
    size_t count = 0;

    void Put(Unit const *units, size_t n) {
        if (count < size) std::memcpy(out + count, units, std::min(n, size - count) * sizeof(Unit));
        count += n;
    }
    void Put(Unit unit) { Put(&unit, 1); }
    template <class In> void PutAscii(In const *in, size_t n) {
        size_t room = count < size ? std::min(n, size - count) : 0;
        for (size_t i = 0; i < room; ++i) out[count + i] = Unit(in[i]);
        count += n;
    }
};

// Length of the leading run of ASCII units, tested a word at a time.
template <class Unit> size_t AsciiRun(Unit const *in, size_t n) {
    constexpr uint64_t kHighBits = sizeof(Unit) == 1 ? 0x8080808080808080u : 0xFF80FF80FF80FF80u;
    constexpr size_t kPerWord = 8 / sizeof(Unit);
    size_t i = 0;
    for (uint64_t word; i + kPerWord <= n; i += kPerWord) {
        std::memcpy(&word, in + i, 8);
        if (word & kHighBits) break;
    }
    while (i < n && uint32_t(in[i]) < 0x80) ++i;
    return i;
}

size_t Utf16ToUtf8(char16_t const *in, size_t n, char *out, size_t size) {
    Sink<char> sink{out, size};
    for (size_t i = 0; i < n;) {
        if (size_t run = AsciiRun(in + i, n - i)) {
            sink.PutAscii(in + i, run);
            i += run;
            continue;
        }
        detail::Decoded d = detail::DecodeUtf16(in + i, n - i);
        char bytes[4];
        sink.Put(bytes, detail::EncodeUtf8(d.codePoint, bytes));
        i += d.length;
    }
    return sink.count;
}

size_t Utf8ToUtf16(char const *text, size_t n, char16_t *out, size_t size) {
    auto in = reinterpret_cast<unsigned char const *>(text);
    Sink<char16_t> sink{out, size};
    for (size_t i = 0; i < n;) {
        if (size_t run = AsciiRun(in + i, n - i)) {
            sink.PutAscii(in + i, run);
            i += run;
            continue;
        }
        detail::Decoded d = detail::DecodeUtf8(in + i, n - i);
        char16_t units[2];
        sink.Put(units, detail::EncodeUtf16(d.codePoint, units));
        i += d.length;
    }
    return sink.count;
}

// 0x80..0x9F of 1252. The five bytes it leaves undefined map to the C1
// control of the same value, as existing files expect.
constexpr char16_t k1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

char To1252(char32_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return char(c);
    for (size_t i = 0; i < 32; ++i)
        if (k1252High[i] == c) return char(0x80 + i);
    return '?';
}

size_t Utf16To1252(char16_t const *in, size_t n, char *out, size_t size) {
    Sink<char> sink{out, size};
    for (size_t i = 0; i < n;) {
        detail::Decoded d = detail::DecodeUtf16(in + i, n - i);
        sink.Put(To1252(d.codePoint)); // lone surrogates and pairs alike become one '?'
        i += d.length;
    }
    return sink.count;
}

size_t From1252(char const *in, size_t n, char16_t *out, size_t size) {
    Sink<char16_t> sink{out, size};
    for (size_t i = 0; i < n; ++i) {
        auto b = static_cast<unsigned char>(in[i]);
        sink.Put(b >= 0x80 && b < 0xA0 ? k1252High[b - 0x80] : char16_t(b));
    }
    return sink.count;
}

bool Is1252(uint32_t codePage) {
    return codePage == CP_ACP || codePage == CP_1252;
}

// Needed counts above INT_MAX and outputs too small for the text fail as 0.
int Result(int64_t needed, int outSize) {
    if (needed < 0 || needed > INT_MAX) return 0;
    if (outSize && needed > outSize) return 0;
    return int(needed);
}

bool BadArguments(void const *text, int length, void const *out, int outSize) {
    return !text || length == 0 || length < -1 || outSize < 0 || (!out && outSize);
}

} // namespace

int WideCharToMultiByte(uint32_t codePage, char16_t const *text, int length, char *out, int outSize) {
    if (BadArguments(text, length, out, outSize)) return 0;
    size_t n = length == -1 ? wcslen(text) + 1 : size_t(length);
    size_t size = size_t(outSize);
    if (codePage == CP_UTF8) return Result(int64_t(Utf16ToUtf8(text, n, out, size)), outSize);
    if (Is1252(codePage)) return Result(int64_t(Utf16To1252(text, n, out, size)), outSize);
    return Result(platform::IconvFromUtf16(codePage, text, n, out, size), outSize);
}

int MultiByteToWideChar(uint32_t codePage, char const *text, int length, char16_t *out, int outSize) {
    if (BadArguments(text, length, out, outSize)) return 0;
    size_t n = length == -1 ? std::strlen(text) + 1 : size_t(length);
    size_t size = size_t(outSize);
    if (codePage == CP_UTF8) return Result(int64_t(Utf8ToUtf16(text, n, out, size)), outSize);
    if (Is1252(codePage)) return Result(int64_t(From1252(text, n, out, size)), outSize);
    return Result(platform::IconvToUtf16(codePage, text, n, out, size), outSize);
}

} // namespace qv
