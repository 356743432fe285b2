/// @file
/// CBitmap: qv's device-independent bitmap, what the image codecs load and
/// save. HBITMAP is a pointer to one.
///
/// Layout, as the DIB files and callers expect it: BitCount bits a pixel
/// (24: blue, green, red; 32: blue, green, red, alpha), each row padded to a
/// multiple of 4 bytes (Stride), rows bottom-up: Row(0) is the lowest row of
/// the picture. Palette entries are 0x00RRGGBB and stay empty for 24 and 32
/// bits.
///
/// Limits. CreateBitmap refuses sizes of zero or below, and pictures whose
/// pixel block would pass kMaxBitmapBytes, so a header that lies cannot ask
/// for an unbounded block.
///
/// Ownership: CreateBitmap and the loaders give a new bitmap that the caller
/// frees with DeleteBitmap (null is allowed). Failure: null. Threads: one
/// bitmap belongs to one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "qv/core/Export.h"

namespace qv {

inline constexpr uint64_t kMaxBitmapBytes = uint64_t(1) << 30; ///< 1 GiB, the largest pixel block

/// @copydoc Bitmap.h
class QV_API CBitmap {
public:
    int32_t Width = 0; ///< pixels
    int32_t Height = 0; ///< pixels (rows)
    int BitCount = 0; ///< bits a pixel
    uint32_t Stride = 0; ///< bytes a row, a multiple of 4
    std::vector<uint32_t> Palette; ///< 0x00RRGGBB entries; empty for 24 and 32 bits

    /// The pixel block (owned by the bitmap), starting with Row(0).
    ///@{
    uint8_t *Bits() { return bits; }
    uint8_t const *Bits() const { return bits; }
    ///@}
    /// Row y, counted from the bottom; y is not checked.
    ///@{
    uint8_t *Row(int32_t y) { return bits + size_t(y) * Stride; }
    uint8_t const *Row(int32_t y) const { return bits + size_t(y) * Stride; }
    ///@}
    /// Bytes of the pixel block: Stride x Height.
    size_t ImageSize() const { return size_t(Stride) * size_t(Height); }

    ~CBitmap();

private:
    friend QV_API CBitmap *CreateBitmap(int32_t, int32_t, int);
    CBitmap() = default;
    uint8_t *bits = nullptr;
};

/// A bitmap handle, as the codecs take and give it.
using HBITMAP = CBitmap *;

/// Bytes of a row of width pixels of bitCount bits, padded to 4; 0 when the
/// size is out of range.
QV_API uint32_t BitmapStride(int32_t width, int bitCount);
/// A zero-filled bitmap, or null (bad size, over the limit, no memory).
///@{
QV_API HBITMAP CreateBitmap(int32_t width, int32_t height, int bitCount);
QV_API void DeleteBitmap(HBITMAP bitmap);
///@}

} // namespace qv
