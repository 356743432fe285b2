// Integrals of a curve over its axis. Each rule adds its terms in index order
// and in its own written form: results must repeat to the last bit, since
// stored calibrations were computed with them.
#include "qv/numerics/Curve.h"
#include "qv/numerics/CurveAccess.h"

namespace qv {

namespace {

template <class Term> double Sum(TArray<double> &x, TArray<double> &y, Term term) {
    uint32_t n = x.GetSize();
    if (n < 2 || !numerics_detail::Reach(y, n)) return 0.0;
    double const *a = x.GetData(), *b = y.GetData();
    double sum = 0.0;
    for (uint32_t i = 0; i + 1 < n; ++i)
        sum += term(a[i + 1] - a[i], b[i], b[i + 1] - b[i]);
    return sum;
}

double Midpoint(TArray<double> &x, TArray<double> &y) {
    return Sum(x, y, [](double dx, double y0, double dy) { return dx * y0 + dx * dy * 0.5; });
}

} // namespace

double IntegrateRectTL(TArray<double> &x, TArray<double> &y) {
    return Sum(x, y, [](double dx, double y0, double) { return dx * y0; });
}

double IntegrateRectTR(TArray<double> &x, TArray<double> &y) {
    return Sum(x, y, [](double dx, double y0, double dy) { return dx * y0 + dx * dy; });
}

double IntegrateRectMid(TArray<double> &x, TArray<double> &y) {
    return Midpoint(x, y);
}
double IntegrateTrap(TArray<double> &x, TArray<double> &y) {
    return Midpoint(x, y);
}

} // namespace qv
