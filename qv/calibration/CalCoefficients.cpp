// Reading and overriding the two polynomials of a page. The counts-to-
// radiance set and the radiance-to-temperature set behave alike; one
// description of each set's fields serves both families.
//
// Page test: false below 0 or above the count; a page equal to the count is
// reached, which grows a default page (existing callers rely on it).
#include <cmath>

#include "qv/calibration/RCalFile.h"
#include "qv/numerics/Fits.h"

namespace qv {

namespace {

using Page = calibration_records::CAL_PAGE;

struct SCoefficientSet {
    int Page::*order;
    TArray<double> Page::*fitted;
    bool Page::*overridden;
    int Page::*usedOrder;
    TArray<double> Page::*used;
};

constexpr SCoefficientSet kCounts{&Page::PolyOrder, &Page::Coefficients, &Page::CoeffsOverridden, &Page::UsedPolyOrder,
                                  &Page::UsedCoefficients};
constexpr SCoefficientSet kTemperature{&Page::TempPolyOrder, &Page::TempCoefficients, &Page::TempCoeffsOverridden,
                                       &Page::UsedTempPolyOrder, &Page::UsedTempCoefficients};

// Copies the count of values that order has; missing ones read 0.
void CopyOut(TArray<double> const &from, int order, double *values) {
    int n = CRCalFile::GetNumCoeffsForOrder(order);
    for (int i = 0; i < n; ++i)
        values[i] = from.GetAt(uint32_t(i));
}

int ActiveOrder(Page const &p, SCoefficientSet const &set) {
    return p.*set.overridden ? p.*set.usedOrder : p.*set.order;
}

TArray<double> const &ActiveValues(Page const &p, SCoefficientSet const &set) {
    return p.*set.overridden ? p.*set.used : p.*set.fitted;
}

// Sizes values for the order and fills them with read(page, pointer).
template <class Read> bool IntoArray(int order, TArray<double> &values, Read read) {
    values.Empty();
    int n = CRCalFile::GetNumCoeffsForOrder(order);
    if (n > 0 && !values.SetSize(uint32_t(n))) return false;
    return read(values.GetData());
}

bool StoreUsed(Page &p, SCoefficientSet const &set, int order, double const *values, bool overridden) {
    if (!values && CRCalFile::GetNumCoeffsForOrder(order) > 0) return false;
    p.*set.overridden = overridden;
    p.*set.usedOrder = order;
    TArray<double> &used = p.*set.used;
    used.Empty();
    int n = CRCalFile::GetNumCoeffsForOrder(order);
    for (int i = 0; i < n; ++i)
        used.Add(values[i]);
    return true;
}

bool EqualFitted(Page const &p, SCoefficientSet const &set, int order, double const *values) {
    if (order != p.*set.order) return false;
    int n = CRCalFile::GetNumCoeffsForOrder(order);
    for (int i = 0; i < n; ++i)
        if (!(std::fabs((p.*set.fitted).GetAt(uint32_t(i)) - values[i]) <= 1e-8)) return false;
    return true;
}

} // namespace

// The page test of this family, one line at each use.
#define QV_PAGE_OR_FALSE(p, page)                                                                                      \
    Page *p = ReachPage(page);                                                                                         \
    if (!p) return false

bool CRCalFile::GetPolyOrder(int page, int &order) {
    QV_PAGE_OR_FALSE(p, page);
    order = ActiveOrder(*p, kCounts);
    return true;
}

bool CRCalFile::GetCoefficients(int page, double *values) {
    QV_PAGE_OR_FALSE(p, page);
    CopyOut(ActiveValues(*p, kCounts), ActiveOrder(*p, kCounts), values);
    return true;
}

bool CRCalFile::GetCoefficients(int page, TArray<double> &values) {
    int order = 0;
    if (!GetPolyOrder(page, order)) return false;
    return IntoArray(order, values, [&](double *v) { return GetCoefficients(page, v); });
}

bool CRCalFile::GetCalcPolyOrder(int page, int &order) {
    QV_PAGE_OR_FALSE(p, page);
    order = p->PolyOrder;
    return true;
}

bool CRCalFile::GetCalcCoefficients(int page, double *values) {
    QV_PAGE_OR_FALSE(p, page);
    CopyOut(p->Coefficients, p->PolyOrder, values);
    return true;
}

bool CRCalFile::GetUsedPolyOrder(int page, int &order) {
    QV_PAGE_OR_FALSE(p, page);
    order = p->UsedPolyOrder;
    return true;
}

bool CRCalFile::GetUsedCoefficients(int page, double *values) {
    QV_PAGE_OR_FALSE(p, page);
    CopyOut(p->UsedCoefficients, p->UsedPolyOrder, values);
    return true;
}

bool CRCalFile::GetUsedCoefficients(int page, int &order, TArray<double> &values, bool &overridden) {
    if (!GetUsedCoefficients(page, order, values)) return false;
    overridden = CalPages[uint32_t(page)].CoeffsOverridden;
    return true;
}

bool CRCalFile::GetUsedCoefficients(int page, TArray<double> &values) {
    int order = 0;
    return GetUsedCoefficients(page, order, values);
}

bool CRCalFile::GetUsedCoefficients(int page, int &order, TArray<double> &values) {
    if (!GetUsedPolyOrder(page, order)) return false;
    return IntoArray(order, values, [&](double *v) { return GetUsedCoefficients(page, v); });
}

bool CRCalFile::GetCoeffsOverridden(int page, bool &overridden) {
    QV_PAGE_OR_FALSE(p, page);
    overridden = p->CoeffsOverridden;
    return true;
}

bool CRCalFile::SetUsedCoefficients(int page, int order, double *values, bool overridden) {
    QV_PAGE_OR_FALSE(p, page);
    return StoreUsed(*p, kCounts, order, values, overridden);
}

bool CRCalFile::EqualCoefficients(int page, int order, double *values) {
    QV_PAGE_OR_FALSE(p, page);
    return EqualFitted(*p, kCounts, order, values);
}

bool CRCalFile::GetReverseCoefficients(int page, TArray<double> &values) {
    QV_PAGE_OR_FALSE(p, page);
    TArray<double> counts, radiance;
    GatherEnabled(*p, counts, radiance);
    // A fit of its own, not an inversion of the forward polynomial.
    return LinearLeastSquareFit(radiance, counts, p->PolyOrder, values);
}

bool CRCalFile::GetReverseCoefficients(int page, double *values) {
    TArray<double> fitted;
    bool ok = GetReverseCoefficients(page, fitted);
    if (!ok && fitted.GetSize() == 0) return false;
    for (uint32_t i = 0; i < fitted.GetSize(); ++i)
        values[i] = fitted[i];
    return ok;
}

bool CRCalFile::GetTempPolyOrder(int page, int &order) {
    QV_PAGE_OR_FALSE(p, page);
    order = ActiveOrder(*p, kTemperature);
    return true;
}

bool CRCalFile::GetTempCoefficients(int page, double *values) {
    QV_PAGE_OR_FALSE(p, page);
    CopyOut(ActiveValues(*p, kTemperature), ActiveOrder(*p, kTemperature), values);
    return true;
}

bool CRCalFile::GetTempCoefficients(int page, TArray<double> &values) {
    int order = 0;
    if (!GetTempPolyOrder(page, order)) return false;
    return IntoArray(order, values, [&](double *v) { return GetTempCoefficients(page, v); });
}

bool CRCalFile::GetCalcTempPolyOrder(int page, int &order) {
    QV_PAGE_OR_FALSE(p, page);
    order = p->TempPolyOrder;
    return true;
}

bool CRCalFile::GetCalcTempCoefficients(int page, double *values) {
    QV_PAGE_OR_FALSE(p, page);
    CopyOut(p->TempCoefficients, p->TempPolyOrder, values);
    return true;
}

bool CRCalFile::GetUsedTempPolyOrder(int page, int &order) {
    QV_PAGE_OR_FALSE(p, page);
    order = p->UsedTempPolyOrder;
    return true;
}

bool CRCalFile::GetUsedTempCoefficients(int page, double *values) {
    QV_PAGE_OR_FALSE(p, page);
    CopyOut(p->UsedTempCoefficients, p->UsedTempPolyOrder, values);
    return true;
}

bool CRCalFile::GetUsedTempCoefficients(int page, int &order, TArray<double> &values, bool &overridden) {
    if (!GetUsedTempCoefficients(page, order, values)) return false;
    overridden = CalPages[uint32_t(page)].TempCoeffsOverridden;
    return true;
}

bool CRCalFile::GetUsedTempCoefficients(int page, TArray<double> &values) {
    int order = 0;
    return GetUsedTempCoefficients(page, order, values);
}

bool CRCalFile::GetUsedTempCoefficients(int page, int &order, TArray<double> &values) {
    if (!GetUsedTempPolyOrder(page, order)) return false;
    return IntoArray(order, values, [&](double *v) { return GetUsedTempCoefficients(page, v); });
}

bool CRCalFile::GetTempCoeffsOverridden(int page, bool &overridden) {
    QV_PAGE_OR_FALSE(p, page);
    overridden = p->TempCoeffsOverridden;
    return true;
}

bool CRCalFile::SetUsedTempCoefficients(int page, int order, double *values, bool overridden) {
    QV_PAGE_OR_FALSE(p, page);
    return StoreUsed(*p, kTemperature, order, values, overridden);
}

bool CRCalFile::EqualTempCoefficients(int page, int order, double *values) {
    QV_PAGE_OR_FALSE(p, page);
    return EqualFitted(*p, kTemperature, order, values);
}

#undef QV_PAGE_OR_FALSE

} // namespace qv
