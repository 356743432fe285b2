// The in-band radiance of a source, and the spectra it is integrated from.
//
// Every curve of the object lies on the final axis (FinalResponse.X). A curve
// shorter than the axis grows with zeros where it is read, as TArray access
// does; the loops then run over plain pointers.
#include "qv/calibration/CurveCopy.h"
#include "qv/calibration/RCalFile.h"
#include "qv/numerics/Curve.h"
#include "qv/numerics/CurveAccess.h"
#include "qv/numerics/Planck.h"

namespace qv {

using calibration_detail::CopyValues;
using numerics_detail::Reach;

namespace {

// s[i] = s[i] * factor[i] over the count of s.
void MultiplyBy(TArray<double> &s, TArray<double> &factor) {
    uint32_t n = s.GetSize();
    if (!Reach(factor, n)) return;
    double *values = s.GetData();
    double const *f = factor.GetData();
    for (uint32_t i = 0; i < n; ++i)
        values[i] = values[i] * f[i];
}

} // namespace

bool CRCalFile::AtmosphereOn() const {
    return (TransmissionEnabled || PathRadianceEnabled) && ModtranStatus == RS_OK;
}

void CRCalFile::ApplyAdditionalResponses(TArray<double> &s) {
    for (uint32_t r = 0; r < AdditionalResponse.GetSize(); ++r)
        if (AdditionalResponse[r].Enabled) MultiplyBy(s, AdditionalResponse[r].Final.Y);
}

// The transmission first, then the path radiance weighted by the response:
// the path term carries no emissivity and no temperature.
void CRCalFile::ApplyAtmosphere(TArray<double> &s) {
    if (!AtmosphereOn()) return;
    uint32_t n = s.GetSize();
    if (!Reach(FinalTransmission.Y, n) || !Reach(FinalPathRadiance.Y, n) || !Reach(FinalResponse.Y, n)) return;
    double *values = s.GetData();
    double const *transmission = FinalTransmission.Y.GetData();
    double const *path = FinalPathRadiance.Y.GetData();
    double const *response = FinalResponse.Y.GetData();
    for (uint32_t i = 0; i < n; ++i) {
        if (TransmissionEnabled) values[i] = values[i] * transmission[i];
        if (PathRadianceEnabled) values[i] = path[i] * response[i] + values[i];
    }
}

double CRCalFile::Radiance(double t, double e, bool withAtmosphere) {
    TArray<double> x, s;
    if (!CopyValues(x, FinalResponse.X)) return 0;
    Planck(x, s, t, e);
    MultiplyBy(s, FinalResponse.Y);
    ApplyAdditionalResponses(s);
    if (withAtmosphere) ApplyAtmosphere(s);
    return IntegrateRectTR(x, s);
}

double CRCalFile::CalcRadiance(double t, double e) {
    return Radiance(t, e, true);
}

double CRCalFile::CalcRadianceNoModtran(double t, double e) {
    return Radiance(t, e, false);
}

double CRCalFile::CalcSourceRadiance(double t, double e) {
    return CalcRadianceNoModtran(t, e);
}

double CRCalFile::CalcRadianceEx(double t, double e, double r) {
    return CalcRadiance(t, e) + r;
}

double CRCalFile::CalcRadianceEx(double t, double e, double rt, double re) {
    return CalcRadiance(t, e) + CalcRadiance(rt, (1 - e) * re);
}

double CRCalFile::CalcRadianceEx(double t, double e, EReflectedRadianceType type, double rt, double re, double rr) {
    if (type == RRT_Radiance) return CalcRadianceEx(t, e, rr);
    if (type == RRT_Temperature) return CalcRadianceEx(t, e, rt, re);
    return CalcRadiance(t, e);
}

void CRCalFile::GetFinalSpectralResponse(TArray<double> &x, TArray<double> &y) {
    CopyValues(x, FinalResponse.X);
    CopyValues(y, FinalResponse.Y);
    ApplyAdditionalResponses(y);
    ApplyAtmosphere(y);
}

void CRCalFile::GetFinalPlanck(TArray<double> &x, TArray<double> &y, double t, double e) {
    GetFinalSpectralResponse(x, y);
    TArray<double> p;
    Planck(x, p, t, e);
    MultiplyBy(y, p);
    if (!PathRadianceEnabled || ModtranStatus != RS_OK) return;
    uint32_t n = y.GetSize();
    if (!Reach(FinalPathRadiance.Y, n) || !Reach(FinalResponse.Y, n)) return;
    double *values = y.GetData();
    for (uint32_t i = 0; i < n; ++i)
        values[i] = FinalPathRadiance.Y.GetData()[i] * FinalResponse.Y.GetData()[i] + values[i];
}

} // namespace qv
