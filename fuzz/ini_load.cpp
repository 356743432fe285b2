// Loads any bytes as an INI store; whatever loads must save, and the saved
// text must load again.
#include <cstdint>
#include <cstdlib>

#include "qv/config/INIStore.h"
#include "qv/files/MemFile.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    qv::CMemFile input;
    input.SetGrowthRate(4096);
    if (size && input.Write(data, uint32_t(size)) != size) return 0;
    input.SeekToBegin();
    qv::CINIStore store;
    if (!store.Load(&input)) std::abort(); // the parser has no failure
    qv::CMemFile output;
    output.SetGrowthRate(4096);
    if (!store.Save(&output)) std::abort();
    output.SeekToBegin();
    qv::CINIStore again;
    if (!again.Load(&output)) std::abort();
    return 0;
}
