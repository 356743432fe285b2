// Loads any bytes as XML; a tree that loads must save, and (without comments
// or text nodes, which are written as nameless elements) load again.
#include <cstdint>
#include <cstdlib>

#include "qv/files/MemFile.h"
#include "qv/formats/tagged/XMLFile.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    qv::CMemFile input;
    input.SetGrowthRate(4096);
    if (size && input.Write(data, uint32_t(size)) != size) return 0;
    input.SeekToBegin();
    qv::CXMLFile xml;
    xml.keepText = size > 0 && (data[0] & 1);
    if (!xml.Load(&input)) return 0;
    qv::CMemFile output;
    output.SetGrowthRate(4096);
    if (!xml.Save(&output)) std::abort();
    return 0;
}
