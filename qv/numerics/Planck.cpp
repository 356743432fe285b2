// Planck's law over a wavelength axis, four or eight wavelengths at a time:
// the divisions and the exponential run as vectors (AVX2 or AVX-512 where the
// machine has it, qv/core/CpuPath.h), every path with the results of the
// scalar formula's operations in its order. The exponential is qv's own
// (VectorExp.h), so accurate that it gives the C library's bits nearly
// everywhere: an exponential off by up to an ulp was tried once, and stored
// calibrations' temperature fits amplified that last bit to 1e-10 of their
// coefficients.
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

// A wavelength of zero or below emits nothing; the formula would give NaN or
// a huge meaningless value there (a top hat may start below zero).
[[gnu::always_inline]] inline double PlanckOf(double l, double kelvin, double emissivity) {
    if (l <= 0.0) return 0.0;
    double ex;
    numerics_detail::Exp(Exponent(l, kelvin), ex);
    double y;
    Radiance(l, ex, emissivity, y);
    return y;
}

// The exponents c2 / (l T) of a vector of wavelengths.
template <class Vector>
[[gnu::always_inline]] inline void Exponents(double const *l, double kelvin, Vector &exponent) {
    Vector lanes;
    std::memcpy(&lanes, l, sizeof lanes);
    exponent = kSecondRadiationConstant / (lanes * kelvin);
}

// What the vector loop met that the scalar formula must redo: exponents
// beyond the vector's range (their lanes all ones in outside) and negative
// wavelengths (the sign bits of all of them, gathered in one operation a
// vector; a wavelength of +0 always has an exponent beyond the range).
template <class Bits> struct SRedo {
    Bits outside{};
    Bits signs{};

    bool Any() const {
        Bits const none{}, negative = signs >> 63;
        return __builtin_memcmp(&outside, &none, sizeof none) != 0 ||
               __builtin_memcmp(&negative, &none, sizeof none) != 0;
    }
};

// The radiances of a vector of wavelengths from their exponents.
template <class Vector, class Bits, class Square>
[[gnu::always_inline]] inline void Radiances(double const *l, Vector const &exponent, double emissivity, double *out,
                                             SRedo<Bits> &redo) {
    Vector ex, lanes, y;
    numerics_detail::ExpInRange<Vector, Bits, Square>(exponent, ex);
    std::memcpy(&lanes, l, sizeof lanes);
    redo.signs |= __builtin_bit_cast(Bits, lanes);
    Radiance(lanes, ex, emissivity, y);
    std::memcpy(out, &y, sizeof y);
}

// Two vectors of wavelengths at a time, their exponents divided out one step
// ahead: the divider then works beside the exponentials, whose additions
// bound the loop, rather than before or after them (a third faster than
// three separate passes). The rare wavelengths whose exponential leaves the
// vector's range (a result of 0 or NaN, far beyond any calibration) and
// those of zero or below are redone one by one.
template <class Vector, class Bits, class Square = numerics_detail::SDekkerSquare>
[[gnu::always_inline]] inline void PlanckLoop(double const *l, double *out, uint32_t n, double kelvin,
                                              double emissivity) {
    constexpr uint32_t kLanes = sizeof(Vector) / sizeof(double);
    constexpr uint32_t kStep = 2 * kLanes;
    uint32_t const pairs = n / kStep * kStep;
    uint32_t const whole = n / kLanes * kLanes;
    Vector first, second;
    SRedo<Bits> redo;
    if (pairs) {
        Exponents(l, kelvin, first);
        Exponents(l + kLanes, kelvin, second);
    }
    for (uint32_t i = 0; i < pairs; i += kStep) {
        Vector const thisFirst = first, thisSecond = second;
        numerics_detail::MarkOutside(thisFirst, redo.outside);
        numerics_detail::MarkOutside(thisSecond, redo.outside);
        if (i + kStep < pairs) {
            Exponents(l + i + kStep, kelvin, first);
            Exponents(l + i + kStep + kLanes, kelvin, second);
        }
        Radiances<Vector, Bits, Square>(l + i, thisFirst, emissivity, out + i, redo);
        Radiances<Vector, Bits, Square>(l + i + kLanes, thisSecond, emissivity, out + i + kLanes, redo);
    }
    if (pairs < whole) {
        Exponents(l + pairs, kelvin, first);
        numerics_detail::MarkOutside(first, redo.outside);
        Radiances<Vector, Bits, Square>(l + pairs, first, emissivity, out + pairs, redo);
    }
    for (uint32_t k = whole; k < n; ++k)
        out[k] = PlanckOf(l[k], kelvin, emissivity);
    if (!redo.Any()) return;
    for (uint32_t k = 0; k < whole; ++k)
        if (l[k] <= 0.0 || !numerics_detail::ExpInRangeFor(Exponent(l[k], kelvin)))
            out[k] = PlanckOf(l[k], kelvin, emissivity);
}

using Kernel = void (*)(double const *, double *, uint32_t, double, double);

void PlanckBaseline(double const *l, double *out, uint32_t n, double kelvin, double emissivity) {
    PlanckLoop<numerics_detail::ExpVector, numerics_detail::ExpBits>(l, out, n, kelvin, emissivity);
}

__attribute__((target("avx2"))) void PlanckAvx2(double const *l, double *out, uint32_t n, double kelvin,
                                                double emissivity) {
    PlanckLoop<numerics_detail::ExpVector, numerics_detail::ExpBits>(l, out, n, kelvin, emissivity);
}

__attribute__((target("avx512f,avx512vl"))) void PlanckAvx512(double const *l, double *out, uint32_t n, double kelvin,
                                                              double emissivity) {
    using namespace numerics_detail;
    PlanckLoop<ExpVector8, ExpBits8, SFusedSquare>(l, out, n, kelvin, emissivity);
}

constexpr Kernel kKernels[cpu::kCpuPaths] = {PlanckBaseline, PlanckBaseline, PlanckAvx2, PlanckAvx512};

} // namespace

void Planck(TArray<double> &x, TArray<double> &y, double temperature, double emissivity) {
    double *out = numerics_detail::FreshToOverwrite(y, x);
    if (!out) return;
    double kelvin = temperature + 273.15;
    kKernels[cpu::CpuPath()](x.GetData(), out, y.GetSize(), kelvin, emissivity);
}

} // namespace qv
