/// @file
/// CMultiLock: up to `slots` threads at once (Enter), or one thread alone
/// (EnterExclusive), built on a CSemaphore with that many permits.
///
/// Entries are counted per thread: a thread that is already in enters again
/// without a permit, and only its last Leave gives the permit back. A thread
/// that is in may also enter exclusively; it then takes the remaining
/// permits. Leave and LeaveExclusive without an entry do nothing.
///
/// EnterExclusive(false) answers the other way round, as existing callers
/// expect: when the permits cannot be had at once it counts the entry and
/// gives true; when they can, it keeps them but gives false and counts
/// nothing. Callers use EnterExclusive(true).
///
/// A thread's record is made at its first call and kept for the lock's life.
/// Negative slots count as 0. A copy is a new lock with the same number of
/// slots. Thread-safe.
#pragma once

#include <cstdint>
#include <mutex>

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/threads/Semaphore.h"

namespace qv {

/// @copydoc MultiLock.h
class QV_API CMultiLock {
public:
    explicit CMultiLock(int slots);      ///< that many slots (below 0: none)
    CMultiLock(CMultiLock const &other); ///< a new lock with as many slots, all free
    CMultiLock &operator=(CMultiLock const &) = delete;
    ~CMultiLock();

    /// Takes one permit (none if the thread is in already). With wait false,
    /// true only when a permit was free at once; false on a lock without slots.
    bool Enter(bool wait);
    /// Takes every permit (the remaining ones for a thread already in);
    /// EnterExclusive(false) answers the other way round
    /// (see the file comment).
    bool EnterExclusive(bool wait);
    /// Undo one Enter or EnterExclusive; nothing without an entry.
    ///@{
    void Leave();
    void LeaveExclusive();
    ///@}
    /// Entries held by all threads together.
    int GetLockCount();

private:
    struct SThreadInfo {
        uint32_t threadId;
        int32_t shared;
        int32_t exclusive;
    };

    SThreadInfo &Row(); ///< the calling thread's, under the mutex
    uint32_t ExclusivePermits(SThreadInfo const &row) const;

    int slots;
    CSemaphore semaphore;
    std::mutex mutex; ///< over the table; always taken before the semaphore's
    TArray<SThreadInfo> threads;
};

} // namespace qv
