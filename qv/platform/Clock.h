// The system clock and the machine's time zone, in FILETIME and SYSTEMTIME
// terms (qv/core/FileTime.h).
//
// Local time follows the C library's zone rules (TZ, /etc/localtime) for the
// instant concerned, so a summer date converts with the summer offset whatever
// the date today. A program that changes TZ calls tzset() before converting.
// All functions are thread-safe; the conversions fail (false, output
// untouched) for tick counts outside 0..kFileTimeMaxTicks, before or after
// the shift, or when the C library cannot tell the offset.
#pragma once

#include "qv/core/Export.h"
#include "qv/core/FileTime.h"

namespace qv {

// The present UTC time (millisecond resolution in SYSTEMTIME, 100 ns ticks
// as far as the clock gives them in FILETIME).
QV_API void GetSystemTime(SYSTEMTIME *st);
QV_API void GetSystemTimeAsFileTime(FILETIME *ft);

// UTC ticks to the local wall clock's ticks at that instant.
QV_API bool FileTimeToLocalFileTime(FILETIME const *utc, FILETIME *local);
// Local wall-clock ticks to UTC. A wall time that a clock change repeats
// gives the earlier instant; one that a change skipped is read with the
// offset in force before the change.
QV_API bool LocalFileTimeToFileTime(FILETIME const *local, FILETIME *utc);

} // namespace qv
