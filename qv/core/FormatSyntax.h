/// @file
/// Internal: the pieces of directive syntax that printf and scanf share.
#pragma once

#include <climits>
#include <cstdint>

namespace qv::detail {

/// Size prefixes of the designed runtime's grammar: hh h l ll L w j z t and
/// I, I32, I64 (I alone is pointer-sized).
enum class ArgSize : uint8_t { None, Char, Short, Long, LongLong, Int32, Int64, SizeT, LongDouble, Wide };

/// Reads decimal digits, saturating at INT_MAX.
template <class Char> Char const *ParseCount(Char const *p, int &value) {
    value = 0;
    for (; *p >= '0' && *p <= '9'; ++p) value = value > (INT_MAX - 9) / 10 ? INT_MAX : value * 10 + (*p - '0');
    return p;
}

template <class Char> Char const *ParseArgSize(Char const *p, ArgSize &size) {
    switch (*p) {
    case 'h': size = p[1] == 'h' ? ArgSize::Char : ArgSize::Short; return p + (p[1] == 'h' ? 2 : 1);
    case 'l': size = p[1] == 'l' ? ArgSize::LongLong : ArgSize::Long; return p + (p[1] == 'l' ? 2 : 1);
    case 'L': size = ArgSize::LongDouble; return p + 1;
    case 'w': size = ArgSize::Wide; return p + 1;
    case 'j': size = ArgSize::Int64; return p + 1;
    case 'z': case 't': size = ArgSize::SizeT; return p + 1;
    case 'I':
        if (p[1] == '6' && p[2] == '4') return size = ArgSize::Int64, p + 3;
        if (p[1] == '3' && p[2] == '2') return size = ArgSize::Int32, p + 3;
        size = ArgSize::SizeT;
        return p + 1;
    default: return p;
    }
}

} // namespace qv::detail
