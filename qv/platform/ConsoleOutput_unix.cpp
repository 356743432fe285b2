// OS binding: raw writes to standard output.
#include "qv/platform/ConsoleOutput.h"

#include <unistd.h>

#include <cerrno>

namespace qv::platform {

void WriteStandardOutput(char const *text, size_t length) {
    while (length) {
        ssize_t n = ::write(STDOUT_FILENO, text, length);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return;
        text += n;
        length -= size_t(n);
    }
}

} // namespace qv::platform
