/// @file
/// CInt8 ... CUInt64, CIntPtr, CUIntPtr: the one place where integers and their
/// text convert to each other. All members are static; nothing reports a
/// failure, a null text reads as the empty text. Pure and thread-safe.
///
/// Parse reads the run of ASCII digits from the first unit and stops at the
/// first other unit: no white space is skipped, the empty run gives 0, overflow
/// wraps in 64 bits, and the signed classes take a leading "-" (never "+").
/// ParseHex takes an optional lower-case "0x" ("0X" is not recognised), then
/// hexadecimal digits of either case. Both truncate to the class's width.
/// ToString is decimal; ToStringHex is upper-case hexadecimal with one digit
/// more than the value needs (0xAB gives "0AB", 0 gives "0"), signed values
/// first extended to 64 bits (-1 gives "0FFFFFFFFFFFFFFFF"). Existing files and
/// callers depend on that leading zero.
#pragma once

#include <cstdint>
#include <limits>
#include <type_traits>

#include "qv/core/Export.h"
#include "qv/core/String.h"

namespace qv {

namespace detail {
QV_API uint64_t ParseDecimalRun(char16_t const *s, bool takeMinus);
QV_API uint64_t ParseHexRun(char16_t const *s);
QV_API CString FormatDecimal(int64_t v);
QV_API CString FormatDecimal(uint64_t v);
QV_API CString FormatHexWithLeadingZero(uint64_t v);
} // namespace detail

/// @copydoc IntegerConversions.h
template <class T> class TIntegerConversion {
    static_assert(std::is_integral_v<T>, "integer conversions only");
    /// Signed values widen with their sign, unsigned ones with zeros.
    using Wide = std::conditional_t<std::is_signed_v<T>, int64_t, uint64_t>;

public:
    static constexpr T Min = std::numeric_limits<T>::min(); ///< Smallest value of T.
    static constexpr T Max = std::numeric_limits<T>::max(); ///< Largest value of T.

    /// Reads the leading decimal digits of @p s (signed types take a leading "-");
    /// stops at the first other unit, gives 0 for no digits or a null text, and
    /// truncates to T on overflow.
    static T Parse(char16_t const *s) { return static_cast<T>(detail::ParseDecimalRun(s, std::is_signed_v<T>)); }
    /// Reads an optional lower-case "0x" and the hexadecimal digits after it;
    /// stops at the first other unit, gives 0 for no digits, truncates to T.
    static T ParseHex(char16_t const *s) { return static_cast<T>(detail::ParseHexRun(s)); }
    /// Returns @p v in decimal, with "-" for negative values.
    static CString ToString(T v) { return detail::FormatDecimal(static_cast<Wide>(v)); }
    /// Returns @p v in upper-case hexadecimal with one leading zero ("0AB");
    /// negative values are first sign-extended to 64 bits. Existing files and
    /// callers depend on that leading zero.
    static CString ToStringHex(T v) {
        return detail::FormatHexWithLeadingZero(static_cast<uint64_t>(static_cast<Wide>(v)));
    }
};

class CInt8 : public TIntegerConversion<int8_t> {};
class CUInt8 : public TIntegerConversion<uint8_t> {};
class CInt16 : public TIntegerConversion<int16_t> {};
class CUInt16 : public TIntegerConversion<uint16_t> {};
class CInt32 : public TIntegerConversion<int32_t> {};
class CUInt32 : public TIntegerConversion<uint32_t> {};
class CInt64 : public TIntegerConversion<int64_t> {};
class CUInt64 : public TIntegerConversion<uint64_t> {};
/// Pointer-sized: the limits of intptr_t and uintptr_t on this host.
///@{
class CIntPtr : public TIntegerConversion<intptr_t> {};
class CUIntPtr : public TIntegerConversion<uintptr_t> {};
///@}

} // namespace qv
