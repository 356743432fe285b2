// CCalPoint and CCalPoints: one measured point of a page, and the list.
#include "qv/calibration/RCalFile.h"

namespace qv {

template <class T> T CCalPoint::Get(T calibration_records::CAL_POINT::*field) const {
    CRCalFile::CAL_POINT const *p = file_->PointInRange(page_, point_);
    return p ? p->*field : T{};
}

template <class T> void CCalPoint::SetAndRecompute(T calibration_records::CAL_POINT::*field, T value) {
    CRCalFile::CAL_POINT *p = file_->PointInRange(page_, point_);
    if (!p) return;
    p->*field = value;
    file_->UpdateCalPoint(page_, point_, true);
}

double CCalPoint::getTemperature() const {
    return Get(&CRCalFile::CAL_POINT::Temperature);
}
double CCalPoint::getEmissivity() const {
    return Get(&CRCalFile::CAL_POINT::Emissivity);
}
double CCalPoint::getMeasurement() const {
    return Get(&CRCalFile::CAL_POINT::Measurement);
}
double CCalPoint::getReflectedRadiance() const {
    return Get(&CRCalFile::CAL_POINT::ReflectedRadiance);
}
double CCalPoint::getReflectedTemperature() const {
    return Get(&CRCalFile::CAL_POINT::ReflectedTemperature);
}
double CCalPoint::getReflectedEmissivity() const {
    return Get(&CRCalFile::CAL_POINT::ReflectedEmissivity);
}
EReflectedRadianceType CCalPoint::getReflectedRadianceType() const {
    CRCalFile::CAL_POINT const *p = file_->PointInRange(page_, point_);
    return p ? p->ReflectedType : RRT_None;
}
bool CCalPoint::getEnabled() const {
    return Get(&CRCalFile::CAL_POINT::Enabled);
}
double CCalPoint::getRadiance() const {
    return Get(&CRCalFile::CAL_POINT::Radiance);
}

void CCalPoint::setTemperature(double value) {
    CRCalFile::CAL_POINT *p = file_->PointInRange(page_, point_);
    if (!p) return;
    p->Temperature = value;
    file_->UpdateCalPoint(page_, point_, false);
    file_->SortCalPoints(page_, point_);
    file_->UpdateCalPageCoeffs(page_);
    file_->UpdateCalPageRange(page_);
}

void CCalPoint::setEmissivity(double value) {
    SetAndRecompute(&CRCalFile::CAL_POINT::Emissivity, value);
}
void CCalPoint::setMeasurement(double value) {
    SetAndRecompute(&CRCalFile::CAL_POINT::Measurement, value);
}
void CCalPoint::setReflectedRadiance(double value) {
    SetAndRecompute(&CRCalFile::CAL_POINT::ReflectedRadiance, value);
}
void CCalPoint::setReflectedTemperature(double value) {
    SetAndRecompute(&CRCalFile::CAL_POINT::ReflectedTemperature, value);
}
void CCalPoint::setReflectedEmissivity(double value) {
    SetAndRecompute(&CRCalFile::CAL_POINT::ReflectedEmissivity, value);
}
void CCalPoint::setReflectedRadianceType(EReflectedRadianceType value) {
    SetAndRecompute(&CRCalFile::CAL_POINT::ReflectedType, value);
}

void CCalPoint::setEnabled(bool value) {
    CRCalFile::CAL_POINT *p = file_->PointInRange(page_, point_);
    if (!p) return;
    p->Enabled = value;
    file_->UpdateCalPageCoeffs(page_);
    file_->UpdateCalPageRange(page_);
}

int CCalPoints::getCount() const {
    CRCalFile::CAL_PAGE const *p = file_->PageInRange(page_);
    return p ? int(p->Points.GetSize()) : 0;
}

int CCalPoints::getNumEnabled() const {
    CRCalFile::CAL_PAGE const *p = file_->PageInRange(page_);
    int enabled = 0;
    for (uint32_t i = 0; p && i < p->Points.GetSize(); ++i)
        enabled += p->Points.GetAt(i).Enabled ? 1 : 0;
    return enabled;
}

int CCalPoints::Add(double temperature, double emissivity, double measurement, bool enabled) {
    CRCalFile::CAL_PAGE *p = file_->PageInRange(page_);
    if (!p) return -1;
    CRCalFile::CAL_POINT point;
    point.Temperature = temperature;
    point.Emissivity = emissivity;
    point.Measurement = measurement;
    point.Enabled = enabled;
    if (!p->Points.Add(point)) return -1;
    int index = int(p->Points.GetSize()) - 1;
    file_->UpdateCalPoint(page_, index, false);
    int sorted = file_->SortCalPoints(page_, index);
    // The range is left alone here on purpose, and so is the lookup.
    file_->UpdateCalPageCoeffs(page_);
    return sorted;
}

bool CCalPoints::AddAll(TArray<CRCalFile::CAL_POINT> const &points) {
    CRCalFile::CAL_PAGE *p = file_->PageInRange(page_);
    if (!p) return false;
    uint32_t first = p->Points.GetSize(), n = points.GetSize();
    if (n > UINT32_MAX - first || !p->Points.SetSize(first + n)) return false;
    for (uint32_t i = 0; i < n; ++i) {
        p->Points[first + i] = points.GetAt(i);
        file_->UpdateCalPoint(page_, int(first + i), false);
    }
    file_->SortCalPoints(page_, -1);
    file_->UpdateCalPageCoeffs(page_);
    return true;
}

bool CCalPoints::Remove(int point) {
    CRCalFile::CAL_PAGE *p = file_->PageInRange(page_);
    if (!p) return false;
    if (point >= 0 && point < int(p->Points.GetSize())) p->Points.Remove(uint32_t(point));
    int count = int(p->Points.GetSize());
    if (count < 3)
        p->PolyOrder = 1;
    else if (p->PolyOrder > count - 1)
        p->PolyOrder = count - 1;
    file_->UpdateCalPageCoeffs(page_);
    return true;
}

} // namespace qv
