// CDateTime: text forms, Format codes, arithmetic, timestamps, conversions.
#include <gtest/gtest.h>

#include <climits>
#include <clocale>
#include <string>

#include "DateTimeText.h"
#include "TimeZoneScope.h"
#include "qv/core/DateTime.h"

using qv::CDateTime;

namespace {

std::string Parsed(char16_t const *text) {
    return Fields(CDateTime(text));
}

// 2004-03-01 (day 61) 14:05:09.123456
CDateTime Sample() {
    return CDateTime::NewYMDHMS(2004, 3, 1, 14, 5, 9, 123, 456);
}

} // namespace

TEST(DateTime, ZeroAfterConstructionAndZero) {
    CDateTime t;
    EXPECT_EQ(Fields(t), "0-0-0/0 0:0:0.0.0");
    EXPECT_EQ(t.text[0], 0);
    EXPECT_EQ(Fields(Sample().Zero()), "0-0-0/0 0:0:0.0.0");
}

TEST(DateTime, SetReadsEachFormInOrder) {
    EXPECT_EQ(Parsed(u"2004-03-01 14:05:09"), "2004-3-1/61 14:5:9.0.0");
    EXPECT_EQ(Parsed(u"12/25/99 10:00:00"), "1999-12-25/359 10:0:0.0.0");
    EXPECT_EQ(Parsed(u"12/25/2004 10:30 PM"), "2004-12-25/360 22:30:0.0.0");
    EXPECT_EQ(Parsed(u"12/25/2004 12:15 am"), "2004-12-25/360 0:15:0.0.0");
    EXPECT_EQ(Parsed(u"12/25/2004 12:15 pm"), "2004-12-25/360 12:15:0.0.0");
    EXPECT_EQ(Parsed(u"10:20:30.5"), "0-0-0/0 10:20:30.500.0");
    EXPECT_EQ(Parsed(u"12-25-99"), "1999-12-25/359 0:0:0.0.0");
    EXPECT_EQ(Parsed(u"01/02/03"), "2003-1-2/2 0:0:0.0.0");
    EXPECT_EQ(Parsed(u"10:20 pm"), "0-0-0/0 22:20:0.0.0");
    EXPECT_EQ(Parsed(u"12:20 AM"), "0-0-0/0 0:20:0.0.0");
    EXPECT_EQ(Parsed(u"7:05"), "0-0-0/0 7:5:0.0.0");

    // Day-of-year forms keep the present year and compute month and day.
    CDateTime now = CDateTime::NewNow();
    CDateTime d5(u"123:10:20:30.25");
    CDateTime d6(u"060 10:20:30.000250");
    EXPECT_EQ(Fields(d5), Fields(CDateTime::NewYYDHMS(now.year, 123, 10, 20, 30, 250, 0)));
    EXPECT_EQ(Fields(d6), Fields(CDateTime::NewYYDHMS(now.year, 60, 10, 20, 30, 0, 250)));
}

TEST(DateTime, SetKeepsTheFormOrderWhereItSurprises) {
    // "%04d" also reads two digits, so form 1 takes what form 2 was written
    // for; existing texts were read this way.
    EXPECT_EQ(Parsed(u"12-25-99 10:00:00"), "12-25-99/99 10:0:0.0.0");
    // Form 7 ("%02d:%02d:%lf") comes before the suffix forms.
    EXPECT_EQ(Parsed(u"10:20:30 pm"), "0-0-0/0 10:20:30.0.0");
}

TEST(DateTime, SetAdjustsTwoDigitYears) {
    EXPECT_EQ(CDateTime(u"01/02/59").year, 2059);
    EXPECT_EQ(CDateTime(u"01/02/60").year, 1960);
    EXPECT_EQ(CDateTime(u"01/02/00").year, 2000);
    EXPECT_EQ(CDateTime(u"01-02-99").year, 1999);
}

