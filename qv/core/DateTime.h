/// @file
/// CDateTime: a broken-down time with microsecond resolution. It holds calendar
/// fields and does all arithmetic on them; it is not a tick count. A value may
/// be a full date, a bare time of day (the four date fields zero) or a
/// difference of times. Recordings also use it in two extra forms: the "irig"
/// form (a time within a year) and the "timestamp" form (microseconds counted
/// from the start of day 0 of the year).
///
/// Ownership: a plain value; text is the object's own buffer for Format(fmt),
/// empty after construction and never copied (copies start with it empty).
/// Failure: nothing fails. Text that parses in none of the known forms gives a
/// zero value; out-of-range numbers pass through as they are. A value whose
/// fields are not a valid date between 1601 and 30827 converts to FILETIME
/// tick 0 (before microseconds are added).
/// Threads: no locks; one object belongs to one thread at a time. Now() and the
/// static helpers are thread-safe.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/core/FileTime.h"

namespace qv {

/// @copydoc DateTime.h
class QV_API CDateTime {
public:
    /// Holidays GetHoliday knows; only Easter so far.
    enum EHoliday : int { Easter = 0 };

    /// Forms of GetTimestamp/SetTimestamp: microseconds from the start of day 0
    /// of the year, or (any other value) FILETIME ticks.
    ///@{
    static constexpr int TimestampOfYear = 1;
    static constexpr int TimestampFileTime = 0;
    ///@}

    static constexpr int kTextSize = 128; ///< units of text, terminator included

    char16_t text[kTextSize]; ///< Format(fmt)'s result; empty after construction
    int year;      ///< full year, such as 2026; 0 for a bare time
    int month;     ///< 1 to 12
    int day;       ///< 1 to 31
    int dayInYear; ///< 1 for January 1
    int hour;        ///< 0 to 23
    int minute;      ///< 0 to 59
    int second;      ///< 0 to 59
    int millisecond; ///< 0 to 999
    int microsecond; ///< 0 to 999 within the millisecond

    CDateTime();
    CDateTime(CDateTime const &other); ///< copies the fields; text starts empty
    explicit CDateTime(char16_t const *s); ///< see Set
    /// As the assignments below, onto a zero value with empty text.
    ///@{
    CDateTime(FILETIME const &ft);
    CDateTime(SYSTEMTIME const &st);
    ///@}

    CDateTime &operator=(CDateTime const &other); ///< text stays as it is
    CDateTime &operator=(FILETIME const &ft);     ///< microsecond 0, dayInYear computed
    CDateTime &operator=(SYSTEMTIME const &st);   ///< microsecond 0, dayInYear computed

    /// FILETIME of year/month/day and the time, plus microsecond * 10 ticks.
    operator FILETIME() const;
    /// Year to millisecond, each cut to 16 bits; wDayOfWeek is left 0.
    operator SYSTEMTIME() const;

    CDateTime &Zero(); ///< every field 0 (a bare time of 00:00); text stays
    CDateTime &Now(); ///< present UTC, millisecond resolution

    /// Parses the first of the library's thirteen text forms that converts
    /// completely; fields the text lacks come from Now(). Null s: Now() only.
    /// Text in no form: Zero(). Reads s only up to its terminator.
    ///@{
    CDateTime &Set(char16_t const *s);
    CDateTime &SetHMS(int h, int m, int s, int ms, int us);
    CDateTime &SetYMD(int y, int m, int d);
    CDateTime &SetYYD(int y, int dayOfYear);
    CDateTime &SetYMDHMS(int y, int m, int d, int h, int min, int s, int ms, int us);
    CDateTime &SetYYDHMS(int y, int dayOfYear, int h, int min, int s, int ms, int us);
    CDateTime &SetYDHMS(int dayOfYear, int h, int min, int s, int ms, int us); ///< year of Now()
    ///@}

