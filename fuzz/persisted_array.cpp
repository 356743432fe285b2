// Runs a persisted array over a hostile backing file: the first bytes choose
// an item size and a script of accesses, removals and resizes, the rest is
// the file. Nothing may overrun; every item written must read back.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "qv/core/PersistedArray.h"
#include "qv/files/MemFile.h"

namespace {

uint32_t Take(uint8_t const *&data, size_t &size, uint32_t bound) {
    if (size < 2) return 0;
    uint32_t v = uint32_t(data[0]) | uint32_t(data[1]) << 8;
    data += 2;
    size -= 2;
    return bound ? v % bound : v;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    if (size < 4) return 0;
    uint32_t itemSize = 1 + data[0] % 64;
    size_t script = std::min<size_t>(data[1], size - 2) & ~size_t(1);
    uint8_t const *ops = data + 2;
    size_t opsSize = script;
    qv::CMemFile file;
    file.SetGrowthRate(4096);
    size_t rest = size - 2 - script;
    if (rest && file.Write(data + 2 + script, uint32_t(rest)) != rest) return 0;

    qv::CPersistedArray array(file, itemSize);
    if (!array.IsReady()) std::abort();
    // Each step grows the file by at most 4096 items; stop well before it is big.
    while (opsSize >= 2 && array.GetCount() < (1u << 18)) {
        uint32_t op = Take(ops, opsSize, 0);
        uint32_t index = (op >> 2) % (array.GetCount() + 4096);
        switch (op & 3) {
        case 0: {
            uint8_t *p = array.GetItem(index);
            if (!p) std::abort();
            std::memset(p, 0x5A, array.GetItemSize());
            uint8_t const *q = array.ReadItem(index);
            if (!q || q[array.GetItemSize() - 1] != 0x5A) std::abort();
            break;
        }
        case 1:
            if (!array.ReadItem(index)) std::abort();
            break;
        case 2: {
            uint32_t before = array.GetCount();
            if (!array.Remove(index)) std::abort();
            if (index < before && array.GetCount() != before - 1) std::abort();
            break;
        }
        default:
            if (!array.SetItemSize(1 + index % 64)) std::abort();
            break;
        }
    }
    return 0;
}
