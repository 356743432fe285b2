// qv band [--json | --csv] FILE CELSIUS: what a spectral response file or an
// atmosphere table holds (its band and point count), and the in-band
// radiance of a blackbody at CELSIUS degrees seen through it.
//
// A file with a "FREQ" heading is read as a MODTRAN table: its band is the
// table's span, and the radiance is the blackbody through the transmission
// plus the path radiance, integrated over the table's own axis. Any other
// file is read as a spectral response and handled as a calibration handles
// one: scaled to a peak of 1, band edges at the first and last sample above
// half the peak, resampled onto an axis no coarser than 0.01 micron, and
// integrated with the blackbody there. Both are checked as a calibration
// checks them (qv/calibration/CurveChecks.h); a table whose axis falls is
// turned around first.
//
// --json prints one object: {"file", "kind" ("response" or "atmosphere"),
// "points", "start", "end", "celsius", "radiance"} and, for a response,
// "bandLow" and "bandHigh", for an atmosphere "sourceRadiance" and
// "pathRadiance" (microns, W/(sr-cm^2)). --csv prints the curve as read, in
// rising wavelength: wavelength_um,response (scaled to 1) or
// wavelength_um,transmission,path_radiance.
#include <cmath>
#include <cstdio>
#include <string>

#include "CalInput.h"
#include "Commands.h"
#include "CurveInput.h"
#include "Input.h"
#include "Output.h"
#include "qv/calibration/CurveChecks.h"
#include "qv/core/WideChar.h"
#include "qv/files/MemFile.h"
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

void PrintCsv(char const *heading, TArray<double> &x, TArray<double> &a, TArray<double> *b) {
    std::printf("%s\n", heading);
    for (uint32_t i = 0; i < x.GetSize(); ++i) {
        std::printf("%.9g,%.9g", x[i], a[i]);
        if (b) std::printf(",%.9g", (*b)[i]);
        std::printf("\n");
    }
}

void BeginJson(CJsonWriter &json, char const *name, char const *kind, TArray<double> &x, double celsius) {
    json.BeginObject();
    json.String("file", name);
    json.String("kind", kind);
    json.Integer("points", x.GetSize());
    json.Number("start", x[0]);
    json.Number("end", Last(x));
    json.Number("celsius", celsius);
}

int ShowResponse(char const *name, TArray<double> &x, TArray<double> &y, double celsius) {
    qv::EResponseStatus status = qv::CheckResponseCurve(x, y);
    if (status != qv::RS_OK) return Fail("%s", ResponseStatusMessage(InputName(name), status).c_str());
    qv::ScaleToOne(y);
    if (GivenOptions().csv) return PrintCsv("wavelength_um,response", x, y, nullptr), 0;
    SBand band = HalfMaximumBand(x, y);
    double radiance = ResponseRadiance(x, y, celsius);
    if (!std::isfinite(radiance)) return Fail("no finite in-band radiance at %g C", celsius);
    if (GivenOptions().json) {
        CJsonWriter json(stdout);
        BeginJson(json, name, "response", x, celsius);
        json.Number("radiance", radiance);
        json.Number("bandLow", band.low);
        json.Number("bandHigh", band.high);
        json.EndObject();
        return 0;
    }
    std::printf("%s: spectral response, %u points, %g to %g um\n", name, x.GetSize(), x[0], Last(x));
    std::printf("band (half maximum): %g to %g um\n", band.low, band.high);
    std::printf("in-band radiance at %g C: %.6e W/(sr-cm^2)\n", celsius, radiance);
    return 0;
}

int ShowAtmosphere(char const *name, TArray<double> &x, TArray<double> &transmission, TArray<double> &path,
                   double celsius) {
    qv::EResponseStatus status = qv::CheckAtmosphereCurves(x, transmission, path);
    if (status != qv::RS_OK) return Fail("%s", AtmosphereStatusMessage(InputName(name), status).c_str());
    if (GivenOptions().csv) return PrintCsv("wavelength_um,transmission,path_radiance", x, transmission, &path), 0;
    TArray<double> through;
    qv::Planck(x, through, celsius, 1.0);
    for (uint32_t i = 0; i < x.GetSize(); ++i)
        through[i] = through[i] * transmission[i];
    double source = qv::IntegrateRectTR(x, through), air = qv::IntegrateRectTR(x, path);
    if (!std::isfinite(source + air)) return Fail("no finite in-band radiance at %g C", celsius);
    if (GivenOptions().json) {
        CJsonWriter json(stdout);
        BeginJson(json, name, "atmosphere", x, celsius);
        json.Number("radiance", source + air);
        json.Number("sourceRadiance", source);
        json.Number("pathRadiance", air);
        json.EndObject();
        return 0;
    }
    std::printf("%s: atmosphere table, %u points, %g to %g um\n", name, x.GetSize(), x[0], Last(x));
    std::printf("in-band radiance at %g C: %.6e W/(sr-cm^2) (source through the path %.6e, path %.6e)\n", celsius,
                source + air, source, air);
    return 0;
}

// A finite temperature from absolute zero up to kMaxCelsius.
bool ParseCelsius(char const *text, double &celsius) {
    char const *end = nullptr;
    celsius = qv::c_strtod(text, &end);
    return end != text && *end == '\0' && std::isfinite(celsius) && celsius >= kMinCelsius && celsius <= kMaxCelsius;
}

bool InMemory(std::string const &text, qv::CMemFile &file) {
    return file.Write(text.data(), uint32_t(text.size())) == text.size() && file.Seek(0, 1) == 0;
}

} // namespace

int RunBand(char *const *args) {
    char const *name = args[0];
    double celsius = 0;
    if (!ParseCelsius(args[1], celsius)) {
        std::fprintf(stderr, "usage: qv band FILE CELSIUS (CELSIUS is a number from -273.15 to 1000000, such as 25 "
                             "or -10.5)\n");
        return kExitUsage;
    }
    std::string text, error;
    if (!ReadTextInput(name, text, error)) return Fail("%s", error.c_str());
    bool modtran = HasModtranHeading(text);
    if (!(modtran ? CheckModtranText(InputName(name), text, error) : CheckResponseText(InputName(name), text, error)))
        return Fail("%s", error.c_str());
    qv::CMemFile file;
    if (!InMemory(text, file)) return Fail("cannot hold %s in memory", InputName(name).c_str());
    TArray<double> x, y, pathRadiance;
    if (modtran) {
        qv::ReadModtranFile(x, y, pathRadiance, &file);
        return ShowAtmosphere(name, x, y, pathRadiance, celsius);
    }
    qv::ReadXYFile(x, y, &file);
    return ShowResponse(name, x, y, celsius);
}

} // namespace qvtool
