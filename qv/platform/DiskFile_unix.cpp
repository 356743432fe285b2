// OS side: regular disk files opened with Windows dispositions and sharing, and their I/O.
//
// How a request is carried over:
// - The descriptor always can read (the share locks need that): O_RDWR for
//   write access or create-or-truncate, otherwise O_RDONLY. So a write-only
//   open needs read permission too, and can read.
// - Dispositions: open-or-create and create-or-truncate add O_CREAT,
//   must-not-exist O_CREAT | O_EXCL. Truncation happens with ftruncate only
//   after the share check passed, so a refused open never destroys a file.
// - Only regular files open: the path opens with O_NONBLOCK (a FIFO must not
//   block us), is checked with fstat, and O_NONBLOCK is cleared again.
// - Attributes of a created file: read-only gives permission 0444, anything
//   else 0666, both less the umask. The descriptor that creates a read-only
//   file may still write it, as on Windows. Hidden, system and temporary are
//   not carried here. Nothing changes the permissions of an existing file.
// - Delete-on-close unlinks the name right after the open succeeded, so a
//   crash leaves nothing behind; the data lives until the last descriptor
//   closes.
// - Write-through is O_DSYNC.
#include "qv/platform/DiskFile.h"

#include <cerrno>
#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "qv/platform/ShareLocks.h"
#include "qv/platform/Syscalls.h"

