/// @file
/// How much picture a compressed file can honestly carry. The decoders refuse
/// a header that promises more, so a small hostile file cannot make them
/// allocate without bound (kMaxBitmapBytes holds besides).
#pragma once

#include <cstdint>

namespace qv::images {

/// Deflate (PNG, and TIFF with LZW or deflate) gives at most about 1032 bytes
/// for one; JPEG's entropy-coded
/// blocks several thousand pixels' bytes for a byte of a flat picture.
///@{
inline constexpr uint64_t kLosslessExpansion = 1100;
inline constexpr uint64_t kJpegExpansion = 8192;
///@}

/// Whether a file of fileSize bytes can hold a width x height picture of
/// bytesPerPixel bytes at the given expansion (plus 64 KiB); false for an
/// empty size or a side of 2^30 or more.
inline bool FileCanCarry(uint64_t width, uint64_t height, uint64_t bytesPerPixel, int64_t fileSize,
                         uint64_t expansion) {
    if (fileSize <= 0) return false;
    uint64_t bytes = width * height * bytesPerPixel;
    return width > 0 && height > 0 && width < (1u << 30) && height < (1u << 30) &&
           bytes <= uint64_t(fileSize) * expansion + 65536;
}

} // namespace qv::images
