// CModtranTape5File::Load over any bytes, from a memory file: it must never
// fault, a failure must leave a message, and what loads must save and load
// again to the same cards.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "qv/files/MemFile.h"
#include "qv/modtran/ModtranTape5File.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    if (size > 1 << 20) return 0;
    qv::CMemFile file;
    file.Write(data, uint32_t(size));
    file.Seek(0, 1);
    qv::CModtranTape5File tape5;
    if (!tape5.Load(file)) {
        if (std::strcmp(tape5.GetLastError(), "No Error") == 0) __builtin_trap();
        return 0;
    }
    qv::CMemFile first, second;
    if (!tape5.Save(first)) return 0; // e.g. a region count the writer refuses
    first.Seek(0, 1);
    qv::CModtranTape5File again;
    if (!again.Load(first) || !again.Save(second)) __builtin_trap();
    if (first.GetSize() != second.GetSize() ||
        std::memcmp(first.GetData(), second.GetData(), size_t(first.GetSize())) != 0)
        __builtin_trap();
    return 0;
}
