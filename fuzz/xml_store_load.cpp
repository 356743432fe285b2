// Loads any bytes as an XML store; whatever loads must save, and the saved
// file must load again.
#include <cstdint>
#include <cstdlib>

#include "qv/config/XMLStore.h"
#include "qv/files/MemFile.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    qv::CMemFile input;
    input.SetGrowthRate(4096);
    if (size && input.Write(data, uint32_t(size)) != size) return 0;
    input.SeekToBegin();
    qv::CXMLStore store;
    if (!store.Load(&input)) return 0;
    qv::CMemFile output;
    output.SetGrowthRate(4096);
    if (!store.Save(&output)) std::abort();
    output.SeekToBegin();
    qv::CXMLStore again;
    if (!again.Load(&output)) std::abort();
    return 0;
}
