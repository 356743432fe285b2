// LoadJPEG over arbitrary bytes: libjpeg's errors leave through the codec's
// own jump and give null; cut streams end as if their end marker were there.
#include <cstddef>
#include <cstdint>

#include "qv/files/MemFile.h"
#include "qv/images/Images.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    qv::CMemFile mem;
    if (size && mem.Write(data, uint32_t(size)) != size) return 0;
    mem.Seek(0, 1);
    if (qv::IsJPEG(&mem)) qv::DeleteBitmap(qv::LoadJPEG(&mem, nullptr));
    return 0;
}
