// Numerical inversion of calibration polynomials over the counts of a 14-bit
// detector.
#include "qv/numerics/Curve.h"
#include "qv/numerics/Fits.h"

namespace qv {

namespace {

constexpr uint32_t kDetectorCounts = 16384;

// Two work arrays of kDetectorCounts zeros, each allocated once.
bool MakeWorkArrays(TArray<double> &u, TArray<double> &v) {
    return u.SetSize(kDetectorCounts) && v.SetSize(kDetectorCounts);
}

} // namespace

bool CalcRadToCountsFromCountsToRad(TArray<double> &c) {
    TArray<double> counts, radiance;
    if (!MakeWorkArrays(counts, radiance)) return false;
    for (uint32_t i = 0; i < kDetectorCounts; ++i) {
        counts.GetData()[i] = i;
        radiance.GetData()[i] = PolyValue(i, c);
    }
    return LinearLeastSquareFit(radiance, counts, static_cast<int>(c.GetSize()) - 1, c);
}

bool CalcTempToRadFromRadToTemp(TArray<double> &a, TArray<double> &b) {
    TArray<double> radiance, temperature;
    if (!MakeWorkArrays(radiance, temperature)) return false;
    for (uint32_t i = 0; i < kDetectorCounts; ++i) {
        radiance.GetData()[i] = PolyValue(i, a);
        temperature.GetData()[i] = PolyValue(radiance.GetData()[i], b);
    }
    return LinearLeastSquareFit(temperature, radiance, static_cast<int>(b.GetSize()) - 1, b);
}

} // namespace qv
