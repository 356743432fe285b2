// Planck's law over a wavelength axis, four wavelengths at a time: the
// divisions and the exponential run as vectors (AVX2 where the machine has it,
// qv/core/CpuPath.h), every path with exactly the operations and order of the
// scalar formula. The exponential is qv's own (VectorExp.h), so accurate
// that it gives the C library's bits nearly everywhere: an exponential off by
// up to an ulp was tried once, and stored calibrations' temperature fits
// amplified that last bit to 1e-10 of their coefficients.
#include "qv/numerics/Planck.h"

#include <cstring>

#include "qv/core/CpuPath.h"
#include "qv/numerics/CurveAccess.h"
#include "qv/numerics/VectorExp.h"

namespace qv {

namespace {

constexpr double kFirstRadiationConstant = 11910.06; // W um^4 / (sr cm^2)
constexpr double kSecondRadiationConstant = 14388.3; // um K

inline double Exponent(double l, double kelvin) {
    return kSecondRadiationConstant / (l * kelvin);
}

// The formula's last steps, for one wavelength or four, in the same operations.
template <class Real>
[[gnu::always_inline]] inline void Radiance(Real const &l, Real const &ex, double emissivity, Real &y) {
    Real const l2 = l * l;
    Real const l5 = l2 * l2 * l;
    y = emissivity * (kFirstRadiationConstant / l5) * 1.0 / (ex - 1.0);
}

[[gnu::always_inline]] inline double PlanckOf(double l, double kelvin, double emissivity) {
    double ex;
    numerics_detail::Exp(Exponent(l, kelvin), ex);
    double y;
    Radiance(l, ex, emissivity, y);
    return y;
}

// Four at a time; the rare wavelengths whose exponential leaves the vector's
// range (a result of 0 or NaN, far beyond any calibration) are redone one by one.
[[gnu::always_inline]] inline void PlanckLoop(double const *l, double *out, uint32_t n, double kelvin,
                                              double emissivity) {
    using numerics_detail::ExpVector;
    numerics_detail::ExpBits outside{};
    uint32_t i = 0;
    for (; n - i >= 4; i += 4) {
        ExpVector four, ex, y;
        std::memcpy(&four, l + i, sizeof four);
        numerics_detail::ExpMarked(kSecondRadiationConstant / (four * kelvin), ex, outside);
        Radiance(four, ex, emissivity, y);
        std::memcpy(out + i, &y, sizeof y);
    }
    for (uint32_t k = i; k < n; ++k)
        out[k] = PlanckOf(l[k], kelvin, emissivity);
    if ((outside[0] | outside[1] | outside[2] | outside[3]) == 0) return;
    for (uint32_t k = 0; k < i; ++k)
        if (!numerics_detail::ExpInRangeFor(Exponent(l[k], kelvin))) out[k] = PlanckOf(l[k], kelvin, emissivity);
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
