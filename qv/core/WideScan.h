// scanf family for the forms the library parses: %d %i %u %x %X %ld %lu %lx
// %I64d %I64u %I64x %hd %hu %hx %hhu %f %lf %e %g %c %s %[...] %n %%, widths
// and '*' suppression, in the "C" locale. Wide formats read char16_t text; %s
// and %[ store char16_t. Bounded by the given widths only, as the runtime is:
// callers pass widths for every %s/%[ into a fixed buffer.
// Returns the number of assigned fields, or -1 (EOF) if the input ended before
// the first conversion. Thread-safe.
#pragma once

#include <cstdarg>

#include "qv/core/Export.h"

namespace qv {

QV_API int vswscanf(char16_t const *s, char16_t const *fmt, va_list args);
QV_API int swscanf(char16_t const *s, char16_t const *fmt, ...);
QV_API int c_vsscanf(char const *s, char const *fmt, va_list args);
QV_API int c_sscanf(char const *s, char const *fmt, ...);

} // namespace qv
