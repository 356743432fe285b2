// OS side: copying between two disk file descriptors inside the kernel.
#include "qv/platform/DiskFileCopy.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/statfs.h>

#include <cerrno>

#include "qv/platform/Syscalls.h"

namespace qv {

namespace {

// The errors that say this pair of files cannot be copied in the kernel
// (another file system, a special file, an appending target, an old kernel),
// so the caller copies through its own buffer instead.
bool IsUnsupported(int error) {
    return error == EXDEV || error == ENOSYS || error == EINVAL || error == EOPNOTSUPP || error == EBADF ||
           error == ETXTBSY;
}

// The errors that say the target cannot hold the bytes to come.
bool IsFull(int error) {
    return error == ENOSPC || error == EDQUOT || error == EFBIG;
}

// Where claiming space ahead pays: ext2, 3 and 4 (one magic number) copy
// every byte. File systems that can clone the source's blocks (btrfs, XFS)
// need no new space for a copy, and tmpfs copies no faster.
bool ReservationPays(int to) {
    struct statfs st;
    return SysFstatfs(to, &st) == 0 && st.f_type == EXT4_SUPER_MAGIC;
}

// Claims the target's blocks for the n bytes to come, in one request and
// with its size left alone: ext4 copies much faster into blocks it already
// holds than when it reserves them page by page, and a full disk fails the
// copy before a byte is written. False when the target cannot hold them.
bool Reserve(int to, uint32_t n) {
    if (!ReservationPays(to)) return true;
    off_t const at = SysLseek(to, 0, SEEK_CUR);
    if (at < 0) return errno == ESPIPE; // a pipe: the copy finds its own way
    return SysFallocate(to, FALLOC_FL_KEEP_SIZE, at, off_t(n)) == 0 || !IsFull(errno);
}

} // namespace

DiskCopyResult CopyDiskFileRange(intptr_t from, intptr_t to, uint32_t n) {
    if (!Reserve(int(to), n)) return {true, 0};
    uint32_t moved = 0;
    while (moved < n) {
        ssize_t step = SysCopyFileRange(int(from), int(to), n - moved);
        if (step > 0) {
            moved += uint32_t(step);
            continue;
        }
        if (step == -1 && moved == 0 && IsUnsupported(errno)) return {false, 0};
        break;
    }
    return {true, moved};
}

} // namespace qv
