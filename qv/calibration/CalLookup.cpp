// Reading a page's lookup, and the stored TP factor.
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
    if (radiance && p->LookupRadiance.GetSize())
        std::memcpy(radiance, p->LookupRadiance.GetData(), p->LookupRadiance.GetSize() * sizeof(double));
    if (temperature && p->LookupTemperature.GetSize())
        std::memcpy(temperature, p->LookupTemperature.GetData(), p->LookupTemperature.GetSize() * sizeof(double));
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
