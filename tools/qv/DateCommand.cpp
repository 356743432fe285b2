// qv date [--json] TEXT: the date text as CDateTime reads it, every field,
// then its irig and timestamp forms. Text in none of the library's forms
// reads as zero.
//
// --json prints one object: {"text", "year", "month", "day", "dayInYear",
// "hour", "minute", "second", "millisecond", "microsecond", "irig",
// "timestamp"}, the last two as strings.
#include <cstdio>

#include "Commands.h"
#include "Output.h"
#include "qv/core/DateTime.h"
#include "qv/core/String.h"

namespace qvtool {

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
    qv::CString irig(date.Format(u"%(irig)")), timestamp(date.Format(u"%(timestamp)"));
    if (GivenOptions().json) {
        CJsonWriter json(stdout);
        json.BeginObject();
        json.String("text", args[0]);
        for (auto const &field : fields)
            json.Integer(field.name, field.value);
        json.String("irig", irig.GetUTF8());
        json.String("timestamp", timestamp.GetUTF8());
        json.EndObject();
        return 0;
    }
    for (auto const &field : fields)
        std::printf("%s: %d\n", field.name, field.value);
    std::printf("irig: %s\ntimestamp: %s\n", irig.GetUTF8(), timestamp.GetUTF8());
    return 0;
}

} // namespace qvtool
