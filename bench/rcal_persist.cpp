// Saving and loading an RCAL file (four pages, a 2000-point response) in
// memory, against writing and reading the same number of bytes through IFile
// in one block each. The load rebuilds the final curves from the raw ones, as
// every load must; the ratio tells what the format's fields and that rebuild
// cost over the bare bytes.
#include <benchmark/benchmark.h>

#include <vector>

#include "PairedTiming.h"
#include "qv/calibration/RCalFile.h"
#include "qv/files/MemFile.h"

namespace {

void BuildCalibration(qv::CRCalFile &cal) {
    cal.SetSpectralResponseTophat(3.0, 5.0, 0.001); // 2001 points
    for (int page = 0; page < 4; ++page) {
        int p = cal.Pages.Add();
        for (int i = 0; i < 8; ++i) {
            double t = -20.0 + 20.0 * i + page;
            cal.Pages[p].Points.Add(t, 1.0, 1500.0 + 20000.0 * cal.CalcRadiance(t, 1.0), true);
        }
    }
}

void SaveAndLoad(benchmark::State &state) {
    qv::CRCalFile cal;
    BuildCalibration(cal);
    qv::CMemFile file;
    file.SetGrowthRate(0xFFFF);
    if (!cal.Save(&file, 0)) {
        state.SkipWithError("the save failed");
        return;
    }
    uint32_t const bytes = uint32_t(file.GetSize());
    std::vector<unsigned char> block(file.GetData(), file.GetData() + bytes);
    qv::CMemFile plain;
    plain.SetGrowthRate(0xFFFF);
    qv::CRCalFile loaded;
    bool ok = true;
    bench::RunPaired(
        state, {"RCAL save + load (4 pages, 2000-point response) vs IFile write + read of its bytes", 0.05},
        int64_t(bytes) * 2,
        [&] {
            file.Reset();
            ok = cal.Save(&file, 0) && ok;
            file.SeekToBegin();
            ok = loaded.Load(&file, 0) && ok;
        },
        [&] {
            plain.Reset();
            plain.Write(block.data(), bytes);
            plain.SeekToBegin();
            plain.Read(block.data(), bytes);
        });
    if (!ok) state.SkipWithError("a save or load failed");
    state.counters["file_bytes"] = bytes;
}

BENCHMARK(SaveAndLoad)->UseManualTime();

} // namespace
