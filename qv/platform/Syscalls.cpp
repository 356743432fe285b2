// OS side: the replaceable table of file system calls and their EINTR-safe wrappers.
#include "qv/platform/Syscalls.h"

#include <cerrno>
#include <cstdio>
#include <sys/mman.h>
#include <unistd.h>

namespace qv {

namespace {

int OpenDefault(char const *path, int flags, mode_t mode) {
    return ::open(path, flags, mode);
}
int LockDefault(int fd, int cmd, struct flock *lock) {
    return ::fcntl(fd, cmd, lock);
}
int FlagsDefault(int fd, int cmd, int arg) {
    return ::fcntl(fd, cmd, arg);
}
int DupDefault(int fd) {
    return ::fcntl(fd, F_DUPFD_CLOEXEC, 0);
}
ssize_t CopyFileRangeDefault(int in, int out, size_t n) {
    return ::copy_file_range(in, nullptr, out, nullptr, n, 0);
}
void *MapSharedDefault(int fd, off_t offset, size_t length) {
    return ::mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, fd, offset);
}

constexpr SyscallTable kSystem{
    &OpenDefault, &::close,      &::read,  &::write,  &::lseek,    &::ftruncate,          &::fsync,
    &LockDefault, &FlagsDefault, &::fstat, &::unlink, &DupDefault, &CopyFileRangeDefault, &::rename,
    &::fallocate,    &MapSharedDefault, &::munmap,    &::fstatfs,
};

SyscallTable table = kSystem;

// Calls f until it is not interrupted by a signal.
template <class F> auto Retry(F f) {
    for (;;) {
        auto result = f();
        if (result != -1 || errno != EINTR) return result;
    }
}

} // namespace

SyscallTable &Syscalls() {
    return table;
}
void ResetSyscalls() {
    table = kSystem;
}

int SysOpen(char const *path, int flags, mode_t mode) {
    return Retry([&] { return table.open(path, flags | O_CLOEXEC, mode); });
}
int SysClose(int fd) {
    return table.close(fd);
}
ssize_t SysRead(int fd, void *buf, size_t n) {
    return Retry([&] { return table.read(fd, buf, n); });
}
ssize_t SysWrite(int fd, void const *buf, size_t n) {
    return Retry([&] { return table.write(fd, buf, n); });
}
off_t SysLseek(int fd, off_t offset, int whence) {
    return table.lseek(fd, offset, whence);
}
int SysFtruncate(int fd, off_t length) {
    return Retry([&] { return table.ftruncate(fd, length); });
}
int SysFsync(int fd) {
    return Retry([&] { return table.fsync(fd); });
}
int SysLock(int fd, int cmd, struct flock *lock) {
    return Retry([&] { return table.fcntlLock(fd, cmd, lock); });
}
int SysGetFlags(int fd) {
    return Retry([&] { return table.fcntlFlags(fd, F_GETFL, 0); });
}
int SysSetFlags(int fd, int flags) {
    return Retry([&] { return table.fcntlFlags(fd, F_SETFL, flags); });
}
int SysFstat(int fd, struct stat *st) {
    return Retry([&] { return table.fstat(fd, st); });
}
int SysUnlink(char const *path) {
    return Retry([&] { return table.unlink(path); });
}
int SysDup(int fd) {
    return Retry([&] { return table.dup(fd); });
}
ssize_t SysCopyFileRange(int in, int out, size_t n) {
    return Retry([&] { return table.copyFileRange(in, out, n); });
}
int SysRename(char const *from, char const *to) {
    return Retry([&] { return table.rename(from, to); });
}
int SysFallocate(int fd, int mode, off_t offset, off_t length) {
    return Retry([&] { return table.fallocate(fd, mode, offset, length); });
}
void *SysMapShared(int fd, off_t offset, size_t length) {
    return table.mapShared(fd, offset, length);
}
int SysUnmap(void *view, size_t length) {
    return table.unmap(view, length);
}
int SysFstatfs(int fd, struct statfs *st) {
    return Retry([&] { return table.fstatfs(fd, st); });
}

} // namespace qv
