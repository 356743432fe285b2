#include "qv/core/DateTime.h"

#include <array>
#include <compare>

#include "qv/core/Calendar.h"
#include "qv/platform/Clock.h"

namespace qv {

namespace {

constexpr int64_t kMicrosecondsPerDay = 86400000000;

uint16_t Cut16(int v) {
    return uint16_t(v);
}

bool FitsIn16(int v) {
    return v >= 0 && v <= 0xFFFF;
}

// FILETIME ticks of the fields without the microseconds; false when they do
// not form a valid time.
bool FieldTicks(CDateTime const &t, uint64_t &ticks) {
    for (int v : {t.year, t.month, t.day, t.hour, t.minute, t.second, t.millisecond}) {
        if (!FitsIn16(v)) return false;
    }
    SYSTEMTIME st = t;
    FILETIME ft;
    if (!SystemTimeToFileTime(&st, &ft)) return false;
    ticks = FileTimeToTicks(ft);
    return true;
}

uint64_t TicksOrZero(CDateTime const &t) {
    uint64_t ticks = 0;
    return FieldTicks(t, ticks) ? ticks : 0;
}

std::array<int, 7> OrderKey(CDateTime const &t) {
    return {t.year, t.dayInYear, t.hour, t.minute, t.second, t.millisecond, t.microsecond};
}

// Shifts the value's instant through a zone conversion; microsecond stays.
using ZoneShift = bool (*)(FILETIME const *, FILETIME *);
CDateTime Shifted(CDateTime const &t, ZoneShift shift) {
    uint64_t ticks = 0;
    FILETIME out;
    if (!FieldTicks(t, ticks)) return t;
    FILETIME in = TicksToFileTime(ticks);
    if (!shift(&in, &out)) return t;
    CDateTime result(out);
    result.microsecond = t.microsecond;
    return result;
}

} // namespace

CDateTime::CDateTime()
    : text{}, year(0), month(0), day(0), dayInYear(0), hour(0), minute(0), second(0), millisecond(0), microsecond(0) {}

CDateTime::CDateTime(CDateTime const &other) : CDateTime() {
    *this = other;
}

CDateTime::CDateTime(char16_t const *s) : CDateTime() {
    Set(s);
}

CDateTime::CDateTime(FILETIME const &ft) : CDateTime() {
    *this = ft;
}

CDateTime::CDateTime(SYSTEMTIME const &st) : CDateTime() {
    *this = st;
}

CDateTime &CDateTime::operator=(CDateTime const &other) {
    year = other.year;
    month = other.month;
    day = other.day;
    dayInYear = other.dayInYear;
    SetHMS(other.hour, other.minute, other.second, other.millisecond, other.microsecond);
    return *this;
}

CDateTime &CDateTime::operator=(FILETIME const &ft) {
    SYSTEMTIME st;
    if (!FileTimeToSystemTime(&ft, &st)) return Zero();
    return *this = st;
}

CDateTime &CDateTime::operator=(SYSTEMTIME const &st) {
    return SetYMDHMS(st.wYear, st.wMonth, st.wDay, st.wHour, st.wMinute, st.wSecond, st.wMilliseconds, 0);
}

CDateTime::operator FILETIME() const {
    return TicksToFileTime(TicksOrZero(*this) + uint64_t(int64_t(microsecond) * 10));
}

CDateTime::operator SYSTEMTIME() const {
    return SYSTEMTIME{Cut16(year),   Cut16(month),      0, Cut16(day), Cut16(hour), Cut16(minute),
                      Cut16(second), Cut16(millisecond)};
}

CDateTime &CDateTime::Zero() {
    year = month = day = dayInYear = 0;
    return SetHMS(0, 0, 0, 0, 0);
}

CDateTime &CDateTime::Now() {
    SYSTEMTIME st;
    GetSystemTime(&st);
    return *this = st;
}

CDateTime &CDateTime::SetHMS(int h, int m, int s, int ms, int us) {
    hour = h;
    minute = m;
    second = s;
    millisecond = ms;
    microsecond = us;
    return *this;
}

CDateTime &CDateTime::SetYMD(int y, int m, int d) {
    year = y;
    month = m;
    day = d;
    UpdateDayInYear();
    return *this;
}

CDateTime &CDateTime::SetYYD(int y, int dayOfYear) {
    year = y;
    dayInYear = dayOfYear;
    UpdateMonthAndDay();
    return *this;
}

CDateTime &CDateTime::SetYMDHMS(int y, int m, int d, int h, int min, int s, int ms, int us) {
    return SetYMD(y, m, d).SetHMS(h, min, s, ms, us);
}

CDateTime &CDateTime::SetYYDHMS(int y, int dayOfYear, int h, int min, int s, int ms, int us) {
    return SetYYD(y, dayOfYear).SetHMS(h, min, s, ms, us);
}

CDateTime &CDateTime::SetYDHMS(int dayOfYear, int h, int min, int s, int ms, int us) {
    Now();
    return SetYYDHMS(year, dayOfYear, h, min, s, ms, us);
}

CDateTime CDateTime::GetYMD() const {
    CDateTime date;
    date.year = year;
    date.month = month;
    date.day = day;
    date.dayInYear = dayInYear;
    return date;
}

CDateTime CDateTime::GetHMS() const {
    return NewHMS(hour, minute, second, millisecond, microsecond);
}

int64_t CDateTime::GetTimestamp(int form) const {
    if (form != TimestampOfYear) return int64_t(FileTimeToTicks(FILETIME(*this)));
    // Wrapping arithmetic: hostile fields give a number, never undefined behaviour.
    uint64_t seconds =
        ((uint64_t(int64_t(dayInYear)) * 24 + uint64_t(int64_t(hour))) * 60 + uint64_t(int64_t(minute))) * 60 +
        uint64_t(int64_t(second));
    return int64_t(seconds * 1000000 + uint64_t(int64_t(millisecond)) * 1000 + uint64_t(int64_t(microsecond)));
}

CDateTime &CDateTime::SetTimestamp(int64_t t, int form) {
    if (form != TimestampOfYear) {
        if (t < 0) return Zero();
        return *this = TicksToFileTime(uint64_t(t));
    }
    // year, month and day stay: callers set the year themselves.
    dayInYear = int(t / kMicrosecondsPerDay % 365);
    return SetHMS(int(t / 3600000000 % 24), int(t / 60000000 % 60), int(t / 1000000 % 60), int(t / 1000 % 1000),
                  int(t % 1000));
}

CDateTime CDateTime::LocalTime() const {
    return Shifted(*this, FileTimeToLocalFileTime);
}

CDateTime CDateTime::UTCTime() const {
    return Shifted(*this, LocalFileTimeToFileTime);
}

bool CDateTime::operator==(CDateTime const &o) const {
    return OrderKey(*this) == OrderKey(o);
}

bool CDateTime::operator!=(CDateTime const &o) const {
    return OrderKey(*this) != OrderKey(o);
}

bool CDateTime::operator<(CDateTime const &o) const {
    return OrderKey(*this) < OrderKey(o);
}

bool CDateTime::operator<=(CDateTime const &o) const {
    return OrderKey(*this) <= OrderKey(o);
}

bool CDateTime::operator>(CDateTime const &o) const {
    return OrderKey(*this) > OrderKey(o);
}

bool CDateTime::operator>=(CDateTime const &o) const {
    return OrderKey(*this) >= OrderKey(o);
}

CDateTime CDateTime::New(char16_t const *s) {
    return CDateTime(s);
}

CDateTime CDateTime::NewNow() {
    return CDateTime().Now();
}

CDateTime CDateTime::NewYMD(int y, int m, int d) {
    return CDateTime().SetYMD(y, m, d);
}

CDateTime CDateTime::NewYYD(int y, int dayOfYear) {
    return CDateTime().SetYYD(y, dayOfYear);
}

CDateTime CDateTime::NewHMS(int h, int m, int s, int ms, int us) {
    return CDateTime().SetHMS(h, m, s, ms, us);
}

CDateTime CDateTime::NewYMDHMS(int y, int m, int d, int h, int min, int s, int ms, int us) {
    return CDateTime().SetYMDHMS(y, m, d, h, min, s, ms, us);
}

CDateTime CDateTime::NewYYDHMS(int y, int dayOfYear, int h, int min, int s, int ms, int us) {
    return CDateTime().SetYYDHMS(y, dayOfYear, h, min, s, ms, us);
}

int CDateTime::NumDaysInYear(int y) {
    return calendar::NumDaysInYear(y);
}

int CDateTime::GetDayInYear(int y, int m, int d) {
    return calendar::DayInYear(y, m, d);
}

void CDateTime::GetDayInMonth(int &m, int &d, int y, int dayOfYear) {
    calendar::DayInMonth(m, d, y, dayOfYear);
}

int CDateTime::GetDayInWeek(int m, int d, int y) {
    return calendar::DayInWeek(m, d, y);
}

CDateTime CDateTime::GetHoliday(EHoliday h, int y) {
    CDateTime holiday;
    if (h != Easter) return holiday;
    int m = 0, d = 0;
    calendar::EasterSunday(y, m, d);
    return holiday.SetYMD(y, m, d);
}

void CDateTime::UpdateDayInYear() {
    dayInYear = calendar::DayInYear(year, month, day);
}

void CDateTime::UpdateMonthAndDay() {
    calendar::DayInMonth(month, day, year, dayInYear);
}

} // namespace qv
