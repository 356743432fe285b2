// CDateTime arithmetic on the calendar fields: sums carry upward, differences
// borrow downward, and the day of the year rolls over whole years.
#include "qv/core/Calendar.h"
#include "qv/core/DateTime.h"

namespace qv {

namespace {

constexpr int kDaysPer400Years = 146097;

// Field sums wrap to 32 bits: hostile values give numbers, not undefined behaviour.
int WrapAdd(int a, int b) {
    return int(uint32_t(a) + uint32_t(b));
}

int WrapSub(int a, int b) {
    return int(uint32_t(a) - uint32_t(b));
}

// Moves whole units of value into next: upward only, as the sums need.
void Carry(int &value, int &next, int unit) {
    if (value < unit) return;
    next = WrapAdd(next, value / unit);
    value %= unit;
}

// Takes as many whole units from next as value needs to stop being negative.
void Borrow(int &value, int &next, int unit) {
    if (value >= 0) return;
    int64_t units = (-int64_t(value) + unit - 1) / unit;
    value = int(value + units * unit);
    next = int(int64_t(next) - units);
}

// Whole 400-year cycles first, so a huge day count costs no long loop; each
// cycle holds the same number of days, so the result is that of the plain loop.
void RollDaysForward(int &dayInYear, int &year) {
    while (dayInYear > kDaysPer400Years + 366) {
        dayInYear -= kDaysPer400Years;
        year = WrapAdd(year, 400);
    }
    while (dayInYear > calendar::NumDaysInYear(year)) {
        dayInYear -= calendar::NumDaysInYear(year);
        year = WrapAdd(year, 1);
    }
}

void RollDaysBackward(int &dayInYear, int &year) {
    while (dayInYear < -kDaysPer400Years) {
        dayInYear += kDaysPer400Years;
        year = WrapSub(year, 400);
    }
    while (dayInYear < 0) {
        year = WrapSub(year, 1);
        dayInYear += calendar::NumDaysInYear(year);
    }
}

} // namespace

CDateTime &CDateTime::operator+=(CDateTime const &d) {
    year = WrapAdd(year, d.year);
    dayInYear = WrapAdd(dayInYear, d.dayInYear);
    hour = WrapAdd(hour, d.hour);
    minute = WrapAdd(minute, d.minute);
    second = WrapAdd(second, d.second);
    millisecond = WrapAdd(millisecond, d.millisecond);
    microsecond = WrapAdd(microsecond, d.microsecond);
    Carry(microsecond, millisecond, 1000);
    Carry(millisecond, second, 1000);
    Carry(second, minute, 60);
    Carry(minute, hour, 60);
    Carry(hour, dayInYear, 24);
    RollDaysForward(dayInYear, year);
    UpdateMonthAndDay();
    return *this;
}

// d's year is not subtracted: existing callers take differences of values of
// one year, or of bare times, and depend on that.
CDateTime &CDateTime::operator-=(CDateTime const &d) {
    microsecond = WrapSub(microsecond, d.microsecond);
    Borrow(microsecond, millisecond, 1000);
    millisecond = WrapSub(millisecond, d.millisecond);
    Borrow(millisecond, second, 1000);
    second = WrapSub(second, d.second);
    Borrow(second, minute, 60);
    minute = WrapSub(minute, d.minute);
    Borrow(minute, hour, 60);
    hour = WrapSub(hour, d.hour);
    Borrow(hour, dayInYear, 24);
    dayInYear = WrapSub(dayInYear, d.dayInYear);
    RollDaysBackward(dayInYear, year);
    UpdateMonthAndDay();
    return *this;
}

CDateTime CDateTime::operator+(CDateTime const &d) const {
    CDateTime sum(*this);
    return sum += d;
}

CDateTime CDateTime::operator-(CDateTime const &d) const {
    CDateTime difference(*this);
    return difference -= d;
}

} // namespace qv
