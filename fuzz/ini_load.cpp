// Loads any bytes as an INI store; whatever loads must save, unless a line
// grew past what a load reads (bad UTF-8 comes back as three-byte U+FFFD),
// and the saved text must load again.
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
    if (!store.Save(&output)) {
        if (output.GetSize() != 0) std::abort(); // a refused save writes nothing
        return 0;
    }
    output.SeekToBegin();
    qv::CINIStore again;
    if (!again.Load(&output)) std::abort();
    return 0;
}
