// The system calls of the disk file layer, wrapped once.
//
// Every call goes through one table of function pointers, so tests can
// replace an entry to inject faults (an interrupted call, a short or failing
// write) and restore it afterwards, much as a database's VFS does. The Sys*
// wrappers retry EINTR, always add O_CLOEXEC to open and dup, and report
// failure as -1 with errno set, like the calls themselves. close is never
// retried: Linux releases the descriptor even when close is interrupted, so a
// retry could close a descriptor another thread just received.
//
// The table is process-wide and not locked: swap entries only while no other
// thread does file I/O (tests do it between cases).
// Internal to libqv and its tests; never installed.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/types.h>

#include "qv/core/Export.h"

namespace qv {

struct SyscallTable {
    int (*open)(char const *path, int flags, mode_t mode);
    int (*close)(int fd);
    ssize_t (*read)(int fd, void *buf, size_t n);
    ssize_t (*write)(int fd, void const *buf, size_t n);
    off_t (*lseek)(int fd, off_t offset, int whence);
    int (*ftruncate)(int fd, off_t length);
    int (*fsync)(int fd);
    int (*fcntlLock)(int fd, int cmd, struct flock *lock); // F_OFD_SETLK, F_OFD_GETLK
    int (*fcntlFlags)(int fd, int cmd, int arg);           // F_GETFL (arg ignored), F_SETFL
    int (*fstat)(int fd, struct stat *st);
    int (*unlink)(char const *path);
    int (*dup)(int fd); // the default returns a close-on-exec duplicate
    // copy_file_range from the current offset of in to that of out.
    ssize_t (*copyFileRange)(int in, int out, size_t n);
    int (*rename)(char const *from, char const *to);
    // Reserves the blocks of [offset, offset + length) (mode 0: the size grows to cover them).
    int (*fallocate)(int fd, int mode, off_t offset, off_t length);
    // A shared, writable view of [offset, offset + length) of fd (offset page-aligned); MAP_FAILED on failure.
    void *(*mapShared)(int fd, off_t offset, size_t length);
    int (*unmap)(void *view, size_t length);
    int (*fstatfs)(int fd, struct statfs *st);
};

// The live table; tests replace entries and call ResetSyscalls() after.
QV_API SyscallTable &Syscalls();
// Restores every entry to the system's own call.
QV_API void ResetSyscalls();

int SysOpen(char const *path, int flags, mode_t mode);
int SysClose(int fd);
ssize_t SysRead(int fd, void *buf, size_t n);
ssize_t SysWrite(int fd, void const *buf, size_t n);
off_t SysLseek(int fd, off_t offset, int whence);
int SysFtruncate(int fd, off_t length);
int SysFsync(int fd);
int SysLock(int fd, int cmd, struct flock *lock);
int SysGetFlags(int fd);
int SysSetFlags(int fd, int flags);
int SysFstat(int fd, struct stat *st);
int SysUnlink(char const *path);
int SysDup(int fd);
ssize_t SysCopyFileRange(int in, int out, size_t n);
int SysRename(char const *from, char const *to);
int SysFallocate(int fd, int mode, off_t offset, off_t length);
void *SysMapShared(int fd, off_t offset, size_t length);
int SysUnmap(void *view, size_t length);
int SysFstatfs(int fd, struct statfs *st);

} // namespace qv
