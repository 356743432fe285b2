// CModtranTape7File::Load over any bytes, from a memory file, asking for the
// columns the first bytes name: it must never fault, and what loads must hand
// back every run's column and an interpolation without overrun.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "qv/files/MemFile.h"
#include "qv/modtran/ModtranTape7File.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    if (size < 4 || size > 1 << 20) return 0;
    uint32_t columns;
    std::memcpy(&columns, data, 4);
    qv::CMemFile file;
    file.Write(data + 4, uint32_t(size - 4));
    file.Seek(0, 1);
    qv::CModtranTape7File tape7;
    if (!tape7.Load(file, columns)) return 0;
    std::vector<double> out(size_t(tape7.nPoints()) + 1), freq(out.size());
    for (int run = 0; run < tape7.nRuns(); ++run)
        if (!tape7.GetData(out.data(), run, qv::CModtranTape7File::T7C_FREQ)) __builtin_trap();
    double geometry[3];
    if (!tape7.GetGeometry(0, geometry)) __builtin_trap();
    tape7.GetData(freq.data(), out.data(), geometry[1], geometry[2], qv::CModtranTape7File::T7C_TOT_TRANS);
    return 0;
}
