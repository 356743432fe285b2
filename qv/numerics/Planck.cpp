// Planck's law over a wavelength axis, a block at a time: the divisions of a
// block run as vectors on the widest path the machine has (qv/core/CpuPath.h),
// the exponential stays the C library's, one value at a time. A vector
// exponential within 1 ulp was tried: stored calibrations' temperature fits
// amplify that last bit to 1e-10 of their coefficients, so every path keeps
// exactly the operations and order of the scalar formula.
#include "qv/numerics/Planck.h"

#include <cmath>

#include "qv/core/CpuPath.h"
#include "qv/numerics/CurveAccess.h"

namespace qv {

namespace {

constexpr double kFirstRadiationConstant = 11910.06; // W um^4 / (sr cm^2)
constexpr double kSecondRadiationConstant = 14388.3; // um K
constexpr uint32_t kBlock = 64;

// out[k] for the count wavelengths at l; count is kBlock but for the last block.
[[gnu::always_inline]] inline void PlanckBlock(double const *l, double *out, uint32_t count, double kelvin,
                                               double emissivity) {
    double ex[kBlock];
    for (uint32_t k = 0; k < count; ++k)
        ex[k] = kSecondRadiationConstant / (l[k] * kelvin);
    for (uint32_t k = 0; k < count; ++k)
        ex[k] = std::exp(ex[k]);
    for (uint32_t k = 0; k < count; ++k) {
        double l2 = l[k] * l[k];
        double l5 = l2 * l2 * l[k];
        out[k] = emissivity * (kFirstRadiationConstant / l5) * 1 / (ex[k] - 1);
    }
}

// Full blocks with a fixed trip count (which the vectoriser wants), then the rest.
[[gnu::always_inline]] inline void PlanckLoop(double const *l, double *out, uint32_t n, double kelvin,
                                              double emissivity) {
    uint32_t i = 0;
    for (; n - i >= kBlock; i += kBlock)
        PlanckBlock(l + i, out + i, kBlock, kelvin, emissivity);
    if (i < n) PlanckBlock(l + i, out + i, n - i, kelvin, emissivity);
}

void PlanckBaseline(double const *l, double *out, uint32_t n, double kelvin, double emissivity) {
    PlanckLoop(l, out, n, kelvin, emissivity);
}

__attribute__((target("avx2"))) void PlanckAvx2(double const *l, double *out, uint32_t n, double kelvin,
                                                double emissivity) {
    PlanckLoop(l, out, n, kelvin, emissivity);
}

} // namespace

void Planck(TArray<double> &x, TArray<double> &y, double temperature, double emissivity) {
    double *out = numerics_detail::Fresh(y, x);
    if (!out) return;
    double kelvin = temperature + 273.15;
    auto const kernel = cpu::CpuPath() >= cpu::CP_AVX2 ? PlanckAvx2 : PlanckBaseline;
    kernel(x.GetData(), out, y.GetSize(), kelvin, emissivity);
}

} // namespace qv
