/// @file
/// The 16-byte identifier value type, laid out field by field as files store it.
#pragma once

#include <cstdint>

namespace qv {

/// @copydoc Guid.h
struct GUID {
    uint32_t Data1;   ///< first 8 hexadecimal digits
    uint16_t Data2;   ///< next 4
    uint16_t Data3;   ///< next 4
    uint8_t Data4[8]; ///< last 16, as bytes in text order
};

/// Field by field; true when all 16 bytes match.
inline bool operator==(GUID const &a, GUID const &b) {
    if (a.Data1 != b.Data1 || a.Data2 != b.Data2 || a.Data3 != b.Data3) return false;
    for (int i = 0; i < 8; ++i)
        if (a.Data4[i] != b.Data4[i]) return false;
    return true;
}

} // namespace qv
