// Planck's law over a wavelength axis.
#include "qv/numerics/Planck.h"

#include <cmath>

#include "qv/numerics/CurveAccess.h"

namespace qv {

namespace {

constexpr double kFirstRadiationConstant = 11910.06; // W um^4 / (sr cm^2)
constexpr double kSecondRadiationConstant = 14388.3; // um K

} // namespace

void Planck(TArray<double> &x, TArray<double> &y, double temperature, double emissivity) {
    double *out = numerics_detail::Fresh(y, x);
    if (!out) return;
    double const *l = x.GetData();
    double kelvin = temperature + 273.15;
    for (uint32_t i = 0, n = y.GetSize(); i < n; ++i) {
        double l2 = l[i] * l[i];
        double l5 = l2 * l2 * l[i];
        out[i] = emissivity * (kFirstRadiationConstant / l5) * 1 /
                 (std::exp(kSecondRadiationConstant / (l[i] * kelvin)) - 1);
    }
}

} // namespace qv
