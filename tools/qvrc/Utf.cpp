#include "Script.h"

namespace qvrc {

namespace {

// The code point starting at in[i], advancing i; false if malformed,
// overlong, a surrogate or above U+10FFFF.
bool DecodeOne(std::string const &in, size_t &i, uint32_t &cp) {
    unsigned char lead = static_cast<unsigned char>(in[i++]);
    if (lead < 0x80) {
        cp = lead;
        return true;
    }
    int extra = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : -1;
    if (extra < 0 || lead > 0xF4) return false;
    cp = lead & (0x3F >> extra);
    for (int k = 0; k < extra; ++k) {
        if (i >= in.size()) return false;
        unsigned char c = static_cast<unsigned char>(in[i++]);
        if ((c & 0xC0) != 0x80) return false;
        cp = (cp << 6) | (c & 0x3F);
    }
    static uint32_t const smallest[] = {0, 0x80, 0x800, 0x10000};
    return cp >= smallest[extra] && cp <= 0x10FFFF && (cp < 0xD800 || cp > 0xDFFF);
}

} // namespace

bool Utf8ToUtf16(std::string const &in, std::u16string &out) {
    out.clear();
    for (size_t i = 0; i < in.size();) {
        uint32_t cp = 0;
        if (!DecodeOne(in, i, cp)) return false;
        if (cp < 0x10000) {
            out += char16_t(cp);
        } else {
            out += char16_t(0xD800 + ((cp - 0x10000) >> 10));
            out += char16_t(0xDC00 + ((cp - 0x10000) & 0x3FF));
        }
    }
    return true;
}

} // namespace qvrc
