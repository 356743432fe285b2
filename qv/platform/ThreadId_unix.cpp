// OS binding: the kernel's thread id.
#include <pthread.h>
#include <unistd.h>

#include "qv/platform/ThreadId.h"

namespace qv {

namespace {

// Asking the kernel costs a system call, and lock bookkeeping asks often.
thread_local uint32_t cachedId = 0;

// The forking thread lives on in the child under an id of its own.
void ForgetIdInChild() {
    cachedId = 0;
}

} // namespace

uint32_t GetCurrentThreadId() {
    static bool const forgetsAtFork = pthread_atfork(nullptr, nullptr, ForgetIdInChild) == 0;
    (void)forgetsAtFork;
    if (cachedId == 0) cachedId = uint32_t(gettid());
    return cachedId;
}

} // namespace qv
