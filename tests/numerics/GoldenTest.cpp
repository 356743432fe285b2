// The curve functions against numpy and scipy (golden files written by
// data/make_golden.py) and, where the order of operations is fixed, against
// the straight ports bit for bit.
#include <gtest/gtest.h>

#include <cmath>

#include "Golden.h"
#include "StraightPort.h"
#include "qv/numerics/Curve.h"
#include "qv/numerics/Fits.h"
#include "qv/numerics/LMFit.h"
#include "qv/numerics/Planck.h"

using namespace qv;
using golden::Cursor;
using golden::ToArray;
using golden::ToVector;

namespace {

double Relative(double a, double b) {
    return std::fabs(a - b) / std::fabs(b);
}

} // namespace

TEST(CurveGolden, PlanckValues) {
    auto cases = golden::Read("golden_planck.txt");
    ASSERT_EQ(cases.size(), 132u);
    for (auto const &r : cases) {
        Cursor c(r);
        double l = c.Next(), celsius = c.Next(), e = c.Next(), expected = c.Next();
        TArray<double> x = ToArray({l}), y;
        Planck(x, y, celsius, e);
        ASSERT_EQ(y.GetSize(), 1u);
        EXPECT_LE(Relative(y[0], expected), 1e-15) << l << " um, " << celsius << " C";
        EXPECT_EQ(y[0], port::Planck({l}, celsius, e)[0]);
    }
}

TEST(CurveGolden, BandIntegralsOfPlanck) {
    auto cases = golden::Read("golden_bands.txt");
    ASSERT_EQ(cases.size(), 12u);
    for (auto const &r : cases) {
        Cursor c(r);
        double start = c.Next(), end = c.Next();
        uint32_t count = uint32_t(c.Count());
        double celsius = c.Next(), tl = c.Next(), tr = c.Next(), mid = c.Next(), exact = c.Next();
        TArray<double> x, y;
        XAxis(x, start, end, 0.001);
        ASSERT_EQ(x.GetSize(), count);
        EXPECT_EQ(ToVector(x), port::XAxis(start, end, count));
        Planck(x, y, celsius, 1.0);
        auto px = ToVector(x), py = ToVector(y);
        EXPECT_EQ(IntegrateRectTL(x, y), port::Integrate(px, py, port::Rule::TL));
        EXPECT_EQ(IntegrateRectTR(x, y), port::Integrate(px, py, port::Rule::TR));
        EXPECT_EQ(IntegrateRectMid(x, y), port::Integrate(px, py, port::Rule::Mid));
        EXPECT_EQ(IntegrateTrap(x, y), IntegrateRectMid(x, y));
        EXPECT_LE(Relative(IntegrateRectTL(x, y), tl), 1e-14);
        EXPECT_LE(Relative(IntegrateRectTR(x, y), tr), 1e-14);
        EXPECT_LE(Relative(IntegrateRectMid(x, y), mid), 1e-14);
        // Against the continuous integral: rectangles are first order in the
        // 0.001 um step, the trapezoid second order.
        EXPECT_LE(Relative(IntegrateRectTR(x, y), exact), 1e-3);
        EXPECT_LE(Relative(IntegrateRectMid(x, y), exact), 1e-6);
    }
}

// In-band radiances computed with the CODATA 2018 constants at 40 digits;
// the calibration's own constants differ from those by a few parts in 10^4.
TEST(CurveGolden, BandRadianceAgreesWithCodataValues) {
    struct Case {
        double start, end, kelvin, radiance;
    } const cases[] = {
        {3.0, 5.0, 273.15, 6.442664161e-05},  {3.0, 5.0, 373.15, 1.624803897e-03},
        {8.0, 12.0, 298.15, 3.734625970e-03}, {8.0, 12.0, 1000.0, 1.602829863e-01},
        {7.5, 13.5, 373.15, 1.437692282e-02}, {3.5, 5.0, 500.0, 1.440191720e-02},
    };
    for (auto const &c : cases) {
        TArray<double> x, y;
        XAxis(x, c.start, c.end, 0.0005);
        Planck(x, y, c.kelvin - 273.15, 1.0);
        EXPECT_LE(Relative(IntegrateTrap(x, y), c.radiance), 1e-3) << c.start << "-" << c.end << " at " << c.kelvin;
    }
}

