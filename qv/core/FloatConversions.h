/// @file
/// CFlt32, CFlt64: floating-point numbers and their text. Static members only;
/// nothing reports a failure, a null text reads as 0. Text never depends on the
/// process locale. Pure and thread-safe.
///
/// Parse is _wtof (narrowed for CFlt32); ToString is "%g" (a float goes
/// through double). ToStringHex/ParseHex carry the IEEE bits of the value as a
/// double through CUInt64's hexadecimal forms (a float is widened first and
/// narrowed back): only meant for round trips inside the library.
#pragma once

#include <bit>
#include <cstdint>

#include "qv/core/Export.h"
#include "qv/core/FloatNarrow.h"
#include "qv/core/IntegerConversions.h"
#include "qv/core/String.h"

namespace qv {

namespace detail {
QV_API double ParseFloatText(char16_t const *s); ///< _wtof; null gives 0
QV_API CString FormatGeneral(double v);          ///< "%g"
} // namespace detail

/// @copydoc FloatConversions.h
template <class T> class TFloatConversion {
public:
    /// _wtof of s (null: 0), narrowed to T by IEEE rounding.
    static T Parse(char16_t const *s) { return FloatFromDouble<T>(detail::ParseFloatText(s)); }
    /// The double whose IEEE bits CUInt64::ParseHex reads from s, narrowed to T.
    static T ParseHex(char16_t const *s) { return FloatFromDouble<T>(std::bit_cast<double>(CUInt64::ParseHex(s))); }
    /// "%g" of v (a float widened to double first).
    static CString ToString(T v) { return detail::FormatGeneral(v); }
    /// The IEEE bits of v as a double, through CUInt64::ToStringHex (leading
    /// zero included); for round trips through ParseHex inside the library.
    static CString ToStringHex(T v) { return CUInt64::ToStringHex(std::bit_cast<uint64_t>(static_cast<double>(v))); }
};

/// @copydoc FloatConversions.h
class QV_API CFlt32 : public TFloatConversion<float> {
public:
    /// The float nearest to +-3.4e38 (bits 0x7F7FC99E), deliberately not the
    /// largest float: stored limits depend on it.
    ///@{
    static constexpr float Min = -3.4e38f;
    static constexpr float Max = 3.4e38f;
    ///@}
    /// FmtFloat mode 2, precision 7, exponent width 2 ("1.5000000e+00").
    static CString ToStringExact(float v);
};

/// @copydoc FloatConversions.h
class QV_API CFlt64 : public TFloatConversion<double> {
public:
    /// The double nearest to +-1.7e308 (bits 0x7FEE42D130773B76).
    ///@{
    static constexpr double Min = -1.7e308;
    static constexpr double Max = 1.7e308;
    static CString ToStringExact(double v); ///< "%0.15e"
    ///@}
};

} // namespace qv