TEST(DateTime, SetHandlesBadText) {
    EXPECT_EQ(Parsed(u""), "0-0-0/0 0:0:0.0.0");
    EXPECT_EQ(Parsed(u"yesterday"), "0-0-0/0 0:0:0.0.0");
    EXPECT_EQ(Parsed(u"2004-03-01"), "0-0-0/0 0:0:0.0.0"); // no form without a time
    CDateTime now = CDateTime::NewNow();
    CDateTime fromNull(nullptr);
    EXPECT_GE(fromNull.year, now.year);
    EXPECT_EQ(fromNull.microsecond, 0);

    // A long suffix is read only as far as its buffer.
    std::u16string longSuffix = u"10:20 p" + std::u16string(5000, u'm');
    EXPECT_EQ(Parsed(longSuffix.c_str()), "0-0-0/0 22:20:0.0.0");
    // Seconds beyond any integer follow the float conversion rule: 0.
    EXPECT_EQ(Parsed(u"10:20:1e300"), "0-0-0/0 10:20:0.0.0");
    EXPECT_EQ(Parsed(u"10:20:-1.5"), "0-0-0/0 10:20:-1.-500.0");
}

TEST(DateTime, FormatCodes) {
    CDateTime t = Sample();
    EXPECT_EQ(Formatted(t, u"%Y %y %B %b %m %n %D %d %j %H %I %i %M %S %T %U %p %%"),
              "2004 04 March Mar 03 3 01 1 061 14 02 2 05 09 123 456 pm %");
    EXPECT_EQ(Formatted(t, u"[%(irig)] [%(IRIG)] [%(Timestamp)]"),
              "[14:05:09.123456] [14:05:09.123456] [5321109.123456]");
    EXPECT_EQ(Formatted(t, u"%(irog) %(irig %(timestamp"), "(irog) (irig (timestamp");
    EXPECT_EQ(Formatted(t, u"%z %q %\x01 %~ 50%"), "z q \x01 ~ 50");
    EXPECT_EQ(Formatted(t, u""), "");
    EXPECT_EQ(Formatted(t, nullptr), "");
    EXPECT_EQ(Formatted(CDateTime(), u"%B %b %y"), "February Feb 00");

    // The stamp's seconds are counted in 32 bits, wrapping as stored stamps do.
    EXPECT_EQ(Formatted(CDateTime::NewYYDHMS(2004, 30000, 0, 0, 0, 0, 7), u"%(timestamp)"), "-1702967296.000007");
    EXPECT_EQ(Formatted(CDateTime::NewHMS(0, 0, 5, 0, 0), u"%(timestamp)"), "05.000000");
}

TEST(DateTime, FormatTwelveHourClock) {
    struct Case {
        int hour;
        char const *text;
    } cases[] = {{0, "00 0 am"},  {11, "11 11 am"}, {12, "12 12 pm"},
                 {13, "01 1 pm"}, {23, "11 11 pm"}, {24, "12 12 am"}};
    for (Case const &c : cases) {
        EXPECT_EQ(Formatted(CDateTime::NewHMS(c.hour, 0, 0, 0, 0), u"%I %i %p"), c.text) << c.hour;
    }
}

TEST(DateTime, FormatStaysInsideItsBuffers) {
    CDateTime t = Sample();
    std::u16string longFmt(300, u'x');
    EXPECT_EQ(qv::wcslen(t.Format(longFmt.c_str())), size_t(CDateTime::kTextSize - 1));
    EXPECT_EQ(t.Format(u"%B"), t.text);
    EXPECT_EQ(Utf8(std::u16string(t.text)), "March");

    char16_t small[8];
    std::fill(std::begin(small), std::end(small), u'#');
    t.Format(small, u"%(irig)", 5);
    EXPECT_EQ(Utf8(std::u16string(small)), "14:0");
    EXPECT_EQ(small[5], u'#');
    char16_t wide[64];
    EXPECT_EQ(Utf8(std::u16string(t.Format(wide, u"%Y-%m-%D", 0))), "2004-03-01"); // 0: the caller's buffer is large
}

