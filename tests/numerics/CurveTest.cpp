// Point functions, curve generators, axes, unit changes, integrals and
// resampling: the designed results, edge cases and TArray growth.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "Golden.h"
#include "qv/core/CpuPath.h"
#include "qv/numerics/Curve.h"
#include "qv/numerics/Planck.h"

using namespace qv;
using golden::ToArray;
using golden::ToVector;
using V = std::vector<double>;

TEST(Curve, PointFunctions) {
    EXPECT_EQ(ExpValue(2.0, 3.0, 0.5), 3.0 * std::exp(1.0));
    EXPECT_DOUBLE_EQ(LogValue(std::exp(2.0), 3.0, 1.0), 7.0);
    EXPECT_EQ(PowValue(4.0, 3.0, 0.5), 6.0);
    EXPECT_EQ(ToMicrons(1000.0), 10.0);
    EXPECT_EQ(ToWavenumbers(10.0), 1000.0);

    TArray<double> one = ToArray({7.0}), none, line = ToArray({1.0, 2.0}), cubic = ToArray({1.0, 0.0, -2.0, 0.5});
    EXPECT_EQ(PolyValue(3.0, one), 0.0); // one coefficient is no polynomial
    EXPECT_EQ(PolyValue(3.0, none), 0.0);
    EXPECT_EQ(PolyValue(3.0, line), 7.0);
    EXPECT_EQ(PolyValue(2.0, cubic), 1.0 - 8.0 + 4.0);
    EXPECT_EQ(one.GetSize(), 1u);
}

TEST(Curve, GeneratorsClearTheOutputFirst) {
    TArray<double> x = ToArray({1.0, 2.0, 4.0}), y = ToArray({9, 9, 9, 9, 9}), c = ToArray({1.0, 1.0});
    PolyCurve(x, y, c);
    EXPECT_EQ(ToVector(y), (V{2.0, 3.0, 5.0}));
    ExpCurve(x, y, 2.0, 0.0);
    EXPECT_EQ(ToVector(y), (V{2.0, 2.0, 2.0}));
    LogCurve(x, y, 1.0, 1.0);
    EXPECT_EQ(ToVector(y), (V{1.0, 1.0 + std::log(2.0), 1.0 + std::log(4.0)}));
    PowCurve(x, y, 1.0, 2.0);
    EXPECT_EQ(ToVector(y), (V{1.0, 4.0, 16.0}));
    Tophat(x, y);
    EXPECT_EQ(ToVector(y), (V{1.0, 1.0, 1.0}));
    TArray<double> empty;
    Planck(empty, y, 25.0, 1.0);
    EXPECT_EQ(y.GetSize(), 0u);
    // An output that is its own axis is cleared before it is read.
    PolyCurve(x, x, c);
    EXPECT_EQ(x.GetSize(), 0u);
}

TEST(Curve, PlanckAtKnownPoints) {
    TArray<double> x = ToArray({10.0}), y;
    Planck(x, y, 26.85, 1.0); // 300 K
    EXPECT_NEAR(y[0], 9.92403333007e-4, 1e-3 * 9.92e-4);
    Planck(x, y, 26.85, 0.5);
    EXPECT_NEAR(y[0], 0.5 * 9.92403333007e-4, 1e-3 * 4.97e-4);
}

// No radiance at a wavelength of zero or below (a top hat may start there),
// on every path, whatever the vector lanes around it hold.
TEST(Curve, PlanckIsZeroAtAndBelowZeroWavelength) {
    TArray<double> x;
    XAxis(x, -1.0, 4.0, uint32_t(37));
    x[5] = 0.0;
    x[6] = -0.0;
    for (int path = cpu::BestCpuPath(); path >= 0; --path) {
        cpu::LimitCpuPath(cpu::ECpuPath(path));
        TArray<double> y;
        Planck(x, y, 25.0, 1.0);
        for (uint32_t i = 0; i < x.GetSize(); ++i) {
            double const l = x[i], l2 = l * l, l5 = l2 * l2 * l;
            double const formula = 1.0 * (11910.06 / l5) * 1 / (std::exp(14388.3 / (l * 298.15)) - 1);
            if (l <= 0)
                EXPECT_EQ(y[i], 0.0) << "path " << path << " l " << l;
            else
                EXPECT_NEAR(y[i], formula, 1e-13 * formula) << "path " << path << " l " << l;
        }
    }
    cpu::LimitCpuPath(cpu::BestCpuPath());
}

