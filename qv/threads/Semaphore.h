/// @file
/// CSemaphore: a counting semaphore that serves its waiters strictly in the
/// order they came, each taking any number of permits at once.
///
/// The count starts at the maximum given to the constructor and never
/// exceeds it. A request never overtakes the queue, even when enough permits
/// are free for it. Not recursive: every Acquire takes permits of its own.
/// The destructor wakes nobody: its owner makes sure no thread still waits.
/// A copy is a new, full semaphore with the same maximum. Thread-safe.
///
/// Failure: Acquire gives false at its time limit (and at once with timeout 0
/// when it cannot be served without waiting, and at once for more permits
/// than the maximum); Release beyond the maximum
/// gives false and changes nothing. When the system has no memory for a
/// waiter's record, that waiter stays out of the queue and times out.
#pragma once

#include <cstdint>
#include <mutex>

#include "qv/core/Array.h"
#include "qv/core/Export.h"

namespace qv {

class CEvent;

/// @copydoc Semaphore.h
class QV_API CSemaphore {
public:
    explicit CSemaphore(uint32_t count);   ///< count free units, which is also the maximum
    CSemaphore(CSemaphore const &other);   ///< a new semaphore with the same maximum, all units free
    CSemaphore &operator=(CSemaphore const &) = delete;
    ~CSemaphore();

    /// Takes count permits, waiting in turn; timeout in milliseconds,
    /// 0xFFFFFFFF without limit. False at the time limit, or at once for more
    /// than the maximum.
    bool Acquire(uint32_t count, uint32_t timeout);
    /// Gives count permits back; false, changing nothing, beyond the maximum.
    bool Release(uint32_t count);

private:
    struct SEventEntry {
        CEvent *event;
        bool inUse;
    };
    struct SRequest {
        CEvent *event;
        uint32_t count;
        uint32_t threadId;
        bool granted;
    };

    CEvent *AcquireEvent();
    void ReleaseEvent(CEvent *event);
    uint32_t FindRequest(CEvent *event) const;
    void GrantInOrder();
    bool WaitInQueue(CEvent *event, uint32_t timeout);
    void LeaveQueue(CEvent *event, bool granted);

    uint32_t maximum;
    uint32_t count;
    std::mutex mutex;
    CEvent *currentEvent = nullptr;
    uint32_t currentThread = 0;
    TArray<SEventEntry> eventPool;
    TArray<SRequest> requests;
};

} // namespace qv
