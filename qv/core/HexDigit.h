/// @file
/// Internal: the value of one hexadecimal digit, either case, for the number
/// and identifier parsers of qv/core.
#pragma once

namespace qv::detail {

/// 0..15, or -1 for a unit that is no hexadecimal digit.
constexpr int HexDigitValue(char16_t c) {
    if (c >= u'0' && c <= u'9') return c - u'0';
    if (c >= u'a' && c <= u'f') return c - u'a' + 10;
    if (c >= u'A' && c <= u'F') return c - u'A' + 10;
    return -1;
}

} // namespace qv::detail
