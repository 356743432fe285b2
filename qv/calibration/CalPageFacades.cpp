// The page façades over computed values: CCoefficients, CLookup and CRange.
#include <cmath>

#include "qv/calibration/RCalFile.h"

namespace qv {

using Page = calibration_records::CAL_PAGE;

double CCoefficients::operator[](int i) const {
    Page const *p = file_->PageInRange(page_);
    if (!p) return 0;
    int order = temperature_ ? p->TempPolyOrder : p->PolyOrder;
    if (i < 0 || i > order) return 0;
    return (temperature_ ? p->TempCoefficients : p->Coefficients).GetAt(uint32_t(i));
}

double CCoefficients::getR2() const {
    Page const *p = file_->PageInRange(page_);
    if (!p) return -1.0;
    return temperature_ ? p->TempR2 : p->R2;
}

double CLookup::Read(double Page::*field) const {
    Page const *p = file_->PageInRange(page_);
    return p ? p->*field : 0;
}

void CLookup::Store(double Page::*field, double value) {
    Page *p = file_->PageInRange(page_);
    if (!p || std::fabs(p->*field - value) <= 1e-8) return;
    p->*field = value;
    if (file_->LookupUpdates) file_->UpdateCalPageLookup(page_);
}

double CLookup::getStart() const {
    return Read(&Page::LookupStart);
}
double CLookup::getEnd() const {
    return Read(&Page::LookupEnd);
}
double CLookup::getDelta() const {
    return Read(&Page::LookupDelta);
}
double CLookup::getEmissivity() const {
    return Read(&Page::LookupEmissivity);
}
void CLookup::setStart(double value) {
    Store(&Page::LookupStart, value);
}
void CLookup::setEnd(double value) {
    Store(&Page::LookupEnd, value);
}
void CLookup::setDelta(double value) {
    Store(&Page::LookupDelta, value);
}
void CLookup::setEmissivity(double value) {
    Store(&Page::LookupEmissivity, value);
}

bool CRange::getAuto() const {
    Page const *p = file_->PageInRange(page_);
    return p ? p->RangeAuto : true;
}

bool CRange::setAuto(bool value) {
    Page *p = file_->PageInRange(page_);
    if (!p) return true;
    p->RangeAuto = value;
    if (value) file_->UpdateCalPageRange(page_);
    return value;
}

double CRange::Get(double Page::*field) const {
    Page const *p = file_->PageInRange(page_);
    return p ? p->*field : 0;
}

double CRange::Set(double Page::*field, double value) {
    Page *p = file_->PageInRange(page_);
    if (!p) return 0;
    if (!p->RangeAuto) p->*field = value;
    return value;
}

double CRange::getMinCounts() const {
    return Get(&Page::MinCounts);
}
double CRange::getMaxCounts() const {
    return Get(&Page::MaxCounts);
}
double CRange::getMinRadiance() const {
    return Get(&Page::MinRadiance);
}
double CRange::getMaxRadiance() const {
    return Get(&Page::MaxRadiance);
}
double CRange::getMinTemperature() const {
    return Get(&Page::MinTemperature);
}
double CRange::getMaxTemperature() const {
    return Get(&Page::MaxTemperature);
}
double CRange::setMinCounts(double value) {
    return Set(&Page::MinCounts, value);
}
double CRange::setMaxCounts(double value) {
    return Set(&Page::MaxCounts, value);
}
double CRange::setMinRadiance(double value) {
    return Set(&Page::MinRadiance, value);
}
double CRange::setMaxRadiance(double value) {
    return Set(&Page::MaxRadiance, value);
}
double CRange::setMinTemperature(double value) {
    return Set(&Page::MinTemperature, value);
}
double CRange::setMaxTemperature(double value) {
    return Set(&Page::MaxTemperature, value);
}

} // namespace qv