// Planck gives the same bits on every path, within 1e-13 of the formula with
// the C library's exp (and its very bits nearly everywhere: stored
// calibrations were made with them) over wavelengths and temperatures far
// beyond any calibration's, where the exponential overflows, vanishes or is
// NaN included; the integral adds in index order on every path. The axis
// lengths leave each path's loop different remainders (none, a vector and
// some wavelengths, some wavelengths alone).
TEST(Curve, PlanckOnEveryCpuPathIsTheScalarFormula) {
    TArray<double> axes[3];
    XAxis(axes[0], 0.05, 120.0, uint32_t(4999));
    XAxis(axes[1], 0.05, 120.0, uint32_t(1013));
    XAxis(axes[2], 3.0, 5.0, uint32_t(1000));
    double const temperatures[] = {-300.0, -273.15, -273.0, -270.0, -200.0, -40.0, 0.0,    25.0,
                                   37.5,   100.0,   451.0,  1000.0, 3000.0, 1e4,   1e6,    std::nan("")};
    std::vector<std::vector<double>> byPath;
    for (int path = cpu::BestCpuPath(); path >= 0; --path) {
        cpu::LimitCpuPath(cpu::ECpuPath(path));
        std::vector<double> all;
        size_t same = 0, compared = 0;
        for (TArray<double> &x : axes)
            for (double t : temperatures) {
                TArray<double> y;
                Planck(x, y, t, 0.9);
                ASSERT_EQ(y.GetSize(), x.GetSize());
                double const kelvin = t + 273.15;
                for (uint32_t i = 0; i < x.GetSize(); ++i) {
                    double const l = x[i], l2 = l * l, l5 = l2 * l2 * l;
                    double const exponent = 14388.3 / (l * kelvin);
                    double const want = 0.9 * (11910.06 / l5) * 1 / (std::exp(exponent) - 1);
                    // e^x - 1 loses 1/x of its digits for small x, so the
                    // two exponentials' last bits differ there by that much.
                    double const tolerance = 1e-13 * std::max(1.0, 1.0 / exponent);
                    ++compared;
                    same += std::memcmp(&y[i], &want, sizeof want) == 0;
                    if (std::isfinite(want) && want != 0)
                        ASSERT_LE(std::fabs(y[i] - want), tolerance * std::fabs(want))
                            << "path " << path << " t " << t << " l " << l;
                    else
                        ASSERT_EQ(std::memcmp(&y[i], &want, sizeof want), 0)
                            << "path " << path << " t " << t << " l " << l;
                    all.push_back(y[i]);
                }
                all.push_back(IntegrateRectTR(x, y));
            }
        EXPECT_GE(double(same), 0.99 * double(compared)) << "path " << path;
        byPath.push_back(all);
    }
    cpu::LimitCpuPath(cpu::BestCpuPath());
    for (size_t p = 1; p < byPath.size(); ++p)
        ASSERT_EQ(std::memcmp(byPath[p].data(), byPath[0].data(), byPath[0].size() * sizeof(double)), 0) << p;
}