TEST(CurveGolden, PolynomialFitsAndR2) {
    auto cases = golden::Read("golden_polyfit.txt");
    ASSERT_EQ(cases.size(), 5u);
    for (auto const &r : cases) {
        Cursor c(r);
        int order = int(c.Next());
        size_t n = c.Count();
        auto xs = c.Take(n), ys = c.Take(n), expected = c.Take(order + 1);
        double r2 = c.Next();
        TArray<double> x = ToArray(xs), y = ToArray(ys), coefficients;
        ASSERT_TRUE(LinearLeastSquareFit(x, y, order, coefficients));
        auto fitted = ToVector(coefficients);
        EXPECT_EQ(fitted, port::LinearLeastSquareFit(xs, ys, order));
        // The normal equations lose digits that numpy's SVD keeps; compare the
        // fitted curves, which are well conditioned, against the data's span.
        double span = 0;
        for (double v : ys)
            span = std::max(span, std::fabs(v));
        TArray<double> reference = ToArray(expected);
        for (size_t i = 0; i < n; ++i)
            EXPECT_NEAR(PolyValue(xs[i], coefficients), PolyValue(xs[i], reference), 1e-9 * span) << "order " << order;
        EXPECT_LE(Relative(CalcR2(x, y, coefficients), r2), 1e-9);
        EXPECT_EQ(CalcR2(x, y, coefficients), port::CalcR2(xs, ys, fitted));
    }
}

TEST(CurveGolden, Interpolation) {
    auto cases = golden::Read("golden_interp.txt");
    ASSERT_EQ(cases.size(), 3u);
    for (auto const &r : cases) {
        Cursor c(r);
        double outside = c.Next();
        size_t n1 = c.Count();
        auto x1 = c.Take(n1), y1 = c.Take(n1);
        size_t n2 = c.Count();
        auto x2 = c.Take(n2), expected = c.Take(n2);
        TArray<double> ax1 = ToArray(x1), ay1 = ToArray(y1), ax2 = ToArray(x2), ay2;
        Interpolate(ax1, ay1, ax2, ay2, outside);
        auto got = ToVector(ay2);
        EXPECT_EQ(got, port::Interpolate(x1, y1, x2, outside));
        ASSERT_EQ(got.size(), n2);
        for (size_t j = 0; j < n2; ++j)
            EXPECT_NEAR(got[j], expected[j], 1e-15) << "at " << x2[j];
    }
}

namespace {

double Decay(double x, double *p, int) {
    return p[0] * std::exp(-p[1] * x) + p[2];
}
double Gauss(double x, double *p, int) {
    return p[0] * std::exp(-0.5 * ((x - p[1]) / p[2]) * ((x - p[1]) / p[2]));
}
double Plane(double x1, double x2, double *p, int) {
    return p[0] * std::exp(p[1] * x1) + p[2] * x2;
}

} // namespace

TEST(CurveGolden, LevenbergMarquardtAgreesWithMinpackInScipy) {
    auto cases = golden::Read("golden_lmfit.txt");
    ASSERT_EQ(cases.size(), 5u);
    for (auto const &r : cases) {
        Cursor c(r);
        int model = int(c.Next()), maxCalls = int(c.Next());
        size_t np = c.Count();
        TArray<double> p = ToArray(c.Take(np));
        TArray<bool> mask;
        for (double m : c.Take(np))
            mask.Add(m != 0);
        size_t n = c.Count();
        TArray<double> x1 = ToArray(c.Take(n)), x2 = model == 3 ? ToArray(c.Take(n)) : TArray<double>();
        TArray<double> y = ToArray(c.Take(n));
        int ier = int(c.Next());
        auto expected = c.Take(np);
        int info = model == 3 ? lmfit2Info(x1, x2, y, p, mask, Plane, maxCalls)
                              : lmfitInfo(x1, y, p, mask, model == 1 ? Decay : Gauss, maxCalls);
        EXPECT_EQ(info, ier) << "model " << model;
        for (size_t i = 0; i < np; ++i)
            EXPECT_LE(Relative(p[uint32_t(i)], expected[i]), 1e-9) << "model " << model << " p" << i;
    }
}
