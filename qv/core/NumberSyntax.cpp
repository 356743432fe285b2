// IsFloat, IsInteger, IsULong: syntax checks of number text, reporting where
// the number ends. Digits by qv::iswdigit.
#include "qv/core/StringFunctions.h"
#include "qv/core/WideChar.h"

namespace qv {

namespace {

int SkipSign(char16_t const *s, int at) {
    return s[at] == u'+' || s[at] == u'-' ? at + 1 : at;
}

int SkipDigits(char16_t const *s, int at) {
    while (iswdigit(s[at]))
        ++at;
    return at;
}

bool Accept(int at, int *end) {
    if (end) *end = at;
    return true;
}

} // namespace

// An exponent is read only after a decimal point ("1e5" ends at the e):
// existing callers depend on that.
bool IsFloat(char16_t const *s, int *end) {
    if (!s) return false;
    int start = SkipSign(s, 0);
    int at = SkipDigits(s, start);
    int digits = at - start;
    if (s[at] == u'.') {
        int fraction = at + 1;
        at = SkipDigits(s, fraction);
        digits += at - fraction;
        if (s[at] == u'e' || s[at] == u'E') {
            int exponent = SkipSign(s, at + 1);
            at = SkipDigits(s, exponent);
            if (at == exponent) return false;
        }
    }
    return digits > 0 && Accept(at, end);
}

bool IsInteger(char16_t const *s, int *end) {
    if (!s) return false;
    int start = SkipSign(s, 0);
    int at = SkipDigits(s, start);
    return at > start && Accept(at, end);
}

bool IsULong(char16_t const *s, int *end) {
    if (!s) return false;
    int at = SkipDigits(s, 0);
    return at > 0 && Accept(at, end);
}

} // namespace qv