TEST(Curve, WholeArrayOperations) {
    TArray<double> a = ToArray({1.0, 2.0, 3.0}), b = ToArray({4.0, 5.0}), copy;
    CopyAxis(copy, a);
    EXPECT_EQ(ToVector(copy), (V{1.0, 2.0, 3.0}));
    Reverse(a);
    EXPECT_EQ(ToVector(a), (V{3.0, 2.0, 1.0}));
    Reverse(a, b);
    EXPECT_EQ(ToVector(a), (V{1.0, 2.0, 3.0}));
    EXPECT_EQ(ToVector(b), (V{5.0, 4.0}));

    TArray<double> s = ToArray({1.0, 4.0, 2.0});
    ScaleToOne(s);
    EXPECT_EQ(ToVector(s), (V{0.25, 1.0, 0.5}));
    TArray<double> near = ToArray({0.5, 1.000000001});
    ScaleToOne(near);
    EXPECT_EQ(ToVector(near), (V{0.5, 1.000000001}));
    TArray<double> negative = ToArray({-2.0, -4.0});
    ScaleToOne(negative); // divided through all the same
    EXPECT_EQ(ToVector(negative), (V{1.0, 2.0}));
    ScaleTo(s, 8.0);
    EXPECT_EQ(ToVector(s), (V{2.0, 8.0, 4.0}));
    ScaleTo(s, 8.000000001);
    EXPECT_EQ(ToVector(s), (V{2.0, 8.0, 4.0}));
    TArray<double> empty;
    ScaleToOne(empty);
    ScaleTo(empty, 2.0);
    EXPECT_EQ(empty.GetSize(), 0u);
}

TEST(Curve, XAxisCountAndStepForms) {
    TArray<double> x;
    XAxis(x, 5.0, 3.0, 0.5);
    ASSERT_EQ(x.GetSize(), 10u);
    EXPECT_EQ(x[0], 3.0);
    EXPECT_EQ(x[9], 5.0);
    XAxis(x, 3.0, 5.0, uint32_t(1));
    EXPECT_EQ(ToVector(x), (V{3.0, 5.0}));
    XAxis(x, 0.0, 1.0, uint32_t(5));
    EXPECT_EQ(ToVector(x), (V{0.0, 0.25, 0.5, 0.75, 1.0}));
    XAxis(x, 3.0, 5.0, 0.001);
    EXPECT_EQ(x.GetSize(), 2000u);
    // A step that gives no usable count still gives the ten-point minimum.
    for (double step : {0.0, -0.1, std::numeric_limits<double>::quiet_NaN(), 1e300}) {
        XAxis(x, 1.0, 2.0, step);
        EXPECT_EQ(x.GetSize(), 10u) << step;
    }
    XAxis(x, 2.0, 2.0, 0.0); // 0 / 0
    EXPECT_EQ(ToVector(x), V(10, 2.0));
    // The last step is shorter or longer: 1.0 to 2.05 by 0.1 spreads 11 points.
    XAxis(x, 1.0, 2.05, 0.1);
    EXPECT_EQ(x.GetSize(), 11u);
    EXPECT_EQ(x[10], 2.05);
}

TEST(Curve, UnitChanges) {
    TArray<double> x = ToArray({500.0, 1000.0});
    EXPECT_TRUE(ToMicrons(x));
    EXPECT_EQ(ToVector(x), (V{10.0, 20.0}));
    TArray<double> empty;
    EXPECT_FALSE(ToMicrons(empty));
    TArray<double> zero = ToArray({1000.0, 0.0, 2000.0});
    EXPECT_FALSE(ToMicrons(zero));
    EXPECT_EQ(ToVector(zero), (V{10.0, 0.0, 2000.0})); // earlier values already changed

    // 1e-6 per cm^-1 at 1000 and 2000 cm^-1 is 1e-4 and 4e-4 per micron.
    TArray<double> nu = ToArray({1000.0, 2000.0}), radiance = ToArray({1e-6, 1e-6});
    EXPECT_TRUE(ToMicrons(nu, radiance));
    EXPECT_EQ(ToVector(nu), (V{5.0, 10.0}));
    EXPECT_EQ(ToVector(radiance), (V{1e-6 * (2000.0 * 2000.0 / 10000.0), 1e-6 * (1000.0 * 1000.0 / 10000.0)}));
    EXPECT_TRUE(ToWavenumbers(nu, radiance));
    EXPECT_EQ(ToVector(nu), (V{1000.0, 2000.0}));
    EXPECT_NEAR(radiance[0], 1e-6, 1e-20);

    TArray<double> shortY = ToArray({1.0});
    EXPECT_FALSE(ToMicrons(nu, shortY));
    EXPECT_FALSE(ToWavenumbers(empty, empty));
    TArray<double> zx = ToArray({1000.0, 0.0}), zy = ToArray({2.0, 3.0});
    EXPECT_FALSE(ToWavenumbers(zx, zy));
    EXPECT_EQ(ToVector(zx), (V{10.0, 0.0}));
    EXPECT_EQ(ToVector(zy), (V{200.0, 0.0}));
}

