// CMath's point functions: rounding, angles, temperature scales.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "qv/numerics/Math.h"

using qv::CMath;

TEST(CMathCurve, Rounding) {
    EXPECT_EQ(CMath::Round(-2.5), -3.0);
    EXPECT_EQ(CMath::Round(2.5), 3.0);
    EXPECT_EQ(CMath::Round(-2.4), -2.0);
    EXPECT_EQ(CMath::Round(1e19), 1e19);
    EXPECT_EQ(CMath::Round(-1e18), -1e18);
    EXPECT_EQ(CMath::Round(9.5e17), 9.5e17);
    EXPECT_EQ(CMath::Round(std::numeric_limits<double>::quiet_NaN()), -9223372036854775808.0);
    EXPECT_EQ(CMath::RoundUp(1.2), 2.0);
    EXPECT_EQ(CMath::RoundDown(-1.2), -2.0);
    EXPECT_EQ(CMath::AbsoluteValue(-3.5), 3.5);
    EXPECT_EQ(CMath::Sine(0.5), std::sin(0.5));
    EXPECT_EQ(CMath::Cosine(0.5), std::cos(0.5));
}

TEST(CMathCurve, StoredConstants) {
    EXPECT_EQ(CMath::RadiansToDegrees(1.0), 57.2958);
    EXPECT_EQ(CMath::DegreesToRadians(57.2958), 1.0);
    EXPECT_EQ(CMath::CelsiusToFahrenheit(100.0), 212.0);
    EXPECT_EQ(CMath::FahrenheitToCelsius(212.0), 180.0 * 0.5555555555555556);
    EXPECT_EQ(CMath::CelsiusToKelvin(0.0), 273.15);
    EXPECT_EQ(CMath::KelvinToCelsius(273.15), 0.0);
    EXPECT_EQ(CMath::KelvinToFahrenheit(0.0), -459.67);
    EXPECT_EQ(CMath::FahrenheitToKelvin(32.0), 273.15);
}
