// Integrals of a curve over its axis. Each rule adds its terms in index order
// and in its own written form: results must repeat to the last bit, since
// stored calibrations were computed with them.
#include <type_traits>

#include "qv/numerics/Curve.h"
#include "qv/numerics/CurveAccess.h"

namespace qv {

namespace {

constexpr uint32_t kBlock = 64;

// The terms of a block are independent and computed as vectors; the sum
// then adds them one by one, in index order, as it always has.
template <class Term, class Count>
inline double AddBlock(double sum, double const *a, double const *b, Count count, Term term) {
    double terms[kBlock];
    for (uint32_t k = 0; k < count; ++k)
        terms[k] = term(a[k + 1] - a[k], b[k], b[k + 1] - b[k]);
    for (uint32_t k = 0; k < count; ++k)
        sum += terms[k];
    return sum;
}

template <class Term> double Sum(TArray<double> &x, TArray<double> &y, Term term) {
    uint32_t n = x.GetSize();
    if (n < 2 || !numerics_detail::Reach(y, n)) return 0.0;
    double const *a = x.GetData(), *b = y.GetData();
    double sum = 0.0;
    uint32_t const terms = n - 1;
    uint32_t i = 0;
    for (; terms - i >= kBlock; i += kBlock)
        sum = AddBlock(sum, a + i, b + i, std::integral_constant<uint32_t, kBlock>{}, term);
    return AddBlock(sum, a + i, b + i, terms - i, term);
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
