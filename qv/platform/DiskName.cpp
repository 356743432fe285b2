#include "qv/platform/DiskName.h"

#include <cstring>

#include "qv/core/Utf.h"

namespace qv {

namespace {

constexpr char16_t kEscapeBase = 0xDC00; // + a byte of 0x80..0xFF

bool IsEscapedByte(char16_t unit) {
    return unit >= kEscapeBase + 0x80 && unit <= kEscapeBase + 0xFF;
}

// A decoded U+FFFD that the name really holds, not one standing for bad bytes.
bool IsGenuineReplacement(unsigned char const *s, detail::Decoded const &d) {
    return d.length == 3 && s[0] == 0xEF && s[1] == 0xBF && s[2] == 0xBD;
}

} // namespace

std::string ToDiskName(char16_t const *text) {
    std::string out;
    if (!text) return out;
    size_t n = std::char_traits<char16_t>::length(text);
    out.reserve(n);
    for (size_t i = 0; i < n;) {
        detail::Decoded d = detail::DecodeUtf16(text + i, n - i);
        if (d.length == 1 && IsEscapedByte(text[i])) {
            out += char(text[i] - kEscapeBase);
        } else {
            char bytes[4];
            char32_t cp = d.codePoint == U'\\' ? U'/' : d.codePoint;
            out.append(bytes, detail::EncodeUtf8(cp, bytes));
        }
        i += d.length;
    }
    return out;
}

CString FromDiskName(char const *name) {
    std::u16string out;
    auto bytes = reinterpret_cast<unsigned char const *>(name ? name : "");
    size_t n = std::strlen(reinterpret_cast<char const *>(bytes));
    out.reserve(n);
    for (size_t i = 0; i < n;) {
        detail::Decoded d = detail::DecodeUtf8(bytes + i, n - i);
        if (d.codePoint == detail::kReplacementChar && !IsGenuineReplacement(bytes + i, d)) {
            for (size_t k = 0; k < d.length; ++k)
                out += char16_t(kEscapeBase + bytes[i + k]);
        } else {
            char16_t units[2];
            out.append(units, detail::EncodeUtf16(d.codePoint, units));
        }
        i += d.length;
    }
    return CString(out.c_str());
}

} // namespace qv
