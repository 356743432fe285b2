/// @file
/// Element-wise operations on typed buffers, for whole camera frames.
///
/// Each call dispatches once on its element types to a loop compiled for
/// exactly those types. Element types without arithmetic (7, DT_Packed,
/// DT_Unknown, out of range) make a call do nothing. Buffers need no
/// alignment. Nothing here allocates, keeps state or reports failure; the
/// caller owns every buffer and gives n elements of each.
///
/// Arithmetic: a mixed pair is combined in the usual common type of the
/// language (int for the small integers, unsigned 32-bit for a 32-bit unsigned
/// beside a 32-bit-or-smaller integer, float beside any integer, ...); integer
/// results wrap instead of overflowing; the result is then converted to the
/// target's element type. Floating point to an integer truncates toward zero
/// to 64 bits, NaN and values outside [-2^63, 2^63) give INT64_MIN, then the
/// value wraps to the target width (1.9 to uint8 is 1, -1.0 to uint16 is
/// 65535, 70000.0 to uint16 is 4464): existing files depend on these results.
///
/// In place: the output may be the same pointer as an input of the same
/// element width. Other overlaps give unspecified values (never a fault).
///
/// Threads: no shared state; calls on distinct buffers may run concurrently.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/numerics/TypedData.h"

namespace qv {

/// dst[i] = src[i] in dst's type. Equal types copy the bytes (overlap allowed).
QV_API void ConvertArray(STypedData dst, STypedData src, uint32_t n);

/// a[i] = the smaller of a[i] and b[i], compared in the common type: a[i]
/// stays, unchanged, only when b[i] is greater (equal values, and NaN on
/// either side, give b[i] converted to a's type).
QV_API void TypedMin(STypedData a, STypedData b, uint32_t n);
/// a[i] = the greater: a[i] stays only when b[i] is smaller.
QV_API void TypedMax(STypedData a, STypedData b, uint32_t n);
/// a[i] = a[i] + b[i].
QV_API void TypedSum(STypedData a, STypedData b, uint32_t n);
/// d[i] = abs(b[i] - a[i]): the difference is taken in the common type of a
/// and b and its absolute value before the conversion to d's type. In an
/// unsigned common type the difference wraps and is its own absolute value.
QV_API void TypedSpan(STypedData d, STypedData a, STypedData b, uint32_t n);

/// a[i] = a[i] / divisor, in the common type of a's elements and the divisor.
/// An integer division by zero does nothing (the buffer is left as it was);
/// the most negative integer divided by -1 wraps to itself.
///@{
QV_API void TypedDiv(STypedData a, int8_t divisor, uint32_t n);
QV_API void TypedDiv(STypedData a, uint8_t divisor, uint32_t n);
QV_API void TypedDiv(STypedData a, int16_t divisor, uint32_t n);
QV_API void TypedDiv(STypedData a, uint16_t divisor, uint32_t n);
QV_API void TypedDiv(STypedData a, int32_t divisor, uint32_t n);
QV_API void TypedDiv(STypedData a, uint32_t divisor, uint32_t n);
QV_API void TypedDiv(STypedData a, int64_t divisor, uint32_t n);
QV_API void TypedDiv(STypedData a, float divisor, uint32_t n);
QV_API void TypedDiv(STypedData a, double divisor, uint32_t n);
///@}

/// The extremes of a[0 .. n - 1], each element converted to T and compared
/// in T, in order: both start at element 0, then an element replaces min only
/// when it is smaller and max only when it is greater (so a NaN first element
/// stays). n of 0, or a type without arithmetic, leaves min and max as they are.
///@{
QV_API void MinMax(STypedData a, uint32_t n, uint8_t &min, uint8_t &max);
QV_API void MinMax(STypedData a, uint32_t n, int16_t &min, int16_t &max);
QV_API void MinMax(STypedData a, uint32_t n, uint16_t &min, uint16_t &max);
QV_API void MinMax(STypedData a, uint32_t n, int32_t &min, int32_t &max);
QV_API void MinMax(STypedData a, uint32_t n, uint32_t &min, uint32_t &max);
QV_API void MinMax(STypedData a, uint32_t n, int64_t &min, int64_t &max);
QV_API void MinMax(STypedData a, uint32_t n, float &min, float &max);
QV_API void MinMax(STypedData a, uint32_t n, double &min, double &max);
///@}

} // namespace qv
