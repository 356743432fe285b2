// CWordLock: a plain (not recursive) lock in one 32-bit word, for data that
// one thread touches all the time and others only now and then. Internal to
// libqv.
//
// A free lock is taken with one compare-and-swap and given back with one
// exchange, inline; only a lock that others wait for calls the kernel (a
// futex). It meets the standard's Lockable requirements, so std::lock_guard
// and std::unique_lock work with it. Threads: any; unlock only from the
// thread that locked.
#pragma once

#include <atomic>
#include <cstdint>

#include "qv/platform/Futex.h"

namespace qv {

class CWordLock {
public:
    CWordLock() = default;
    CWordLock(CWordLock const &) = delete;
    CWordLock &operator=(CWordLock const &) = delete;

    void lock() {
        uint32_t expected = kFree;
        if (!state.compare_exchange_strong(expected, kHeld, std::memory_order_acquire, std::memory_order_relaxed))
            LockHeld();
    }
    bool try_lock() {
        uint32_t expected = kFree;
        return state.compare_exchange_strong(expected, kHeld, std::memory_order_acquire, std::memory_order_relaxed);
    }
    void unlock() {
        if (state.exchange(kFree, std::memory_order_release) == kSleepers) platform::FutexWakeOne(state);
    }

private:
    static constexpr uint32_t kFree = 0, kHeld = 1, kSleepers = 2;

    // Marks the lock as having sleepers and sleeps until it is handed back;
    // the mark stays with whoever takes it next, so no wake-up is lost.
    void LockHeld() {
        while (state.exchange(kSleepers, std::memory_order_acquire) != kFree)
            platform::FutexWait(state, kSleepers);
    }

    std::atomic<uint32_t> state{kFree};
};

} // namespace qv
