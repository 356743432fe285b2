// OS binding: O_APPEND on an open descriptor.
#include "qv/platform/SharedAppend.h"

#include "qv/platform/Syscalls.h"

namespace qv::platform {

bool SetAppendOnly(intptr_t handle) {
    int fd = int(handle);
    int flags = SysGetFlags(fd);
    return flags >= 0 && SysSetFlags(fd, flags | O_APPEND) == 0;
}

} // namespace qv::platform
