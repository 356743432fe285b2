#include "qv/images/RowOps.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qv {
namespace {


bool Valid(int width, int height, int pixelSize) { return width > 0 && height > 0 && pixelSize > 0; }

ptrdiff_t StrideOf(int stride, int width, int pixelSize) {
    return stride == -1 ? ptrdiff_t(width) * pixelSize : ptrdiff_t(stride);
}

uint8_t *RowAt(void *pixels, ptrdiff_t stride, int y) { return static_cast<uint8_t *>(pixels) + stride * y; }
uint8_t const *RowAt(void const *pixels, ptrdiff_t stride, int y) {
    return static_cast<uint8_t const *>(pixels) + stride * y;
}

void SwapBytes(uint8_t *a, uint8_t *b, ptrdiff_t n) { std::swap_ranges(a, a + n, b); }

void SwapPixels(uint8_t *a, uint8_t *b, int pixelSize) { std::swap_ranges(a, a + pixelSize, b); }

void ReverseRow(uint8_t *row, int width, int pixelSize) {
    for (int x = 0; x < width / 2; ++x)
        SwapPixels(row + ptrdiff_t(x) * pixelSize, row + ptrdiff_t(width - 1 - x) * pixelSize, pixelSize);
}

void ReverseCopy(uint8_t *dst, uint8_t const *src, int width, int pixelSize) {
    for (int x = 0; x < width; ++x)
        std::memcpy(dst + ptrdiff_t(width - 1 - x) * pixelSize, src + ptrdiff_t(x) * pixelSize, size_t(pixelSize));
}

int InterlacedRow(int i, int height) { return (i & 1) * (height / 2) + (i >> 1); }

void SwapInterlaced(void *pixels, int width, int height, int pixelSize, int stride) {
    if (!Valid(width, height, pixelSize)) return;
    ptrdiff_t s = StrideOf(stride, width, pixelSize);
    ptrdiff_t rowBytes = ptrdiff_t(width) * pixelSize;
    for (int i = 0; i < height; ++i) {
        int j = InterlacedRow(i, height);
        if (j != i) SwapBytes(RowAt(pixels, s, i), RowAt(pixels, s, j), rowBytes);
    }
}

} // namespace

void flip(void *pixels, int width, int height, int pixelSize, int stride) {
    if (!Valid(width, height, pixelSize)) return;
    ptrdiff_t s = StrideOf(stride, width, pixelSize);
    for (int y = 0; y < height / 2; ++y) {
        uint8_t *top = RowAt(pixels, s, y);
        uint8_t *bottom = RowAt(pixels, s, height - 1 - y);
        for (int x = 0; x < width; ++x)
            SwapPixels(top + ptrdiff_t(x) * pixelSize, bottom + ptrdiff_t(width - 1 - x) * pixelSize, pixelSize);
    }
    if (height & 1) ReverseRow(RowAt(pixels, s, height / 2), width, pixelSize);
}

void vflip(void *pixels, int width, int height, int pixelSize, int stride) {
    if (!Valid(width, height, pixelSize)) return;
    ptrdiff_t s = StrideOf(stride, width, pixelSize);
    for (int y = 0; y < height / 2; ++y)
        SwapBytes(RowAt(pixels, s, y), RowAt(pixels, s, height - 1 - y), ptrdiff_t(width) * pixelSize);
}

void hflip(void *pixels, int width, int height, int pixelSize, int stride) {
    if (!Valid(width, height, pixelSize)) return;
    ptrdiff_t s = StrideOf(stride, width, pixelSize);
    for (int y = 0; y < height; ++y) ReverseRow(RowAt(pixels, s, y), width, pixelSize);
}

void flip(void *dst, void const *src, int width, int height, int pixelSize, int srcStride, int dstStride) {
    if (!Valid(width, height, pixelSize)) return;
    ptrdiff_t ss = StrideOf(srcStride, width, pixelSize), ds = StrideOf(dstStride, width, pixelSize);
    for (int y = 0; y < height; ++y)
        ReverseCopy(RowAt(dst, ds, height - 1 - y), RowAt(src, ss, y), width, pixelSize);
}

void vflip(void *dst, void const *src, int width, int height, int pixelSize, int srcStride, int dstStride) {
    if (!Valid(width, height, pixelSize)) return;
    ptrdiff_t ss = StrideOf(srcStride, width, pixelSize), ds = StrideOf(dstStride, width, pixelSize);
    for (int y = 0; y < height; ++y)
        std::memcpy(RowAt(dst, ds, height - 1 - y), RowAt(src, ss, y), size_t(width) * size_t(pixelSize));
}

void hflip(void *dst, void const *src, int width, int height, int pixelSize, int srcStride, int dstStride) {
    if (!Valid(width, height, pixelSize)) return;
    ptrdiff_t ss = StrideOf(srcStride, width, pixelSize), ds = StrideOf(dstStride, width, pixelSize);
    for (int y = 0; y < height; ++y) ReverseCopy(RowAt(dst, ds, y), RowAt(src, ss, y), width, pixelSize);
}

void interlace(void *dst, void const *src, int width, int height, int pixelSize, int srcStride, int dstStride) {
    if (!Valid(width, height, pixelSize) || (height & 1)) return;
    ptrdiff_t ss = StrideOf(srcStride, width, pixelSize), ds = StrideOf(dstStride, width, pixelSize);
    for (int i = 0; i < height; ++i)
        std::memcpy(RowAt(dst, ds, InterlacedRow(i, height)), RowAt(src, ss, i), size_t(width) * size_t(pixelSize));
}

void deinterlace(void *dst, void const *src, int width, int height, int pixelSize, int srcStride, int dstStride) {
    if (!Valid(width, height, pixelSize) || (height & 1)) return;
    ptrdiff_t ss = StrideOf(srcStride, width, pixelSize), ds = StrideOf(dstStride, width, pixelSize);
    for (int i = 0; i < height; ++i)
        std::memcpy(RowAt(dst, ds, i), RowAt(src, ss, InterlacedRow(i, height)), size_t(width) * size_t(pixelSize));
}

void interlace(void *pixels, int width, int height, int pixelSize, int stride) {
    SwapInterlaced(pixels, width, height, pixelSize, stride);
}

void deinterlace(void *pixels, int width, int height, int pixelSize, int stride) {
    SwapInterlaced(pixels, width, height, pixelSize, stride);
}

} // namespace qv
