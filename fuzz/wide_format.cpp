// Fuzzes the printf engine, narrow and wide, with the input as the format.
// Arguments come from a fixed, type-safe set (the engine asks for each by
// type), so any directive is safe to try. Checks that counting and writing
// agree and that the buffer is never overrun.
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include "qv/core/CodePage.h"
#include "qv/core/FormatEngine.h"

namespace {

class FixedArgs {
public:
    int32_t Int32() { return kInts[next++ % 6]; }
    int64_t Int64() { return kLongs[next++ % 4]; }
    double Double() { return kDoubles[next++ % 9]; }
    void const *Pointer() { return &next; }
    char16_t const *WideText() { return next++ % 3 ? u"w\u00e9\U0001F600x" : nullptr; }
    char const *NarrowText() { return next++ % 3 ? "n\xC3\xA9\xE2\x82" : nullptr; }

private:
    static constexpr int32_t kInts[] = {0, -1, 42, INT32_MIN, INT32_MAX, 0xD800};
    static constexpr int64_t kLongs[] = {0, INT64_MIN, INT64_MAX, -5};
    static constexpr double kDoubles[] = {0.0, -0.0, 1.5, 1e308, 5e-324, -123456.789,
                                          std::numeric_limits<double>::infinity(),
                                          std::numeric_limits<double>::quiet_NaN(), 0.1};
    size_t next = 0;
};

template <class Char> void Format(std::basic_string<Char> const &format) {
    FixedArgs counting, writing;
    int needed = qv::detail::FormatText<Char>(nullptr, 0, format.c_str(), counting);
    Char buf[300];
    buf[299] = Char(0x55);
    int written = qv::detail::FormatText<Char>(buf, 299, format.c_str(), writing);
    if (needed != written || buf[299] != Char(0x55)) __builtin_trap();
    if (needed >= 0 && buf[std::min<size_t>(size_t(needed), 298)] != 0) __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    std::string format(reinterpret_cast<char const *>(data), size);
    Format(format);
    if (!format.empty()) {
        std::u16string wide(format.size(), u'\0');
        wide.resize(size_t(qv::MultiByteToWideChar(qv::CP_UTF8, format.data(), int(format.size()), wide.data(),
                                                   int(wide.size()))));
        Format(wide);
    }
    return 0;
}
