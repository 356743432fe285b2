// CModtranTape5File: the list of runs, the current one, the last error.
#include <cstdarg>
#include <cstring>

#include "qv/core/WideFormat.h"
#include "qv/modtran/ModtranTape5File.h"

namespace qv {

namespace {

RUN MakeDefaultRun() {
    RUN run;
    std::memset(&run, 0, sizeof run);
    run.bandModel = MM_MODTRAN;
    run.speed = CKS_SLOW;
    run.atmosphereModel = AM_US_STANDARD;
    run.losPath = LP_SLANT;
    run.atmosphereCache = 1;
    run.scatteringAlgo = SA_ISAACS;
    run.streams = 8;
    run.co2MixingRatio = 330.0f;
    run.volcano = VI_BACKGROUND;
    run.coastal = 3;
    run.clouds[0] = run.clouds[1] = run.clouds[2] = -9.0f;
    run.cloudExtra[1] = run.cloudExtra[2] = run.cloudExtra[4] = run.cloudExtra[5] = -9.0f;
    run.cloudExtra[3] = 100.0f;
    for (USER_LEVEL &level : run.levels) {
        level.attenuation = AEROSOL_ATTENUATION(1);
        level.volcano = VI_BACKGROUND;
    }
    run.losType = LT_3;
    run.start = 1200.0f;
    run.end = 5000.0f;
    run.step = 10.0f;
    run.fwhm = 1.0f;
    run.outputYUnit = 'T';
    run.outputXUnit = 'W';
    run.inputXUnit = IXU_WAVENUMBER;
    run.slit = SF_TRIANGLE;
    run.fwhmType = FT_ABSOLUTE;
    run.degradeType = ' ';
    run.fluxTableType = ' ';
    run.surfaces[0].function = BF_WALTHALL;
    run.surfaces[1].function = BF_WALTHALL;
    return run;
}

} // namespace

CModtranTape5File::CModtranTape5File() : current(-1) {
    runs.SetGrowthRate(8);
    std::strcpy(lastError, "No Error");
    New();
}

CModtranTape5File::~CModtranTape5File() = default;

void CModtranTape5File::DefaultRun(RUN &run) {
    static RUN const kDefault = MakeDefaultRun();
    std::memcpy(&run, &kDefault, sizeof run);
}

void CModtranTape5File::CopyRun(RUN &to, RUN const &from) {
    if (&to != &from) std::memcpy(&to, &from, sizeof to);
}

void CModtranTape5File::SetLastError(char const *format, ...) {
    va_list args;
    va_start(args, format);
    c_vsnprintf(lastError, sizeof lastError, format, args);
    va_end(args);
}

void CModtranTape5File::New() {
    runs.Empty();
    current = -1;
    if (AddRun(-1) == 0) current = 0;
}

int CModtranTape5File::AddRun(int from) {
    if (from >= nRuns() || from < -1) {
        SetLastError("Run %d does not exist.", from);
        return -1;
    }
    RUN added;
    if (from == -1)
        DefaultRun(added);
    else
        CopyRun(added, runs[uint32_t(from)]);
    if (!runs.Add(added)) {
        SetLastError("Out of memory.");
        return -1;
    }
    return nRuns() - 1;
}

bool CModtranTape5File::UseRun(int run) {
    if (run < 0 || run >= nRuns()) {
        SetLastError("Run %d does not exist.", run);
        return false;
    }
    current = run;
    return true;
}

bool CModtranTape5File::RemoveRun(int run) {
    if (run < 0 || run >= nRuns()) {
        SetLastError("Run %d does not exist.", run);
        return false;
    }
    if (nRuns() == 1) {
        SetLastError("Can't remove last run; use ResetRun instead.");
        return false;
    }
    runs.Remove(uint32_t(run));
    current = 0;
    return true;
}

bool CModtranTape5File::ResetRun(int) {
    RUN *run = Current();
    if (!run) return false;
    DefaultRun(*run);
    return true;
}

bool CModtranTape5File::RunExists() {
    return Current() != nullptr;
}

bool CModtranTape5File::Validate() {
    for (int i = 0; i < nRuns(); ++i)
        if (!ValidateRun(i)) return false;
    return true;
}

bool CModtranTape5File::ValidateRun(int) {
    return true;
}

void CModtranTape5File::Destroy() {
    runs.Empty();
    current = -1;
    std::strcpy(lastError, "No Error");
}

RUN *CModtranTape5File::Current() {
    if (current < 0 || current >= nRuns()) {
        SetLastError("Current run not selected.");
        return nullptr;
    }
    return &runs[uint32_t(current)];
}

RUN *CModtranTape5File::GetRun() {
    return Current();
}

bool CModtranTape5File::Row(int index, int bound) {
    if (index >= 0 && index < bound) return true;
    SetLastError("Row %d does not exist.", index);
    return false;
}

} // namespace qv
