#include "qv/threads/MainThread.h"

#include <atomic>
#include <cstdint>

#include "qv/platform/ThreadId.h"

namespace qv {

namespace {

std::atomic<uint32_t> mainThreadId{0}; // thread ids are never 0

} // namespace

bool qvInMainUIThread() {
    uint32_t self = GetCurrentThreadId();
    uint32_t expected = 0;
    if (mainThreadId.compare_exchange_strong(expected, self, std::memory_order_acq_rel)) return true;
    return expected == self;
}

bool qvNotInMainUIThread() {
    return !qvInMainUIThread();
}

} // namespace qv
