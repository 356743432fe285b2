// OS side: copy_file_range between two disk file descriptors.
#include "qv/platform/DiskFileCopy.h"

#include <cerrno>
#include <unistd.h>

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
        ssize_t step = ::copy_file_range(int(from), nullptr, int(to), nullptr, n - moved, 0);
        if (step > 0) {
            moved += uint32_t(step);
            continue;
        }
        if (step == -1 && errno == EINTR) continue;
        if (step == -1 && moved == 0 && IsUnsupported(errno)) return {false, 0};
        break;
    }
    return {true, moved};
}

} // namespace qv