TEST(DateTime, CopiesLeaveTheTextBufferAlone) {
    CDateTime a = Sample();
    a.Format(u"%Y");
    CDateTime b(a);
    EXPECT_EQ(b.text[0], 0);
    CDateTime c;
    c.Format(u"kept");
    c = a;
    EXPECT_EQ(Utf8(std::u16string(c.text)), "kept");
    EXPECT_EQ(Fields(c), Fields(a));
}

TEST(DateTime, CompareIgnoresMonthAndDay) {
    CDateTime a = Sample();
    CDateTime b = a;
    b.month = 7;
    b.day = 30;
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(a != b);
    b.microsecond++;
    EXPECT_TRUE(a < b && a <= b && b > a && b >= a && a != b);
    CDateTime laterYear = CDateTime::NewYYD(2005, 1);
    EXPECT_TRUE(a < laterYear); // year outranks dayInYear
}

TEST(DateTime, AdditionCarriesUpward) {
    CDateTime endOfYear = CDateTime::NewYMDHMS(2004, 12, 31, 23, 59, 59, 999, 0);
    EXPECT_EQ(Fields(endOfYear + CDateTime::NewHMS(0, 0, 0, 1, 0)), "2005-1-1/1 0:0:0.0.0");
    CDateTime endOf2003 = CDateTime::NewYMDHMS(2003, 12, 31, 23, 59, 59, 999, 999);
    EXPECT_EQ(Fields(endOf2003 + CDateTime::NewHMS(0, 0, 0, 0, 1)), "2004-1-1/1 0:0:0.0.0");
    // Several units at once, and d's month and day play no part.
    CDateTime d = CDateTime::NewHMS(25, 61, 61, 1001, 1001);
    d.month = 9;
    d.day = 9;
    EXPECT_EQ(Fields(CDateTime::NewYYD(2003, 1) + d), "2003-1-2/2 2:2:2.2.1");
    // Year lengths: day 366 stays in a leap year (and the month stays 0, as
    // GetDayInMonth has it), a whole leap year of days moves on.
    EXPECT_EQ(Fields(CDateTime::NewYYD(2004, 365) + CDateTime::NewYYD(0, 1)), "2004-0-366/366 0:0:0.0.0");
    EXPECT_EQ(Fields(CDateTime::NewYYD(2004, 1) + CDateTime::NewYYD(0, 366)), "2005-1-1/1 0:0:0.0.0");
    EXPECT_EQ(Fields(CDateTime::NewYYD(2000, 1) + CDateTime::NewYYD(1, 0)), "2001-1-1/1 0:0:0.0.0");
    // Many centuries of days roll over exactly as year-by-year counting does.
    EXPECT_EQ(Fields(CDateTime::NewYYD(2000, 1) + CDateTime::NewYYD(0, 146097 * 10)), "6000-1-1/1 0:0:0.0.0");
    EXPECT_EQ(Fields(CDateTime::NewYYD(1999, 200) + CDateTime::NewYYD(0, 365 + 366 + 365)), "2002-7-19/200 0:0:0.0.0");
}

TEST(DateTime, SubtractionBorrowsAndIgnoresTheYear) {
    CDateTime ten = CDateTime::NewHMS(10, 0, 0, 0, 0);
    EXPECT_EQ(Fields(ten - CDateTime::NewHMS(9, 30, 15, 250, 0)), "0-1-0/0 0:29:44.750.0");
    // A borrow takes as many units as the value needs.
    EXPECT_EQ(Fields(CDateTime::NewHMS(0, 0, 10, 0, 0) - CDateTime::NewHMS(0, 0, 0, 0, 2500)), "0-1-0/0 0:0:9.997.500");
    // The year of d is not subtracted: differences are taken within a year.
    CDateTime a = CDateTime::NewYYDHMS(2004, 100, 12, 0, 0, 0, 0);
    EXPECT_EQ(Fields(a - CDateTime::NewYYDHMS(1990, 50, 11, 0, 0, 0, 0)), "2004-2-19/50 1:0:0.0.0");
    // Day 0 is not negative and stays in its year; below it the year steps down.
    EXPECT_EQ(Fields(CDateTime::NewYYD(2004, 1) - CDateTime::NewHMS(0, 0, 0, 0, 1)), "2004-1-0/0 23:59:59.999.999");
    EXPECT_EQ(Fields(CDateTime::NewYYD(2004, 10) - CDateTime::NewYYD(0, 20)), "2003-12-21/355 0:0:0.0.0");
    EXPECT_EQ(Fields(CDateTime::NewYYD(2000, 1) - CDateTime::NewYYD(0, 146097 * 10 + 1)), "-2000-1-0/0 0:0:0.0.0");
    CDateTime b = a;
    b -= a;
    EXPECT_EQ(Fields(b), "2004-1-0/0 0:0:0.0.0");
}

