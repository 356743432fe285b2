// ReadXYFile over any bytes, from a memory file: it must end with x and y of
// one length and never fault.
#include <cstddef>
#include <cstdint>

#include "qv/files/MemFile.h"
#include "qv/numerics/CurveFiles.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    if (size > UINT32_MAX) return 0;
    qv::CMemFile file;
    file.SetGrowthRate(4096);
    file.Write(data, uint32_t(size));
    file.SeekToBegin();
    qv::TArray<double> x, y;
    if (!qv::ReadXYFile(x, y, &file) || x.GetSize() != y.GetSize()) __builtin_trap();
    return 0;
}
