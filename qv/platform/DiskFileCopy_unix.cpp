// OS side: copying between two disk file descriptors inside the kernel.
#include "qv/platform/DiskFileCopy.h"

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

} // namespace

DiskCopyResult CopyDiskFileRange(intptr_t from, intptr_t to, uint32_t n) {
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
