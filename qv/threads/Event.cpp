#include "qv/threads/Event.h"

#include <chrono>

#include "qv/platform/MessageQueue.h"
#include "qv/platform/Ticks.h"

namespace qv {

CEvent::CEvent(bool signalled, bool manualReset) : manualReset(manualReset), signalled(signalled) {}

CEvent::CEvent(CEvent const &other) : manualReset(other.manualReset), signalled(false) {}

CEvent::~CEvent() = default;

// A pulse counts only for waits begun before it; an auto-reset one only
// until one of them took it.
bool CEvent::Ready(uint64_t pulsesAtStart) const {
    return signalled || (pulses != pulsesAtStart && (manualReset || pulsePending));
}

void CEvent::Take() {
    if (manualReset) return;
    signalled = false;
    pulsePending = false;
}

void CEvent::Leave() {
    --waiters;
    // A pulse nobody is left to take must not linger.
    if (waiters == 0) pulsePending = false;
}

bool CEvent::Wait(uint32_t timeout, bool pumpMessages) {
    if (pumpMessages) return PumpingWait(timeout);
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
    if (got) Take();
    Leave();
    return got;
}

// Serves up to 100 messages, tests the event, and sleeps until the event or
// new input comes; a full batch skips the sleep so the queue is drained first.
bool CEvent::PumpingWait(uint32_t timeout) {
    constexpr int kBatch = 100;
    for (;;) {
        int served = 0;
        SMessage msg;
        while (served < kBatch && PeekQueuedMessage(msg, kPeekRemove)) {
            ++served;
            if (msg.message == kQuitMessage) return false;
            DispatchQueuedMessage(msg);
        }
        if (Wait(0)) return true;
        if (served == kBatch) continue;
        EWakeReason const reason = WaitForObjectOrMessage(this, timeout, kWakeAll);
        if (reason != EWakeReason::Message) return reason == EWakeReason::Object;
    }
}

uint64_t CEvent::BeginWait(CWaker *waker) {
    std::lock_guard<std::mutex> lock(mutex);
    ++waiters;
    wakers.Add(waker);
    return pulses;
}

bool CEvent::TryTake(uint64_t pulsesAtStart) {
    std::lock_guard<std::mutex> lock(mutex);
    if (!Ready(pulsesAtStart)) return false;
    Take();
    return true;
}

void CEvent::EndWait(CWaker *waker) {
    std::lock_guard<std::mutex> lock(mutex);
    wakers.Remove(waker);
    Leave();
}

bool CEvent::Signal() {
    std::lock_guard<std::mutex> lock(mutex);
    signalled = true;
    pulsePending = false;
    if (manualReset)
        changed.notify_all();
    else
        changed.notify_one();
    wakers.WakeAll();
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
    signalled = false;
    if (manualReset) {
        ++pulses;
        changed.notify_all();
        wakers.WakeAll();
    } else if (waiters != 0) {
        ++pulses;
        pulsePending = true;
        changed.notify_one();
        wakers.WakeAll();
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
    return AsHandle(const_cast<CEvent *>(this));
}

} // namespace qv
