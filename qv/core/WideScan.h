/// @file
/// scanf family for the forms the library parses: %d %i %u %o %x %X %ld %lu %lx
/// %I64d %I64u %I64x %lld %hd %hu %hx %hhu %f %lf %e %g %c %s %[...] %n %%,
/// widths and '*' suppression, in the "C" locale. Wide formats read char16_t
/// text and %c %s %[ store char16_t (%lc %ls %l[ alike); narrow formats store
/// bytes. Bounded by the given widths only, as the runtime is: callers pass
/// widths for every %s/%[/%c into a fixed buffer (%7s needs 8 units).
/// Semantics of the designed runtime: white space in the format matches any
/// amount of white space, none included (Unicode white space in wide text);
/// %c skips no white space and stores no terminator; a literal that does not
/// match ends the scan; integers wrap instead of saturating (%d of
/// "4294967297" is 1); %i reads 0x.. as hex and 0.. as octal; %f stores a
/// float, %lf and %Lf a double; an unknown directive ends the scan.
/// Returns the number of assigned fields (%n and suppressed fields do not
/// count), or -1 (EOF) if the input ended before the first conversion, or a
/// pointer argument is null. Thread-safe.
#pragma once

#include <cstdarg>

#include "qv/core/Export.h"

namespace qv {

/// Scans s by fmt into the pointer arguments: wide (char16_t) or narrow
/// ("c_", bytes) forms. Returns the number of assigned fields, or -1 (EOF).
///@{
QV_API int vswscanf(char16_t const *s, char16_t const *fmt, va_list args);
QV_API int swscanf(char16_t const *s, char16_t const *fmt, ...);
QV_API int c_vsscanf(char const *s, char const *fmt, va_list args);
QV_API int c_sscanf(char const *s, char const *fmt, ...);
///@}

} // namespace qv
