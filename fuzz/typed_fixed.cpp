// The fixed-size typed readers of IFile over hostile bytes, in both byte
// orders: GetGUID, GetBool and ReadArray with items of 1, 2, 4 and 8 bytes,
// including counts whose total does not fit 32 bits (refused before reading).
#include <cstddef>
#include <cstdint>
#include <vector>

#include "qv/files/MemFile.h"

namespace {

void Require(bool condition) {
    if (!condition) __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    if (size < 1) return 0;
    qv::CMemFile f;
    f.m_swap = (data[0] & 1) != 0;
    f.Write(data + 1, uint32_t(size - 1));
    f.SeekToBegin();
    for (size_t step = 0; f.GetRemaining() > 0 && step < 64; ++step) {
        uint8_t choice = 0;
        if (!f.GetBYTE(choice)) break;
        switch (choice % 4) {
        case 0: {
            qv::GUID guid;
            int64_t before = f.GetPosition();
            bool read = f.GetGUID(guid);
            Require(!read || f.GetPosition() == before + 16);
            break;
        }
        case 1: {
            bool value = false;
            f.GetBool(value);
            break;
        }
        case 2: {
            uint32_t itemSize = 1u << (choice / 4 % 4);
            uint32_t count = choice / 16;
            std::vector<uint8_t> items(size_t(count) * itemSize + 1, 0xA5);
            f.ReadArray(items.data(), count, itemSize);
            Require(items.back() == 0xA5); // nothing past the items
            break;
        }
        case 3: {
            uint8_t guard = 0x5A;
            int64_t before = f.GetPosition();
            // count * itemSize beyond 32 bits: false, nothing read or written.
            Require(!f.ReadArray(&guard, 0x80000001u, 8) && guard == 0x5A && f.GetPosition() == before);
            break;
        }
        }
    }
    return 0;
}