    CDateTime GetYMD() const; ///< year, month, day, dayInYear only
    CDateTime GetHMS() const; ///< the five time fields only

    /// Form 1 (TimestampOfYear): microseconds from the start of day 0 of the
    /// year, from dayInYear and the time fields (the year plays no part). Other
    /// forms: FILETIME ticks of the value (see operator FILETIME).
    int64_t GetTimestamp(int form) const;
    /// Form 1 sets the time and dayInYear (t / day mod 365) and leaves year,
    /// month and day as they were. Other forms take t as FILETIME ticks with
    /// microsecond 0; a negative t (beyond FILETIME's range) gives Zero().
    CDateTime &SetTimestamp(int64_t t, int form);

    /// Through the C library's zone rules for the instant concerned;
    /// microsecond is carried over. A local time that a clock change repeated
    /// gives the earlier instant; one that a change skipped takes the offset in
    /// force before the change. A value the zone cannot convert (no valid date,
    /// or shifted out of FILETIME's range) comes back unchanged.
    ///@{
    CDateTime LocalTime() const;
    CDateTime UTCTime() const;
    ///@}

    /// Order by year, dayInYear, hour, minute, second, millisecond,
    /// microsecond; month and day play no part.
    ///@{
    bool operator==(CDateTime const &o) const;
    bool operator!=(CDateTime const &o) const;
    bool operator<(CDateTime const &o) const;
    bool operator<=(CDateTime const &o) const;
    bool operator>(CDateTime const &o) const;
    bool operator>=(CDateTime const &o) const;
    ///@}

    /// Adds year, dayInYear and the time of d, carries upward, recomputes
    /// month and day; d's month and day are ignored.
    CDateTime &operator+=(CDateTime const &d);
    /// Subtracts dayInYear and the time of d with borrows, but not its year:
    /// callers take differences of values of one year or of bare times.
    ///@{
    CDateTime &operator-=(CDateTime const &d);
    CDateTime operator+(CDateTime const &d) const;
    CDateTime operator-(CDateTime const &d) const;
    ///@}

    /// Writes fmt with the date codes (%Y %y %B %b %m %n %D %d %j %H %I %i %M
    /// %S %T %U %p %% %(irig) %(timestamp)) into buf and returns buf. A size
    /// above 0 bounds the text, terminator included; size 0 or below means buf
    /// is large enough, as existing callers assume. Null or empty fmt: "".
    char16_t *Format(char16_t *buf, char16_t const *fmt, int size) const;
    /// Into the object's text buffer, cut to kTextSize - 1 units.
    char16_t *Format(char16_t const *fmt);

    /// A new value set by the matching Set call (or Now()).
    ///@{
    static CDateTime New(char16_t const *s);
    static CDateTime NewNow();
    static CDateTime NewYMD(int y, int m, int d);
    static CDateTime NewYYD(int y, int dayOfYear);
    static CDateTime NewHMS(int h, int m, int s, int ms, int us);
    static CDateTime NewYMDHMS(int y, int m, int d, int h, int min, int s, int ms, int us);
    static CDateTime NewYYDHMS(int y, int dayOfYear, int h, int min, int s, int ms, int us);
    ///@}

    /// "January".."December" and "Jan".."Dec", indexed by |month - 1| mod 12.
    ///@{
    static char16_t const *GetMonthName(int month);
    static char16_t const *GetShortMonthName(int month);
    static int NumDaysInYear(int year);
    static int GetDayInYear(int year, int month, int day);
    static void GetDayInMonth(int &month, int &day, int year, int dayOfYear);
    static int GetDayInWeek(int month, int day, int year); ///< 0 is Sunday
    ///@}
    /// Easter Sunday of the year at 00:00; any other holiday: a zero value.
    static CDateTime GetHoliday(EHoliday h, int year);

private:
    void UpdateDayInYear();   ///< from year, month, day
    void UpdateMonthAndDay(); ///< from year, dayInYear
};

} // namespace qv
