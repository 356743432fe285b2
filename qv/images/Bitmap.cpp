#include "qv/images/Bitmap.h"

#include <cstdlib>
#include <new>

namespace qv {

CBitmap::~CBitmap() { std::free(bits); }

uint32_t BitmapStride(int32_t width, int bitCount) {
    if (width <= 0 || bitCount <= 0 || bitCount > 64) return 0;
    uint64_t bytes = (uint64_t(width) * uint64_t(bitCount) + 31) / 32 * 4;
    return bytes > kMaxBitmapBytes ? 0 : uint32_t(bytes);
}

HBITMAP CreateBitmap(int32_t width, int32_t height, int bitCount) {
    uint32_t stride = BitmapStride(width, bitCount);
    if (stride == 0 || height <= 0) return nullptr;
    uint64_t bytes = uint64_t(stride) * uint64_t(height);
    if (bytes > kMaxBitmapBytes) return nullptr;
    void *bits = std::calloc(size_t(bytes), 1);
    if (!bits) return nullptr;
    CBitmap *bitmap = new (std::nothrow) CBitmap;
    if (!bitmap) {
        std::free(bits);
        return nullptr;
    }
    bitmap->Width = width;
    bitmap->Height = height;
    bitmap->BitCount = bitCount;
    bitmap->Stride = stride;
    bitmap->bits = static_cast<uint8_t *>(bits);
    return bitmap;
}

void DeleteBitmap(HBITMAP bitmap) { delete bitmap; }

} // namespace qv
