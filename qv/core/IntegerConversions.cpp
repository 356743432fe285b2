#include "qv/core/IntegerConversions.h"

#include "qv/core/HexDigit.h"

namespace qv::detail {

uint64_t ParseDecimalRun(char16_t const *s, bool takeMinus) {
    if (!s) return 0;
    bool negative = takeMinus && *s == u'-';
    if (negative) ++s;
    uint64_t value = 0;
    for (; *s >= u'0' && *s <= u'9'; ++s)
        value = value * 10 + uint64_t(*s - u'0');
    return negative ? 0 - value : value;
}

uint64_t ParseHexRun(char16_t const *s) {
    if (!s) return 0;
    if (s[0] == u'0' && s[1] == u'x') s += 2;
    uint64_t value = 0;
    for (int digit; (digit = HexDigitValue(*s)) >= 0; ++s)
        value = value << 4 | uint64_t(digit);
    return value;
}

CString FormatDecimal(int64_t v) {
    return CString::FromFormat(u"%I64d", v);
}

CString FormatDecimal(uint64_t v) {
    return CString::FromFormat(u"%I64u", v);
}

CString FormatHexWithLeadingZero(uint64_t v) {
    return v ? CString::FromFormat(u"0%I64X", v) : CString(u"0");
}

} // namespace qv::detail
