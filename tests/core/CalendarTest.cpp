// Calendar helpers, FILETIME/SYSTEMTIME conversions and local time, checked
// against tables made by Python's datetime, zoneinfo and dateutil
// (tests/core/data/make_calendar_tables.py).
#include <gtest/gtest.h>

#include <climits>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "DateTimeText.h"
#include "TimeZoneScope.h"
#include "qv/core/DateTime.h"
#include "qv/core/FileTime.h"

using qv::CDateTime;

namespace {

std::string TablePath(char const *name) {
    return std::string(QV_TEST_DATA_DIR) + "/../tests/core/data/" + name;
}

std::vector<std::vector<std::string>> ReadTable(char const *name) {
    std::ifstream in(TablePath(name));
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream words(line);
        std::vector<std::string> row;
        for (std::string word; words >> word;)
            row.push_back(word);
        rows.push_back(row);
    }
    return rows;
}

// Columns of calendar_days.txt.
struct DayRow {
    int year, month, day, dayInYear, dayOfWeek;
    std::string ticks;
    std::string zones[2][3]; // local of 01:30 UTC, UTC of wall 01:30, UTC of wall 02:30
};

std::vector<DayRow> ReadDays() {
    std::vector<DayRow> days;
    for (auto const &r : ReadTable("calendar_days.txt")) {
        if (r.size() != 12) continue;
        DayRow d{std::stoi(r[0]), std::stoi(r[1]), std::stoi(r[2]), std::stoi(r[3]), std::stoi(r[4]), r[5], {}};
        for (int z = 0; z < 2; ++z)
            for (int c = 0; c < 3; ++c)
                d.zones[z][c] = r[size_t(6 + 3 * z + c)];
        days.push_back(d);
    }
    return days;
}

std::string Stamp(CDateTime const &t) {
    return Formatted(t, u"%Y%m%D%H%M%S");
}

// The reference's '-' marks a result outside FILETIME's range: the value
// then comes back unchanged.
std::string Expected(std::string const &column, CDateTime const &input) {
    return column == "-" ? Stamp(input) : column;
}

} // namespace

TEST(Calendar, DesignedEdgeCases) {
    EXPECT_EQ(CDateTime::NumDaysInYear(1900), 365);
    EXPECT_EQ(CDateTime::NumDaysInYear(2000), 366);
    EXPECT_EQ(CDateTime::NumDaysInYear(2004), 366);
    EXPECT_EQ(CDateTime::GetDayInYear(2004, 3, 1), 61);
    EXPECT_EQ(CDateTime::GetDayInYear(2003, 3, 1), 60);
    EXPECT_EQ(CDateTime::GetDayInWeek(1, 1, 2000), 6);
    CDateTime easter = CDateTime::GetHoliday(CDateTime::Easter, 2000);
    EXPECT_EQ(Fields(easter), "2000-4-23/114 0:0:0.0.0");
    EXPECT_EQ(Fields(CDateTime::GetHoliday(CDateTime::EHoliday(1), 2000)), Fields(CDateTime()));
}

TEST(Calendar, DayInMonthStopsCountingAtDay366) {
    // Required as it stands: existing callers see month 0 for the last day of
    // a leap year and for every day number from 366 on.
    int month = -1, day = -1;
    CDateTime::GetDayInMonth(month, day, 2004, 366);
    EXPECT_EQ(month, 0);
    EXPECT_EQ(day, 366);
    CDateTime::GetDayInMonth(month, day, 2003, 400);
    EXPECT_EQ(month, 0);
    EXPECT_EQ(day, 400);
    CDateTime::GetDayInMonth(month, day, 2004, 365);
    EXPECT_EQ(month, 12);
    EXPECT_EQ(day, 30);
    CDateTime::GetDayInMonth(month, day, 2004, 0);
    EXPECT_EQ(month, 1);
    EXPECT_EQ(day, 0);
}

TEST(Calendar, MonthIndicesOutOfRangeNeverFault) {
    EXPECT_EQ(Utf8(CDateTime::GetMonthName(1)), "January");
    EXPECT_EQ(Utf8(CDateTime::GetMonthName(12)), "December");
    EXPECT_EQ(Utf8(CDateTime::GetShortMonthName(9)), "Sep");
    EXPECT_EQ(Utf8(CDateTime::GetMonthName(0)), "February"); // |0 - 1| = 1
    EXPECT_EQ(Utf8(CDateTime::GetMonthName(13)), "January");
    EXPECT_EQ(Utf8(CDateTime::GetShortMonthName(-11)), "Jan");
    EXPECT_EQ(Utf8(CDateTime::GetShortMonthName(INT_MIN)), "Oct"); // index (2^31 + 1) mod 12 = 9
    EXPECT_EQ(CDateTime::GetDayInYear(2004, 14, 1), 32);           // month index 1
    // Hostile arguments give numbers, not faults (the sanitizers watch).
    CDateTime::GetDayInYear(INT_MAX, INT_MIN, INT_MAX);
    CDateTime::GetDayInWeek(INT_MIN, INT_MAX, INT_MIN);
    CDateTime::GetDayInWeek(INT_MAX, INT_MIN, INT_MAX);
    for (int year : {INT_MIN, -1, 0, -100, INT_MAX}) {
        CDateTime e = CDateTime::GetHoliday(CDateTime::Easter, year);
        EXPECT_TRUE(e.month == 3 || e.month == 4) << year;
    }
}

