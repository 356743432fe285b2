/// @file
/// Arithmetic of the typed array operations (internal header of qv/numerics):
/// the usual common type of a mixed pair, and integer arithmetic that wraps
/// where C++ would leave signed overflow undefined.
#pragma once

#include <cmath>
#include <type_traits>

namespace qv::numerics_detail {

/// The type a + b has: int for the small integers, unsigned for a 32-bit
/// unsigned beside a narrower or equal signed integer, and so on.
template <class A, class B> using TCommon = decltype(A() + B());

/// The unsigned type of an integer T (T itself for floating point), in which
/// sums and differences wrap without undefined behaviour.
template <class T>
using TWrapped = typename std::conditional_t<std::is_integral_v<T>, std::make_unsigned<T>, std::type_identity<T>>::type;

/// x + y and x - y, wrapping at T's width for integers.
///@{
template <class T> inline T WrapAdd(T x, T y) { return static_cast<T>(TWrapped<T>(x) + TWrapped<T>(y)); }

template <class T> inline T WrapSubtract(T x, T y) { return static_cast<T>(TWrapped<T>(x) - TWrapped<T>(y)); }
///@}

/// |x|; the most negative integer stays itself, an unsigned value is its own.
template <class T> inline T AbsOf(T x) {
    if constexpr (std::is_floating_point_v<T>)
        return std::fabs(x);
    else if constexpr (std::is_signed_v<T>)
        return x < 0 ? WrapSubtract(T(0), x) : x;
    else
        return x;
}

} // namespace qv::numerics_detail
