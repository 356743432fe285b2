// Reading a page's lookup, and the stored TP factor.
#include <algorithm>
#include <cstring>

#include "qv/calibration/RCalFile.h"

namespace qv {

int CRCalFile::GetLookupSize(int page) {
    CAL_PAGE *p = ReachPage(page);
    return p ? int(p->LookupRadiance.GetSize()) : -1;
}

bool CRCalFile::GetLookup(int page, double *radiance, double *temperature) {
    CAL_PAGE *p = ReachPage(page);
    if (!p) return false;
    // The caller's buffers hold GetLookupSize values; the two arrays are
    // public and a failed rebuild can leave them of different lengths.
    uint32_t n = p->LookupRadiance.GetSize();
    if (radiance && n) std::memcpy(radiance, p->LookupRadiance.GetData(), n * sizeof(double));
    uint32_t temperatures = std::min(n, p->LookupTemperature.GetSize());
    if (temperature && temperatures)
        std::memcpy(temperature, p->LookupTemperature.GetData(), temperatures * sizeof(double));
    return true;
}

bool CRCalFile::GetTPFact(int page, double &factor, bool &set) {
    CAL_PAGE *p = ReachPage(page);
    if (!p) return false;
    factor = p->TPFact;
    set = p->TPFactSet;
    return true;
}

bool CRCalFile::SetTPFact(int page, double factor, bool set) {
    CAL_PAGE *p = ReachPage(page);
    if (!p) return false;
    p->TPFact = factor;
    p->TPFactSet = set;
    return true;
}

} // namespace qv
