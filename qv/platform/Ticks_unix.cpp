// OS binding: the monotonic clock, nanosleep and sched_yield.
#include <errno.h>
#include <sched.h>
#include <time.h>

#include <atomic>

#include "qv/platform/Ticks.h"

namespace qv {

namespace {

std::atomic<uint32_t> tickOffset{0};

} // namespace

uint32_t GetTickCount() {
    struct timespec now {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    uint64_t milliseconds = uint64_t(now.tv_sec) * 1000 + uint64_t(now.tv_nsec) / 1000000;
    return uint32_t(milliseconds) + tickOffset.load(std::memory_order_relaxed);
}

void SetTickCountOffset(uint32_t offset) {
    tickOffset.store(offset, std::memory_order_relaxed);
}

uint32_t GetTickCountOffset() {
    return tickOffset.load(std::memory_order_relaxed);
}

void Sleep(uint32_t milliseconds) {
    if (milliseconds == 0) {
        sched_yield();
        return;
    }
    bool forever = milliseconds == kInfinite;
    struct timespec left {
        time_t(milliseconds / 1000), long(milliseconds % 1000) * 1000000
    };
    if (forever) left.tv_sec = 86400;
    for (;;) {
        while (nanosleep(&left, &left) != 0 && errno == EINTR) {
        }
        if (!forever) return;
        left = {86400, 0};
    }
}

void SwitchToThread() {
    sched_yield();
}

} // namespace qv
