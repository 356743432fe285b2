// qv cal POINTS RESPONSE ATMOSPHERE COUNTS: builds a calibration from
// measured points and prints, per page, both polynomials with their R^2, the
// calibrated range and the lookup span; then converts counts to temperatures
// through the two polynomials.
//
// RESPONSE is an XY file or "tophat:START:END:STEP" (microns). ATMOSPHERE is
// a MODTRAN table (transmission and path radiance both used) or "none".
// POINTS and COUNTS are described in CalInput.h. Counts outside a page's
// calibrated range are converted all the same and marked.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "CalInput.h"
#include "Commands.h"
#include "qv/core/String.h"
#include "qv/core/WideChar.h"
#include "qv/numerics/Curve.h"

namespace qvtool {

namespace {

char const *StatusName(qv::EResponseStatus status) {
    switch (status) {
    case qv::RS_OK:
        return "RS_OK";
    case qv::RS_NotLoaded:
        return "RS_NotLoaded";
    case qv::RS_FileNotFound:
        return "RS_FileNotFound";
    case qv::RS_ReadError:
        return "RS_ReadError";
    case qv::RS_TooFewPoints:
        return "RS_TooFewPoints";
    }
    return "unknown status";
}

bool ParseTophat(char const *text, double &start, double &end, double &step) {
    char const *p = text + std::strlen("tophat:");
    char const *stop = nullptr;
    double *values[] = {&start, &end, &step};
    for (int i = 0; i < 3; ++i) {
        *values[i] = qv::c_strtod(p, &stop);
        if (stop == p || *stop != (i < 2 ? ':' : '\0')) return false;
        p = stop + 1;
    }
    return step > 0;
}

int SetResponse(qv::CRCalFile &cal, char const *response) {
    if (std::strncmp(response, "tophat:", 7) == 0) {
        double start = 0, end = 0, step = 0;
        if (!ParseTophat(response, start, end, step)) return Fail("bad top hat '%s' (tophat:START:END:STEP)", response);
        cal.SetSpectralResponseTophat(start, end, step);
        return 0;
    }
    if (!cal.SetSpectralResponseFile(qv::CString(response)))
        return Fail("response %s: %s", response, StatusName(cal.SpectralResponse.getStatus()));
    return 0;
}

int SetAtmosphere(qv::CRCalFile &cal, char const *table) {
    if (std::strcmp(table, "none") == 0) return 0;
    cal.Modtran.setFile(qv::CString(table));
    cal.Modtran.Transmission.setEnabled(true);
    cal.Modtran.PathRadiance.setEnabled(true);
    if (cal.Modtran.getStatus() != qv::RS_OK)
        return Fail("atmosphere %s: %s", table, StatusName(cal.Modtran.getStatus()));
    return 0;
}

void PrintPolynomial(char const *name, qv::TArray<double> &c, double r2) {
    std::printf("  %s (order %u, R2 %.10f):", name, c.GetSize() - 1, r2);
    for (uint32_t i = 0; i < c.GetSize(); ++i)
        std::printf(" %.9e", c[i]);
    std::printf("\n");
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

void PrintPage(qv::CRCalFile &cal, int page) {
    qv::CCalPage p = cal.Pages[page];
    qv::TArray<double> counts, temp;
    cal.GetCoefficients(page, counts);
    cal.GetTempCoefficients(page, temp);
    std::printf("page %d: %d points, %d enabled\n", page, p.Points.getCount(), p.Points.getNumEnabled());
    PrintPolynomial("counts to radiance", counts, p.Coefficients.getR2());
    PrintPolynomial("radiance to temperature", temp, p.TempCoefficients.getR2());
    std::printf("  range: counts %.2f to %.2f, radiance %.6e to %.6e W/(sr-cm^2), temperature %g to %g C\n",
                p.Range.getMinCounts(), p.Range.getMaxCounts(), p.Range.getMinRadiance(), p.Range.getMaxRadiance(),
                p.Range.getMinTemperature(), p.Range.getMaxTemperature());
    int n = p.Lookup.getCount();
    if (n == 0) {
        // The library refuses a lookup whose span and step would be huge.
        std::printf("  lookup: empty (its span and step give no usable table), so no temperatures\n");
        return;
    }
    std::printf("  lookup: %d entries, %g to %g C (step %g wished, %.6g made), radiance %.6e to %.6e\n", n,
                p.Lookup.Y[0], p.Lookup.Y[n - 1], p.Lookup.getDelta(), n > 1 ? p.Lookup.Y[1] - p.Lookup.Y[0] : 0.0,
                p.Lookup.X[0], p.Lookup.X[n - 1]);
    std::printf("  temperature fit error over the lookup: at most %.3f C\n", TemperatureFitError(cal, page, temp));
}

void PrintConversion(qv::CRCalFile &cal, int page, SCountsRow const &row) {
    qv::TArray<double> counts, temp;
    cal.GetCoefficients(page, counts);
    cal.GetTempCoefficients(page, temp);
    // The caller's two polynomial evaluations; the range is only reported.
    double radiance = qv::PolyValue(row.counts, counts);
    double celsius = qv::PolyValue(radiance, temp);
    qv::CCalPage p = cal.Pages[page];
    bool inside = row.counts >= p.Range.getMinCounts() && row.counts <= p.Range.getMaxCounts();
    std::printf("%d,%.2f,%.6e,%.3f,%s", page, row.counts, radiance, celsius, inside ? "yes" : "no");
    if (std::isnan(row.truth))
        std::printf(",,\n");
    else
        std::printf(",%.3f,%+.3f\n", row.truth, celsius - row.truth);
}

} // namespace

int RunCal(char *const *args) {
    qv::CRCalFile cal;
    if (int failed = SetResponse(cal, args[1])) return failed;
    if (int failed = SetAtmosphere(cal, args[2])) return failed;
    std::string error;
    if (!LoadCalPoints(args[0], cal, error)) return Fail("%s", error.c_str());
    std::vector<SCountsRow> rows;
    if (!LoadCounts(args[3], rows, error)) return Fail("%s", error.c_str());
    if (cal.Pages.getCount() == 0) return Fail("%s holds no points", args[0]);

    double lo = 0, hi = 0;
    cal.GetBandpass(lo, hi);
    std::printf("response: %s (band %g to %g um, %d points on the final axis)\n",
                cal.SpectralResponse.getType() == qv::SRT_File ? "file" : "top hat", lo, hi,
                cal.SpectralResponse.Curve.getCount());
    std::printf("atmosphere: %s\n", cal.Modtran.getStatus() == qv::RS_OK ? "transmission and path radiance" : "none");
    for (int page = 0; page < cal.Pages.getCount(); ++page)
        PrintPage(cal, page);
    std::printf("\npage,counts,radiance,celsius,in_range,truth,error\n");
    for (SCountsRow const &row : rows) {
        if (row.page >= cal.Pages.getCount()) return Fail("counts for page %d, which does not exist", row.page);
        for (int page = 0; page < cal.Pages.getCount(); ++page)
            if (row.page < 0 || row.page == page) PrintConversion(cal, page, row);
    }
    return 0;
}

} // namespace qvtool
