/// @file
/// The string-table resource form (type 6): block b holds the 16 strings with
/// ids (b - 1) * 16 to b * 16 - 1, each a 16-bit little-endian length and that
/// many UTF-16LE code units, no terminator; an absent id is a length of 0.
/// Internal to libqv.
///
/// Reading never trusts the lengths: a string that runs past the end of the
/// block is cut there and ends the block.
#pragma once

#include <cstdint>

#include "qv/core/String.h"

namespace qv {

constexpr uint32_t kStringsPerBlock = 16; ///< ids per block

/// The number of the block that holds id: id / 16 + 1.
inline uint16_t StringBlockOfId(uint32_t id) {
    return uint16_t((id >> 4) + 1);
}

/// @copydoc StringTableBlock.h
struct SStringBlockText {
    unsigned char const *units; ///< little-endian code units
    uint32_t length; ///< code units, no terminator
};

/// Fills texts with the strings present, in id order; the number present (a
/// block cut short has fewer than 16).
uint32_t ReadStringBlock(unsigned char const *data, uint32_t size, SStringBlockText (&texts)[kStringsPerBlock]);
/// Copies length units to out (no terminator added).
void CopyBlockText(SStringBlockText const &text, char16_t *out);
/// The text of id in a block; the empty text when the block does not hold it.
CString BlockString(unsigned char const *data, uint32_t size, uint32_t id);

} // namespace qv
