// printf family with the grammar of the runtime the library was designed on.
// In wide formats %s is a char16_t string and %S a UTF-8 one; in narrow
// formats %s is UTF-8 and %S char16_t. %I64d/%I64u/%I64x/%I64X take 64-bit
// values, %ld and friends 32-bit ones. Exponents print with at least three
// digits ("1.500000e+000"); infinities and NaN print "inf", "-inf", "nan".
// A stray or unknown directive prints as it stands; %s of null is "(null)".
// Number text never depends on the process locale.
// Output functions behave like C99 snprintf: they write at most size units
// including the terminator (always terminating when size > 0) and return the
// full length the text needs, without terminator.
// Thread-safe; no allocation beyond the caller's buffer.
#pragma once

#include <cstdarg>
#include <cstddef>

#include "qv/core/Export.h"

namespace qv {

QV_API int _vscwprintf(char16_t const *fmt, va_list args);
QV_API int _scwprintf(char16_t const *fmt, ...);
QV_API int vswprintf(char16_t *buf, size_t size, char16_t const *fmt, va_list args);
QV_API int swprintf(char16_t *buf, size_t size, char16_t const *fmt, ...);

// Narrow, locale-free ("c_") forms for file readers and writers.
QV_API int c_vscprintf(char const *fmt, va_list args);
QV_API int c_vsnprintf(char *buf, size_t size, char const *fmt, va_list args);
QV_API int c_snprintf(char *buf, size_t size, char const *fmt, ...);

} // namespace qv
