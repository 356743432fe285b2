// OS binding: POSIX shared-memory objects (shm_open, ftruncate, mmap).
#include <errno.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "qv/platform/SharedMemory.h"

namespace qv {

std::string SharedMemorySysName(char const *utf8Name) {
    std::string sys = "/";
    for (char const *c = utf8Name; *c; ++c) {
        if (*c == '/')
            sys += "%2F";
        else if (*c == '%')
            sys += "%25";
        else
            sys += *c;
    }
    return sys;
}

SharedCreate CreateSharedMemory(char const *sysName, size_t size, SharedView &view) {
    if (size == 0) return SharedCreate::Failed;
    int fd = shm_open(sysName, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (fd < 0) return errno == EEXIST ? SharedCreate::NameTaken : SharedCreate::Failed;
    view.fd = fd;
    if (ftruncate(fd, off_t(size)) != 0) {
        CloseSharedMemory(view, sysName);
        return SharedCreate::Failed;
    }
    void *data = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    if (data == MAP_FAILED) {
        CloseSharedMemory(view, sysName);
        return SharedCreate::Failed;
    }
    view.data = data;
    view.size = size;
    return SharedCreate::Created;
}

void CloseSharedMemory(SharedView &view, char const *sysName) {
    if (view.data) munmap(view.data, view.size);
    if (view.fd >= 0) close(view.fd);
    if (sysName) shm_unlink(sysName);
    view = SharedView();
}

} // namespace qv
