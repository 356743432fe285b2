// Least-squares fits: designed failures, the two-parameter forms, R^2 and
// the polynomial inversions.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "Golden.h"
#include "qv/numerics/Curve.h"
#include "qv/numerics/Fits.h"

using namespace qv;
using golden::ToArray;
using golden::ToVector;
using V = std::vector<double>;

TEST(Fits, LinearFitFailuresLeaveDesignedCoefficients) {
    TArray<double> x = ToArray({0, 1, 2, 3}), y = ToArray({1, 3, 5, 7}), c = ToArray({9.0});
    EXPECT_FALSE(LinearLeastSquareFit(x, y, 0, c)); // order below 1: c untouched
    EXPECT_EQ(ToVector(c), V{9.0});
    TArray<double> shortY = ToArray({1, 3});
    EXPECT_FALSE(LinearLeastSquareFit(x, shortY, 1, c)); // unequal counts: c untouched
    EXPECT_EQ(ToVector(c), V{9.0});
    EXPECT_EQ(shortY.GetSize(), 2u);

    TArray<double> same = ToArray({2, 2, 2}), any = ToArray({1, 2, 3});
    EXPECT_FALSE(LinearLeastSquareFit(same, any, 1, c)); // singular: order + 1 zeros
    EXPECT_EQ(ToVector(c), (V{0.0, 0.0}));
    TArray<double> empty;
    EXPECT_FALSE(LinearLeastSquareFit(empty, empty, 2, c));
    EXPECT_EQ(ToVector(c), (V{0.0, 0.0, 0.0}));
    TArray<double> nan = ToArray({NAN, NAN}), ny = ToArray({1, 2});
    EXPECT_FALSE(LinearLeastSquareFit(nan, ny, 1, c));
    EXPECT_EQ(ToVector(c), (V{0.0, 0.0}));

    ASSERT_TRUE(LinearLeastSquareFit(x, y, 1, c));
    EXPECT_NEAR(c[0], 1.0, 1e-12);
    EXPECT_NEAR(c[1], 2.0, 1e-12);
    TArray<double> q = ToArray({-1, 0, 1, 2}), qy = ToArray({4, 1, 0, 1});
    ASSERT_TRUE(LinearLeastSquareFit(q, qy, 2, c)); // (x - 1)^2 exactly
    EXPECT_NEAR(c[0], 1.0, 1e-12);
    EXPECT_NEAR(c[1], -2.0, 1e-12);
    EXPECT_NEAR(c[2], 1.0, 1e-12);
}

TEST(Fits, TwoParameterForms) {
    TArray<double> x = ToArray({1, 2, 3, 4, 5}), y;
    double a = 0, b = 0;
    ExpCurve(x, y, 2.0, -0.3);
    ASSERT_TRUE(ExpLeastSquareFit(x, y, a, b));
    EXPECT_NEAR(a, 2.0, 1e-12);
    EXPECT_NEAR(b, -0.3, 1e-12);
    LogCurve(x, y, 1.5, 0.25);
    ASSERT_TRUE(LogLeastSquareFit(x, y, a, b));
    EXPECT_NEAR(a, 1.5, 1e-12);
    EXPECT_NEAR(b, 0.25, 1e-12);
    PowCurve(x, y, 0.5, 1.7);
    ASSERT_TRUE(PowLeastSquareFit(x, y, a, b));
    EXPECT_NEAR(a, 0.5, 1e-12);
    EXPECT_NEAR(b, 1.7, 1e-12);

    TArray<double> shortY = ToArray({1.0});
    a = b = 42;
    EXPECT_FALSE(ExpLeastSquareFit(x, shortY, a, b));
    EXPECT_FALSE(LogLeastSquareFit(x, shortY, a, b));
    EXPECT_FALSE(PowLeastSquareFit(x, shortY, a, b));
    TArray<double> one = ToArray({1.0}), oneY = ToArray({2.0});
    EXPECT_FALSE(PowLeastSquareFit(one, oneY, a, b)); // ln 1 = 0: exactly singular
    EXPECT_EQ(a, 42);
    EXPECT_EQ(b, 42);
}

