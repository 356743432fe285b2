// An advisory lock on a whole file, held across processes and threads alike
// (an open-file-description lock: each CFileLock has its own description, so
// two objects exclude each other even inside one process). Internal to libqv.
//
// Acquire creates the lock file if need be (mode 0666 less the umask) and
// waits until the lock is granted; Release, or the destructor, lets it go.
// The lock file is never removed: removing it would let a waiter lock a name
// that no longer exists. Failure (the file cannot be made, the lock call
// fails) is false, and then nothing is held.
// Threads: one object belongs to one thread.
#pragma once

#include <cstdint>

#include "qv/core/String.h"

namespace qv {

class CFileLock {
public:
    CFileLock() = default;
    ~CFileLock();
    CFileLock(CFileLock const &) = delete;
    CFileLock &operator=(CFileLock const &) = delete;

    bool Acquire(char16_t const *path);
    void Release();
    bool IsHeld() const { return fd >= 0; }

private:
    int fd = -1;
};

// Identity of a disk file's present content: device, inode, size and
// modification time. A file replaced by a rename has a new inode, so a change
// is seen even within one clock tick. False (and zeros) when there is no file.
struct SFileIdentity {
    unsigned long long device = 0, inode = 0, size = 0, modified = 0;
    bool operator==(SFileIdentity const &) const = default;
};
bool GetFileIdentity(char16_t const *path, SFileIdentity &identity);
// The same for the file an open handle (a CFile's) reads, by fstat.
bool GetFileIdentity(intptr_t handle, SFileIdentity &identity);

// $XDG_CONFIG_HOME if set and absolute, else $HOME/.config; empty if neither.
CString GetUserConfigDirectory();

} // namespace qv
