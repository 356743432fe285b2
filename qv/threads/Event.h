// CEvent: a signal that threads wait for, reset by hand or by the first
// waiter it releases.
//
// A manual-reset event stays signalled until Reset and releases every
// waiter; an auto-reset event releases one waiter (or lets one later Wait
// through) and becomes unsignalled again. Pulse releases the threads that are
// waiting at that moment (all of them, or one for an auto-reset event) and
// leaves the event unsignalled; with nobody waiting it does nothing.
//
// The wait that keeps a thread's message queue served is not available yet:
// Wait blocks the thread. A copy is a new, unsignalled event with the same
// reset mode. The bool results are true unless stated. Thread-safe.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "qv/core/Export.h"

namespace qv {

class QV_API CEvent {
public:
    explicit CEvent(bool signalled = false, bool manualReset = false);
    CEvent(CEvent const &other);
    CEvent &operator=(CEvent const &) = delete;
    ~CEvent();

    // Timeout in milliseconds, 0xFFFFFFFF without limit; true when the event
    // was signalled (and, for auto reset, taken by this call).
    bool Wait(uint32_t timeout);
    bool Signal();
    bool Reset();
    bool Pulse();
    // Signals or resets; gives its argument.
    bool setSignaled(bool signalled);
    // Wait(0): for an auto-reset event this takes the signal.
    bool getSignaled();
    void *getHandle() const;

private:
    bool Ready(uint64_t pulsesAtStart) const;
    void Take();

    bool const manualReset;
    std::mutex mutex;
    std::condition_variable changed;
    bool signalled;
    uint32_t waiters = 0;
    uint64_t pulses = 0;       // manual-reset pulses so far
    bool pulsePending = false; // an auto-reset pulse that no waiter took yet
};

} // namespace qv
