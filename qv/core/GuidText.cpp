#include "qv/core/GuidText.h"

#include <cstring>

#include "qv/core/HexDigit.h"

namespace qv {

namespace {

// Reads count hexadecimal digits at s into value; false at any other unit.
bool ReadHexGroup(char16_t const *&s, int count, uint64_t &value) {
    value = 0;
    for (int i = 0; i < count; ++i, ++s) {
        int digit = detail::HexDigitValue(*s);
        if (digit < 0) return false;
        value = value << 4 | uint64_t(digit);
    }
    return true;
}

} // namespace

GUID CGUID::Create(uint32_t Data1, uint16_t Data2, uint16_t Data3, uint8_t b0, uint8_t b1, uint8_t b2, uint8_t b3,
                   uint8_t b4, uint8_t b5, uint8_t b6, uint8_t b7) {
    return GUID{Data1, Data2, Data3, {b0, b1, b2, b3, b4, b5, b6, b7}};
}

GUID CGUID::FromBytes(unsigned char const *p) {
    static_assert(sizeof(GUID) == 16, "GUID is its 16 bytes");
    GUID g;
    std::memcpy(&g, p, sizeof g);
    return g;
}

GUID CGUID::Parse(char16_t const *s) {
    static constexpr int kGroupDigits[5] = {8, 4, 4, 4, 12};
    if (!s) return Empty;
    if (*s == u'{') ++s;
    uint64_t groups[5];
    for (int i = 0; i < 5; ++i) {
        if (i > 0 && *s == u'-') ++s;
        if (!ReadHexGroup(s, kGroupDigits[i], groups[i])) return Empty;
    }
    GUID g{uint32_t(groups[0]), uint16_t(groups[1]), uint16_t(groups[2]), {}};
    g.Data4[0] = uint8_t(groups[3] >> 8);
    g.Data4[1] = uint8_t(groups[3]);
    for (int i = 0; i < 6; ++i)
        g.Data4[2 + i] = uint8_t(groups[4] >> (40 - 8 * i));
    return g;
}

CString CGUID::ToString(GUID const &g) {
    return CString::FromFormat(u"{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}\n", g.Data1, g.Data2, g.Data3,
                               g.Data4[0], g.Data4[1], g.Data4[2], g.Data4[3], g.Data4[4], g.Data4[5], g.Data4[6],
                               g.Data4[7]);
}

} // namespace qv
