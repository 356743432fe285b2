// Entities of the XML file: seven decoded, five (seven in attributes) encoded.
#include "qv/formats/tagged/XMLText.h"

#include <cstring>

#include "qv/core/Utf.h"
#include "qv/core/WideChar.h"
#include "qv/formats/tagged/Utf8Text.h"

namespace qv::xml {

namespace {

struct Entity {
    char const *text;
    char byte;
};

constexpr Entity kEntities[] = {{"&quot;", '"'}, {"&apos;", '\''}, {"&lt;", '<'}, {"&gt;", '>'},
                                {"&amp;", '&'},  {"&#13;", '\r'}, {"&#10;", '\n'}};

// A candidate runs from its '&' to the next ';' or for at most this many units.
constexpr uint32_t kCandidateLimit = 15;

char FoldAscii(char16_t c) {
    return c >= u'A' && c <= u'Z' ? char(c - u'A' + 'a') : c < 0x80 ? char(c) : '\0';
}

// The byte of the entity spelled by the n units at s, or -1.
template <class Unit> int EntityByte(Unit const *s, uint32_t n) {
    for (Entity const &e : kEntities) {
        if (std::strlen(e.text) != n) continue;
        uint32_t i = 0;
        while (i < n && FoldAscii(char16_t(static_cast<std::make_unsigned_t<Unit>>(s[i]))) == e.text[i]) ++i;
        if (i == n) return e.byte;
    }
    return -1;
}

// Decodes n units at s into out (a string of the same unit type).
template <class Unit, class Out> void DecodeInto(Unit const *s, uint32_t n, Out &out) {
    uint32_t i = 0;
    while (i < n) {
        if (s[i] != Unit('&')) {
            out += s[i++];
            continue;
        }
        uint32_t end = i + 1;
        while (end < n && end - i < kCandidateLimit && s[end] != Unit(';')) ++end;
        uint32_t length = (end < n && s[end] == Unit(';')) ? end - i + 1 : end - i;
        int byte = EntityByte(s + i, length);
        if (byte >= 0) out += Unit(byte);
        else out.append(s + i, length);
        i += length;
    }
}

} // namespace

CString Decode(char const *bytes, uint32_t n) {
    if (!std::memchr(bytes, '&', n)) return tagged::TextFromUtf8(bytes, n);
    std::string decoded;
    decoded.reserve(n);
    DecodeInto(bytes, n, decoded);
    return tagged::TextFromUtf8(decoded.data(), uint32_t(decoded.size()));
}

CString Decode(char16_t const *text) {
    std::u16string decoded;
    DecodeInto(text ? text : u"", uint32_t(wcslen(text ? text : u"")), decoded);
    return CString(decoded.c_str());
}

// Straight from UTF-16 into the output, so no string is converted on its own.
void AppendEncoded(std::string &out, CString const &text, bool lineEnds) {
    char16_t const *p = text.GetUTF16();
    size_t n = size_t(text.GetLength());
    out.reserve(out.size() + n);
    for (size_t i = 0; i < n;) {
        char16_t c = p[i];
        if (c >= 0x80) {
            detail::Decoded d = detail::DecodeUtf16(p + i, n - i);
            char bytes[4];
            out.append(bytes, detail::EncodeUtf8(d.codePoint, bytes));
            i += d.length;
            continue;
        }
        ++i;
        switch (c) {
        case u'"': out += "&quot;"; break;
        case u'&': out += "&amp;"; break;
        case u'\'': out += "&apos;"; break;
        case u'<': out += "&lt;"; break;
        case u'>': out += "&gt;"; break;
        case u'\n': out += lineEnds ? "&#10;" : "\n"; break;
        case u'\r': out += lineEnds ? "&#13;" : "\r"; break;
        case u'\0': i = n; break; // the text ends at a NUL, as its UTF-8 form would
        default: out += char(c);
        }
    }
}

} // namespace qv::xml
