// CCriticalSection's slow paths: a recursive Enter, spinning, and the futex.
#include "qv/threads/CriticalSection.h"

#include "qv/platform/Futex.h"

namespace qv {

CCriticalSection::CCriticalSection(uint32_t spinCount) : spinCount(spinCount) {}

CCriticalSection::CCriticalSection(CCriticalSection const &other) : spinCount(other.spinCount) {}

CCriticalSection::~CCriticalSection() = default;

void CCriticalSection::EnterHeld() {
    uintptr_t const me = ThisThread();
    // Only this thread ever stores its own id, so seeing it means it holds the lock.
    if (owner.load(std::memory_order_relaxed) == me) {
        ++depth;
        return;
    }
    for (uint32_t spin = 0; spin < spinCount; ++spin) {
        uint32_t expected = kFree;
        if (state.compare_exchange_weak(expected, kHeld, std::memory_order_acquire, std::memory_order_relaxed)) {
            owner.store(me, std::memory_order_relaxed);
            depth = 1;
            return;
        }
    }
    // Mark the lock as having sleepers and sleep until it comes back free;
    // taking it in that state keeps the mark, so the next Leave wakes the
    // next sleeper.
    while (state.exchange(kSleepers, std::memory_order_acquire) != kFree)
        platform::FutexWait(state, kSleepers);
    owner.store(me, std::memory_order_relaxed);
    depth = 1;
}

void CCriticalSection::WakeOne() { platform::FutexWakeOne(state); }

} // namespace qv