namespace qv {

static_assert(sizeof(off_t) == 8, "disk files need 64-bit offsets");

namespace {

int AccessMode(OpenRequest const &request) {
    return request.write || request.disposition == Disposition::CreateAlways ? O_RDWR : O_RDONLY;
}

int CreationFlags(Disposition disposition) {
    switch (disposition) {
    case Disposition::OpenAlways:
    case Disposition::CreateAlways:
        return O_CREAT;
    case Disposition::CreateNew:
        return O_CREAT | O_EXCL;
    case Disposition::OpenExisting:
        break;
    }
    return 0;
}

bool IsRegular(int fd) {
    struct stat st;
    return SysFstat(fd, &st) == 0 && S_ISREG(st.st_mode);
}

bool ClearNonBlocking(int fd) {
    int flags = SysGetFlags(fd);
    return flags != -1 && SysSetFlags(fd, flags & ~O_NONBLOCK) == 0;
}

// The steps that change the file, taken once the open is known to be allowed.
bool Commit(int fd, char const *path, OpenRequest const &request) {
    if (request.deleteOnClose && SysUnlink(path) != 0) return false;
    return request.disposition != Disposition::CreateAlways || SysFtruncate(fd, 0) == 0;
}

int Descriptor(intptr_t handle) {
    return int(handle);
}

// Repeats call(done, left) until n bytes passed, the end, or an error.
template <class Call> uint32_t TransferAll(uint32_t n, Call call) {
    uint32_t done = 0;
    while (done < n) {
        ssize_t moved = call(done, n - done);
        if (moved <= 0) break;
        done += uint32_t(moved);
    }
    return done;
}

} // namespace

intptr_t OpenDiskFile(char const *path, OpenRequest const &request) {
    int flags = AccessMode(request) | CreationFlags(request.disposition) | O_NONBLOCK | O_NOCTTY;
    if (request.writeThrough) flags |= O_DSYNC;
    int fd = SysOpen(path, flags, request.readOnly ? 0444 : 0666);
    if (fd == -1) return kNoDiskFile;
    if (IsRegular(fd) && ClearNonBlocking(fd) && ClaimShareAccess(fd, request) && Commit(fd, path, request)) return fd;
    int reason = errno;
    SysClose(fd);
    errno = reason;
    return kNoDiskFile;
}

intptr_t DuplicateDiskFile(intptr_t handle) {
    return handle == kNoDiskFile ? kNoDiskFile : SysDup(Descriptor(handle));
}

void CloseDiskFile(intptr_t handle) {
    if (handle != kNoDiskFile) SysClose(Descriptor(handle));
}

uint32_t ReadDiskFile(intptr_t handle, void *p, uint32_t n) {
    auto bytes = static_cast<char *>(p);
    return TransferAll(n,
                       [&](uint32_t done, uint32_t left) { return SysRead(Descriptor(handle), bytes + done, left); });
}

uint32_t WriteDiskFile(intptr_t handle, void const *p, uint32_t n) {
    auto bytes = static_cast<char const *>(p);
    return TransferAll(n,
                       [&](uint32_t done, uint32_t left) { return SysWrite(Descriptor(handle), bytes + done, left); });
}

int64_t SeekDiskFile(intptr_t handle, int64_t offset, SeekOrigin origin) {
    int whence = origin == SeekOrigin::Begin ? SEEK_SET : origin == SeekOrigin::Current ? SEEK_CUR : SEEK_END;
    return SysLseek(Descriptor(handle), offset, whence);
}

int64_t GetDiskFileSize(intptr_t handle) {
    struct stat st;
    return SysFstat(Descriptor(handle), &st) == 0 ? st.st_size : -1;
}

namespace {

// Writes zeros over [from, to) to make the file system find the blocks, then
// puts the position back. False at the first write that falls short.
bool WriteZerosAt(int fd, int64_t from, int64_t to) {
    static char const zeros[65536] = {};
    off_t position = SysLseek(fd, 0, SEEK_CUR);
    if (position == -1 || SysLseek(fd, from, SEEK_SET) != from) return false;
    bool written = true;
    for (int64_t at = from; written && at < to;) {
        uint32_t n = uint32_t(std::min<int64_t>(to - at, sizeof zeros));
        written = TransferAll(n, [&](uint32_t done, uint32_t left) { return SysWrite(fd, zeros + done, left); }) == n;
        at += n;
    }
    return SysLseek(fd, position, SEEK_SET) == position && written;
}

// Grows the file from size old to size with its blocks reserved, so that a
// full disk shows here and not at a later write. Where the file system cannot
// reserve (EOPNOTSUPP), the new bytes are written as zeros instead, and a
// failure cuts the file back.
bool GrowDiskFile(int fd, int64_t old, int64_t size) {
    if (SysFallocate(fd, FALLOC_FL_KEEP_SIZE, old, size - old) == 0) return SysFtruncate(fd, size) == 0;
    if (errno != EOPNOTSUPP && errno != ENOSYS) return false;
    if (SysFtruncate(fd, size) != 0) return false;
    if (WriteZerosAt(fd, old, size)) return true;
    int reason = errno;
    SysFtruncate(fd, old);
    errno = reason;
    return false;
}

} // namespace

bool SetDiskFileSize(intptr_t handle, int64_t size) {
    int fd = Descriptor(handle);
    int64_t old = GetDiskFileSize(handle);
    if (old < 0 || size < 0) return false;
    if (size > old) return GrowDiskFile(fd, old, size);
    return SysFtruncate(fd, size) == 0;
}

bool FlushDiskFile(intptr_t handle) {
    return SysFsync(Descriptor(handle)) == 0;
}

namespace {

// How far address lies past the start of its page.
uint64_t PageOffset(uint64_t address) {
    return address % uint64_t(sysconf(_SC_PAGESIZE));
}

} // namespace

void *MapDiskFileRange(intptr_t handle, int64_t offset, uint32_t length) {
    if (offset < 0) return nullptr;
    uint64_t lead = PageOffset(uint64_t(offset));
    void *base = SysMapShared(Descriptor(handle), off_t(uint64_t(offset) - lead), size_t(lead + length));
    return base == MAP_FAILED ? nullptr : static_cast<char *>(base) + lead;
}

void UnmapDiskFileRange(void *view, uint32_t length) {
    uint64_t lead = PageOffset(reinterpret_cast<uintptr_t>(view));
    SysUnmap(static_cast<char *>(view) - lead, size_t(lead + length));
}

bool RemoveDiskFile(char const *path) {
    return SysUnlink(path) == 0;
}

namespace {

// Makes what path names durable. Some file systems cannot sync a directory
// (they answer EINVAL) or open one for it; that is no failure, any other is.
bool SyncDiskPath(char const *path, bool directory) {
    int fd = SysOpen(path, directory ? O_RDONLY | O_DIRECTORY : O_RDONLY, 0);
    if (fd == -1) return directory;
    bool synced = SysFsync(fd) == 0 || (directory && (errno == EINVAL || errno == EOPNOTSUPP));
    SysClose(fd);
    return synced;
}

std::string DirectoryOf(char const *path) {
    char const *slash = std::strrchr(path, '/');
    if (!slash) return ".";
    return slash == path ? "/" : std::string(path, slash);
}

} // namespace

bool RenameDiskFile(char const *from, char const *to) {
    // The data reaches the disk before the name moves, so a crash never
    // leaves the new name on a file whose blocks were not written.
    if (!SyncDiskPath(from, false) || SysRename(from, to) != 0) return false;
    return SyncDiskPath(DirectoryOf(to).c_str(), true);
}

} // namespace qv
