// BMP: the 54-byte header and 24-bit rows, bottom-up.
#include <cstring>

#include "qv/files/IFile.h"
#include "qv/images/Images.h"
#include "qv/images/Rows24.h"

namespace qv {
namespace {

constexpr uint32_t kHeaderBytes = 0x36;
constexpr uint32_t kInfoBytes = 0x28;

struct SBmpHeader {
    int32_t width = 0, height = 0;
    uint16_t planes = 0, bitCount = 0;
    uint32_t compression = 0, imageSize = 0;
};

bool ReadHeader(IFile *file, SBmpHeader &h) {
    char magic[2];
    if (file->Read(magic, 2) != 2 || magic[0] != 'B' || magic[1] != 'M') return false;
    if (file->Seek(18, 1) != 18) return false;
    bool ok = file->GetInt32(h.width) && file->GetInt32(h.height) && file->GetUInt16(h.planes) &&
              file->GetUInt16(h.bitCount) && file->GetUInt32(h.compression) && file->GetUInt32(h.imageSize);
    return ok && file->Seek(16, 2) == kHeaderBytes;
}

} // namespace

bool IsBMP(IFile *file) {
    if (!file || file->Seek(0, 1) != 0) return false;
    char magic[2] = {};
    uint32_t n = file->Read(magic, 2);
    file->Seek(0, 1);
    return n == 2 && magic[0] == 'B' && magic[1] == 'M';
}

HBITMAP LoadBMP(IFile *file) {
    SBmpHeader h;
    if (!file || !ReadHeader(file, h)) return nullptr;
    // Only what SaveBMP writes: 24-bit, uncompressed, bottom-up (a negative
    // height would be a top-down picture).
    if (h.bitCount != 24 || h.compression != 0 || h.width <= 0 || h.height <= 0) return nullptr;
    uint32_t stride = BitmapStride(h.width, 24);
    uint64_t needed = uint64_t(stride) * uint64_t(h.height);
    // All the rows are read whatever the size field says below them (0, or a
    // count without the rows' padding): reading only that many would leave
    // the picture's top blank, and a file cut there would pass for whole.
    if (stride == 0 || h.imageSize > needed || int64_t(needed) > file->GetRemaining()) return nullptr;
    HBITMAP bitmap = CreateBitmap(h.width, h.height, 24);
    if (!bitmap) return nullptr;
    if (file->Read(bitmap->Bits(), uint32_t(needed)) != needed) {
        DeleteBitmap(bitmap);
        return nullptr;
    }
    return bitmap;
}

bool SaveBMP(HBITMAP bitmap, IFile *file, CPropertyArray) {
    images::SRows24 rows = images::FetchRows24(bitmap);
    if (rows.empty() || !file) return false;
    uint32_t imageSize = uint32_t(rows.size());
    bool ok = file->Write("BM", 2) == 2 && file->PutUInt32(imageSize + kHeaderBytes) && file->PutUInt16(0) &&
              file->PutUInt16(0) && file->PutUInt32(kHeaderBytes) && file->PutUInt32(kInfoBytes) &&
              file->PutInt32(rows.width) && file->PutInt32(rows.height) && file->PutUInt16(1) &&
              file->PutUInt16(24) && file->PutUInt32(0) && file->PutUInt32(imageSize);
    for (int i = 0; ok && i < 4; ++i) ok = file->PutUInt32(0);
    return ok && file->Write(rows.base, imageSize) == imageSize;
}

} // namespace qv
