/// @file
/// CMutex: a recursive lock that can be shared between processes by name.
///
/// A mutex is owned by the thread that acquired it and may be acquired again
/// by that thread; each successful Acquire needs its Release. A named mutex
/// (UTF-16 name, '/' allowed) is one lock for every process of this user that
/// opens the same name; a null or empty name makes a lock private to this
/// object. When an owning thread or process ends without releasing, the next
/// Acquire gets ownership but answers false (the owner was abandoned): only a
/// mutex that was free counts as success, and existing callers rely on that.
/// Such a caller owns the mutex and releases it. A copy is a new, private,
/// unowned mutex.
///
/// Failure: when the system refuses the mutex (name too long, no memory),
/// getHandle() is null, Acquire and Release give false. Thread-safe.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"

namespace qv {

class NamedMutex;

/// @copydoc Mutex.h
class QV_API CMutex {
public:
    explicit CMutex(char16_t const *name = nullptr); ///< opens the named mutex, or a new unnamed one for null
    CMutex(CMutex const &other);                     ///< a new unnamed mutex
    CMutex &operator=(CMutex const &) = delete;
    ~CMutex();

    /// Timeout in milliseconds, 0xFFFFFFFF without limit. True only when the
    /// mutex was free or already the caller's.
    bool Acquire(uint32_t timeout);
    /// False when the calling thread does not own the mutex.
    bool Release();
    /// The system mutex, for identity only; null after a failed construction.
    void *getHandle() const;

private:
    NamedMutex *mutex;
};

} // namespace qv