// An infinite sample can get through every pivot and leave NaN in the
// solution: that is no fit, and the exponential and power fits meet it for
// any y of 0 (ln 0 is -inf).
TEST(Fits, NoNumberInTheSolutionIsAFailure) {
    TArray<double> x = ToArray({0, 1, 2, 3}), y = ToArray({1, -INFINITY, 5, 7}), c = ToArray({9.0});
    EXPECT_FALSE(LinearLeastSquareFit(x, y, 1, c));
    ASSERT_EQ(c.GetSize(), 2u);
    EXPECT_FALSE(std::isfinite(c[0]) && std::isfinite(c[1])) << "the solution, no number, stays";
    TArray<double> far = ToArray({0, 1, INFINITY}), farY = ToArray({1, 2, 3});
    EXPECT_FALSE(LinearLeastSquareFit(far, farY, 1, c));

    TArray<double> ex = ToArray({0, 1, 2}), zero = ToArray({1, 0, 2});
    double a = 42, b = 42;
    EXPECT_FALSE(ExpLeastSquareFit(ex, zero, a, b));
    TArray<double> px = ToArray({1, 2, 3});
    EXPECT_FALSE(PowLeastSquareFit(px, zero, a, b));
    EXPECT_EQ(a, 42);
    EXPECT_EQ(b, 42);
}

TEST(Fits, CalcR2) {
    TArray<double> x = ToArray({0, 1, 2, 3}), y = ToArray({1, 3, 5, 7}), line = ToArray({1, 2}),
                   constant = ToArray({5});
    EXPECT_EQ(CalcR2(x, y, line), 1.0);
    EXPECT_EQ(CalcR2(x, y, constant), -1.0);
    TArray<double> noisy = ToArray({1, 3.5, 4.5, 7});
    double r2 = CalcR2(x, noisy, line);
    EXPECT_GT(r2, 0.9);
    EXPECT_LT(r2, 1.0);
    EXPECT_EQ(CalcR2(noisy, y), CalcR2(y, noisy));
    EXPECT_EQ(CalcR2(y, noisy), r2);
    TArray<double> flat = ToArray({2, 2, 2, 2});
    EXPECT_TRUE(std::isnan(CalcR2(x, flat, line))); // no guard against a zero denominator
    // A short y grows with zeros to the count of x.
    TArray<double> shortY = ToArray({1, 3});
    CalcR2(x, shortY, line);
    EXPECT_EQ(ToVector(shortY), (V{1, 3, 0, 0}));
}

TEST(Fits, PolynomialInversions) {
    // counts -> radiance, linear: inverting gives radiance -> counts exactly.
    TArray<double> c = ToArray({1e-4, 2e-7});
    ASSERT_TRUE(CalcRadToCountsFromCountsToRad(c));
    ASSERT_EQ(c.GetSize(), 2u);
    EXPECT_NEAR(c[0], -500.0, 500.0 * 1e-9);
    EXPECT_NEAR(c[1], 5e6, 5e6 * 1e-9);

    // Quadratic: the inverse is only a fit, but close over the detector range.
    TArray<double> q = ToArray({1e-4, 2e-7, 3e-12}), inverse = q;
    ASSERT_TRUE(CalcRadToCountsFromCountsToRad(inverse));
    EXPECT_NEAR(PolyValue(PolyValue(8000.0, q), inverse), 8000.0, 20.0);

    TArray<double> bad = ToArray({5.0});
    EXPECT_FALSE(CalcRadToCountsFromCountsToRad(bad));
    EXPECT_EQ(ToVector(bad), V{5.0});

    // a: counts -> radiance, b: radiance -> temperature; b becomes
    // temperature -> radiance.
    TArray<double> a = ToArray({0.0, 1e-6}), b = ToArray({10.0, 2000.0});
    ASSERT_TRUE(CalcTempToRadFromRadToTemp(a, b));
    EXPECT_NEAR(b[0], -10.0 / 2000.0, 1e-12);
    EXPECT_NEAR(b[1], 1.0 / 2000.0, 1e-12);
    TArray<double> flat = ToArray({1.0});
    b = ToArray({0.0, 2000.0});
    EXPECT_FALSE(CalcTempToRadFromRadToTemp(flat, b)); // every radiance 0: singular
    EXPECT_EQ(ToVector(b), (V{0.0, 0.0}));
}
