#include "qv/core/FloatConversions.h"

#include "qv/core/FmtFloat.h"
#include "qv/core/WideChar.h"

namespace qv {

namespace detail {

double ParseFloatText(char16_t const *s) {
    return s ? _wtof(s) : 0.0;
}

CString FormatGeneral(double v) {
    return CString::FromFormat(u"%g", v);
}

} // namespace detail

CString CFlt32::ToStringExact(float v) {
    char16_t buf[128];
    return CString(FmtFloat(buf, 128, 2, v, 7, 2));
}

CString CFlt64::ToStringExact(double v) {
    return CString::FromFormat(u"%0.15e", v);
}

} // namespace qv
