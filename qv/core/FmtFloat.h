/// @file
/// FmtFloat: scaled floating-point text into a caller's buffer of size units.
///
/// mode 0: the value truncated to 32 bits (the library's float-to-integer
///         rule), in decimal; a buffer too small gets the empty text.
/// mode 1: "%0.*f" with precision.
/// mode 2: "%0.*e" with precision, and the exponent's digits replaced by the
///         magnitude of floor(log10(|value|)) printed with "%0*d" to expWidth
///         digits (1500, precision 2, expWidth 2: "1.50e+03"). The exponent is
///         computed in single precision, the value and every intermediate
///         narrowed to float, so values just below a power of ten may show the
///         next one; 0, NaN and values beyond the float range use exponent 0.
///         Existing texts were written so. The digits are found after the
///         "e" and its sign, not counted from the end; inf and nan have none
///         and stay as printed.
/// mode 3: the exponent e as in mode 2; mode 1 if -precision <= e <=
///         expWidth + precision, otherwise mode 2.
/// Any other mode returns buf untouched.
///
/// Returns buf, or, in modes 1 to 3, a static empty text when the text does not
/// fit or is shorter than 3 units (callers compare with it but never write to
/// it). Number text never depends on the process locale. Thread-safe.
#pragma once

#include "qv/core/Export.h"

namespace qv {

/// Writes value into buf by mode (see above); returns buf or the static empty text.
QV_API char16_t *FmtFloat(char16_t *buf, unsigned int size, int mode, double value, int precision, int expWidth);

} // namespace qv
