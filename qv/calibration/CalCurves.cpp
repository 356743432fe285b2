// Curve numbers and the read-only curve façades CCurve and CAxis.
#include "qv/calibration/CurveCopy.h"
#include "qv/calibration/RCalFile.h"

namespace qv {

bool CRCalFile::CurveArrays(int curve, TArray<double> *&x, TArray<double> *&y) {
    SResponse *response = nullptr;
    if (curve == -1) response = &FinalResponse;
    if (curve == -2) response = &FinalTransmission;
    if (curve == -3) response = &FinalPathRadiance;
    if (curve <= -4 && -4 - curve < int(AdditionalResponse.GetSize()))
        response = &AdditionalResponse[uint32_t(-4 - curve)].Final;
    if (response) {
        x = &response->X;
        y = &response->Y;
        return true;
    }
    CAL_PAGE *page = curve >= 0 ? PageInRange(curve) : nullptr;
    if (!page) return false;
    x = &page->LookupRadiance;
    y = &page->LookupTemperature;
    return true;
}

double CAxis::operator[](int i) const {
    TArray<double> *x = nullptr, *y = nullptr;
    if (!file_->CurveArrays(curve_, x, y)) return 0;
    TArray<double> const *values = axis_ == 0 ? x : y;
    if (i < 0 || i >= int(values->GetSize())) return 0;
    return values->GetAt(uint32_t(i));
}

int CCurve::getCount() const {
    TArray<double> *x = nullptr, *y = nullptr;
    return file_->CurveArrays(curve_, x, y) ? int(x->GetSize()) : 0;
}

void CCurve::getX(TArray<double> &out) const {
    TArray<double> *x = nullptr, *y = nullptr;
    out.Empty();
    if (file_->CurveArrays(curve_, x, y)) calibration_detail::CopyValues(out, *x);
}

void CCurve::getY(TArray<double> &out) const {
    TArray<double> *x = nullptr, *y = nullptr;
    out.Empty();
    if (file_->CurveArrays(curve_, x, y)) calibration_detail::CopyValues(out, *y);
}

} // namespace qv
