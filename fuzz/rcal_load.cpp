// Loads any bytes as an RCAL file. What loads must save and load again to
// the same bytes; what fails must leave the defaults.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "qv/calibration/RCalFile.h"
#include "qv/files/MemFile.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    qv::CMemFile input;
    input.SetGrowthRate(4096);
    if (size && input.Write(data, uint32_t(size)) != size) return 0;
    input.SeekToBegin();
    qv::CRCalFile cal;
    if (!cal.Load(&input, 0)) {
        if (cal.CalPages.GetSize() != 0 || cal.FileRevision != 0) std::abort();
        return 0;
    }
    qv::CMemFile first, second;
    if (!cal.Save(&first, 0)) std::abort();
    first.SeekToBegin();
    qv::CRCalFile again;
    if (!again.Load(&first, 0) || !again.Save(&second, 0)) std::abort();
    if (first.GetSize() != second.GetSize() ||
        std::memcmp(first.GetData(), second.GetData(), size_t(first.GetSize())) != 0)
        std::abort();
    return 0;
}
