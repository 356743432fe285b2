/// @file
/// printf family with the grammar of the runtime the library was designed on.
/// In wide formats %s is a char16_t string and %S a UTF-8 one; in narrow
/// formats %s is UTF-8 and %S char16_t. %I64d/%I64u/%I64x/%I64X take 64-bit
/// values, %ld and friends 32-bit ones. Exponents print with at least three
/// digits ("1.500000e+000"); infinities and NaN print "inf", "-inf", "nan".
/// A stray or unknown directive prints as it stands; %s of null is "(null)".
/// Number text never depends on the process locale.
/// Output functions behave like C99 snprintf: they write at most size units
/// including the terminator (always terminating when size > 0; buf may be null
/// when size is 0) and return the full length the text needs, without
/// terminator; -1 if that is above INT_MAX or fmt is null.
/// Thread-safe; no allocation beyond the caller's buffer.
///
/// The rest of the grammar, as the designed runtime has it:
/// - flags - + space # 0, width and precision as digits or '*' (a negative '*'
///   width left-aligns, a negative '*' precision counts as none);
/// - sizes hh h l ll L w j z t I I32 I64; l (long) is 32 bits, j z t I 64;
///   L on a floating directive still reads a double;
/// - %s %S %c %C: l and w mean wide, h narrow; a precision counts output units
///   and never splits a converted character; text converts between UTF-8 and
///   UTF-16 with U+FFFD for invalid input; a 0 flag pads text with zeros;
/// - `%#x` and `%#X` prefix 0x/0X even for zero; %p prints every hex digit of the
///   pointer in upper case ("%p" of 0x1234 is "0000000000001234");
/// - %e %f %g %a are exact and round to nearest, ties to even; %E %F %G %A
///   print "INF"/"NAN"; NaN never prints a '-'; %a has 13 hex digits unless a
///   precision is given;
/// - %n consumes its pointer and writes nothing; a directive with an unknown
///   conversion or size combination prints as it stands and consumes nothing.
#pragma once

#include <cstdarg>
#include <cstddef>

#include "qv/core/Export.h"

namespace qv {

/// The length fmt formats to, without terminator; -1 as above.
///@{
QV_API int _vscwprintf(char16_t const *fmt, va_list args);
QV_API int _scwprintf(char16_t const *fmt, ...);
///@}
/// Formats into buf, at most size units with the terminator; returns the full
/// length needed, as C99 snprintf does.
///@{
QV_API int vswprintf(char16_t *buf, size_t size, char16_t const *fmt, va_list args);
QV_API int swprintf(char16_t *buf, size_t size, char16_t const *fmt, ...);
///@}

/// Narrow, locale-free ("c_") forms for file readers and writers.
///@{
QV_API int c_vscprintf(char const *fmt, va_list args);
QV_API int c_vsnprintf(char *buf, size_t size, char const *fmt, va_list args);
QV_API int c_snprintf(char *buf, size_t size, char const *fmt, ...);
///@}

} // namespace qv
