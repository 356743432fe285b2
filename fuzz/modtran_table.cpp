// ReadModtranFile over any bytes, from a memory file: its three arrays must
// end with one length and it must never fault. A table the atmosphere check
// passes has a strictly rising axis and transmissions within 0..1.
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
    qv::TArray<double> x, t, r;
    qv::ReadModtranFile(x, t, r, &file);
    if (x.GetSize() != t.GetSize() || x.GetSize() != r.GetSize()) __builtin_trap();
    if (qv::CheckAtmosphereCurves(x, t, r) != qv::RS_OK) return 0;
    for (uint32_t i = 0; i < x.GetSize(); ++i)
        if ((i > 0 && !(x[i] > x[i - 1])) || !(t[i] >= 0 && t[i] <= 1)) __builtin_trap();
    return 0;
}
