// OS side: $TMPDIR and mkstemp for temporary files.
#include "qv/platform/TempFile.h"

#include <cstdlib>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "qv/platform/DiskName.h"
#include "qv/platform/Syscalls.h"

namespace qv {

namespace {

bool IsDirectory(char const *path) {
    struct stat st;
    return path && *path && ::stat(path, &st) == 0 && S_ISDIR(st.st_mode);
}

std::string TempDirectoryName() {
    char const *fromEnvironment = std::getenv("TMPDIR");
    return IsDirectory(fromEnvironment) ? fromEnvironment : "/tmp";
}

} // namespace

bool CreateDiskTempFile(char16_t const *prefix, CString &path) {
    std::string name = TempDirectoryName();
    if (name.back() != '/') name += '/';
    name += ToDiskName(prefix) + "XXXXXX";
    int fd = ::mkostemp(name.data(), O_CLOEXEC);
    if (fd == -1) return false;
    SysClose(fd);
    path = FromDiskName(name.c_str());
    return true;
}

} // namespace qv
