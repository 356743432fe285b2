/// @file
/// The 16-byte identifier value type, laid out field by field as files store it.
#pragma once

#include <cstdint>

namespace qv {

/// @copydoc Guid.h
struct GUID {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
};

inline bool operator==(GUID const &a, GUID const &b) {
    if (a.Data1 != b.Data1 || a.Data2 != b.Data2 || a.Data3 != b.Data3) return false;
    for (int i = 0; i < 8; ++i)
        if (a.Data4[i] != b.Data4[i]) return false;
    return true;
}

} // namespace qv
