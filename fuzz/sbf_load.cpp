// Loads any bytes as a structured binary file (the identifier taken from the
// bytes, so the loader goes past its check); whatever loads must save, and
// the saved file must load again.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "qv/files/MemFile.h"
#include "qv/formats/tagged/SBFile.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    qv::CMemFile input;
    input.SetGrowthRate(4096);
    if (size && input.Write(data, uint32_t(size)) != size) return 0;
    input.SeekToBegin();
    char id[5] = {0, 0, 0, 0, 0};
    if (size >= 8) std::memcpy(id, data + 4, 4);
    qv::CSBFile sbf;
    sbf.SetAppInfo(id, 0, 0);
    if (!sbf.Load(&input)) return 0;
    qv::CMemFile output;
    output.SetGrowthRate(4096);
    if (!sbf.Save(&output)) std::abort();
    output.SeekToBegin();
    qv::CSBFile again;
    again.SetAppInfo(id, 0, 0);
    if (!again.Load(&output)) std::abort();
    return 0;
}
