// A calibration over hostile tables: the input is a response file, a zero
// byte, then an atmosphere table. Whatever they hold, the calibration loads
// them (or reports a status), recomputes a page and never faults.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "qv/calibration/RCalFile.h"

namespace {

// The calibration reads its tables by disk path, so they go to a directory
// in memory (/dev/shm where there is one) that is removed at exit.
std::string const &ScratchDir() {
    static std::string dir = [] {
        std::string pattern = std::string(access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") + "/qv_fuzz_cal_XXXXXX";
        char *made = mkdtemp(pattern.data());
        return std::string(made ? made : "");
    }();
    return dir;
}

void RemoveScratch() {
    std::string const &dir = ScratchDir();
    if (dir.empty()) return;
    std::remove((dir + "/response.txt").c_str());
    std::remove((dir + "/air.table").c_str());
    rmdir(dir.c_str());
}

// The directory is made first, so that it still exists when the handler runs.
bool const kCleanAtExit = (ScratchDir(), std::atexit(&RemoveScratch) == 0);

qv::CString WriteFile(char const *name, uint8_t const *data, size_t size) {
    std::string path = ScratchDir() + "/" + name;
    if (FILE *f = std::fopen(path.c_str(), "wb")) {
        if (size) std::fwrite(data, 1, size, f);
        std::fclose(f);
    }
    return qv::CString(path.c_str());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    if (ScratchDir().empty()) return 0;
    uint8_t const *split = static_cast<uint8_t const *>(std::memchr(data, 0, size));
    size_t first = split ? size_t(split - data) : size;
    qv::CString response = WriteFile("response.txt", data, first);
    qv::CString table = WriteFile("air.table", split ? split + 1 : data, split ? size - first - 1 : 0);

    qv::CRCalFile cal;
    cal.SetSpectralResponseFile(response);
    // Long axes are legal but slow: the fuzzer looks for faults, not for time.
    if (cal.SpectralResponse.Curve.getCount() > 20000) return 0;
    cal.AdditionalResponses.Add(response, true);
    cal.Modtran.setFile(table);
    cal.Modtran.Transmission.setEnabled(true);
    cal.Modtran.PathRadiance.setEnabled(true);
    int page = cal.Pages.Add();
    qv::CCalPage p = cal.Pages[page];
    p.Lookup.setEnd(10);
    for (int i = 0; i < 4; ++i)
        p.Points.Add(10.0 * i, 0.9, 1000.0 * i, true);
    p.setPolyOrder(2);
    qv::TArray<double> x, y;
    cal.GetFinalPlanck(x, y, 25, 1);
    if (x.GetSize() != y.GetSize()) __builtin_trap();
    return 0;
}
