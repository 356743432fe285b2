// Point functions, curve generators and whole-array operations on curves.
#include "qv/numerics/Curve.h"

#include <cmath>
#include <utility>

#include "qv/numerics/CurveAccess.h"

namespace qv {

using numerics_detail::Fresh;

namespace {

// Power by power with pow, in index order: the stored calibrations were
// computed this way, not by Horner's rule.
double PolySum(double x, double const *c, uint32_t n) {
    if (n < 2) return 0.0;
    double sum = 0.0;
    for (uint32_t i = 0; i < n; ++i)
        sum += c[i] * std::pow(x, static_cast<double>(i));
    return sum;
}

template <class F> void MakeCurve(TArray<double> &x, TArray<double> &y, F f) {
    double *out = Fresh(y, x);
    if (!out) return;
    double const *in = x.GetData();
    for (uint32_t i = 0, n = y.GetSize(); i < n; ++i)
        out[i] = f(in[i]);
}

double MaxOf(TArray<double> const &a) {
    double const *v = a.GetData();
    double m = v[0];
    for (uint32_t i = 1, n = a.GetSize(); i < n; ++i)
        if (v[i] > m) m = v[i];
    return m;
}

void ReverseItems(TArray<double> &a) {
    double *v = a.GetData();
    for (uint32_t i = 0, j = a.GetSize(); i + 1 < j; ++i, --j)
        std::swap(v[i], v[j - 1]);
}

} // namespace

double ExpValue(double x, double a, double b) {
    return a * std::exp(b * x);
}
double LogValue(double x, double a, double b) {
    return a * std::log(x) + b;
}
double PowValue(double x, double a, double b) {
    return a * std::pow(x, b);
}
double ToMicrons(double value) {
    return 10000.0 / value;
}
double ToWavenumbers(double value) {
    return 10000.0 / value;
}

double PolyValue(double x, TArray<double> &c) {
    return PolySum(x, c.GetData(), c.GetSize());
}

void PolyCurve(TArray<double> &x, TArray<double> &y, TArray<double> &c) {
    MakeCurve(x, y, [&c](double v) { return PolySum(v, c.GetData(), c.GetSize()); });
}

void ExpCurve(TArray<double> &x, TArray<double> &y, double a, double b) {
    MakeCurve(x, y, [a, b](double v) { return ExpValue(v, a, b); });
}

void LogCurve(TArray<double> &x, TArray<double> &y, double a, double b) {
    MakeCurve(x, y, [a, b](double v) { return LogValue(v, a, b); });
}

void PowCurve(TArray<double> &x, TArray<double> &y, double a, double b) {
    MakeCurve(x, y, [a, b](double v) { return PowValue(v, a, b); });
}

void Tophat(TArray<double> &x, TArray<double> &y) {
    MakeCurve(x, y, [](double) { return 1.0; });
}

void CopyAxis(TArray<double> &dst, TArray<double> &src) {
    dst.Copy(src);
}

void Reverse(TArray<double> &a) {
    ReverseItems(a);
}

void Reverse(TArray<double> &a, TArray<double> &b) {
    ReverseItems(a);
    ReverseItems(b);
}

void ScaleToOne(TArray<double> &a) {
    if (a.GetSize() == 0) return;
    double m = MaxOf(a);
    if (!(std::fabs(m - 1.0) > 1e-8)) return;
    double *v = a.GetData();
    for (uint32_t i = 0, n = a.GetSize(); i < n; ++i)
        v[i] = v[i] / m;
}

void ScaleTo(TArray<double> &a, double target) {
    if (a.GetSize() == 0) return;
    double m = MaxOf(a);
    if (!(std::fabs(m - target) > 1e-8)) return;
    double factor = target / m;
    double *v = a.GetData();
    for (uint32_t i = 0, n = a.GetSize(); i < n; ++i)
        v[i] = v[i] * factor;
}

} // namespace qv
