/// @file
/// ElementCast<To>(from): the one element conversion of the typed array
/// operations, defined for every input (internal header of qv/numerics).
///
/// Floating point to integer behaves as the x86 runtime that existing files
/// were written with: truncate toward zero to 64 bits, NaN and values outside
/// [-2^63, 2^63) give INT64_MIN, then wrap to the target width (-1.0 to
/// uint16 is 65535, 70000.0 is 4464). Integers wrap; integer to floating point
/// and double to float round as the hardware does.
///
/// The rule itself is stated once, in qv/core/FloatToInt.h, with branches.
/// The functions here give the same results (tests compare them bit for bit)
/// without branches, from operations every SSE2 machine has in vector form,
/// so that loops over whole frames vectorise: the hardware's own truncation
/// has no vector form for 64-bit results before AVX-512. They are constexpr,
/// so constant folding agrees with run time, and correct in every rounding
/// mode.
#pragma once

#include <bit>
#include <cstdint>
#include <type_traits>

#include "qv/core/FloatToInt.h"

namespace qv::numerics_detail {

/// The scalar statement of the rule, for code outside vector loops.
using qv::TruncateToInt64;

/// trunc(x) = high * 2^32 + middle * 2^16 + low, every part truncated toward
/// zero and so of x's sign, each step exact in double arithmetic. The parts
/// fit 32 bits, so the hardware's 32-bit truncation (which SSE2 has in vector
/// form) makes them. All three are 0 when x is NaN or outside (-2^63, 2^63):
/// x is masked to zero first, with integer arithmetic on its bits.
struct STruncatedParts {
    /// The three parts, high first.
    ///@{
    int32_t high, middle, low;
    ///@}
    uint64_t valid; ///< all ones when x was in range
};

/// The parts of trunc(x), without branches.
constexpr STruncatedParts SplitTruncated(double x) {
    constexpr uint64_t twoTo63Bits = std::bit_cast<uint64_t>(0x1p63);
    uint64_t bits = std::bit_cast<uint64_t>(x);
    // |x| below 2^63 (NaN and infinities are above): the subtraction borrows.
    uint64_t valid = uint64_t(0) - (((bits & ~(uint64_t(1) << 63)) - twoTo63Bits) >> 63);
    double v = std::bit_cast<double>(bits & valid);
    int32_t high = static_cast<int32_t>(v * 0x1p-32);
    double rest = v - static_cast<double>(high) * 0x1p32;
    int32_t middle = static_cast<int32_t>(rest * 0x1p-16);
    int32_t low = static_cast<int32_t>(rest - static_cast<double>(middle) * 0x1p16);
    return {high, middle, low, valid};
}

/// TruncateToInt64 without branches: the parts summed, INT64_MIN when x was
/// out of range.
constexpr int64_t TruncateToInt64Branchless(double x) {
    STruncatedParts p = SplitTruncated(x);
    uint64_t sum = (uint64_t(int64_t(p.high)) << 32) + (uint64_t(int64_t(p.middle)) << 16) + uint64_t(int64_t(p.low));
    return static_cast<int64_t>(sum | (uint64_t(1) << 63 & ~p.valid));
}

/// The low 32 bits of TruncateToInt64Branchless(x), all that a target of 32
/// bits or less keeps; computed in 32-bit lanes, twice as many per vector.
constexpr uint32_t TruncateToLow32Branchless(double x) {
    STruncatedParts p = SplitTruncated(x);
    return (uint32_t(p.middle) << 16) + uint32_t(p.low);
}

template <class T> constexpr bool kIsFloat = std::is_floating_point_v<T>; ///< T is a floating-point type

/// v converted to To by the rule of the file comment.
template <class To, class From> constexpr To ElementCast(From v) {
    if constexpr (kIsFloat<From> && !kIsFloat<To> && sizeof(To) <= 4)
        return static_cast<To>(TruncateToLow32Branchless(static_cast<double>(v)));
    else if constexpr (kIsFloat<From> && !kIsFloat<To>)
        return static_cast<To>(TruncateToInt64Branchless(static_cast<double>(v)));
    else
        return static_cast<To>(v);
}

} // namespace qv::numerics_detail
