// The update chain that keeps a page's computed fields true: point radiances,
// the counts-to-radiance fit, the range, the lookup and the radiance-to-
// temperature fit. Page -1 means every page; a bad page does nothing.
#include "qv/calibration/CalLimits.h"
#include "qv/calibration/RCalFile.h"
#include "qv/numerics/Curve.h"
#include "qv/numerics/Fits.h"

namespace qv {

void CRCalFile::UpdateCalPoint(int page, int point, bool refit) {
    if (page == -1) {
        for (int p = 0; p < int(CalPages.GetSize()); ++p)
            UpdateCalPoint(p, point, refit);
        return;
    }
    CAL_PAGE *calPage = PageInRange(page);
    if (!calPage) return;
    if (point == -1) {
        for (int i = 0; i < int(calPage->Points.GetSize()); ++i)
            UpdateCalPoint(page, i, false);
    } else {
        CAL_POINT *p = PointInRange(page, point);
        if (!p) return;
        // Emitted plus reflected, through the response and the atmosphere.
        p->Radiance = CalcRadianceEx(p->Temperature, p->Emissivity, p->ReflectedType, p->ReflectedTemperature,
                                     p->ReflectedEmissivity, p->ReflectedRadiance);
    }
    if (!refit) return;
    UpdateCalPageCoeffs(page);
    UpdateCalPageRange(page);
}

void CRCalFile::GatherEnabled(CAL_PAGE const &page, TArray<double> &counts, TArray<double> &radiance) {
    counts.Empty();
    radiance.Empty();
    // Room for all at once, not five at a time.
    counts.SetCapacity(page.Points.GetSize());
    radiance.SetCapacity(page.Points.GetSize());
    for (uint32_t i = 0; i < page.Points.GetSize(); ++i) {
        CAL_POINT const &p = page.Points.GetAt(i);
        if (!p.Enabled) continue;
        counts.Add(p.Measurement);
        radiance.Add(p.Radiance);
    }
}

void CRCalFile::UpdateCalPageCoeffs(int page) {
    if (page == -1) {
        for (int p = 0; p < int(CalPages.GetSize()); ++p)
            UpdateCalPageCoeffs(p);
        return;
    }
    CAL_PAGE *p = PageInRange(page);
    if (!p) return;
    TArray<double> counts, radiance;
    GatherEnabled(*p, counts, radiance);
    // A failed fit (too few points) leaves zero coefficients; that is its report.
    LinearLeastSquareFit(counts, radiance, p->PolyOrder, p->Coefficients);
    p->R2 = CalcR2(counts, radiance, p->Coefficients);
}

void CRCalFile::UpdateCalPageRange(int page) {
    if (page == -1) {
        for (int p = 0; p < int(CalPages.GetSize()); ++p)
            UpdateCalPageRange(p);
        return;
    }
    CAL_PAGE *p = PageInRange(page);
    if (!p || !p->RangeAuto) return;
    int lowest = -1, highest = -1;
    for (uint32_t i = 0; i < p->Points.GetSize(); ++i) {
        CAL_POINT const &point = p->Points.GetAt(i);
        if (!point.Enabled) continue;
        // Only a strictly lower or higher temperature takes over, so the
        // first of equal temperatures holds.
        if (lowest < 0 || point.Temperature < p->Points.GetAt(uint32_t(lowest)).Temperature) lowest = int(i);
        if (highest < 0 || point.Temperature > p->Points.GetAt(uint32_t(highest)).Temperature) highest = int(i);
    }
    // One point, or all at one temperature, says nothing about a range: the
    // old one stays.
    if (lowest < 0 || lowest == highest) return;
    CAL_POINT const &low = p->Points.GetAt(uint32_t(lowest));
    CAL_POINT const &high = p->Points.GetAt(uint32_t(highest));
    p->MinCounts = low.Measurement;
    p->MinRadiance = low.Radiance;
    p->MinTemperature = low.Temperature;
    p->MaxCounts = high.Measurement;
    p->MaxRadiance = high.Radiance;
    p->MaxTemperature = high.Temperature;
}

void CRCalFile::UpdateCalPageLookup(int page) {
    if (page == -1) {
        for (int p = 0; p < int(CalPages.GetSize()); ++p)
            UpdateCalPageLookup(p);
        return;
    }
    CAL_PAGE *p = PageInRange(page);
    if (!p) return;
    // The step form: the step is only a wish, the count at least 10.
    // A lookup beyond the bound is refused; the temperature fit then gives zeros.
    if (calibration_detail::StepAxisTooLong(p->LookupStart, p->LookupEnd, p->LookupDelta,
                                            calibration_detail::kMaxLookupEntries))
        p->LookupTemperature.Empty();
    else
        XAxis(p->LookupTemperature, p->LookupStart, p->LookupEnd, p->LookupDelta);
    if (double(p->LookupTemperature.GetSize()) * FinalResponse.X.GetSize() > calibration_detail::kMaxLookupWork)
        p->LookupTemperature.Empty();
    uint32_t n = p->LookupTemperature.GetSize();
    p->LookupRadiance.Empty();
    if (p->LookupRadiance.SetSize(n))
        for (uint32_t i = 0; i < n; ++i)
            p->LookupRadiance[i] = CalcRadiance(p->LookupTemperature[i], p->LookupEmissivity);
    UpdateCalPageTempCoeffs(page);
}

void CRCalFile::UpdateCalPageTempCoeffs(int page) {
    if (page == -1) {
        for (int p = 0; p < int(CalPages.GetSize()); ++p)
            UpdateCalPageTempCoeffs(p);
        return;
    }
    CAL_PAGE *p = PageInRange(page);
    if (!p) return;
    // On the whole lookup, never the points: the temperature polynomial
    // depends only on the spectral model and the lookup span.
    LinearLeastSquareFit(p->LookupRadiance, p->LookupTemperature, p->TempPolyOrder, p->TempCoefficients);
    p->TempR2 = CalcR2(p->LookupRadiance, p->LookupTemperature, p->TempCoefficients);
}

void CRCalFile::UpdateCalPage(int page) {
    if (page == -1) {
        for (int p = 0; p < int(CalPages.GetSize()); ++p)
            UpdateCalPage(p);
        return;
    }
    if (!PageInRange(page)) return;
    UpdateCalPoint(page, -1, false);
    UpdateCalPageCoeffs(page);
    UpdateCalPageRange(page);
    if (LookupUpdates) UpdateCalPageLookup(page);
}

} // namespace qv
