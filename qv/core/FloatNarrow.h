/// @file
/// NarrowToFloat: double to float as IEEE arithmetic rounds it (to nearest,
/// beyond the float range to an infinity, NaN stays NaN), without the
/// conversion C++ leaves undefined for values outside the float range.
/// FloatFromDouble<F> is the same for either floating type (double: as it
/// stands). Pure and thread-safe.
#pragma once

#include <limits>
#include <type_traits>

namespace qv {

/// v rounded to the nearest float; beyond the float range an infinity, NaN stays NaN.
constexpr float NarrowToFloat(double v) {
    // Halfway between the largest float and 2^128: from here on, rounding to
    // nearest (ties to even) gives an infinity.
    constexpr double kOverflow = 0x1.ffffffp127;
    constexpr float kInf = std::numeric_limits<float>::infinity();
    if (v >= kOverflow) return kInf;
    if (v <= -kOverflow) return -kInf;
    return static_cast<float>(v);
}

/// NarrowToFloat for F = float; v as it stands for F = double.
template <class F> constexpr F FloatFromDouble(double v) {
    static_assert(std::is_same_v<F, float> || std::is_same_v<F, double>, "float or double");
    if constexpr (std::is_same_v<F, float>)
        return NarrowToFloat(v);
    else
        return v;
}

} // namespace qv
