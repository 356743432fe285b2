// CCriticalSection: a recursive lock for the threads of one process.
//
// Enter may be called again by the thread that holds it; each Enter needs
// its Leave. Leave from a thread that does not hold it is undefined, as it is
// for the system's critical sections. A spin count above 0 makes Enter try
// that many times before it blocks, for locks held only briefly. A copy is a
// new, unlocked lock with the same spin count: copies never share a lock.
#pragma once

#include <cstdint>
#include <mutex>

#include "qv/core/Export.h"

namespace qv {

class QV_API CCriticalSection {
public:
    explicit CCriticalSection(uint32_t spinCount = 0);
    CCriticalSection(CCriticalSection const &other);
    CCriticalSection &operator=(CCriticalSection const &) = delete;
    ~CCriticalSection();

    void Enter();
    void Leave();

private:
    uint32_t spinCount;
    std::recursive_mutex mutex;
};

} // namespace qv
