#include "qv/core/FmtFloat.h"

#include <cmath>
#include <cstdint>

#include "qv/core/FloatNarrow.h"
#include "qv/core/FloatToInt.h"
#include "qv/core/WideFormat.h"

namespace qv {

namespace {

char16_t *FailedText() {
    static char16_t empty[1] = {0};
    return empty;
}

// floor(log10(|value|)) with every step narrowed to float, as stored texts
// were made.
int SinglePrecisionExponent(double value) {
    if (value == 0) return 0;
    float magnitude = NarrowToFloat(std::fabs(value));
    float logarithm = NarrowToFloat(std::log10(static_cast<double>(magnitude)));
    return FloatToInt<int>(std::floor(logarithm));
}

bool Fits(int length, unsigned int size) {
    return length >= 0 && static_cast<unsigned int>(length) < size;
}

char16_t *Print(char16_t *buf, unsigned int size, char16_t const *format, int precision, double value) {
    int length = swprintf(buf, size, format, precision, value);
    return Fits(length, size) && length >= 3 ? buf : FailedText();
}

// Index of the exponent's digits behind "e+" or "e-", or -1.
int FindExponentDigits(char16_t const *text) {
    int end = 0;
    while (text[end])
        ++end;
    int start = end;
    while (start > 0 && text[start - 1] >= u'0' && text[start - 1] <= u'9')
        --start;
    bool marked = start >= 2 && start < end && (text[start - 1] == u'+' || text[start - 1] == u'-') &&
                  (text[start - 2] == u'e' || text[start - 2] == u'E');
    return marked ? start : -1;
}

char16_t *Scientific(char16_t *buf, unsigned int size, double value, int precision, int expWidth, int exponent) {
    char16_t *text = Print(buf, size, u"%0.*e", precision, value);
    if (text != buf) return text;
    int digits = FindExponentDigits(buf);
    if (digits < 0) return buf;
    int magnitude = exponent < 0 ? -exponent : exponent;
    unsigned int room = size - static_cast<unsigned int>(digits);
    return Fits(swprintf(buf + digits, room, u"%0*d", expWidth, magnitude), room) ? buf : FailedText();
}

char16_t *Truncated(char16_t *buf, unsigned int size, double value) {
    if (!Fits(swprintf(buf, size, u"%d", FloatToInt<int32_t>(value)), size) && size > 0) buf[0] = 0;
    return buf;
}

} // namespace

char16_t *FmtFloat(char16_t *buf, unsigned int size, int mode, double value, int precision, int expWidth) {
    switch (mode) {
    case 0:
        return Truncated(buf, size, value);
    case 1:
        return Print(buf, size, u"%0.*f", precision, value);
    case 2:
        return Scientific(buf, size, value, precision, expWidth, SinglePrecisionExponent(value));
    case 3: {
        int exponent = SinglePrecisionExponent(value);
        bool fixed = exponent >= -int64_t(precision) && exponent <= int64_t(expWidth) + precision;
        return fixed ? Print(buf, size, u"%0.*f", precision, value)
                     : Scientific(buf, size, value, precision, expWidth, exponent);
    }
    default:
        return buf;
    }
}

} // namespace qv
