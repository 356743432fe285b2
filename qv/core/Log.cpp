// The log entry point until the log itself arrives: one formatted line to the
// debug text sink.
#include "qv/core/Log.h"

#include <cstdarg>
#include <memory>
#include <new>

#include "qv/core/DebugOutput.h"
#include "qv/core/WideFormat.h"

namespace qv {

void qvLogWriteLineW(char16_t const *fmt, ...) {
    va_list args, counting;
    va_start(args, fmt);
    va_copy(counting, args);
    int length = _vscwprintf(fmt, counting);
    va_end(counting);
    char16_t small[256];
    std::unique_ptr<char16_t[]> large;
    char16_t *line = small;
    size_t size = length < 0 ? 0 : size_t(length) + 2; // the text, "\n", the terminator
    if (size > sizeof small / sizeof small[0]) {
        large.reset(new (std::nothrow) char16_t[size]);
        line = large.get();
    }
    if (line && size) {
        vswprintf(line, size, fmt, args);
        line[size - 2] = u'\n';
        line[size - 1] = 0;
        OutputDebugStringW(line);
    }
    va_end(args);
}

} // namespace qv
