// ReadXYFile over any bytes, from a memory file: it must end with x and y of
// one length and never fault. A table the response check passes has a
// strictly rising axis.
#include <cstddef>
#include <cstdint>

#include "qv/calibration/CurveChecks.h"
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
    if (qv::CheckResponseCurve(x, y) != qv::RS_OK) return 0;
    for (uint32_t i = 1; i < x.GetSize(); ++i)
        if (!(x[i] > x[i - 1])) __builtin_trap();
    return 0;
}
