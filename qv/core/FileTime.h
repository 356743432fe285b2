/// @file
/// FILETIME and SYSTEMTIME: the library's own time records, with the fields and
/// widths that callers and file forms know them by.
///
/// FILETIME counts 100 ns ticks since 1601-01-01 00:00 UTC, split in two 32-bit
/// halves. SYSTEMTIME is a broken-down time with millisecond resolution
/// (wDayOfWeek: 0 is Sunday).
///
/// The conversions here are pure calendar arithmetic (proleptic Gregorian) and
/// thread-safe. Reading the clock and the time zone lives in qv/platform/Clock.h.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"

namespace qv {

/// @copydoc FileTime.h
struct FILETIME {
    uint32_t dwLowDateTime;  ///< low 32 bits of the tick count
    uint32_t dwHighDateTime; ///< high 32 bits of the tick count
};

/// @copydoc FileTime.h
struct SYSTEMTIME {
    uint16_t wYear;         ///< full year, such as 2026
    uint16_t wMonth;        ///< 1 to 12
    uint16_t wDayOfWeek;    ///< 0 is Sunday
    uint16_t wDay;          ///< 1 to 31
    uint16_t wHour;         ///< 0 to 23
    uint16_t wMinute;       ///< 0 to 59
    uint16_t wSecond;       ///< 0 to 59
    uint16_t wMilliseconds; ///< 0 to 999
};

/// Ticks per unit of FILETIME.
///@{
inline constexpr int64_t kFileTimeTicksPerMillisecond = 10000;
inline constexpr int64_t kFileTimeTicksPerSecond = 10000000;
///@}
/// The largest tick count the conversions accept (the sign bit must be clear).
inline constexpr uint64_t kFileTimeMaxTicks = 0x7FFFFFFFFFFFFFFFull;

/// The two halves joined into one tick count; never fails.
inline uint64_t FileTimeToTicks(FILETIME const &ft) {
    return (uint64_t(ft.dwHighDateTime) << 32) | ft.dwLowDateTime;
}

/// The tick count split into its two halves; never fails.
inline FILETIME TicksToFileTime(uint64_t ticks) {
    return FILETIME{uint32_t(ticks), uint32_t(ticks >> 32)};
}

/// Fails (false, *ft untouched) unless the fields form a valid time: year 1601
/// to 30827, month 1..12, day within the month, hour < 24, minute < 60,
/// second < 60, milliseconds < 1000. wDayOfWeek is ignored.
QV_API bool SystemTimeToFileTime(SYSTEMTIME const *st, FILETIME *ft);
/// Fails (false, *st untouched) for tick counts above kFileTimeMaxTicks.
/// Fills every field, wDayOfWeek included.
QV_API bool FileTimeToSystemTime(FILETIME const *ft, SYSTEMTIME *st);

} // namespace qv
