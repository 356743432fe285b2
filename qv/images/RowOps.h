/// @file
/// Row operations on raw pixel buffers of any pixel size: turning, mirroring,
/// and splitting a picture into its even and odd rows (interlace) and back.
///
/// Arguments: width and height in pixels, pixelSize in bytes, stride in bytes
/// from one row to the next; a stride of -1 means width * pixelSize. The
/// out-of-place forms read src and write dst, which must not overlap; they
/// take a stride for each. Sizes of zero or below do nothing.
///
/// The in-place interlace and deinterlace are one pass of row swaps (row i
/// with row (i & 1) * (height / 2) + (i >> 1)), which is not the exact
/// permutation of the out-of-place forms; callers rely on that result, so it
/// stays. The out-of-place forms do nothing for an odd height.
///
/// Ownership: the caller's buffers. No failure. Threads: no shared state.
#pragma once

#include "qv/core/Export.h"

namespace qv {

/// flip turns the picture by 180 degrees, vflip turns it upside down (row
/// order reversed), hflip mirrors each row left to right; in place or from
/// src into dst.
///@{
QV_API void flip(void *pixels, int width, int height, int pixelSize, int stride);
QV_API void vflip(void *pixels, int width, int height, int pixelSize, int stride);
QV_API void hflip(void *pixels, int width, int height, int pixelSize, int stride);
QV_API void flip(void *dst, void const *src, int width, int height, int pixelSize, int srcStride, int dstStride);
QV_API void vflip(void *dst, void const *src, int width, int height, int pixelSize, int srcStride, int dstStride);
QV_API void hflip(void *dst, void const *src, int width, int height, int pixelSize, int srcStride, int dstStride);
///@}

/// interlace puts the even rows in the upper half and the odd rows in the
/// lower half; deinterlace undoes it. See the file comment for the in-place
/// forms and odd heights.
///@{
QV_API void interlace(void *dst, void const *src, int width, int height, int pixelSize, int srcStride,
                      int dstStride);
QV_API void deinterlace(void *dst, void const *src, int width, int height, int pixelSize, int srcStride,
                        int dstStride);
QV_API void interlace(void *pixels, int width, int height, int pixelSize, int stride);
QV_API void deinterlace(void *pixels, int width, int height, int pixelSize, int stride);
///@}

} // namespace qv
