/// @file
/// The savers' view of a bitmap: its rows as 24-bit blue, green, red, bottom-up
/// with the DIB stride, whatever its own bit count (alpha is dropped; a
/// palette picture goes through its palette). A 24-bit bitmap is viewed in
/// place, without a copy: the rows are then the bitmap's, to be read only.
/// Empty when the bitmap is null, of a bit count not handled, or memory runs out.
#pragma once

#include <cstdint>
#include <vector>

#include "qv/images/Bitmap.h"

namespace qv::images {

/// @copydoc Rows24.h
struct SRows24 {
    std::vector<uint8_t> converted; ///< the rows when the bitmap is not 24-bit
    uint8_t *base = nullptr; ///< Row(0); null when empty
    int32_t width = 0; ///< pixels
    int32_t height = 0; ///< rows
    uint32_t stride = 0; ///< bytes a row, a multiple of 4

    bool empty() const { return base == nullptr; } ///< Whether there are no rows.
    size_t size() const { return size_t(stride) * size_t(height); } ///< Bytes of all rows.
    uint8_t *Row(int32_t y) { return base + size_t(y) * stride; } ///< Row y, from the bottom.
};

/// The 24-bit rows of bitmap; empty on failure (see the file comment).
SRows24 FetchRows24(HBITMAP bitmap);

/// Swaps the first and third byte of each of width 3-byte pixels.
void SwapRedBlue(uint8_t *row, int32_t width);

} // namespace qv::images
