// Radiance, fits, ranges, lookups and coefficient access of a calibration.
#include <cmath>

#include "CalTestSupport.h"
#include "qv/numerics/Curve.h"
#include "qv/numerics/Planck.h"

using namespace qv;

namespace {

TEST(CalComputation, ReflectedTerms) {
    CRCalFile cal;
    cal.SetSpectralResponseTophat(3, 5, 0.001);
    double emitted = cal.CalcRadiance(50, 1.0);
    EXPECT_GT(emitted, 0);
    EXPECT_EQ(cal.CalcRadiance(50, 0.0), 0.0); // no atmosphere: nothing at emissivity 0
    EXPECT_EQ(cal.CalcRadianceEx(50, 1.0, 20.0, 1.0), emitted);
    EXPECT_EQ(cal.CalcRadianceEx(50, 1.0, 0.25), emitted + 0.25);
    double mixed = cal.CalcRadiance(50, 0.8) + cal.CalcRadiance(20, (1 - 0.8) * 0.9);
    EXPECT_EQ(cal.CalcRadianceEx(50, 0.8, 20.0, 0.9), mixed);
    EXPECT_EQ(cal.CalcRadianceEx(50, 0.8, RRT_Temperature, 20.0, 0.9, 7.0), mixed);
    EXPECT_EQ(cal.CalcRadianceEx(50, 0.8, RRT_Radiance, 20.0, 0.9, 7.0), cal.CalcRadiance(50, 0.8) + 7.0);
    EXPECT_EQ(cal.CalcRadianceEx(50, 0.8, EReflectedRadianceType(9), 20.0, 0.9, 7.0), cal.CalcRadiance(50, 0.8));
    EXPECT_EQ(cal.CalcSourceRadiance(50, 0.8), cal.CalcRadiance(50, 0.8));

    // A point's radiance is emitted plus reflected.
    CCalPage p = cal.Pages[cal.Pages.Add()];
    p.Points.Add(50, 0.8, 1000, true);
    p.Points[0].setReflectedTemperature(20);
    p.Points[0].setReflectedEmissivity(0.9);
    EXPECT_EQ(p.Points[0].getRadiance(), cal.CalcRadiance(50, 0.8));
    p.Points[0].setReflectedRadianceType(RRT_Temperature);
    EXPECT_EQ(p.Points[0].getRadiance(), mixed);
}

TEST(CalComputation, RadianceIsTheRightHandSumOfTheProduct) {
    CRCalFile cal;
    cal.SetSpectralResponseTophat(3, 5, 0.01);
    TArray<double> x, y, planck;
    cal.GetFinalSpectralResponse(x, y);
    ASSERT_EQ(x.GetSize(), 200u);
    Planck(x, planck, 37.5, 0.9);
    for (uint32_t i = 0; i < x.GetSize(); ++i)
        planck[i] = planck[i] * y[i];
    EXPECT_EQ(cal.CalcRadiance(37.5, 0.9), IntegrateRectTR(x, planck));
}

// A top hat that starts at or below zero adds nothing there: its radiance is
// that of the part above zero (up to the steps of each axis), never NaN or a
// huge meaningless number.
TEST(CalComputation, ATopHatBelowZeroWavelengthAddsNothingThere) {
    CRCalFile fromZero, fromBelow, fromAbove;
    fromZero.SetSpectralResponseTophat(0, 5, 0.01);
    fromBelow.SetSpectralResponseTophat(-1, 5, 0.01);
    fromAbove.SetSpectralResponseTophat(0.01, 5, 0.01);
    double const above = fromAbove.CalcRadiance(37.5, 0.9);
    ASSERT_GT(above, 0);
    EXPECT_NEAR(fromZero.CalcRadiance(37.5, 0.9), above, 1e-5 * above);
    EXPECT_NEAR(fromBelow.CalcRadiance(37.5, 0.9), above, 1e-5 * above);
}

TEST(CalComputation, OnePointKeepsTheOldRangeWithZeroCoefficients) {
    CRCalFile cal;
    cal.SetSpectralResponseTophat(3, 5, 0.01);
    CCalPage p = cal.Pages[cal.Pages.Add()];
    p.Points.Add(20, 1, 2000, true);
    p.Points.Add(40, 1, 4000, true);
    p.Range.setAuto(true);
    EXPECT_EQ(p.Range.getMaxCounts(), 4000);
    EXPECT_NE(p.Coefficients[1], 0);
    p.Points[1].setEnabled(false);
    EXPECT_EQ(p.Coefficients[0], 0);
    EXPECT_EQ(p.Coefficients[1], 0);
    EXPECT_EQ(p.Range.getMinCounts(), 2000);
    EXPECT_EQ(p.Range.getMaxCounts(), 4000); // the old values stay
    EXPECT_EQ(p.Coefficients[2], 0);
    EXPECT_EQ(p.Coefficients[-1], 0);
    TArray<double> reverse;
    EXPECT_FALSE(cal.GetReverseCoefficients(0, reverse)); // the fit fails the same way
    EXPECT_FALSE(cal.GetReverseCoefficients(3, reverse));
}

TEST(CalComputation, RangeFollowsEnabledPoints) {
    CRCalFile cal;
    cal.SetSpectralResponseTophat(3, 5, 0.01);
    caltest::SyntheticCamera camera;
    int page = caltest::AddCameraPage(cal, camera, {10, 20, 30, 40});
    CCalPage p = cal.Pages[page];
    p.Range.setAuto(true);
    EXPECT_EQ(p.Range.getMaxTemperature(), 40);
    double radiance = p.Points[3].getRadiance();
    p.Points[3].setEnabled(false);
    EXPECT_EQ(p.Range.getMaxTemperature(), 30);
    EXPECT_EQ(p.Range.getMaxRadiance(), p.Points[2].getRadiance());
    EXPECT_EQ(p.Points[3].getRadiance(), radiance);
    EXPECT_EQ(p.Range.getMinCounts(), p.Points[0].getMeasurement());
}

// The caller sizes both buffers by GetLookupSize, the count of the radiances;
// a longer temperature array (both are public, and a rebuild that cannot
// grow the radiances leaves them so) must not spill past it.
TEST(CalComputation, GetLookupWritesNoMoreThanGetLookupSize) {
    CRCalFile cal;
    cal.Pages.Add();
    CRCalFile::CAL_PAGE &page = cal.CalPages[0];
    page.LookupRadiance.Empty();
    page.LookupTemperature.Empty();
    page.LookupRadiance.Add(0.5);
    for (double t : {10.0, 20.0, 30.0})
        page.LookupTemperature.Add(t);
    ASSERT_EQ(cal.GetLookupSize(0), 1);
    double r[3] = {-1, -1, -1}, t[3] = {-1, -1, -1};
    EXPECT_TRUE(cal.GetLookup(0, r, t));
    EXPECT_EQ(r[0], 0.5);
    EXPECT_EQ(t[0], 10.0);
    EXPECT_EQ(r[1], -1);
    EXPECT_EQ(t[1], -1) << "past GetLookupSize";
    EXPECT_EQ(t[2], -1);
}

TEST(CalComputation, LookupStepIsOnlyAWish) {
    CRCalFile cal;
    cal.SetSpectralResponseTophat(3, 5, 0.01);
    int page = cal.Pages.Add();
    ASSERT_EQ(cal.GetLookupSize(page), 100);
    TArray<double> radiance, temperature;
    cal.Pages[page].Lookup.getY(temperature);
    EXPECT_EQ(temperature[0], 0.0);
    EXPECT_EQ(temperature[99], 100.0);
    EXPECT_NEAR(temperature[1] - temperature[0], 100.0 / 99, 1e-12);
    double r[100], t[100];
    EXPECT_TRUE(cal.GetLookup(page, r, t));
    EXPECT_EQ(r[50], cal.CalcRadiance(t[50], 1.0));
    EXPECT_FALSE(cal.GetLookup(page + 2, r, t));
    // The temperature polynomial is fitted through the lookup.
    TArray<double> c;
    ASSERT_TRUE(cal.GetTempCoefficients(page, c));
    ASSERT_EQ(c.GetSize(), 7u);
    // Unscaled normal equations of order 6 lose digits; the fit still holds
    // to a few hundredths of a degree.
    EXPECT_NEAR(PolyValue(r[50], c), t[50], 0.05);
    EXPECT_GT(cal.Pages[page].TempCoefficients.getR2(), 0.9998);
}

TEST(CalComputation, SyntheticCameraRecovered) {
    CRCalFile cal;
    cal.SetSpectralResponseTophat(7.5, 12, 0.01);
    caltest::SyntheticCamera camera;
    int page = caltest::AddCameraPage(cal, camera, {0, 20, 40, 60, 80, 100});
    TArray<double> counts, temp;
    ASSERT_TRUE(cal.GetCoefficients(page, counts));
    ASSERT_TRUE(cal.GetTempCoefficients(page, temp));
    EXPECT_NEAR(counts[1], 1 / camera.gain, 1e-12);
    EXPECT_GT(cal.Pages[page].Coefficients.getR2(), 0.999999);
    for (double truth : {5.0, 33.3, 71.0, 95.5}) {
        double raw = camera.Counts(cal.CalcRadiance(truth, 1.0));
        EXPECT_NEAR(PolyValue(PolyValue(raw, counts), temp), truth, 0.05) << truth;
    }
    // The reverse fit is a fit of its own: counts from radiance.
    TArray<double> reverse;
    ASSERT_TRUE(cal.GetReverseCoefficients(page, reverse));
    EXPECT_NEAR(reverse[1], camera.gain, 1e-6 * camera.gain);
    EXPECT_NEAR(reverse[0], camera.offset, 1e-6);
}

TEST(CalComputation, OverridesReplaceTheFit) {
    CRCalFile cal;
    cal.SetSpectralResponseTophat(3, 5, 0.01);
    caltest::SyntheticCamera camera;
    int page = caltest::AddCameraPage(cal, camera, {10, 30, 50});
    double fitted[2] = {};
    ASSERT_TRUE(cal.GetCalcCoefficients(page, fitted));
    EXPECT_TRUE(cal.EqualCoefficients(page, 1, fitted));
    fitted[1] += 2e-8;
    EXPECT_FALSE(cal.EqualCoefficients(page, 1, fitted));
    EXPECT_FALSE(cal.EqualCoefficients(page, 2, fitted));

    double used[2] = {-0.5, 0.001};
    EXPECT_TRUE(cal.SetUsedCoefficients(page, -1, used, true));
    int order = 0;
    TArray<double> values;
    bool overridden = false;
    EXPECT_TRUE(cal.GetPolyOrder(page, order));
    EXPECT_EQ(order, -1);
    EXPECT_TRUE(cal.GetCoefficients(page, values));
    ASSERT_EQ(values.GetSize(), 2u);
    EXPECT_EQ(values[0], -0.5);
    EXPECT_TRUE(cal.GetUsedCoefficients(page, order, values, overridden));
    EXPECT_TRUE(overridden);
    EXPECT_TRUE(cal.GetCalcPolyOrder(page, order));
    EXPECT_EQ(order, 1);
    EXPECT_TRUE(cal.SetUsedCoefficients(page, -1, used, false));
    EXPECT_TRUE(cal.GetCoefficients(page, values));
    EXPECT_NE(values[0], -0.5);

    double temp[3] = {1, 2, 3};
    EXPECT_TRUE(cal.SetUsedTempCoefficients(page, 2, temp, true));
    EXPECT_TRUE(cal.GetTempCoefficients(page, values));
    ASSERT_EQ(values.GetSize(), 3u);
    EXPECT_EQ(values[2], 3);
    EXPECT_FALSE(cal.SetUsedTempCoefficients(page + 2, 2, temp, true));

    double factor = 0;
    bool set = true;
    EXPECT_TRUE(cal.GetTPFact(page, factor, set));
    EXPECT_EQ(factor, 1.0);
    EXPECT_FALSE(set);
}

TEST(CalComputation, FinalPlanckCountsThePathTermTwice) {
    caltest::ScratchDir dir;
    // 2000..3333.33 cm^-1 is 3..5 um; transmission 0.8, path radiance 1e-6 per cm^-1.
    std::string table = "header\n FREQ TRANS RAD\n";
    for (int f = 2000; f <= 3340; f += 20)
        table += std::to_string(f) + " 0.8 1e-6\n";
    table += "-9999.\n";
    CString path = dir.Write("air.table", table);
    CRCalFile cal;
    cal.SetSpectralResponseTophat(3, 5, 0.01);
    cal.Modtran.setFile(path);
    EXPECT_EQ(cal.Modtran.getStatus(), RS_NotLoaded); // both curves off: nothing read
    cal.Modtran.Transmission.setEnabled(true);
    cal.Modtran.PathRadiance.setEnabled(true);
    ASSERT_EQ(cal.Modtran.getStatus(), RS_OK);
    EXPECT_TRUE(cal.Modtran.PathRadiance.getEnabled());

    TArray<double> x, y, trans, path_, resp, planck;
    cal.Modtran.Transmission.getY(trans);
    cal.Modtran.PathRadiance.getY(path_);
    cal.SpectralResponse.Curve.getY(resp);
    cal.GetFinalPlanck(x, y, 60, 0.9);
    Planck(x, planck, 60, 0.9);
    ASSERT_EQ(y.GetSize(), x.GetSize());
    for (uint32_t i = 0; i < x.GetSize(); i += 37) {
        double inside = resp[i] * trans[i];
        inside = path_[i] * resp[i] + inside;
        double expected = planck[i] * inside;
        expected = path_[i] * resp[i] + expected;
        EXPECT_EQ(y[i], expected) << i;
    }
    // The integrand of CalcRadiance has the path term once.
    TArray<double> s;
    Planck(x, s, 60, 0.9);
    for (uint32_t i = 0; i < x.GetSize(); ++i) {
        s[i] = s[i] * resp[i] * trans[i];
        s[i] = path_[i] * resp[i] + s[i];
    }
    EXPECT_EQ(cal.CalcRadiance(60, 0.9), IntegrateRectTR(x, s));
    EXPECT_GT(cal.CalcRadiance(60, 0.0), 0); // the in-band path radiance
    double source = cal.CalcSourceRadiance(60, 0.9);
    cal.Modtran.Transmission.setEnabled(false);
    cal.Modtran.PathRadiance.setEnabled(false);
    EXPECT_EQ(cal.CalcSourceRadiance(60, 0.9), source);
    EXPECT_EQ(cal.CalcRadiance(60, 0.9), source);
}

} // namespace

namespace {

TEST(CalComputation, HostileLookupSettings) {
    CRCalFile cal;
    cal.SetSpectralResponseTophat(3, 5, 0.01);
    int page = cal.Pages.Add();
    CCalPage p = cal.Pages[page];
    p.Lookup.setDelta(1e-9); // 1e11 entries asked for: refused
    EXPECT_EQ(cal.GetLookupSize(page), 0);
    EXPECT_EQ(p.TempCoefficients[0], 0);
    p.Lookup.setDelta(2);
    EXPECT_EQ(cal.GetLookupSize(page), 50);
    p.Lookup.setDelta(0); // no finite count: ten entries
    EXPECT_EQ(cal.GetLookupSize(page), 10);
    p.Lookup.setDelta(-5);
    EXPECT_EQ(cal.GetLookupSize(page), 10);
}

} // namespace
