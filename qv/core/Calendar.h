/// @file
/// Gregorian calendar arithmetic behind CDateTime and the FILETIME conversions.
/// Internal to libqv. Every function takes any int without overflow or fault
/// (sums wrap to 32 bits); pure and thread-safe.
#pragma once

#include <cstdint>

namespace qv::calendar {

/// |month - 1| mod 12: the 0-based month any int names, so that month values
/// out of range never fault.
///@{
int MonthIndex(int month);
bool IsLeapYear(int year);
int NumDaysInYear(int year); ///< 366 or 365
///@}
/// Length of the month |month - 1| mod 12 (so every int names a month).
int DaysInMonth(int year, int month);

/// Days of the months before |month - 1| mod 12, plus day.
int DayInYear(int year, int month, int day);
/// Month (1-based) and day of a day of the year. Required as it stands: from
/// day 366 on nothing is counted, so month stays 0 and day keeps the number
/// (also for December 31 of a leap year); existing callers depend on it.
void DayInMonth(int &month, int &day, int year, int dayInYear);
/// 0 is Sunday; note the order of the arguments.
int DayInWeek(int month, int day, int year);
/// Easter Sunday of the Gregorian calendar (month 3 or 4).
void EasterSunday(int year, int &month, int &day);

/// Days from 1601-01-01 to the date (proleptic Gregorian, day counted from 1),
/// and back. Valid for the years of FILETIME and far beyond.
///@{
int64_t DaysSince1601(int64_t year, int month, int day);
void DateOfDaysSince1601(int64_t days, int64_t &year, int &month, int &day);
///@}

} // namespace qv::calendar
