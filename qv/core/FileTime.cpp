#include "qv/core/FileTime.h"

#include "qv/core/Calendar.h"

namespace qv {

namespace {

constexpr int64_t kTicksPerDay = 86400 * kFileTimeTicksPerSecond;

bool IsValidSystemTime(SYSTEMTIME const &st) {
    return st.wYear >= 1601 && st.wYear <= 30827 && st.wMonth >= 1 && st.wMonth <= 12 && st.wDay >= 1 &&
           st.wDay <= calendar::DaysInMonth(st.wYear, st.wMonth) && st.wHour < 24 && st.wMinute < 60 &&
           st.wSecond < 60 && st.wMilliseconds < 1000;
}

} // namespace

bool SystemTimeToFileTime(SYSTEMTIME const *st, FILETIME *ft) {
    if (!st || !ft || !IsValidSystemTime(*st)) return false;
    int64_t days = calendar::DaysSince1601(st->wYear, st->wMonth, st->wDay);
    int64_t seconds = (int64_t(st->wHour) * 60 + st->wMinute) * 60 + st->wSecond;
    int64_t ticks = days * kTicksPerDay + seconds * kFileTimeTicksPerSecond +
                    int64_t(st->wMilliseconds) * kFileTimeTicksPerMillisecond;
    *ft = TicksToFileTime(uint64_t(ticks));
    return true;
}

bool FileTimeToSystemTime(FILETIME const *ft, SYSTEMTIME *st) {
    if (!ft || !st) return false;
    uint64_t ticks = FileTimeToTicks(*ft);
    if (ticks > kFileTimeMaxTicks) return false;
    int64_t days = int64_t(ticks / kTicksPerDay);
    int64_t ticksOfDay = int64_t(ticks % kTicksPerDay);
    int64_t year = 0;
    int month = 0, day = 0;
    calendar::DateOfDaysSince1601(days, year, month, day);
    int64_t seconds = ticksOfDay / kFileTimeTicksPerSecond;
    st->wYear = uint16_t(year);
    st->wMonth = uint16_t(month);
    st->wDay = uint16_t(day);
    st->wDayOfWeek = uint16_t((days + 1) % 7); // 1601-01-01 was a Monday
    st->wHour = uint16_t(seconds / 3600);
    st->wMinute = uint16_t(seconds / 60 % 60);
    st->wSecond = uint16_t(seconds % 60);
    st->wMilliseconds = uint16_t(ticksOfDay % kFileTimeTicksPerSecond / kFileTimeTicksPerMillisecond);
    return true;
}

} // namespace qv
