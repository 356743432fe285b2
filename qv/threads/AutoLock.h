/// @file
/// Scope guards: a lock taken by the constructor and given back by the
/// destructor. The lock must outlive the guard; a null pointer guards
/// nothing. CAutoMutex waits without limit; a mutex whose owner was
/// abandoned is owned all the same and is released at the end of the scope.
#pragma once

#include "qv/platform/Ticks.h"
#include "qv/threads/CriticalSection.h"
#include "qv/threads/Mutex.h"

namespace qv {

/// @copydoc AutoLock.h
class CAutoCriticalSection {
public:
    /// Enters section (null: nothing) until destruction.
    explicit CAutoCriticalSection(CCriticalSection *section) : section(section) {
        if (section) section->Enter();
    }
    ~CAutoCriticalSection() {
        if (section) section->Leave();
    }
    CAutoCriticalSection(CAutoCriticalSection const &) = delete;
    CAutoCriticalSection &operator=(CAutoCriticalSection const &) = delete;

private:
    CCriticalSection *section;
};

/// @copydoc AutoLock.h
class CAutoMutex {
public:
    /// Acquires mutex without time limit (null: nothing) until destruction.
    explicit CAutoMutex(CMutex *mutex) : mutex(mutex) {
        if (mutex) mutex->Acquire(kInfinite);
    }
    ~CAutoMutex() {
        if (mutex) mutex->Release();
    }
    CAutoMutex(CAutoMutex const &) = delete;
    CAutoMutex &operator=(CAutoMutex const &) = delete;

private:
    CMutex *mutex;
};

/// Either kind of lock, remembered by which pointer is set.
class CAutoLock {
public:
    /// Holds the lock given (null: nothing) until destruction.
    ///@{
    explicit CAutoLock(CCriticalSection *section) : section(section) {}
    explicit CAutoLock(CMutex *mutex) : mutex(mutex) {}
    ///@}

private:
    CAutoCriticalSection section{nullptr};
    CAutoMutex mutex{nullptr};
};

} // namespace qv
