/// @file
/// The one conversion from floating point to integers, defined for every input.
///
/// Existing files and callers were made by an x86 runtime, so its results are
/// the contract: truncate toward zero to 64 bits, where NaN and values outside
/// [-2^63, 2^63) give INT64_MIN, then wrap to the target width (-1.0 to a
/// 16-bit unsigned target is 65535, 70000.0 is 4464, NaN to 32 bits is 0).
///
/// Written without anything C++ leaves undefined, so the compiler's constant
/// folding gives the same result as run time. Pure and thread-safe.
#pragma once

#include <cstdint>
#include <type_traits>

namespace qv {

/// x truncated toward zero; INT64_MIN for NaN and values outside [-2^63, 2^63).
constexpr int64_t TruncateToInt64(double x) {
    // NaN fails both compares; inside the range the cast truncates exactly.
    if (x >= -0x1p63 && x < 0x1p63) return static_cast<int64_t>(x);
    return INT64_MIN;
}

/// Integer conversions are modular since C++20, which is the wrap the rule needs.
template <class To> constexpr To FloatToInt(double x) {
    static_assert(std::is_integral_v<To>, "FloatToInt converts to integers");
    return static_cast<To>(static_cast<uint64_t>(TruncateToInt64(x)));
}

} // namespace qv
