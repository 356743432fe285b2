// Fuzzes CVariant::Load over the input as a memory file, in both byte
// orders, then saves what came out and loads it again: the second load must
// reproduce the saved bytes exactly.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "qv/core/Variant.h"
#include "qv/files/MemFile.h"

namespace {

void LoadAndRoundTrip(uint8_t const *data, size_t size, bool swap) {
    qv::CMemFile input;
    input.m_swap = swap;
    if (size) input.Write(data, uint32_t(size));
    input.SeekToBegin();
    qv::CVariant v;
    v.Load(&input);
    v.ToString();
    v.ToFlt64();

    qv::CMemFile saved;
    saved.m_swap = swap;
    v.Save(&saved);
    saved.SeekToBegin();
    qv::CVariant back;
    back.Load(&saved);
    qv::CMemFile again;
    again.m_swap = swap;
    back.Save(&again);
    if (again.nItems() != saved.nItems() ||
        (saved.nItems() && std::memcmp(again.GetData(), saved.GetData(), saved.nItems()) != 0))
        __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    if (size > 0x100000) return 0;
    LoadAndRoundTrip(data, size, false);
    LoadAndRoundTrip(data, size, true);
    return 0;
}
