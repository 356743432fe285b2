// LoadPNG and LoadPNG16 over arbitrary bytes: libpng's errors stay inside,
// a header that promises more than the file can carry is refused.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "qv/files/MemFile.h"
#include "qv/images/Images.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    qv::CMemFile mem;
    if (size && mem.Write(data, uint32_t(size)) != size) return 0;
    mem.Seek(0, 1);
    qv::CPropertyArray properties;
    if (size & 1) properties[u"BackgroundColor"] = 0x102030;
    qv::DeleteBitmap(qv::LoadPNG(&mem, properties));
    static std::vector<unsigned short> buffer(4096);
    mem.Seek(0, 1);
    qv::LoadPNG16(&mem, buffer.data(), (size & 2) ? 4096 : 1024);
    return 0;
}
