#include "qv/core/Calendar.h"

namespace qv::calendar {

namespace {

constexpr int kMonthLengths[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

// Days from 1601-01-01 to 1970-01-01 in the era arithmetic below.
constexpr int64_t kDaysFrom1601To1970 = 134774;
constexpr int64_t kDaysPer400Years = 146097;

int64_t FloorMod(int64_t a, int64_t b) {
    int64_t r = a % b;
    return r < 0 ? r + b : r;
}

} // namespace

int MonthIndex(int month) {
    int64_t m = int64_t(month) - 1;
    return int((m < 0 ? -m : m) % 12);
}

bool IsLeapYear(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int NumDaysInYear(int year) {
    return IsLeapYear(year) ? 366 : 365;
}

int DaysInMonth(int year, int month) {
    int index = MonthIndex(month);
    return kMonthLengths[index] + (index == 1 && IsLeapYear(year) ? 1 : 0);
}

int DayInYear(int year, int month, int day) {
    int before = 0;
    for (int m = 1; m <= MonthIndex(month); ++m)
        before += DaysInMonth(year, m);
    return int(int64_t(before) + day);
}

void DayInMonth(int &month, int &day, int year, int dayInYear) {
    month = 0;
    day = dayInYear;
    if (dayInYear >= 366) return;
    while (day > DaysInMonth(year, month + 1)) {
        day -= DaysInMonth(year, month + 1);
        ++month;
    }
    ++month;
}

int DayInWeek(int month, int day, int year) {
    int64_t a = (14 - int64_t(month)) / 12;
    int64_t y = year - a;
    int64_t m = month + 12 * a - 2;
    return int((day + y + y / 4 - y / 100 + y / 400 + (31 * m) / 12) % 7);
}

// The classic integer method. Remainders are taken non-negative so that years
// below 0 never divide by zero; for positive years this changes nothing.
void EasterSunday(int year, int &month, int &day) {
    int64_t g = FloorMod(year, 19);
    int64_t c = year / 100;
    int64_t h = FloorMod(c - c / 4 - (8 * c + 13) / 25 + 19 * g + 15, 30);
    int64_t i = h - (h / 28) * (1 - (29 / (h + 1)) * ((21 - g) / 11));
    int64_t j = FloorMod(year + int64_t(year) / 4 + i + 2 - c + c / 4, 7);
    int64_t l = i - j;
    month = int(3 + (l + 40) / 44);
    day = int(l + 28 - 31 * (month / 4));
}

int64_t DaysSince1601(int64_t year, int month, int day) {
    year -= month <= 2;
    int64_t era = (year >= 0 ? year : year - 399) / 400;
    int64_t yearOfEra = year - era * 400;
    int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * kDaysPer400Years + dayOfEra - 719468 + kDaysFrom1601To1970;
}

void DateOfDaysSince1601(int64_t days, int64_t &year, int &month, int &day) {
    int64_t z = days - kDaysFrom1601To1970 + 719468;
    int64_t era = (z >= 0 ? z : z - kDaysPer400Years + 1) / kDaysPer400Years;
    int64_t dayOfEra = z - era * kDaysPer400Years;
    int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    int64_t shiftedMonth = (5 * dayOfYear + 2) / 153;
    day = int(dayOfYear - (153 * shiftedMonth + 2) / 5 + 1);
    month = int(shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9);
    year = yearOfEra + era * 400 + (month <= 2);
}

} // namespace qv::calendar
