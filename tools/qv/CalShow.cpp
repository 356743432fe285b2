// qv cal show [--json] FILE: prints a saved calibration, an RCAL file or an
// include file (then the RCAL file it names): the file's revision, the
// response and atmosphere it names and whether their curves are in use, the
// band pass, and per page both polynomials, the calibrated range and the
// lookup. Any page is shown, usable or not; nothing is converted.
#include <cstdio>
#include <string>

#include "CalFiles.h"
#include "Commands.h"
#include "Output.h"

namespace qvtool {

namespace {

void JsonArray(CJsonWriter &json, char const *key, qv::TArray<double> &values) {
    json.BeginArray(key);
    for (uint32_t i = 0; i < values.GetSize(); ++i)
        json.Number(nullptr, values[i]);
    json.EndArray();
}

void JsonPage(CJsonWriter &json, qv::CRCalFile &cal, int page) {
    qv::CCalPage p = cal.Pages[page];
    qv::TArray<double> values;
    int order = 0;
    json.BeginObject();
    json.Integer("points", p.Points.getCount());
    json.Integer("enabled", p.Points.getNumEnabled());
    cal.GetPolyOrder(page, order);
    cal.GetCoefficients(page, values);
    json.Integer("order", order);
    JsonArray(json, "coefficients", values);
    json.Number("r2", p.Coefficients.getR2());
    cal.GetTempPolyOrder(page, order);
    cal.GetTempCoefficients(page, values);
    json.Integer("temp_order", order);
    JsonArray(json, "temp_coefficients", values);
    json.Number("temp_r2", p.TempCoefficients.getR2());
    json.BeginObject("range");
    json.Number("min_counts", p.Range.getMinCounts());
    json.Number("max_counts", p.Range.getMaxCounts());
    json.Number("min_radiance", p.Range.getMinRadiance());
    json.Number("max_radiance", p.Range.getMaxRadiance());
    json.Number("min_celsius", p.Range.getMinTemperature());
    json.Number("max_celsius", p.Range.getMaxTemperature());
    json.EndObject();
    int n = p.Lookup.getCount();
    json.BeginObject("lookup");
    json.Integer("entries", n);
    json.Number("start_celsius", n > 0 ? p.Lookup.Y[0] : 0);
    json.Number("end_celsius", n > 0 ? p.Lookup.Y[n - 1] : 0);
    json.Number("delta", p.Lookup.getDelta());
    json.EndObject();
    json.EndObject();
}

void PrintJson(qv::CRCalFile &cal, SCalFile const &file) {
    CJsonWriter json(stdout);
    double lo = 0, hi = 0;
    cal.GetBandpass(lo, hi);
    json.BeginObject();
    json.String("file", file.calPath);
    json.Bool("include", file.include);
    json.Integer("revision", cal.FileRevision);
    json.String("response_file", cal.ResponseFile.GetUTF8());
    json.String("response", cal.UseTophat ? "tophat" : "file");
    json.String("atmosphere_file", cal.ModtranFile.GetUTF8());
    json.Bool("transmission", cal.TransmissionEnabled);
    json.Bool("path_radiance", cal.PathRadianceEnabled);
    json.Number("band_low", lo);
    json.Number("band_high", hi);
    json.BeginArray("pages");
    for (int page = 0; page < cal.Pages.getCount(); ++page)
        JsonPage(json, cal, page);
    json.EndArray();
    json.EndObject();
}

char const *Named(qv::CString const &name) {
    return name.IsEmpty() ? "(none)" : name.GetUTF8();
}

void PrintText(qv::CRCalFile &cal, SCalFile const &file) {
    std::printf("file: %s, RCAL revision %d%s\n", Escaped(file.calPath).c_str(), cal.FileRevision,
                file.include ? " (named by the include file)" : "");
    std::printf("response file named: %s\n", Escaped(Named(cal.ResponseFile)).c_str());
    std::printf("atmosphere file named: %s (transmission %s, path radiance %s)\n",
                Escaped(Named(cal.ModtranFile)).c_str(), cal.TransmissionEnabled ? "on" : "off",
                cal.PathRadianceEnabled ? "on" : "off");
    PrintCalSummary(cal, stdout);
}

} // namespace

int RunCalShow(char *const *args) {
    qv::CRCalFile cal;
    SCalFile file;
    std::string error;
    if (!LoadCalFile(args[0], cal, file, error)) return Fail("%s", error.c_str());
    if (GivenOptions().json)
        PrintJson(cal, file);
    else
        PrintText(cal, file);
    return 0;
}

} // namespace qvtool
