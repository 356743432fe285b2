// CCalPage and CCalPages: a page's orders and point values, and the list of
// at most four pages.
#include "qv/calibration/RCalFile.h"

namespace qv {

namespace {

constexpr int kMaxPages = 4;
constexpr int kMaxTempPolyOrder = 6;

} // namespace

bool CCalPage::getExists() const {
    return file_->PageInRange(page_) != nullptr;
}

int CCalPage::getPolyOrder() const {
    CRCalFile::CAL_PAGE const *p = file_->PageInRange(page_);
    return p ? p->PolyOrder : 0;
}

void CCalPage::setPolyOrder(int order) {
    CRCalFile::CAL_PAGE *p = file_->PageInRange(page_);
    if (!p) return;
    // Bounded by the data first, then at least 1: a page without points has order 1.
    int count = int(p->Points.GetSize());
    if (order > count - 1) order = count - 1;
    if (order < 1) order = 1;
    if (order == p->PolyOrder) return;
    p->PolyOrder = order;
    file_->UpdateCalPageCoeffs(page_);
}

int CCalPage::getTempPolyOrder() const {
    CRCalFile::CAL_PAGE const *p = file_->PageInRange(page_);
    return p ? p->TempPolyOrder : 0;
}

void CCalPage::setTempPolyOrder(int order) {
    CRCalFile::CAL_PAGE *p = file_->PageInRange(page_);
    if (!p) return;
    if (order > kMaxTempPolyOrder) order = kMaxTempPolyOrder;
    if (order < 1) order = 1;
    if (order == p->TempPolyOrder) return;
    p->TempPolyOrder = order;
    file_->UpdateCalPageTempCoeffs(page_);
}

void CCalPage::Gather(TArray<double> &values, bool all, double calibration_records::CAL_POINT::*field) const {
    values.Empty();
    CRCalFile::CAL_PAGE const *p = file_->PageInRange(page_);
    if (p) values.SetCapacity(p->Points.GetSize()); // at once, not five at a time
    for (uint32_t i = 0; p && i < p->Points.GetSize(); ++i)
        if (all || p->Points.GetAt(i).Enabled) values.Add(p->Points.GetAt(i).*field);
}

void CCalPage::getTemperature(TArray<double> &values, bool all) const {
    Gather(values, all, &CRCalFile::CAL_POINT::Temperature);
}

void CCalPage::getMeasurement(TArray<double> &values, bool all) const {
    Gather(values, all, &CRCalFile::CAL_POINT::Measurement);
}

void CCalPage::getRadiance(TArray<double> &values, bool all) const {
    Gather(values, all, &CRCalFile::CAL_POINT::Radiance);
}

bool CCalPage::GetTemperatureRange(double &min, double &max) const {
    CRCalFile::CAL_PAGE const *p = file_->PageInRange(page_);
    if (!p) return false;
    int enabled = 0;
    for (uint32_t i = 0; i < p->Points.GetSize(); ++i) {
        CRCalFile::CAL_POINT const &point = p->Points.GetAt(i);
        if (!point.Enabled) continue;
        if (enabled++ == 0) {
            min = max = point.Temperature;
            continue;
        }
        if (point.Temperature < min) min = point.Temperature;
        if (point.Temperature > max) max = point.Temperature;
    }
    // One enabled point fills both outputs yet is no range; callers rely on
    // this answer.
    return enabled >= 2;
}

int CCalPages::getCount() const {
    return int(file_->CalPages.GetSize());
}

int CCalPages::Add() {
    if (getCount() >= kMaxPages) return -1;
    if (!file_->CalPages.Add(CRCalFile::CAL_PAGE{})) return -1;
    int page = getCount() - 1;
    file_->UpdateCalPage(page);
    return page;
}

bool CCalPages::Remove(int page) {
    if (!file_->PageInRange(page)) return false;
    return file_->CalPages.Remove(uint32_t(page));
}

} // namespace qv