TEST(DateTime, ArithmeticOnHostileFieldsIsDefined) {
    CDateTime big = CDateTime::NewYYDHMS(INT_MAX, INT_MAX, INT_MAX, INT_MAX, INT_MAX, INT_MAX, INT_MAX);
    CDateTime small = CDateTime::NewYYDHMS(INT_MIN, INT_MIN, INT_MIN, INT_MIN, INT_MIN, INT_MIN, INT_MIN);
    CDateTime sum = big + big;
    CDateTime difference = small - big;
    difference -= small;
    EXPECT_EQ(sum.microsecond, -2); // the sum wraps to 32 bits, and nothing carries
    EXPECT_GE(difference.microsecond, 0);
    EXPECT_GE(difference.dayInYear, 0);
    big.GetTimestamp(CDateTime::TimestampOfYear);
    Formatted(small, u"%(timestamp) %(irig) %B %y %I");
}

TEST(DateTime, TimestampOfYearRoundTrips) {
    CDateTime t = CDateTime::NewYMD(1999, 7, 4);
    t.SetTimestamp(86400000000, CDateTime::TimestampOfYear);
    EXPECT_EQ(Fields(t), "1999-7-4/1 0:0:0.0.0"); // year, month and day stay as they were
    EXPECT_EQ(t.GetTimestamp(CDateTime::TimestampOfYear), 86400000000);

    int64_t stamp = int64_t(123) * 86400000000 + 45296789012; // day 123, 12:34:56.789012
    CDateTime u;
    u.SetTimestamp(stamp, CDateTime::TimestampOfYear);
    EXPECT_EQ(Fields(u), "0-0-0/123 12:34:56.789.12");
    EXPECT_EQ(u.GetTimestamp(CDateTime::TimestampOfYear), stamp);
    EXPECT_EQ(Formatted(u, u"%(timestamp)"), "10672496.789012");

    u.SetTimestamp(int64_t(365) * 86400000000 + 5, CDateTime::TimestampOfYear);
    EXPECT_EQ(u.dayInYear, 0); // the day wraps at 365
    EXPECT_EQ(u.microsecond, 5);
}

TEST(DateTime, FileTimeTimestampRoundTrips) {
    CDateTime t = CDateTime::NewYMDHMS(2000, 1, 1, 0, 0, 0, 0, 7);
    EXPECT_EQ(t.GetTimestamp(CDateTime::TimestampFileTime), 125911584000000070);
    CDateTime u = CDateTime::NewYMDHMS(2024, 2, 29, 13, 14, 15, 678, 901);
    int64_t ticks = u.GetTimestamp(CDateTime::TimestampFileTime);
    CDateTime back;
    back.SetTimestamp(ticks, CDateTime::TimestampFileTime);
    EXPECT_EQ(Fields(back), "2024-2-29/60 13:14:15.678.0");
    EXPECT_EQ(Fields(back.SetTimestamp(-1, CDateTime::TimestampFileTime)), "0-0-0/0 0:0:0.0.0");
    // Fields that are no valid date count from tick 0.
    EXPECT_EQ(CDateTime::NewHMS(10, 0, 0, 0, 3).GetTimestamp(CDateTime::TimestampFileTime), 30);
    EXPECT_EQ(CDateTime::NewYMDHMS(2003, 2, 29, 0, 0, 0, 0, 0).GetTimestamp(2), 0);
}

