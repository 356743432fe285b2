// OS binding: the futex system call (wait and wake, process-private).
#include "qv/platform/Futex.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace qv::platform {

static_assert(sizeof(std::atomic<uint32_t>) == sizeof(uint32_t), "a futex word is 32 bits");

void FutexWait(std::atomic<uint32_t> &word, uint32_t expected) {
    // EAGAIN (the word changed), EINTR and spurious returns all send the
    // caller back to its own test.
    syscall(SYS_futex, reinterpret_cast<uint32_t *>(&word), FUTEX_WAIT_PRIVATE, expected, nullptr, nullptr, 0);
}

void FutexWakeOne(std::atomic<uint32_t> &word) {
    syscall(SYS_futex, reinterpret_cast<uint32_t *>(&word), FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}

} // namespace qv::platform