TEST(Calendar, MatchesReferenceDays) {
    std::vector<DayRow> days = ReadDays();
    ASSERT_EQ(days.size(), 366u + 365 + 366 + 365);
    for (DayRow const &d : days) {
        SCOPED_TRACE(std::to_string(d.year) + "-" + std::to_string(d.month) + "-" + std::to_string(d.day));
        EXPECT_EQ(CDateTime::GetDayInYear(d.year, d.month, d.day), d.dayInYear);
        EXPECT_EQ(CDateTime::GetDayInWeek(d.month, d.day, d.year), d.dayOfWeek);
        int month = 0, day = 0;
        CDateTime::GetDayInMonth(month, day, d.year, d.dayInYear);
        EXPECT_EQ(month, d.dayInYear < 366 ? d.month : 0);
        EXPECT_EQ(day, d.dayInYear < 366 ? d.day : 366);
        CDateTime date = CDateTime::NewYMD(d.year, d.month, d.day);
        int64_t ticks = date.GetTimestamp(CDateTime::TimestampFileTime);
        if (d.ticks == "-") {
            EXPECT_EQ(ticks, 0); // before 1601: no FILETIME
            continue;
        }
        EXPECT_EQ(std::to_string(ticks), d.ticks);
        CDateTime back(qv::TicksToFileTime(uint64_t(ticks)));
        EXPECT_EQ(Fields(back), Fields(date));
        qv::SYSTEMTIME st;
        qv::FILETIME ft = qv::TicksToFileTime(uint64_t(ticks));
        ASSERT_TRUE(qv::FileTimeToSystemTime(&ft, &st));
        EXPECT_EQ(st.wDayOfWeek, d.dayOfWeek);
    }
}

TEST(Calendar, LocalTimeMatchesReferenceZones) {
    char const *zones[2] = {"Europe/Berlin", "America/New_York"};
    std::vector<DayRow> days = ReadDays();
    for (int z = 0; z < 2; ++z) {
        TimeZoneScope zone(zones[z]);
        for (DayRow const &d : days) {
            SCOPED_TRACE(std::string(zones[z]) + " " + std::to_string(d.year) + "-" + std::to_string(d.month) + "-" +
                         std::to_string(d.day));
            CDateTime utc = CDateTime::NewYMDHMS(d.year, d.month, d.day, 1, 30, 0, 0, 0);
            CDateTime wall0130 = utc;
            CDateTime wall0230 = CDateTime::NewYMDHMS(d.year, d.month, d.day, 2, 30, 0, 0, 0);
            EXPECT_EQ(Stamp(utc.LocalTime()), Expected(d.zones[z][0], utc));
            EXPECT_EQ(Stamp(wall0130.UTCTime()), Expected(d.zones[z][1], wall0130));
            EXPECT_EQ(Stamp(wall0230.UTCTime()), Expected(d.zones[z][2], wall0230));
        }
    }
}

TEST(Calendar, EasterMatchesReference) {
    auto rows = ReadTable("easter.txt");
    ASSERT_EQ(rows.size(), size_t(2299 - 1583 + 1));
    for (auto const &r : rows) {
        int year = std::stoi(r[0]);
        CDateTime e = CDateTime::GetHoliday(CDateTime::Easter, year);
        EXPECT_EQ(Fields(e), Fields(CDateTime::NewYMD(year, std::stoi(r[1]), std::stoi(r[2]))));
        EXPECT_EQ(CDateTime::GetDayInWeek(e.month, e.day, e.year), 0) << year;
    }
}

TEST(Calendar, SystemTimeConversionsCheckTheirRange) {
    qv::FILETIME ft{};
    qv::SYSTEMTIME st{2000, 2, 0, 29, 23, 59, 59, 999};
    EXPECT_TRUE(qv::SystemTimeToFileTime(&st, &ft));
    st.wYear = 1900;
    EXPECT_FALSE(qv::SystemTimeToFileTime(&st, &ft)); // no February 29
    for (qv::SYSTEMTIME bad :
         {qv::SYSTEMTIME{1600, 12, 0, 31, 0, 0, 0, 0}, qv::SYSTEMTIME{30828, 1, 0, 1, 0, 0, 0, 0},
          qv::SYSTEMTIME{2000, 13, 0, 1, 0, 0, 0, 0}, qv::SYSTEMTIME{2000, 1, 0, 0, 0, 0, 0, 0},
          qv::SYSTEMTIME{2000, 1, 0, 1, 24, 0, 0, 0}, qv::SYSTEMTIME{2000, 1, 0, 1, 0, 60, 0, 0},
          qv::SYSTEMTIME{2000, 1, 0, 1, 0, 0, 60, 0}, qv::SYSTEMTIME{2000, 1, 0, 1, 0, 0, 0, 1000}}) {
        EXPECT_FALSE(qv::SystemTimeToFileTime(&bad, &ft)) << bad.wYear << "-" << bad.wMonth << "-" << bad.wDay;
    }
    st = {1601, 1, 0, 1, 0, 0, 0, 0};
    ASSERT_TRUE(qv::SystemTimeToFileTime(&st, &ft));
    EXPECT_EQ(qv::FileTimeToTicks(ft), 0u);
    st = {30827, 12, 0, 31, 23, 59, 59, 999};
    ASSERT_TRUE(qv::SystemTimeToFileTime(&st, &ft));

    ft = qv::TicksToFileTime(qv::kFileTimeMaxTicks);
    ASSERT_TRUE(qv::FileTimeToSystemTime(&ft, &st));
    EXPECT_EQ(st.wYear, 30828);
    EXPECT_EQ(st.wMonth, 9);
    EXPECT_EQ(st.wDay, 14);
    ft = qv::TicksToFileTime(qv::kFileTimeMaxTicks + 1);
    st.wYear = 7;
    EXPECT_FALSE(qv::FileTimeToSystemTime(&ft, &st));
    EXPECT_EQ(st.wYear, 7);
}
