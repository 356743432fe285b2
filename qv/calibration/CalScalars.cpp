// The file-wide scalars of a calibration: band pass, slant range and field of
// view, with their "set" and "overridden" flags.
#include <cmath>

#include "qv/calibration/RCalFile.h"

namespace qv {

void CRCalFile::GetBandpass(double &lo, double &hi) {
    if (BandpassOverridden)
        GetUsedBandpass(lo, hi);
    else
        GetCalcBandpass(lo, hi);
}

void CRCalFile::GetCalcBandpass(double &lo, double &hi) {
    lo = BandpassLow;
    hi = BandpassHigh;
}

void CRCalFile::GetUsedBandpass(double &lo, double &hi) {
    lo = UsedBandpassLow;
    hi = UsedBandpassHigh;
}

void CRCalFile::SetUsedBandpass(double lo, double hi, bool overridden) {
    UsedBandpassLow = lo;
    UsedBandpassHigh = hi;
    BandpassOverridden = overridden;
}

void CRCalFile::GetBandpassOverridden(bool &overridden) {
    overridden = BandpassOverridden;
}

bool CRCalFile::EqualBandpass(double lo, double hi) {
    return std::fabs(lo - BandpassLow) < 1e-8 && std::fabs(hi - BandpassHigh) < 1e-8;
}

void CRCalFile::GetRange(double &range, bool &set) {
    range = Range;
    set = RangeSet;
}

void CRCalFile::SetRange(double range, bool set) {
    Range = range;
    RangeSet = set;
}

void CRCalFile::GetFOV(double &h, double &v, bool &set) {
    h = HFOV;
    v = VFOV;
    set = FOVSet;
}

void CRCalFile::SetFOV(double h, double v, bool set) {
    HFOV = h;
    VFOV = v;
    FOVSet = set;
}

} // namespace qv
