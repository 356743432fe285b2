// Axis construction and the change between wavenumbers and microns.
#include <cmath>
#include <utility>

#include "qv/numerics/Curve.h"
#include "qv/numerics/ElementCast.h"

namespace qv {

namespace {

// Walks x (and y, if given) changing units in place; see Curve.h. False at a
// zero x.
bool InvertAxis(double *x, double *y, uint32_t n) {
    for (uint32_t i = 0; i < n; ++i) {
        if (y) y[i] = y[i] * (x[i] * x[i] / 10000.0);
        if (x[i] == 0.0) return false;
        x[i] = 10000.0 / x[i];
    }
    return true;
}

bool Falls(TArray<double> const &x) {
    return x.GetAt(0) > x.GetAt(x.GetSize() - 1);
}

bool SpectrumToOtherUnit(TArray<double> &x, TArray<double> &y) {
    if (x.GetSize() != y.GetSize() || x.GetSize() == 0) return false;
    if (!InvertAxis(x.GetData(), y.GetData(), x.GetSize())) return false;
    if (Falls(x)) Reverse(x, y);
    return true;
}

} // namespace

void XAxis(TArray<double> &x, double start, double end, uint32_t count) {
    if (start > end) std::swap(start, end);
    if (count < 2) count = 2;
    x.Empty();
    if (!x.SetSize(count)) return;
    double *v = x.GetData();
    double step = (end - start) / static_cast<double>(count - 1);
    for (uint32_t i = 0; i + 1 < count; ++i)
        v[i] = static_cast<double>(i) * step + start;
    v[0] = start;
    v[count - 1] = end;
}

void XAxis(TArray<double> &x, double start, double end, double step) {
    if (start > end) std::swap(start, end);
    int64_t n = numerics_detail::TruncateToInt64(std::ceil((end - start) / step));
    if (n < 10) n = 10;
    XAxis(x, start, end, static_cast<uint32_t>(n));
}

bool ToMicrons(TArray<double> &x) {
    if (x.GetSize() == 0) return false;
    if (!InvertAxis(x.GetData(), nullptr, x.GetSize())) return false;
    if (Falls(x)) Reverse(x);
    return true;
}

bool ToMicrons(TArray<double> &x, TArray<double> &y) {
    return SpectrumToOtherUnit(x, y);
}
bool ToWavenumbers(TArray<double> &x, TArray<double> &y) {
    return SpectrumToOtherUnit(x, y);
}

} // namespace qv
