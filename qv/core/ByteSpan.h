/// @file
/// Bounds-checked little-endian reads from a block of untrusted bytes, for the
/// parsers of binary records (version blocks, PE headers). Internal to libqv.
#pragma once

#include <cstdint>

namespace qv {

/// @copydoc ByteSpan.h
struct SByteSpan {
    uint8_t const *data = nullptr; ///< the bytes, not owned
    uint64_t size = 0;             ///< bytes at data

    /// Whether n bytes from at lie inside the block (no overflow).
    bool Holds(uint64_t at, uint64_t n) const { return at <= size && n <= size - at; }
    /// The value at at; false (value untouched) past the end.
    ///@{
    bool Word(uint64_t at, uint16_t &v) const {
        if (!Holds(at, 2)) return false;
        v = uint16_t(data[at] | data[at + 1] << 8);
        return true;
    }
    bool DWord(uint64_t at, uint32_t &v) const {
        if (!Holds(at, 4)) return false;
        v = uint32_t(data[at]) | uint32_t(data[at + 1]) << 8 | uint32_t(data[at + 2]) << 16 |
            uint32_t(data[at + 3]) << 24;
        return true;
    }
    ///@}
};

/// n rounded up to a multiple of 4.
inline uint64_t AlignUp4(uint64_t n) {
    return (n + 3) & ~uint64_t(3);
}

} // namespace qv
