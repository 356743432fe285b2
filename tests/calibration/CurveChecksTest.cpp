// The checks on curves read from files, and points added in one go.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "CalTestSupport.h"
#include "qv/calibration/CurveChecks.h"
#include "qv/calibration/RCalFile.h"

namespace {

using namespace qv;
using V = std::vector<double>;

TArray<double> Array(V const &values) {
    TArray<double> a;
    for (double v : values)
        a.Add(v);
    return a;
}

V Values(TArray<double> const &a) {
    V v;
    for (uint32_t i = 0; i < a.GetSize(); ++i)
        v.push_back(a.GetAt(i));
    return v;
}

TEST(CurveChecks, AResponseNeedsARisingOrFallingAxisAndAPeak) {
    TArray<double> x = Array({3, 4, 5}), y = Array({0, 1, 0.5});
    EXPECT_EQ(CheckResponseCurve(x, y), RS_OK);
    EXPECT_EQ(Values(x), (V{3, 4, 5}));

    x = Array({5, 4, 3}), y = Array({0.5, 1, 0});
    EXPECT_EQ(CheckResponseCurve(x, y), RS_OK); // turned around, values with it
    EXPECT_EQ(Values(x), (V{3, 4, 5}));
    EXPECT_EQ(Values(y), (V{0, 1, 0.5}));

    struct Case {
        V x, y;
        EResponseStatus status;
    } const cases[] = {
        {{}, {}, RS_TooFewPoints},
        {{4}, {1}, RS_TooFewPoints},
        {{3, 5, 4}, {1, 1, 1}, RS_ReadError}, // jumbled
        {{3, 3, 4}, {1, 1, 1}, RS_ReadError}, // a repeated wavelength
        {{0, 3, 4}, {0, 1, 1}, RS_ReadError}, // 0 microns: a header row read as numbers
        {{-4, -3}, {1, 1}, RS_ReadError},
        {{3, NAN}, {1, 1}, RS_ReadError},
        {{3, INFINITY}, {1, 1}, RS_ReadError},
        {{3, 4}, {0, 0}, RS_ReadError}, // no peak to scale to
        {{3, 4}, {-1, 1}, RS_ReadError},
        {{3, 4}, {1, NAN}, RS_ReadError},
        {{3, 4}, {1, INFINITY}, RS_ReadError},
    };
    for (Case const &c : cases) {
        x = Array(c.x), y = Array(c.y);
        EXPECT_EQ(CheckResponseCurve(x, y), c.status) << c.x.size();
        // A refused table stays as it was.
        ASSERT_EQ(x.GetSize(), c.x.size());
        if (!c.x.empty()) {
            EXPECT_EQ(x.GetAt(0), c.x[0]);
        }
    }
    x = Array({3, 4, 5}), y = Array({1, 1});
    EXPECT_EQ(CheckResponseCurve(x, y), RS_ReadError); // lengths differ
}

TEST(CurveChecks, FiltersMayBlockEverything) {
    TArray<double> x = Array({5, 4}), y = Array({0, 0});
    EXPECT_EQ(CheckFilterCurve(x, y), RS_OK);
    EXPECT_EQ(Values(x), (V{4, 5}));
    y = Array({0, -0.1});
    EXPECT_EQ(CheckFilterCurve(x, y), RS_ReadError);
}

TEST(CurveChecks, AnAtmosphereHasTransmissionsOfAtMostOne) {
    TArray<double> x = Array({5, 4}), t = Array({0.2, 1}), p = Array({1e-6, 0});
    EXPECT_EQ(CheckAtmosphereCurves(x, t, p), RS_OK);
    EXPECT_EQ(Values(x), (V{4, 5}));
    EXPECT_EQ(Values(t), (V{1, 0.2}));
    EXPECT_EQ(Values(p), (V{0, 1e-6}));
    t = Array({0.2, 1.01});
    EXPECT_EQ(CheckAtmosphereCurves(x, t, p), RS_ReadError);
    t = Array({0.2, 1}), p = Array({0, -1e-9});
    EXPECT_EQ(CheckAtmosphereCurves(x, t, p), RS_ReadError);
    p = Array({0, NAN});
    EXPECT_EQ(CheckAtmosphereCurves(x, t, p), RS_ReadError);
}

TEST(CurveChecks, AFilterFileIsCheckedOnLoad) {
    caltest::ScratchDir dir;
    CRCalFile cal;
    cal.SetSpectralResponseTophat(3, 5, 0.01);
    EXPECT_EQ(cal.AdditionalResponses.Add(dir.Write("jumbled.txt", "3 1\n5 1\n4 1\n"), true), RS_ReadError);
    EXPECT_EQ(cal.AdditionalResponses.getCount(), 0);
    EXPECT_EQ(cal.AdditionalResponses.Add(dir.Write("falling.txt", "5 0.5\n3 0.5\n"), true), RS_OK);
    double filtered = cal.CalcRadiance(30, 1);
    cal.AdditionalResponses[0].setEnabled(false);
    EXPECT_NEAR(filtered, 0.5 * cal.CalcRadiance(30, 1), 1e-15);
}

struct SReorderCounter {
    int calls = 0;
    void OnReordered(void *, int) { ++calls; }
};

// AddAll gives the page Add gives point by point, with one sort and one fit.
TEST(CalPoints, AddAllMatchesAddOneByOne) {
    caltest::SyntheticCamera camera;
    CRCalFile one, all;
    for (CRCalFile *cal : {&one, &all})
        cal->SetSpectralResponseTophat(3, 5, 0.01);
    int pageOne = one.Pages.Add(), pageAll = all.Pages.Add();
    TArray<CRCalFile::CAL_POINT> points;
    for (double t : {50.0, 10.0, 30.0, 10.0}) {
        double counts = camera.Counts(one.CalcRadiance(t, 0.9)) + t;
        one.Pages[pageOne].Points.Add(t, 0.9, counts, true);
        CRCalFile::CAL_POINT p;
        p.Temperature = t;
        p.Emissivity = 0.9;
        p.Measurement = counts;
        p.Enabled = true;
        p.Radiance = 12345; // computed, not taken
        points.Add(p);
    }
    SReorderCounter counter;
    all.PointsReordered.AddHandlerEx(&counter, &SReorderCounter::OnReordered);
    EXPECT_TRUE(all.Pages[pageAll].Points.AddAll(points));
    EXPECT_EQ(counter.calls, 1);
    ASSERT_EQ(all.Pages[pageAll].Points.getCount(), 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(all.Pages[pageAll].Points[i].getTemperature(), one.Pages[pageOne].Points[i].getTemperature()) << i;
        EXPECT_EQ(all.Pages[pageAll].Points[i].getMeasurement(), one.Pages[pageOne].Points[i].getMeasurement()) << i;
        EXPECT_EQ(all.Pages[pageAll].Points[i].getRadiance(), one.Pages[pageOne].Points[i].getRadiance()) << i;
    }
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(all.Pages[pageAll].Coefficients[i], one.Pages[pageOne].Coefficients[i]) << i;
    // As with Add, the range stays until asked for.
    EXPECT_EQ(all.Pages[pageAll].Range.getMaxTemperature(), 0);
    EXPECT_FALSE(all.Pages[5].Points.AddAll(points));
    EXPECT_TRUE(all.Pages[pageAll].Points.AddAll(TArray<CRCalFile::CAL_POINT>()));
    EXPECT_EQ(all.Pages[pageAll].Points.getCount(), 4);
}

} // namespace
