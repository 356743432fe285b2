#include "qv/images/Rows24.h"

#include <cstring>
#include <new>
#include <utility>

namespace qv::images {
namespace {

void PaletteRow(uint8_t *out, uint8_t const *in, int32_t width, int bitCount, std::vector<uint32_t> const &palette) {
    int perByte = 8 / bitCount;
    uint8_t mask = uint8_t((1u << bitCount) - 1);
    for (int32_t x = 0; x < width; ++x) {
        int shift = 8 - bitCount * (x % perByte + 1);
        uint8_t index = uint8_t((in[x / perByte] >> shift) & mask);
        uint32_t colour = index < palette.size() ? palette[index] : 0;
        out[3 * x] = uint8_t(colour);
        out[3 * x + 1] = uint8_t(colour >> 8);
        out[3 * x + 2] = uint8_t(colour >> 16);
    }
}

void ConvertRow(uint8_t *out, uint8_t const *in, CBitmap const &bitmap) {
    if (bitmap.BitCount == 32) {
        for (int32_t x = 0; x < bitmap.Width; ++x) std::memcpy(out + 3 * x, in + 4 * x, 3);
        return;
    }
    PaletteRow(out, in, bitmap.Width, bitmap.BitCount, bitmap.Palette);
}

bool Handled(int bitCount) {
    return bitCount == 1 || bitCount == 2 || bitCount == 4 || bitCount == 8 || bitCount == 24 || bitCount == 32;
}

} // namespace

SRows24 FetchRows24(HBITMAP bitmap) {
    SRows24 rows;
    if (!bitmap || !bitmap->Bits() || !Handled(bitmap->BitCount)) return rows;
    rows.width = bitmap->Width;
    rows.height = bitmap->Height;
    rows.stride = BitmapStride(bitmap->Width, 24);
    if (bitmap->BitCount == 24) {
        rows.base = bitmap->Bits();
        return rows;
    }
    try {
        rows.converted.assign(rows.size(), 0);
    } catch (std::bad_alloc const &) {
        return SRows24{};
    }
    rows.base = rows.converted.data();
    for (int32_t y = 0; y < rows.height; ++y) ConvertRow(rows.Row(y), bitmap->Row(y), *bitmap);
    return rows;
}

void SwapRedBlue(uint8_t *row, int32_t width) {
    for (int32_t x = 0; x < width; ++x) std::swap(row[3 * x], row[3 * x + 2]);
}

} // namespace qv::images
