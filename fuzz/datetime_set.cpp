// Fuzzes CDateTime::Set with the input as UTF-16LE text, then formats the
// value with every code and with the input itself as the format, and runs
// the arithmetic and timestamp forms on what was parsed.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "qv/core/DateTime.h"

namespace {

std::vector<char16_t> Units(uint8_t const *data, size_t size) {
    std::vector<char16_t> text(size / 2 + 1, u'\0');
    for (size_t i = 0; i + 1 < size; i += 2)
        text[i / 2] = char16_t(data[i] | data[i + 1] << 8);
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    std::vector<char16_t> text = Units(data, size);
    qv::CDateTime date(text.data());
    date.Format(u"%Y-%m-%D %H:%M:%S.%T%U %j %B %b %y %n %d %I %i %p %%");
    date.Format(u"[%(irig)] [%(timestamp)] %(");
    date.Format(text.data());
    char16_t small[16];
    date.Format(small, text.data(), int(sizeof small / sizeof small[0]));

    qv::CDateTime sum = date + date;
    qv::CDateTime difference = date - sum;
    qv::CDateTime stamped;
    stamped.SetTimestamp(date.GetTimestamp(qv::CDateTime::TimestampOfYear), qv::CDateTime::TimestampOfYear);
    stamped.SetTimestamp(difference.GetTimestamp(qv::CDateTime::TimestampFileTime), qv::CDateTime::TimestampFileTime);
    date.LocalTime();
    date.UTCTime();
    return 0;
}
