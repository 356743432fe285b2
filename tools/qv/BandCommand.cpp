// qv band FILE CELSIUS: what a spectral response file or an atmosphere table
// holds (its band and point count), and the in-band radiance of a blackbody
// at CELSIUS degrees seen through it.
//
// A file with a "FREQ" heading and at least two rows is read as an
// atmosphere table: its band is the table's span, and the radiance is the
// blackbody through the transmission plus the path radiance, integrated over
// the table's own axis. Any other file is read as a spectral response and
// handled as a calibration handles one: scaled to a peak of 1, band edges at
// the first and last sample above half the peak, resampled onto an axis no
// coarser than 0.01 micron, and integrated with the blackbody there. A
// response whose axis falls is turned around first.
#include <cmath>
#include <cstdio>

#include "Commands.h"
#include "qv/core/String.h"
#include "qv/core/WideChar.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/numerics/Curve.h"
#include "qv/numerics/CurveFiles.h"
#include "qv/numerics/Planck.h"

namespace qvtool {

namespace {

using qv::TArray;

struct SBand {
    double low, high;
};

double Last(TArray<double> const &a) {
    return a.GetAt(a.GetSize() - 1);
}

// The first and last sample above half the peak (the ends if none is).
SBand HalfMaximumBand(TArray<double> const &x, TArray<double> const &y) {
    uint32_t n = x.GetSize(), first = n, last = n;
    for (uint32_t i = 0; i < n; ++i)
        if (y.GetAt(i) > 0.5) {
            if (first == n) first = i;
            last = i;
        }
    return {x.GetAt(first == n ? 0 : first), x.GetAt(last == n ? n - 1 : last)};
}

double ResponseRadiance(TArray<double> &x, TArray<double> &y, double celsius) {
    double step = (Last(x) - x[0]) / x.GetSize();
    if (step > 0.01) step = 0.01;
    TArray<double> fx, fy, planck;
    qv::XAxis(fx, x[0], Last(x), step);
    qv::Interpolate(x, y, fx, fy, 0);
    qv::Planck(fx, planck, celsius, 1.0);
    for (uint32_t i = 0; i < fx.GetSize(); ++i)
        planck[i] = planck[i] * fy[i];
    return qv::IntegrateRectTR(fx, planck);
}

int ShowResponse(char const *name, TArray<double> &x, TArray<double> &y, double celsius) {
    if (x.GetSize() < 2) return Fail("%s holds fewer than 2 points", name);
    if (x[0] > Last(x)) qv::Reverse(x, y);
    qv::ScaleToOne(y);
    SBand band = HalfMaximumBand(x, y);
    std::printf("%s: spectral response, %u points, %g to %g um\n", name, x.GetSize(), x[0], Last(x));
    std::printf("band (half maximum): %g to %g um\n", band.low, band.high);
    std::printf("in-band radiance at %g C: %.6e W/(sr-cm^2)\n", celsius, ResponseRadiance(x, y, celsius));
    return 0;
}

int ShowAtmosphere(char const *name, TArray<double> &x, TArray<double> &transmission, TArray<double> &path,
                   double celsius) {
    TArray<double> through;
    qv::Planck(x, through, celsius, 1.0);
    for (uint32_t i = 0; i < x.GetSize(); ++i)
        through[i] = through[i] * transmission[i];
    double source = qv::IntegrateRectTR(x, through), air = qv::IntegrateRectTR(x, path);
    std::printf("%s: atmosphere table, %u points, %g to %g um\n", name, x.GetSize(), x[0], Last(x));
    std::printf("in-band radiance at %g C: %.6e W/(sr-cm^2) (source through the path %.6e, path %.6e)\n", celsius,
                source + air, source, air);
    return 0;
}

// A finite temperature at or above absolute zero; anything else has no
// radiance to show.
bool ParseCelsius(char const *text, double &celsius) {
    char const *end = nullptr;
    celsius = qv::c_strtod(text, &end);
    return end != text && *end == '\0' && std::isfinite(celsius) && celsius >= -273.15;
}

} // namespace

int RunBand(char *const *args) {
    char const *name = args[0];
    double celsius = 0;
    if (!ParseCelsius(args[1], celsius)) {
        std::fprintf(stderr, "usage: qv band FILE CELSIUS (CELSIUS is a number from -273.15 up, such as 25 or -10.5)\n");
        return kExitUsage;
    }
    qv::CString path(name);
    TArray<double> x, y, pathRadiance;
    if (qv::ReadModtranFile(x, y, pathRadiance, &qv::GetFileSystem(), path) && x.GetSize() >= 2)
        return ShowAtmosphere(name, x, y, pathRadiance, celsius);
    if (!qv::ReadXYFile(x, y, &qv::GetFileSystem(), path)) return Fail("cannot open %s", name);
    return ShowResponse(name, x, y, celsius);
}

} // namespace qvtool
