// Test helper: CDateTime values as readable text, so failures show every field.
#pragma once

#include <string>

#include "Utf8Text.h"
#include "qv/core/DateTime.h"

// Formats with the value's own codes into a private buffer (the value's text
// buffer is left alone).
inline std::string Formatted(qv::CDateTime const &t, char16_t const *fmt) {
    char16_t buf[256];
    return Utf8(std::u16string(t.Format(buf, fmt, 256)));
}

// "year-month-day/dayInYear hour:minute:second.millisecond.microsecond",
// built without Format so that it also checks Format.
inline std::string Fields(qv::CDateTime const &t) {
    using std::to_string;
    return to_string(t.year) + "-" + to_string(t.month) + "-" + to_string(t.day) + "/" + to_string(t.dayInYear) + " " +
           to_string(t.hour) + ":" + to_string(t.minute) + ":" + to_string(t.second) + "." + to_string(t.millisecond) +
           "." + to_string(t.microsecond);
}
