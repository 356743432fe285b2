// ElementCast<To>(from): the one element conversion of the typed array
// operations, defined for every input (internal header of qv/numerics).
//
// Floating point to integer behaves as the x86 runtime that existing files
// were written with: truncate toward zero to 64 bits, NaN and values outside
// [-2^63, 2^63) give INT64_MIN, then wrap to the target width (-1.0 to
// uint16 is 65535, 70000.0 is 4464). Integers wrap; integer to floating point
// and double to float round as the hardware does.
//
// The rule itself is stated once, in qv/core/FloatToInt.h, with branches.
// TruncateToInt64Branchless gives the same results (tests compare them bit
// for bit) without branches, in 64-bit lanes, from operations every SSE2
// machine has in vector form, so that loops over whole frames vectorise: the
// hardware's own truncation has no vector form for 64-bit results before
// AVX-512. It is constexpr, so constant folding agrees with run time, and
// correct in every rounding mode.
#pragma once

#include <bit>
#include <cstdint>
#include <type_traits>

#include "qv/core/FloatToInt.h"

namespace qv::numerics_detail {

// The scalar statement of the rule, for code outside vector loops.
using qv::TruncateToInt64;

// floor(v) of 0 <= v < 2^31, through the hardware's 32-bit truncation, which
// SSE2 has in vector form.
constexpr uint64_t FloorOfSmall(double v) { return static_cast<uint32_t>(static_cast<int32_t>(v)); }

// x truncated toward zero, as the 64-bit lanes of a vector loop can do it
// on any x86-64: the magnitude is cut into parts below 2^31 (high * 2^32 +
// middle * 2^16 + low, each step exact), each part truncated in 32 bits.
// Every selection is a mask made from integer arithmetic on the bits, never
// a branch or a compare the vector unit lacks.
constexpr int64_t TruncateToInt64Branchless(double x) {
    constexpr uint64_t twoTo63Bits = std::bit_cast<uint64_t>(0x1p63);
    uint64_t magnitudeBits = std::bit_cast<uint64_t>(x) & ~(uint64_t(1) << 63);
    // Below 2^63 (NaN and infinities are above): the subtraction borrows.
    uint64_t valid = uint64_t(0) - ((magnitudeBits - twoTo63Bits) >> 63);
    double magnitude = std::bit_cast<double>(magnitudeBits & valid); // 0 when invalid
    uint64_t high = FloorOfSmall(magnitude * 0x1p-32);
    double rest = magnitude - static_cast<double>(static_cast<int32_t>(high)) * 0x1p32;
    uint64_t middle = FloorOfSmall(rest * 0x1p-16);
    uint64_t low = FloorOfSmall(rest - static_cast<double>(static_cast<int32_t>(middle)) * 0x1p16);
    uint64_t truncated = (high << 32) + (middle << 16) + low;
    uint64_t negative = uint64_t(0) - (std::bit_cast<uint64_t>(x) >> 63);
    uint64_t signedBits = (truncated ^ negative) - negative;
    uint64_t bits = (signedBits & valid) | (uint64_t(1) << 63 & ~valid);
    return static_cast<int64_t>(bits);
}

template <class T> constexpr bool kIsFloat = std::is_floating_point_v<T>;

template <class To, class From> constexpr To ElementCast(From v) {
    if constexpr (kIsFloat<From> && !kIsFloat<To>)
        return static_cast<To>(TruncateToInt64Branchless(static_cast<double>(v)));
    else
        return static_cast<To>(v);
}

} // namespace qv::numerics_detail
