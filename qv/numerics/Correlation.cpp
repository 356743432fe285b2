// CalcR2: the squared correlation of data with a model, in one pass of sums.
#include "qv/numerics/CurveAccess.h"
#include "qv/numerics/Fits.h"

namespace qv {

namespace {

struct SCorrelationSums {
    double sy = 0, syy = 0, sf = 0, sff = 0, syf = 0;

    void Add(double y, double f) {
        sy += y;
        syy += y * y;
        sf += f;
        sff += f * f;
        syf += y * f;
    }
    // Unguarded: constant data divides by zero, as it always has.
    double R2(uint32_t count) const {
        double n = count;
        double covariance = n * syf - sf * sy;
        return covariance * covariance / ((n * syy - sy * sy) * (n * sff - sf * sf));
    }
};

double Horner(double x, double const *c, uint32_t order) {
    double f = c[order];
    for (uint32_t j = order; j-- > 0;)
        f = f * x + c[j];
    return f;
}

} // namespace

double CalcR2(TArray<double> &x, TArray<double> &y, TArray<double> &c) {
    if (c.GetSize() < 2) return -1.0;
    uint32_t n = x.GetSize(), order = c.GetSize() - 1;
    if (!numerics_detail::Reach(y, n)) return -1.0;
    SCorrelationSums sums;
    for (uint32_t i = 0; i < n; ++i)
        sums.Add(y.GetData()[i], Horner(x.GetData()[i], c.GetData(), order));
    return sums.R2(n);
}

double CalcR2(TArray<double> &a, TArray<double> &b) {
    uint32_t n = a.GetSize();
    if (!numerics_detail::Reach(b, n)) return -1.0;
    SCorrelationSums sums;
    for (uint32_t i = 0; i < n; ++i)
        sums.Add(a.GetData()[i], b.GetData()[i]);
    return sums.R2(n);
}

} // namespace qv
