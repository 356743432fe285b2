/// @file
/// CMath: the library's numeric helpers that are class members rather than
/// free functions.
///
/// Two engineers share this class. This header belongs to the typed-buffer
/// side (ConvertTemperature, ETempType); the curve and fit helpers are added
/// in their own section below by whoever owns them, with their sources in
/// their own .cpp files. Keep each section to its owner.
///
/// All members are static; CMath holds no state, so every member is safe from
/// any thread as far as its arguments are. Nothing here throws.
#pragma once

#include "qv/core/Export.h"
#include "qv/numerics/TypedData.h"

namespace qv {

/// Temperature scales; the values are stored in files.
enum ETempType : int32_t {
    TT_Celsius = 0,
    TT_Fahrenheit = 1,
    TT_Kelvin = 2,
    TT_Rankine = 3,
};

/// @copydoc Math.h
class QV_API CMath {
public:
    // ---- Typed buffers (MathTemperature.cpp) ----

    /// dst[i] = src[i] moved from scale `from` to scale `to`, in double
    /// arithmetic, then converted to dst's element type as ConvertArray does.
    /// from == to: a plain ConvertArray, or nothing when both buffers are the
    /// same pointer. A scale outside 0..3 or an element type without
    /// arithmetic (7, DT_Packed, DT_Unknown) does nothing. Fahrenheit and
    /// Rankine are divided by 1.8 (not multiplied by 5/9): stored results
    /// depend on the last bit. Same-pointer, same-width calls work in place.
    static void ConvertTemperature(STypedData dst, STypedData src, uint32_t n, ETempType from, ETempType to);

    // ---- Curves and fits (MathFunctions.cpp) ----

    static double Sine(double radians);   ///< sin
    static double Cosine(double radians); ///< cos
    static double AbsoluteValue(double x); ///< |x|
    static double RoundUp(double x);   ///< ceiling
    static double RoundDown(double x); ///< floor
    /// Half away from zero: x + 0.5 (x >= 0) or x - 0.5 (x < 0), truncated to
    /// 64 bits and back (NaN gives -2^63, as every float-to-integer conversion
    /// does). |x| >= 1e18 comes back unchanged. Round(-2.5) is -3.
    static double Round(double x);
    /// By the factor 57.2958: stored angles were converted with this short
    /// constant, not with 180/pi.
    ///@{
    static double RadiansToDegrees(double radians);
    static double DegreesToRadians(double degrees);
    ///@}
    static double CelsiusToFahrenheit(double c); ///< c * 1.8 + 32.0
    static double FahrenheitToCelsius(double f); ///< (f - 32.0) * 0.5555555555555556
    static double CelsiusToKelvin(double c);     ///< c + 273.15
    static double KelvinToCelsius(double k);     ///< k - 273.15
    static double KelvinToFahrenheit(double k);  ///< k * 1.8 - 459.67
    static double FahrenheitToKelvin(double f);  ///< (f - 32.0) * 0.5555555555555556 + 273.15
};

} // namespace qv
