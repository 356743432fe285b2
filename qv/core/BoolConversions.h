/// @file
/// CBool: booleans and their text. Static members only; nothing reports a
/// failure, a null text reads as the empty text. Pure and thread-safe.
#pragma once

#include "qv/core/Export.h"
#include "qv/core/String.h"

namespace qv {

/// @copydoc BoolConversions.h
class QV_API CBool {
public:
    /// True for "true", "yes", "T", "Y"; false for "false", "no", "F", "N"
    /// (case not mattering); any other text is true when its leading number
    /// (as CInt64::Parse reads it) is not 0.
    static bool Parse(char16_t const *s);
    /// True when the hexadecimal value (as CUInt64::ParseHex reads it) is not 0.
    ///@{
    static bool ParseHex(char16_t const *s);
    static CString ToString(bool v);    ///< "True" or "False"
    static CString ToStringHex(bool v); ///< "1" or "0"
    ///@}
};

} // namespace qv
