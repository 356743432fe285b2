// OS binding: iconv conversions for the code pages qv does not build in.
#include <iconv.h>

#include <bit>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "qv/platform/Iconv.h"

namespace qv::platform {

namespace {

constexpr char const *kUtf16 = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

// Code pages whose iconv name is not simply "CP<number>".
struct NamedPage {
    uint32_t codePage;
    char const *name;
};
constexpr NamedPage kNamedPages[] = {
    {20127, "ASCII"},        {20866, "KOI8-R"},   {21866, "KOI8-U"},      {20932, "EUC-JP"},  {51932, "EUC-JP"},
    {51949, "EUC-KR"},       {52936, "HZ"},       {54936, "GB18030"},     {936, "GBK"},       {950, "BIG5"},
    {65000, "UTF-7"},        {10000, "MACINTOSH"}, {50220, "ISO-2022-JP"}, {28591, "ISO-8859-1"}, {28592, "ISO-8859-2"},
    {28593, "ISO-8859-3"},   {28594, "ISO-8859-4"}, {28595, "ISO-8859-5"}, {28596, "ISO-8859-6"}, {28597, "ISO-8859-7"},
    {28598, "ISO-8859-8"},   {28599, "ISO-8859-9"}, {28603, "ISO-8859-13"}, {28605, "ISO-8859-15"},
};

void CodePageName(uint32_t codePage, char (&name)[16]) {
    for (auto const &page : kNamedPages)
        if (page.codePage == codePage) {
            std::snprintf(name, sizeof name, "%s", page.name);
            return;
        }
    std::snprintf(name, sizeof name, "CP%u", unsigned(codePage));
}

class Converter {
public:
    Converter(char const *to, char const *from) : cd(iconv_open(to, from)) {}
    ~Converter() {
        if (ok()) iconv_close(cd);
    }
    Converter(Converter const &) = delete;
    Converter &operator=(Converter const &) = delete;
    bool ok() const { return cd != reinterpret_cast<iconv_t>(-1); }

    // Converts all input; Skip(in, left) returns the input bytes to drop at an
    // invalid or unmappable sequence, whose place the replacement takes.
    template <class Skip>
    int64_t Run(char const *in, size_t inLeft, char *out, size_t outSize, char const *replacement, size_t replacementSize,
                Skip skip) {
        Sink sink{out, outSize};
        char *src = const_cast<char *>(in);
        while (inLeft) {
            char chunk[1024];
            char *dst = chunk;
            size_t room = sizeof chunk;
            size_t r = iconv(cd, &src, &inLeft, &dst, &room);
            sink.Put(chunk, size_t(dst - chunk));
            if (r != size_t(-1) || errno == E2BIG) continue;
            size_t drop = skip(src, inLeft);
            src += drop;
            inLeft -= drop;
            sink.Put(replacement, replacementSize);
        }
        char chunk[64];
        char *dst = chunk;
        size_t room = sizeof chunk;
        iconv(cd, nullptr, nullptr, &dst, &room); // back to the initial shift state
        sink.Put(chunk, size_t(dst - chunk));
        return int64_t(sink.count);
    }

private:
    struct Sink {
        char *out;
        size_t size;
        size_t count = 0;
        void Put(char const *bytes, size_t n) {
            if (count < size) std::memcpy(out + count, bytes, n < size - count ? n : size - count);
            count += n;
        }
    };
    iconv_t cd;
};

bool IsLowSurrogateAt(char const *p) {
    char16_t c;
    std::memcpy(&c, p, 2);
    return c >= 0xDC00 && c <= 0xDFFF;
}

} // namespace

int64_t IconvFromUtf16(uint32_t codePage, char16_t const *text, size_t length, char *out, size_t outSize) {
    char name[16];
    CodePageName(codePage, name);
    Converter converter(name, kUtf16);
    if (!converter.ok()) return -1;
    // One '?' per character: a surrogate pair is dropped whole.
    auto skip = [](char const *at, size_t left) -> size_t {
        char16_t c = 0;
        std::memcpy(&c, at, left < 2 ? left : 2);
        if (left >= 4 && c >= 0xD800 && c <= 0xDBFF && IsLowSurrogateAt(at + 2)) return 4;
        return left < 2 ? left : 2;
    };
    return converter.Run(reinterpret_cast<char const *>(text), length * 2, out, outSize, "?", 1, skip);
}

int64_t IconvToUtf16(uint32_t codePage, char const *text, size_t length, char16_t *out, size_t outSize) {
    char name[16];
    CodePageName(codePage, name);
    Converter converter(kUtf16, name);
    if (!converter.ok()) return -1;
    char16_t const replacement = 0xFFFD;
    auto skip = [](char const *, size_t) -> size_t { return 1; };
    int64_t bytes = converter.Run(text, length, reinterpret_cast<char *>(out), outSize * 2,
                                  reinterpret_cast<char const *>(&replacement), 2, skip);
    return bytes / 2;
}

} // namespace qv::platform
