// qv cal [--csv] [--save FILE.cal] [--inc FILE.inc] POINTS RESPONSE ATMOSPHERE
// COUNTS: builds a calibration from measured points, converts counts to
// temperatures through the two polynomials and writes them as CSV to
// standard output:
//   page,counts,radiance,celsius,in_range,truth,error
// then, per page, both polynomials with their R^2, the calibrated range and
// the lookup span to standard error (--csv leaves this out).
// in_range is yes or no: whether the counts lie in the page's calibrated
// range (counts outside it are converted all the same).
//
// RESPONSE is an XY file or "tophat:START:END:STEP" (microns). ATMOSPHERE is
// a MODTRAN table (transmission and path radiance both used) or "none".
// POINTS and COUNTS are described in CalInput.h; any one input may be -.
// Nothing is converted or saved unless every page has a usable fit: a
// calibration that fits nothing would turn every count into the same wrong
// number. --save and --inc keep the calibration (see SaveCalibration).
#include <cmath>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <string>

#include "CalFiles.h"
#include "CalInput.h"
#include "Commands.h"
#include "CurveInput.h"
#include "Input.h"
#include "qv/core/String.h"
#include "qv/core/WideChar.h"
#include "qv/numerics/Curve.h"

namespace qvtool {

namespace {

constexpr double kMaxTophatPoints = 100000;

bool ParseTophat(char const *text, double &start, double &end, double &step) {
    char const *p = text + std::strlen("tophat:");
    char const *stop = nullptr;
    double *values[] = {&start, &end, &step};
    for (int i = 0; i < 3; ++i) {
        *values[i] = qv::c_strtod(p, &stop);
        if (stop == p || *stop != (i < 2 ? ':' : '\0') || !std::isfinite(*values[i])) return false;
        p = stop + 1;
    }
    return start > 0 && end > start && step > 0 && (end - start) / step <= kMaxTophatPoints;
}

int SetResponse(qv::CRCalFile &cal, char const *response) {
    if (std::strncmp(response, "tophat:", 7) == 0) {
        double start = 0, end = 0, step = 0;
        if (!ParseTophat(response, start, end, step))
            return Fail("bad top hat '%s': tophat:START:END:STEP in microns, 0 < START < END, a STEP above 0 "
                        "making at most 100000 points",
                        response);
        cal.SetSpectralResponseTophat(start, end, step);
        return 0;
    }
    std::string text, error, name = InputName(response);
    CLibraryPath path;
    if (!ReadTextInput(response, text, error) || !CheckResponseText(name, text, error) ||
        !path.Make(response, text, error))
        return Fail("%s", error.c_str());
    if (!cal.SetSpectralResponseFile(qv::CString(path.Path())))
        return Fail("%s", ResponseStatusMessage(name, cal.SpectralResponse.getStatus()).c_str());
    return 0;
}

int SetAtmosphere(qv::CRCalFile &cal, char const *table) {
    if (std::strcmp(table, "none") == 0) return 0;
    std::string text, error, name = InputName(table);
    CLibraryPath path;
    if (!ReadTextInput(table, text, error) || !CheckModtranText(name, text, error) || !path.Make(table, text, error))
        return Fail("%s", error.c_str());
    cal.Modtran.setFile(qv::CString(path.Path()));
    cal.Modtran.Transmission.setEnabled(true);
    cal.Modtran.PathRadiance.setEnabled(true);
    if (cal.Modtran.getStatus() != qv::RS_OK)
        return Fail("%s", AtmosphereStatusMessage(name, cal.Modtran.getStatus()).c_str());
    return 0;
}

// A fit that failed leaves zero coefficients (and an R^2 of NaN): the
// library's report of it.
bool UsableFit(qv::TArray<double> &c, double r2) {
    bool nonZero = false;
    for (uint32_t i = 0; i < c.GetSize(); ++i) {
        if (!std::isfinite(c[i])) return false;
        nonZero = nonZero || c[i] != 0;
    }
    return nonZero && std::isfinite(r2);
}

int CheckPage(qv::CRCalFile &cal, int page) {
    qv::CCalPage p = cal.Pages[page];
    qv::TArray<double> counts, temp;
    cal.GetCoefficients(page, counts);
    cal.GetTempCoefficients(page, temp);
    if (!UsableFit(counts, p.Coefficients.getR2()))
        return Fail("page %d: the counts-to-radiance fit failed (the points' radiances do not follow their counts)",
                    page);
    if (p.Lookup.getCount() == 0) return Fail("page %d: the lookup is empty", page);
    if (!UsableFit(temp, p.TempCoefficients.getR2()))
        return Fail("page %d: the radiance-to-temperature fit failed (the response gives no radiance that rises "
                    "with temperature over the lookup)",
                    page);
    return 0;
}

// --save writes the RCAL file; --inc the include file and, beside it, the
// RCAL file it names. Both replace a file whole or leave it as it was.
int SaveCalibration(qv::CRCalFile &cal) {
    SOptions const &options = GivenOptions();
    if (options.save && !cal.Save(nullptr, qv::CString(options.save), 0))
        return Fail("%s", WriteFailure(options.save).c_str());
    if (options.inc && !cal.Export(nullptr, qv::CString(options.inc), false))
        return Fail("cannot write the include file %s and its .cal file", options.inc);
    return 0;
}

} // namespace

namespace {

void PrintPolynomial(std::FILE *out, char const *name, qv::TArray<double> &c, double r2) {
    std::fprintf(out, "  %s (order %d, R2 %.10f):", name, int(c.GetSize()) - 1, r2);
    for (uint32_t i = 0; i < c.GetSize(); ++i)
        std::fprintf(out, " %.9e", c[i]);
    std::fprintf(out, "\n");
}

// The largest miss of the temperature polynomial over its own lookup: what
// a converted temperature can be off by inside the lookup span.
double TemperatureFitError(qv::CRCalFile &cal, int page, qv::TArray<double> &temp) {
    qv::CLookup lookup = cal.Pages[page].Lookup;
    double worst = 0;
    for (int i = 0; i < lookup.getCount(); ++i)
        worst = std::fmax(worst, std::fabs(qv::PolyValue(lookup.X[i], temp) - lookup.Y[i]));
    return worst;
}

void PrintPage(std::FILE *out, qv::CRCalFile &cal, int page) {
    qv::CCalPage p = cal.Pages[page];
    qv::TArray<double> counts, temp;
    cal.GetCoefficients(page, counts);
    cal.GetTempCoefficients(page, temp);
    std::fprintf(out, "page %d: %d points, %d enabled\n", page, p.Points.getCount(), p.Points.getNumEnabled());
    PrintPolynomial(out, "counts to radiance", counts, p.Coefficients.getR2());
    PrintPolynomial(out, "radiance to temperature", temp, p.TempCoefficients.getR2());
    std::fprintf(out, "  range: counts %.2f to %.2f, radiance %.6e to %.6e W/(sr-cm^2), temperature %g to %g C\n",
                 p.Range.getMinCounts(), p.Range.getMaxCounts(), p.Range.getMinRadiance(), p.Range.getMaxRadiance(),
                 p.Range.getMinTemperature(), p.Range.getMaxTemperature());
    int n = p.Lookup.getCount();
    if (n < 2) {
        // A saved file may hold a page whose lookup was never built.
        std::fprintf(out, "  lookup: %d entries\n", n);
        return;
    }
    std::fprintf(out, "  lookup: %d entries, %g to %g C (step %g wished, %.6g made), radiance %.6e to %.6e\n", n,
                 p.Lookup.Y[0], p.Lookup.Y[n - 1], p.Lookup.getDelta(), p.Lookup.Y[1] - p.Lookup.Y[0], p.Lookup.X[0],
                 p.Lookup.X[n - 1]);
    std::fprintf(out, "  temperature fit error over the lookup: at most %.3f C\n",
                 TemperatureFitError(cal, page, temp));
}

} // namespace

void PrintCalSummary(qv::CRCalFile &cal, std::FILE *out) {
    double lo = 0, hi = 0;
    cal.GetBandpass(lo, hi);
    std::fprintf(out, "response: %s (band %g to %g um, %d points on the final axis)\n",
                 cal.SpectralResponse.getType() == qv::SRT_File ? "file" : "top hat", lo, hi,
                 cal.SpectralResponse.Curve.getCount());
    std::fprintf(out, "atmosphere: %s\n",
                 cal.Modtran.getStatus() == qv::RS_OK ? "transmission and path radiance" : "none");
    for (int page = 0; page < cal.Pages.getCount(); ++page)
        PrintPage(out, cal, page);
}

int CheckCalPages(qv::CRCalFile &cal) {
    for (int page = 0; page < cal.Pages.getCount(); ++page)
        if (int failed = CheckPage(cal, page)) return failed;
    return 0;
}

namespace {

int PrintConversion(qv::CRCalFile &cal, int page, SCountsRow const &row) {
    qv::TArray<double> counts, temp;
    cal.GetCoefficients(page, counts);
    cal.GetTempCoefficients(page, temp);
    // The caller's two polynomial evaluations; the range is only reported.
    double radiance = qv::PolyValue(row.counts, counts);
    double celsius = qv::PolyValue(radiance, temp);
    if (!std::isfinite(celsius)) return Fail("counts %g give no finite temperature on page %d", row.counts, page);
    qv::CCalPage p = cal.Pages[page];
    bool inside = row.counts >= p.Range.getMinCounts() && row.counts <= p.Range.getMaxCounts();
    std::printf("%d,%.2f,%.6e,%.3f,%s", page, row.counts, radiance, celsius, inside ? "yes" : "no");
    if (std::isnan(row.truth))
        std::printf(",,\n");
    else
        std::printf(",%.3f,%+.3f\n", row.truth, celsius - row.truth);
    return 0;
}

} // namespace

int ConvertCounts(qv::CRCalFile &cal, CCountsSource &source) {
    std::printf("page,counts,radiance,celsius,in_range,truth,error\n");
    SCountsRow row{};
    std::string error;
    int rows = 0;
    for (; source.Next(row, error); ++rows) {
        if (row.page >= cal.Pages.getCount()) return Fail("counts for page %d, which does not exist", row.page);
        for (int page = 0; page < cal.Pages.getCount(); ++page)
            if (row.page < 0 || row.page == page)
                if (int failed = PrintConversion(cal, page, row)) return failed;
    }
    if (!error.empty()) return Fail("%s", error.c_str());
    if (rows == 0) return Fail("%s holds no counts", source.Name().c_str());
    return 0;
}

int BuildCalibration(char const *points, char const *response, char const *atmosphere, qv::CRCalFile &cal) {
    if (int failed = SetResponse(cal, response)) return failed;
    if (int failed = SetAtmosphere(cal, atmosphere)) return failed;
    std::string error;
    if (!LoadCalPoints(points, cal, error)) return Fail("%s", error.c_str());
    return CheckCalPages(cal);
}

// Whether --save, or a file of --inc (its path with .inc and with .cal),
// names one of the inputs; then the sentence has been printed.
bool SavesOverAnInput(char *const *args) {
    SOptions const &options = GivenOptions();
    std::initializer_list<char const *> const inputs = {args[0], args[1], args[2], args[3]};
    if (options.save && OutputIsAnInput(options.save, inputs)) return true;
    if (!options.inc) return false;
    std::string stem = options.inc;
    size_t dot = stem.rfind('.');
    if (dot != std::string::npos && stem.find('/', dot) == std::string::npos) stem.resize(dot);
    return OutputIsAnInput((stem + ".inc").c_str(), inputs) || OutputIsAnInput((stem + ".cal").c_str(), inputs);
}

int RunCal(char *const *args) {
    if (SavesOverAnInput(args)) return kExitFailed;
    int fromStandardInput = 0;
    for (int i = 0; i < 4; ++i)
        fromStandardInput += std::strcmp(args[i], "-") == 0;
    if (fromStandardInput > 1) return Fail("only one input can be standard input (-)");
    qv::CRCalFile cal;
    if (int failed = BuildCalibration(args[0], args[1], args[2], cal)) return failed;
    std::string error;
    CCountsSource counts;
    if (!counts.Open(args[3], error)) return Fail("%s", error.c_str());
    if (int failed = SaveCalibration(cal)) return failed;
    // The summary follows a conversion that worked, so that a failure is
    // one sentence on standard error.
    if (int failed = ConvertCounts(cal, counts)) return failed;
    if (!GivenOptions().csv) PrintCalSummary(cal, stderr);
    return 0;
}

} // namespace qvtool
