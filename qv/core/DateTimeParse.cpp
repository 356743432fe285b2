// CDateTime::Set: the text forms the library reads, tried in a fixed order.
#include "qv/core/DateTime.h"
#include "qv/core/FloatToInt.h"
#include "qv/core/WideScan.h"

namespace qv {

namespace {

// The argument lists the forms scan into.
enum class Layout { YMD_HMS, MDY_HMS, MDY_HM_Suffix, DOY_HM_Seconds, HM_Seconds, MDY, HMS_Suffix, HMS, HM_Suffix, HM };

enum Rule : unsigned {
    DateRead = 1,      // year, month, day read: dayInYear computed
    YearAdjust = 2,    // two-digit years: below 60 is 20xx, otherwise 19xx
    DayOfYearRead = 4, // dayInYear read: year from today, month and day computed
    NoDate = 8,        // a bare time: the four date fields 0
    SuffixRule = 16,   // "am"/"pm" after the time
    SecondsRule = 32,  // fractional seconds give millisecond and microsecond
};

struct Form {
    char16_t const *format;
    int fieldCount;
    Layout layout;
    unsigned rules;
};

// The suffix is read into a fixed buffer, so its width bounds it.
constexpr int kSuffixSize = 16;

// Order matters and is kept as existing texts were read: "%04d" also takes
// two digits, so form 1 reads "12-25-99 10:00:00" as year 12 before form 2
// is tried.
constexpr Form kForms[] = {
    {u"%04d-%02d-%02d %02d:%02d:%02d", 6, Layout::YMD_HMS, DateRead},
    {u"%02d-%02d-%02d %02d:%02d:%02d", 6, Layout::MDY_HMS, DateRead | YearAdjust},
    {u"%02d/%02d/%02d %02d:%02d:%02d", 6, Layout::MDY_HMS, DateRead | YearAdjust},
    {u"%02d/%02d/%04d %02d:%02d %15s", 6, Layout::MDY_HM_Suffix, DateRead | SuffixRule},
    {u"%03d:%02d:%02d:%lf", 4, Layout::DOY_HM_Seconds, DayOfYearRead | SecondsRule},
    {u"%03d %02d:%02d:%lf", 4, Layout::DOY_HM_Seconds, DayOfYearRead | SecondsRule},
    {u"%02d:%02d:%lf", 3, Layout::HM_Seconds, NoDate | SecondsRule},
    {u"%02d-%02d-%02d", 3, Layout::MDY, DateRead | YearAdjust},
    {u"%02d/%02d/%02d", 3, Layout::MDY, DateRead | YearAdjust},
    {u"%02d:%02d:%02d %15s", 4, Layout::HMS_Suffix, NoDate | SuffixRule},
    {u"%02d:%02d:%02d", 3, Layout::HMS, NoDate},
    {u"%02d:%02d %15s", 3, Layout::HM_Suffix, NoDate | SuffixRule},
    {u"%02d:%02d", 2, Layout::HM, NoDate},
};

struct Fields {
    int year = 0, month = 0, day = 0, dayInYear = 0, hour = 0, minute = 0, second = 0;
    double seconds = 0;
    char16_t suffix[kSuffixSize] = {};
};

int Scan(char16_t const *s, Form const &form, Fields &f) {
    char16_t const *fmt = form.format;
    switch (form.layout) {
    case Layout::YMD_HMS:
        return swscanf(s, fmt, &f.year, &f.month, &f.day, &f.hour, &f.minute, &f.second);
    case Layout::MDY_HMS:
        return swscanf(s, fmt, &f.month, &f.day, &f.year, &f.hour, &f.minute, &f.second);
    case Layout::MDY_HM_Suffix:
        return swscanf(s, fmt, &f.month, &f.day, &f.year, &f.hour, &f.minute, f.suffix);
    case Layout::DOY_HM_Seconds:
        return swscanf(s, fmt, &f.dayInYear, &f.hour, &f.minute, &f.seconds);
    case Layout::HM_Seconds:
        return swscanf(s, fmt, &f.hour, &f.minute, &f.seconds);
    case Layout::MDY:
        return swscanf(s, fmt, &f.month, &f.day, &f.year);
    case Layout::HMS_Suffix:
        return swscanf(s, fmt, &f.hour, &f.minute, &f.second, f.suffix);
    case Layout::HMS:
        return swscanf(s, fmt, &f.hour, &f.minute, &f.second);
    case Layout::HM_Suffix:
        return swscanf(s, fmt, &f.hour, &f.minute, f.suffix);
    case Layout::HM:
        return swscanf(s, fmt, &f.hour, &f.minute);
    }
    return 0;
}

int AdjustYear(int year) {
    if (year >= 1900) return year;
    return year + (year < 60 ? 2000 : 1900);
}

int ApplySuffix(int hour, char16_t const *suffix) {
    bool pm = suffix[0] == u'p' || suffix[0] == u'P';
    if (pm && hour != 12) return hour + 12;
    if (!pm && hour == 12) return 0;
    return hour;
}

void Apply(Form const &form, Fields &f, CDateTime &t) {
    if (form.rules & SuffixRule) f.hour = ApplySuffix(f.hour, f.suffix);
    if (form.rules & YearAdjust) f.year = AdjustYear(f.year);
    if (form.rules & DateRead) t.SetYMD(f.year, f.month, f.day);
    if (form.rules & DayOfYearRead) t.SetYYD(t.year, f.dayInYear);
    if (form.rules & NoDate) t.year = t.month = t.day = t.dayInYear = 0;
    t.SetHMS(f.hour, f.minute, f.second, 0, 0);
    if (form.rules & SecondsRule) {
        t.second = FloatToInt<int>(f.seconds);
        t.millisecond = FloatToInt<int>(f.seconds * 1000) % 1000;
        t.microsecond = FloatToInt<int>(f.seconds * 1000000) % 1000;
    }
}

} // namespace

CDateTime &CDateTime::Set(char16_t const *s) {
    Now();
    if (!s) return *this;
    for (Form const &form : kForms) {
        Fields fields;
        if (Scan(s, form, fields) != form.fieldCount) continue;
        Apply(form, fields, *this);
        return *this;
    }
    return Zero();
}

} // namespace qv
