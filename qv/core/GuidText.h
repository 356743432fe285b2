/// @file
/// CGUID: identifiers (qv::GUID) built from fields and bytes, and their text.
/// Static members only; nothing reports a failure. Pure and thread-safe.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/core/Guid.h"
#include "qv/core/String.h"

namespace qv {

/// @copydoc GuidText.h
class QV_API CGUID {
public:
    static constexpr GUID Empty{}; ///< all zero

    /// The identifier of those fields, b0..b7 being Data4 in order.
    static GUID Create(uint32_t Data1, uint16_t Data2, uint16_t Data3, uint8_t b0, uint8_t b1, uint8_t b2, uint8_t b3,
                       uint8_t b4, uint8_t b5, uint8_t b6, uint8_t b7);
    /// The 16 bytes at p in memory order (Data1..Data3 in this host's order).
    static GUID FromBytes(unsigned char const *p);

    /// An optional "{", then groups of 8, 4, 4, 4 and 12 hexadecimal digits, a
    /// "-" between groups optional each: Data1, Data2, Data3, the first two
    /// bytes of Data4 and its other six. Any other unit where a digit is due
    /// (the end of the text too) gives Empty; nothing after the last digit is
    /// looked at, so no closing brace is demanded. A null text gives Empty.
    static GUID Parse(char16_t const *s);
    /// "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}\n": the trailing line
    /// end is part of the text, as stored texts have it.
    static CString ToString(GUID const &g);
    /// The text is hexadecimal already: the same forms.
    ///@{
    static GUID ParseHex(char16_t const *s) { return Parse(s); }
    static CString ToStringHex(GUID const &g) { return ToString(g); }
    ///@}
};

} // namespace qv
