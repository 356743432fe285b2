/// @file
/// CCriticalSection: a recursive lock for the threads of one process.
///
/// Enter may be called again by the thread that holds it; each Enter needs
/// its Leave. Leave from a thread that does not hold it is undefined, as it is
/// for the system's critical sections. A spin count above 0 makes Enter try
/// that many times before it blocks, for locks held only briefly. A copy is a
/// new, unlocked lock with the same spin count: copies never share a lock.
///
/// Enter and Leave are inline: a free lock is taken with one compare-and-swap
/// and given back with one exchange (plain stores while the process has a
/// single thread); only a lock that is held (by this thread
/// again, or by another) goes out of line, and only a lock with sleepers
/// calls the kernel (a futex) on Leave.
#pragma once

#include <sys/single_threaded.h>

#include <atomic>
#include <cstdint>

#include "qv/core/Export.h"

namespace qv {

/// @copydoc CriticalSection.h
class QV_API CCriticalSection {
public:
    explicit CCriticalSection(uint32_t spinCount = 0); ///< an unlocked lock
    CCriticalSection(CCriticalSection const &other);   ///< a new unlocked lock, same spin count
    CCriticalSection &operator=(CCriticalSection const &) = delete;
    ~CCriticalSection();

    /// Takes the lock, waiting while another thread holds it; the holder may
    /// enter again and must Leave as often.
    void Enter() {
        // While the process has one thread, nobody else can look: plain
        // loads and stores do (glibc's own mutex skips its atomics the same
        // way). A thread is only started from this one, which orders the
        // switch.
        if (__libc_single_threaded && state.load(std::memory_order_relaxed) == kFree) {
            state.store(kHeld, std::memory_order_relaxed);
            owner.store(ThisThread(), std::memory_order_relaxed);
            depth = 1;
            return;
        }
        uint32_t expected = kFree;
        if (state.compare_exchange_strong(expected, kHeld, std::memory_order_acquire, std::memory_order_relaxed)) {
            owner.store(ThisThread(), std::memory_order_relaxed);
            depth = 1;
            return;
        }
        EnterHeld();
    }

    /// Gives up one Enter; the lock is free after the last.
    void Leave() {
        if (--depth != 0) return;
        owner.store(0, std::memory_order_relaxed);
        if (__libc_single_threaded) { // nobody sleeps on it, nobody can look
            state.store(kFree, std::memory_order_relaxed);
            return;
        }
        if (state.exchange(kFree, std::memory_order_release) == kSleepers) WakeOne();
    }

private:
    static constexpr uint32_t kFree = 0, kHeld = 1, kSleepers = 2;

    /// The thread's control block: unique among live threads, never 0, and
    /// read from a register without a call.
    static uintptr_t ThisThread() { return reinterpret_cast<uintptr_t>(__builtin_thread_pointer()); }

    void EnterHeld(); ///< the lock was not free: recursion, spinning, sleeping
    void WakeOne();

    std::atomic<uint32_t> state{kFree};
    std::atomic<uintptr_t> owner{0}; ///< the holder; only it writes its own value
    uint32_t depth = 0;              ///< Enters of the holder; only the holder touches it
    uint32_t spinCount;
};

} // namespace qv
