// OS binding: the QV_DEBUG switch and raw writes to standard error.
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "qv/platform/DebugSink.h"

namespace qv::platform {

bool DebugToStandardError() {
    static bool const enabled = std::getenv("QV_DEBUG") != nullptr;
    return enabled;
}

void WriteStandardError(char const *text, size_t length) {
    while (length) {
        ssize_t n = ::write(STDERR_FILENO, text, length);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return;
        text += n;
        length -= size_t(n);
    }
}

} // namespace qv::platform
