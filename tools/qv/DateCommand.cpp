// qv date TEXT: the date text as CDateTime reads it, every field, then its
// irig and timestamp forms. Text in none of the library's forms reads as zero.
#include <cstdio>

#include "Commands.h"
#include "qv/core/DateTime.h"
#include "qv/core/String.h"

namespace qvtool {

namespace {

void PrintFormatted(char const *label, qv::CDateTime &date, char16_t const *fmt) {
    std::printf("%s: %s\n", label, qv::CString(date.Format(fmt)).GetUTF8());
}

} // namespace

int RunDate(char *const *args) {
    qv::CString text(args[0]);
    qv::CDateTime date(static_cast<char16_t const *>(text));
    struct {
        char const *name;
        int value;
    } const fields[] = {{"year", date.year},
                        {"month", date.month},
                        {"day", date.day},
                        {"dayInYear", date.dayInYear},
                        {"hour", date.hour},
                        {"minute", date.minute},
                        {"second", date.second},
                        {"millisecond", date.millisecond},
                        {"microsecond", date.microsecond}};
    for (auto const &field : fields)
        std::printf("%s: %d\n", field.name, field.value);
    PrintFormatted("irig", date, u"%(irig)");
    PrintFormatted("timestamp", date, u"%(timestamp)");
    return 0;
}

} // namespace qvtool
