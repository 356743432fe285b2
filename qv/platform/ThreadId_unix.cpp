// OS binding: the kernel's thread id.
#include <unistd.h>

#include "qv/platform/ThreadId.h"

namespace qv {

uint32_t GetCurrentThreadId() {
    // Not cached: a forked child's thread has an id of its own.
    return uint32_t(gettid());
}

} // namespace qv
