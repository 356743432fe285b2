/// @file
/// CEvent: a signal that threads wait for, reset by hand or by the first
/// waiter it releases.
///
/// A manual-reset event stays signalled until Reset and releases every
/// waiter; an auto-reset event releases one waiter (or lets one later Wait
/// through) and becomes unsignalled again. Pulse releases the threads that are
/// waiting at that moment (all of them, or one for an auto-reset event) and
/// leaves the event unsignalled; with nobody waiting it does nothing.
///
/// Wait with pumpMessages keeps the calling thread's message queue served
/// (qv/platform/MessageQueue.h) while it waits, so that a thread with a loop
/// doesn't stop dispatching; without it Wait blocks the thread. getHandle
/// gives a handle that CMessageQueueInvoker::SafeWait accepts. A copy is a
/// new, unsignalled event with the same reset mode. The bool results are true
/// unless stated. Thread-safe.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "qv/core/Export.h"
#include "qv/platform/Waitable.h"

namespace qv {

/// @copydoc Event.h
class QV_API CEvent final : private IWaitable {
public:
    explicit CEvent(bool signalled = false, bool manualReset = false); ///< the initial state and the reset mode
    CEvent(CEvent const &other); ///< a new unsignalled event with the same reset mode
    CEvent &operator=(CEvent const &) = delete;
    ~CEvent();

    /// Timeout in milliseconds, 0xFFFFFFFF without limit; true when the event
    /// was signalled (and, for auto reset, taken by this call). A pumping wait
    /// dispatches up to 100 messages at a time; every message it serves starts
    /// the timeout anew, so messages can lengthen it without limit (callers
    /// depend on this), and a quit message ends it with false (the quit is
    /// consumed).
    bool Wait(uint32_t timeout, bool pumpMessages = false);
    bool Signal(); ///< sets the event; true
    bool Reset();  ///< clears the event; true
    bool Pulse();  ///< wakes those waiting now and leaves the event unsignalled (see the file comment)
    /// Signals or resets; gives its argument.
    bool setSignaled(bool signalled);
    /// Wait(0): for an auto-reset event this takes the signal.
    bool getSignaled();
    void *getHandle() const; ///< a handle for CMessageQueueInvoker::SafeWait

private:
    bool PumpingWait(uint32_t timeout);
    bool Ready(uint64_t pulsesAtStart) const;
    void Take();
    void Leave();

    uint64_t BeginWait(CWaker *waker) override;
    bool TryTake(uint64_t pulsesAtStart) override;
    void EndWait(CWaker *waker) override;

    bool const manualReset;
    std::mutex mutex;
    std::condition_variable changed;
    bool signalled;
    uint32_t waiters = 0;
    uint64_t pulses = 0;       ///< pulses that found waiters, so far
    bool pulsePending = false; ///< an auto-reset pulse that no waiter took yet
    CWakerList wakers;         ///< pumping waits in progress
};

} // namespace qv