TEST(Curve, IntegralRules) {
    TArray<double> x = ToArray({0.0, 1.0, 3.0}), y = ToArray({2.0, 4.0, 0.0});
    EXPECT_EQ(IntegrateRectTL(x, y), 1.0 * 2.0 + 2.0 * 4.0);
    EXPECT_EQ(IntegrateRectTR(x, y), 1.0 * 4.0 + 2.0 * 0.0);
    EXPECT_EQ(IntegrateRectMid(x, y), 3.0 + 4.0);
    EXPECT_EQ(IntegrateTrap(x, y), IntegrateRectMid(x, y));
    TArray<double> one = ToArray({1.0}), value = ToArray({5.0}), none;
    EXPECT_EQ(IntegrateRectTR(one, value), 0.0);
    EXPECT_EQ(IntegrateTrap(none, none), 0.0);

    // A short y grows with zeros to the axis, as indexing it always did.
    TArray<double> shortY = ToArray({2.0});
    EXPECT_EQ(IntegrateRectTL(x, shortY), 2.0);
    EXPECT_EQ(ToVector(shortY), (V{2.0, 0.0, 0.0}));
    // A longer y is read only as far as the axis goes.
    TArray<double> longY = ToArray({2.0, 4.0, 0.0, 100.0});
    EXPECT_EQ(IntegrateRectTL(x, longY), 10.0);
    EXPECT_EQ(longY.GetSize(), 4u);
}

TEST(Curve, InterpolateEdges) {
    TArray<double> x1 = ToArray({1.0, 2.0, 4.0}), y1 = ToArray({10.0, 20.0, 0.0});
    TArray<double> x2 = ToArray({0.5, 1.0 - 1e-9, 1.5, 2.0 - 5e-9, 3.0, 4.0, 4.5}), y2 = ToArray({7.0});
    Interpolate(x1, y1, x2, y2, -1.0);
    EXPECT_EQ(ToVector(y2), (V{-1.0, 10.0, 15.0, 20.0, 10.0, 0.0, -1.0}));

    TArray<double> empty;
    Interpolate(x1, y1, empty, y2, -1.0);
    EXPECT_EQ(y2.GetSize(), 0u);
    TArray<double> at = ToArray({1.5});
    Interpolate(empty, empty, at, y2, 3.0);
    EXPECT_EQ(ToVector(y2), (V{3.0}));

    // y1 shorter than x1 grows with zeros only as far as it is read.
    TArray<double> shortY = ToArray({10.0}), mid = ToArray({1.5});
    Interpolate(x1, shortY, mid, y2, -1.0);
    EXPECT_EQ(ToVector(y2), (V{5.0}));
    EXPECT_EQ(ToVector(shortY), (V{10.0, 0.0}));
    // The same array as input curve and output is safe (the output is
    // cleared first, so the curve reads as zeros).
    TArray<double> same = ToArray({1.0, 2.0, 3.0}), axis = ToArray({1.0, 2.0, 3.0});
    Interpolate(axis, same, axis, same, -1.0);
    EXPECT_EQ(ToVector(same), (V{0.0, 0.0, 0.0}));
}