TEST(DateTime, SystemTimeAndFileTimeConversions) {
    CDateTime u = CDateTime::NewYMDHMS(2024, 2, 29, 13, 14, 15, 678, 901);
    qv::SYSTEMTIME st = u;
    EXPECT_EQ(st.wYear, 2024);
    EXPECT_EQ(st.wMonth, 2);
    EXPECT_EQ(st.wDay, 29);
    EXPECT_EQ(st.wHour, 13);
    EXPECT_EQ(st.wMinute, 14);
    EXPECT_EQ(st.wSecond, 15);
    EXPECT_EQ(st.wMilliseconds, 678);
    EXPECT_EQ(st.wDayOfWeek, 0); // not written
    EXPECT_EQ(Fields(CDateTime(st)), "2024-2-29/60 13:14:15.678.0");
    qv::FILETIME ft = u;
    EXPECT_EQ(qv::FileTimeToTicks(ft), uint64_t(u.GetTimestamp(0)));
    CDateTime v;
    v = ft;
    EXPECT_EQ(Fields(v), "2024-2-29/60 13:14:15.678.0");
}

TEST(DateTime, SettersAndParts) {
    CDateTime t = CDateTime::NewYYD(2004, 61);
    EXPECT_EQ(Fields(t), "2004-3-1/61 0:0:0.0.0");
    t.SetHMS(1, 2, 3, 4, 5);
    EXPECT_EQ(Fields(t.GetYMD()), "2004-3-1/61 0:0:0.0.0");
    EXPECT_EQ(Fields(t.GetHMS()), "0-0-0/0 1:2:3.4.5");
    EXPECT_EQ(Fields(CDateTime::New(u"10:20")), "0-0-0/0 10:20:0.0.0");

    CDateTime now = CDateTime::NewNow();
    EXPECT_GE(now.year, 2024);
    EXPECT_EQ(now.microsecond, 0);
    EXPECT_EQ(now.dayInYear, CDateTime::GetDayInYear(now.year, now.month, now.day));
    CDateTime y;
    y.SetYDHMS(32, 1, 2, 3, 4, 5);
    EXPECT_GE(y.year, now.year);
    EXPECT_EQ(y.month, 2);
    EXPECT_EQ(y.day, 1);
}

TEST(DateTime, LocalAndUniversalTime) {
    TimeZoneScope zone("Europe/Berlin");
    CDateTime summer = CDateTime::NewYMDHMS(2021, 7, 1, 12, 0, 0, 250, 123);
    EXPECT_EQ(Fields(summer.LocalTime()), "2021-7-1/182 14:0:0.250.123");
    EXPECT_EQ(Fields(summer.LocalTime().UTCTime()), Fields(summer));
    CDateTime winter = CDateTime::NewYMDHMS(2021, 1, 1, 0, 30, 0, 0, 0);
    EXPECT_EQ(Fields(winter.UTCTime()), "2020-12-31/366 23:30:0.0.0");
    CDateTime bare = CDateTime::NewHMS(10, 0, 0, 0, 0);
    EXPECT_EQ(Fields(bare.LocalTime()), Fields(bare)); // no date: unchanged
}

TEST(DateTime, TextIgnoresTheProcessLocale) {
    std::string saved = std::setlocale(LC_ALL, nullptr);
    if (!std::setlocale(LC_ALL, "de_DE.UTF-8")) GTEST_SKIP() << "no de_DE.UTF-8 locale";
    EXPECT_EQ(Parsed(u"10:20:30.5"), "0-0-0/0 10:20:30.500.0");
    EXPECT_EQ(Formatted(Sample(), u"%(irig) %(timestamp) %B"), "14:05:09.123456 5321109.123456 March");
    std::setlocale(LC_ALL, saved.c_str());
}
