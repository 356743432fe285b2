// CDateTime::Format: the date codes, and the month names they use.
#include <cstdarg>
#include <cstddef>
#include <cstdint>

#include "qv/core/Calendar.h"
#include "qv/core/DateTime.h"
#include "qv/core/WideChar.h"
#include "qv/core/WideFormat.h"

namespace qv {

namespace {

constexpr char16_t const *kMonthNames[12] = {u"January",   u"February", u"March",    u"April",
                                             u"May",       u"June",     u"July",     u"August",
                                             u"September", u"October",  u"November", u"December"};
constexpr char16_t const *kShortMonthNames[12] = {u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun",
                                                  u"Jul", u"Aug", u"Sep", u"Oct", u"Nov", u"Dec"};

constexpr char16_t kIrigName[] = u"irig)";
constexpr char16_t kTimestampName[] = u"timestamp)";

// Appends to the caller's buffer, stopping short of the limit (if any) and
// always leaving room for the terminator.
class TextOut {
public:
    TextOut(char16_t *buf, int size) : buf_(buf), limit_(size > 0 ? size_t(size) - 1 : SIZE_MAX) {}
    void Terminate() { buf_[length_] = 0; }

    void Put(char16_t c) {
        if (length_ < limit_) buf_[length_++] = c;
    }
    void Put(char16_t const *s) {
        while (*s)
            Put(*s++);
    }
    void Printf(char16_t const *fmt, ...) {
        char16_t piece[96];
        va_list args;
        va_start(args, fmt);
        vswprintf(piece, sizeof piece / sizeof piece[0], fmt, args);
        va_end(args);
        Put(piece);
    }

private:
    char16_t *buf_;
    size_t limit_;
    size_t length_ = 0;
};

// Whole seconds of the year in 32 bits, wrapping as the stored stamps did.
int32_t SecondsOfYear32(CDateTime const &t) {
    uint32_t s = ((uint32_t(t.dayInYear) * 24 + uint32_t(t.hour)) * 60 + uint32_t(t.minute)) * 60;
    return int32_t(s + uint32_t(t.second));
}

int TwelveHour(int hour) {
    return hour > 12 ? hour - 12 : hour;
}

// Writes the code after "%(" when it names a form; returns the units of fmt
// used after the parenthesis, or 0 when it names none.
size_t PutNamedCode(char16_t const *fmt, CDateTime const &t, TextOut &out) {
    constexpr size_t irigLength = sizeof kIrigName / sizeof kIrigName[0] - 1;
    constexpr size_t timestampLength = sizeof kTimestampName / sizeof kTimestampName[0] - 1;
    if (_wcsnicmp(fmt, kIrigName, irigLength) == 0) {
        out.Printf(u"%02d:%02d:%02d.%03d%03d", t.hour, t.minute, t.second, t.millisecond, t.microsecond);
        return irigLength;
    }
    if (_wcsnicmp(fmt, kTimestampName, timestampLength) == 0) {
        out.Printf(u"%02I64d.%03d%03d", int64_t(SecondsOfYear32(t)), t.millisecond, t.microsecond);
        return timestampLength;
    }
    return 0;
}

// Writes one single-character code; anything else is copied as it stands.
void PutCode(char16_t code, CDateTime const &t, TextOut &out) {
    switch (code) {
    case u'B':
        return out.Put(CDateTime::GetMonthName(t.month));
    case u'b':
        return out.Put(CDateTime::GetShortMonthName(t.month));
    case u'Y':
        return out.Printf(u"%04d", t.year);
    case u'y':
        return out.Printf(u"%02d", t.year % 100);
    case u'm':
        return out.Printf(u"%02d", t.month);
    case u'n':
        return out.Printf(u"%d", t.month);
    case u'D':
        return out.Printf(u"%02d", t.day);
    case u'd':
        return out.Printf(u"%d", t.day);
    case u'j':
        return out.Printf(u"%03d", t.dayInYear);
    case u'H':
        return out.Printf(u"%02d", t.hour);
    case u'I':
        return out.Printf(u"%02d", TwelveHour(t.hour));
    case u'i':
        return out.Printf(u"%d", TwelveHour(t.hour));
    case u'M':
        return out.Printf(u"%02d", t.minute);
    case u'S':
        return out.Printf(u"%02d", t.second);
    case u'T':
        return out.Printf(u"%03d", t.millisecond);
    case u'U':
        return out.Printf(u"%03d", t.microsecond);
    case u'p':
        return out.Put(t.hour < 12 || t.hour == 24 ? u"am" : u"pm");
    default:
        return out.Put(code); // "%%" too
    }
}

} // namespace

char16_t *CDateTime::Format(char16_t *buf, char16_t const *fmt, int size) const {
    TextOut out(buf, size);
    while (fmt && *fmt) {
        char16_t c = *fmt++;
        if (c != u'%') {
            out.Put(c);
            continue;
        }
        char16_t code = *fmt;
        if (!code) break; // a '%' at the end has no code to print
        ++fmt;
        if (code != u'(') {
            PutCode(code, *this, out);
            continue;
        }
        size_t used = PutNamedCode(fmt, *this, out);
        if (!used) out.Put(code);
        fmt += used;
    }
    out.Terminate();
    return buf;
}

char16_t *CDateTime::Format(char16_t const *fmt) {
    return Format(text, fmt, kTextSize);
}

char16_t const *CDateTime::GetMonthName(int month) {
    return kMonthNames[calendar::MonthIndex(month)];
}

char16_t const *CDateTime::GetShortMonthName(int month) {
    return kShortMonthNames[calendar::MonthIndex(month)];
}

} // namespace qv
