// TIFF over arbitrary bytes: the content test, the info, the bitmap, the raw
// frame and every page of a multi-page file. Offsets past the end and lying
// sizes give false or null.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "qv/files/MemFile.h"
#include "qv/images/Images.h"
#include "qv/images/TIFF.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    qv::CMemFile mem;
    if (size && mem.Write(data, uint32_t(size)) != size) return 0;
    mem.Seek(0, 1);
    if (!qv::IsTIFF(&mem)) return 0;
    unsigned long width = 0, height = 0, pages = 0;
    qv::EDataType type = qv::DT_Unknown;
    qv::DeleteBitmap(qv::LoadTIFF(&mem));
    mem.Seek(0, 1);
    if (!qv::GetTIFFInfo(&mem, width, height, type, pages)) return 0;
    static std::vector<uint8_t> buffer(1 << 20);
    uint64_t bytes = uint64_t(width) * height * (type == qv::DT_Packed ? 3 : 8);
    if (bytes > buffer.size()) return 0;
    qv::LoadTIFFRaw(&mem, buffer.data(), (unsigned long)bytes);
    mem.Seek(0, 1);
    qv::CMultiPageTIFFFile file;
    if (file.Open(&mem, false))
        for (unsigned long page = 0; page < file.GetNumImages() && page < 8; ++page) file.ReadImage(page, buffer.data());
    return 0;
}
