#include "qv/threads/Event.h"

#include <chrono>

#include "qv/platform/Ticks.h"

namespace qv {

CEvent::CEvent(bool signalled, bool manualReset) : manualReset(manualReset), signalled(signalled) {}

CEvent::CEvent(CEvent const &other) : manualReset(other.manualReset), signalled(false) {}

CEvent::~CEvent() = default;

bool CEvent::Ready(uint64_t pulsesAtStart) const {
    return signalled || pulses != pulsesAtStart;
}

void CEvent::Take() {
    if (manualReset) return;
    signalled = false;
    pulsePending = false;
}

bool CEvent::Wait(uint32_t timeout) {
    std::unique_lock<std::mutex> lock(mutex);
    uint64_t const start = pulses;
    auto ready = [this, start] { return Ready(start); };
    ++waiters;
    bool got = ready();
    if (!got && timeout == kInfinite) {
        changed.wait(lock, ready);
        got = true;
    } else if (!got && timeout != 0) {
        got = changed.wait_for(lock, std::chrono::milliseconds(timeout), ready);
    }
    --waiters;
    if (got && signalled) Take();
    // A pulse nobody is left to take must not linger as a signal.
    if (waiters == 0 && pulsePending) {
        signalled = false;
        pulsePending = false;
    }
    return got;
}

bool CEvent::Signal() {
    std::lock_guard<std::mutex> lock(mutex);
    signalled = true;
    pulsePending = false;
    if (manualReset)
        changed.notify_all();
    else
        changed.notify_one();
    return true;
}

bool CEvent::Reset() {
    std::lock_guard<std::mutex> lock(mutex);
    signalled = false;
    pulsePending = false;
    return true;
}

bool CEvent::Pulse() {
    std::lock_guard<std::mutex> lock(mutex);
    if (manualReset) {
        signalled = false;
        ++pulses;
        changed.notify_all();
    } else if (waiters != 0) {
        signalled = true;
        pulsePending = true;
        changed.notify_one();
    } else {
        signalled = false;
    }
    return true;
}

bool CEvent::setSignaled(bool signal) {
    if (signal)
        Signal();
    else
        Reset();
    return signal;
}

bool CEvent::getSignaled() {
    return Wait(0);
}

void *CEvent::getHandle() const {
    return const_cast<CEvent *>(this);
}

} // namespace qv
