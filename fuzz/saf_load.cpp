// Loads any bytes as a SAF header; whatever loads must rewrite into a fresh
// file that loads again, except an old fixed-size header whose size fell
// inside a line, which the library refuses to rewrite.
#include <cstdint>
#include <cstdlib>

#include "qv/files/MemFile.h"
#include "qv/formats/tagged/SAFFile.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    qv::CMemFile input;
    input.SetGrowthRate(4096);
    if (size && input.Write(data, uint32_t(size)) != size) return 0;
    qv::CSAFFile saf;
    if (!saf.Load(&input) || !saf.HeaderEndsAsStated()) return 0;

    qv::CMemFile output;
    output.SetGrowthRate(4096);
    uint32_t dataPosition = 0;
    if (!saf.Update(&output, dataPosition, true)) std::abort();
    qv::CSAFFile again;
    if (!again.Load(&output)) std::abort();
    return 0;
}
