// The system mutex under CMutex. Internal to libqv.
//
// Recursive and owned by a thread, as a Windows mutex is. When the owning
// thread or process ends without releasing it, the next successful wait
// reports MutexWait::Abandoned and the waiter owns it from then on. A named
// mutex lives in POSIX shared memory under that name, so every process that
// opens the name shares it; the memory goes away when the last handle in the
// last process closes (a crashed process leaves its handle counted, and the
// name stays until the machine restarts). Only the user who made it can open
// it. A handle deleted while a thread of this process owns the mutex leaves
// its memory in place: the system keeps a pointer into it until that thread
// ends. Thread-safe: any thread may wait and release.
#pragma once

#include <cstdint>
#include <string>

namespace qv {

enum class MutexWait { Signaled, Abandoned, TimedOut, Failed };

class NamedMutex {
public:
    // Creates or opens the mutex of utf8Name; a null or empty name makes one
    // private to this object. Null when the system refuses (the name is too
    // long, no memory, no right to an existing one). The caller deletes it.
    static NamedMutex *Open(char const *utf8Name);
    ~NamedMutex();
    NamedMutex(NamedMutex const &) = delete;
    NamedMutex &operator=(NamedMutex const &) = delete;

    // Timeout in milliseconds; 0 only tries, 0xFFFFFFFF waits without limit.
    MutexWait Wait(uint32_t timeout);
    // False when the calling thread does not own the mutex.
    bool Release();

    struct Shared; // the memory the mutex lives in

private:
    NamedMutex(Shared *shared, std::string shmName);

    Shared *shared;
    std::string shmName; // empty for a private mutex
};

} // namespace qv
