// LoadBMP over arbitrary bytes: lying sizes, negative dimensions and short
// pixel blocks give null, never an overrun or an allocation beyond the file.
#include <cstddef>
#include <cstdint>

#include "qv/files/MemFile.h"
#include "qv/images/Images.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    qv::CMemFile mem;
    if (size && mem.Write(data, uint32_t(size)) != size) return 0;
    mem.Seek(0, 1);
    if (qv::IsBMP(&mem)) qv::DeleteBitmap(qv::LoadBMP(&mem));
    return 0;
}
