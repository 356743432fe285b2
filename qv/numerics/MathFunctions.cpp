// CMath's point functions: trigonometry, rounding, angle and temperature
// units. The constants are the stored ones; see Math.h.
#include <cmath>

#include "qv/numerics/ElementCast.h"
#include "qv/numerics/Math.h"

namespace qv {

double CMath::Sine(double radians) {
    return std::sin(radians);
}
double CMath::Cosine(double radians) {
    return std::cos(radians);
}
double CMath::AbsoluteValue(double x) {
    return std::fabs(x);
}
double CMath::RoundUp(double x) {
    return std::ceil(x);
}
double CMath::RoundDown(double x) {
    return std::floor(x);
}

double CMath::Round(double x) {
    if (x >= 1e18 || x <= -1e18) return x;
    double away = x < 0 ? x - 0.5 : x + 0.5;
    return static_cast<double>(numerics_detail::TruncateToInt64(away));
}

double CMath::RadiansToDegrees(double radians) {
    return radians * 57.2958;
}
double CMath::DegreesToRadians(double degrees) {
    return degrees / 57.2958;
}
double CMath::CelsiusToFahrenheit(double c) {
    return c * 1.8 + 32.0;
}
double CMath::FahrenheitToCelsius(double f) {
    return (f - 32.0) * 0.5555555555555556;
}
double CMath::CelsiusToKelvin(double c) {
    return c + 273.15;
}
double CMath::KelvinToCelsius(double k) {
    return k - 273.15;
}
double CMath::KelvinToFahrenheit(double k) {
    return k * 1.8 - 459.67;
}
double CMath::FahrenheitToKelvin(double f) {
    return (f - 32.0) * 0.5555555555555556 + 273.15;
}

} // namespace qv
