// The calibration against an independent model of the same computation
// (tests/calibration/data/make_calibration_goldens.py): radiances, the final
// axis and band pass, both fits with their R^2, the lookup, a counts-to-
// temperature table and a synthetic camera's temperatures recovered.
#include <cmath>
#include <map>
#include <string>

#include "CalTestSupport.h"
#include "numerics/Golden.h"
#include "qv/numerics/Curve.h"

using namespace qv;

namespace {

std::string Data(char const *name) {
    return std::string(QV_TEST_DATA_DIR) + "/" + name;
}

std::string Response(char const *name) {
    return std::string(QV_TEST_DATA_DIR) + "/../tests/numerics/data/response/" + name;
}

// The six configurations of the script, in its order.
void Configure(CRCalFile &cal, int k) {
    std::string mwir = Data("NelisW__pyradi__pyradi__data__MWIRsensor.txt");
    CString tape7(Data("NelisW__pyradi__pyradi__data__tape7-02.table").c_str());
    switch (k) {
    case 0:
        cal.SetSpectralResponseTophat(3.0, 5.0, 0.001);
        break;
    case 1:
        cal.SetSpectralResponseTophat(8.0, 12.0, 0.01);
        break;
    case 2:
    case 3:
        ASSERT_TRUE(cal.SetSpectralResponseFile(CString(mwir.c_str())));
        break;
    case 4:
        ASSERT_TRUE(
            cal.SetSpectralResponseFile(CString(Response("NelisW__pyradi__pyradi__data__LWIRsensor.txt").c_str())));
        ASSERT_EQ(
            cal.AdditionalResponses.Add(CString(Response("NelisW__pyradi__pyradi__data__LWND10.txt").c_str()), true),
            RS_OK);
        break;
    case 5:
        cal.SetSpectralResponseTophat(4.7, 4.9, 0.001);
        break;
    }
    if (k == 3 || k == 5) {
        cal.Modtran.setFile(tape7);
        cal.Modtran.Transmission.setEnabled(true);
        if (k == 3) cal.Modtran.PathRadiance.setEnabled(true);
        ASSERT_EQ(cal.Modtran.getStatus(), RS_OK);
    }
}

void ExpectRelative(double actual, double expected, double tolerance, char const *what, int k) {
    double scale = std::fmax(std::fabs(expected), 1e-300);
    EXPECT_LE(std::fabs(actual - expected) / scale, tolerance)
        << what << " of case " << k << ": " << actual << " vs " << expected;
}

using Records = std::map<int, std::vector<golden::Record>>;

Records ByCase(std::vector<golden::Record> const &all, char const *tag) {
    Records out;
    for (golden::Record const &r : all)
        if (r.tag == tag) out[int(r.numbers.at(0))].push_back(r);
    return out;
}

TEST(GoldenCalibration, AgreesWithTheIndependentModel) {
    std::vector<golden::Record> all = golden::Read("../../calibration/data/golden_calibration.txt");
    ASSERT_FALSE(all.empty());
    Records axes = ByCase(all, "axis"), radiances = ByCase(all, "radiance"), points = ByCase(all, "point"),
            coeffs = ByCase(all, "coeffs"), r2 = ByCase(all, "r2"), temp = ByCase(all, "tempcoeffs"),
            tempR2 = ByCase(all, "tempr2"), lookups = ByCase(all, "lookup"), tables = ByCase(all, "table"),
            truths = ByCase(all, "truth"), fitErrors = ByCase(all, "fiterror");
    ASSERT_EQ(axes.size(), 6u);
    for (int k = 0; k < 6; ++k) {
        CRCalFile cal;
        Configure(cal, k);
        if (HasFatalFailure()) return;

        std::vector<double> const &axis = axes[k].at(0).numbers;
        ASSERT_EQ(cal.SpectralResponse.Curve.getCount(), int(axis[1])) << k;
        EXPECT_EQ(cal.SpectralResponse.Curve.X[0], axis[2]);
        EXPECT_EQ(cal.SpectralResponse.Curve.X[int(axis[1]) - 1], axis[3]);
        EXPECT_EQ(cal.SpectralResponse.getBandpassLow(), axis[4]);
        EXPECT_EQ(cal.SpectralResponse.getBandpassHigh(), axis[5]);

        // Radiance: the order of every operation is fixed.
        for (golden::Record const &r : radiances[k]) {
            double t = r.numbers[1], e = r.numbers[2];
            ExpectRelative(cal.CalcRadiance(t, e), r.numbers[3], 1e-12, "radiance", k);
            ExpectRelative(cal.CalcSourceRadiance(t, e), r.numbers[4], 1e-12, "source radiance", k);
        }

        int page = cal.Pages.Add();
        CCalPage p = cal.Pages[page];
        std::vector<double> const &lookup = lookups[k].at(0).numbers;
        p.Lookup.setStart(lookup[2]);
        p.Lookup.setEnd(lookup[3]);
        p.Lookup.setDelta(lookup[6]);
        for (golden::Record const &r : points[k]) {
            int at = p.Points.Add(r.numbers[1], r.numbers[2], r.numbers[3], true);
            if (r.numbers[4] <= -1000) continue;
            p.Points[at].setReflectedTemperature(r.numbers[4]);
            p.Points[at].setReflectedEmissivity(r.numbers[5]);
            p.Points[at].setReflectedRadianceType(RRT_Temperature);
        }
        std::vector<double> const &fit = coeffs[k].at(0).numbers;
        std::vector<double> const &tempFit = temp[k].at(0).numbers;
        p.setPolyOrder(int(fit.size()) - 2);
        p.setTempPolyOrder(int(tempFit.size()) - 2);
        ASSERT_EQ(p.Lookup.getCount(), int(lookup[1])) << k;

        TArray<double> c, tc;
        ASSERT_TRUE(cal.GetCoefficients(page, c));
        ASSERT_TRUE(cal.GetTempCoefficients(page, tc));
        ASSERT_EQ(c.GetSize() + 1, fit.size());
        ASSERT_EQ(tc.GetSize() + 1, tempFit.size());
        for (uint32_t i = 0; i < c.GetSize(); ++i)
            ExpectRelative(c[i], fit[i + 1], 1e-12, "coefficient", k);
        for (uint32_t i = 0; i < tc.GetSize(); ++i)
            ExpectRelative(tc[i], tempFit[i + 1], 1e-12, "temperature coefficient", k);
        ExpectRelative(p.Coefficients.getR2(), r2[k].at(0).numbers[1], 1e-12, "R2", k);
        ExpectRelative(p.TempCoefficients.getR2(), tempR2[k].at(0).numbers[1], 1e-12, "temperature R2", k);
        ExpectRelative(p.Lookup.X[0], lookup[4], 1e-12, "first lookup radiance", k);
        ExpectRelative(p.Lookup.X[int(lookup[1]) - 1], lookup[5], 1e-12, "last lookup radiance", k);

        for (golden::Record const &r : tables[k]) {
            double radiance = PolyValue(r.numbers[1], c);
            ExpectRelative(radiance, r.numbers[2], 1e-12, "table radiance", k);
            EXPECT_NEAR(PolyValue(radiance, tc), r.numbers[3], 1e-9) << k;
        }
        // The synthetic camera's own temperatures come back within the fit
        // error of the temperature polynomial.
        double fitError = fitErrors[k].at(0).numbers[1];
        for (golden::Record const &r : truths[k]) {
            double recovered = PolyValue(PolyValue(r.numbers[2], c), tc);
            EXPECT_NEAR(recovered, r.numbers[3], 1e-9) << k;
            EXPECT_LE(std::fabs(recovered - r.numbers[1]), fitError + 0.05) << "case " << k << " at " << r.numbers[1];
        }
    }
}

} // namespace
