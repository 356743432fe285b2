// OS side: permission bits, the hidden extended attribute and modification times of disk names.
#include "qv/platform/DiskAttributes.h"

#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <sys/xattr.h>

#include "qv/platform/DiskName.h"

namespace qv {

namespace {

constexpr char kHiddenAttribute[] = "user.qv.hidden";
constexpr int64_t kSecondsFrom1601To1970 = 11644473600;
constexpr uint64_t kTicksPerSecond = 10000000;

mode_t WithWritePermission(mode_t mode, bool readOnly) {
    mode_t permissions = mode & 07777;
    return readOnly ? permissions & ~mode_t(0222) : permissions | S_IWUSR;
}

void MarkHidden(char const *name, bool hidden) {
    if (hidden)
        ::setxattr(name, kHiddenAttribute, "1", 1, 0);
    else
        ::removexattr(name, kHiddenAttribute);
}

} // namespace

bool SetDiskAttributes(char16_t const *path, bool readOnly, bool hidden) {
    std::string name = ToDiskName(path);
    struct stat st;
    if (name.empty() || ::lstat(name.c_str(), &st) != 0) return false;
    if (S_ISLNK(st.st_mode)) return true;
    mode_t mode = WithWritePermission(st.st_mode, readOnly);
    if (mode != (st.st_mode & 07777) && ::chmod(name.c_str(), mode) != 0) return false;
    MarkHidden(name.c_str(), hidden);
    return true;
}

DiskAttributeState KeepDiskAttributes(char16_t const *path) {
    std::string name = ToDiskName(path);
    struct stat st;
    DiskAttributeState state;
    if (name.empty() || ::lstat(name.c_str(), &st) != 0 || S_ISLNK(st.st_mode)) return state;
    char value;
    return DiskAttributeState{true, uint32_t(st.st_mode & 07777),
                              ::getxattr(name.c_str(), kHiddenAttribute, &value, 1) == 1};
}

void RestoreDiskAttributes(char16_t const *path, DiskAttributeState const &state) {
    if (!state.kept) return;
    std::string name = ToDiskName(path);
    ::chmod(name.c_str(), mode_t(state.mode));
    MarkHidden(name.c_str(), state.hidden);
}

bool SetDiskModifiedTime(char16_t const *path, uint64_t ticks) {
    struct timespec times[2];
    times[0].tv_sec = 0;
    times[0].tv_nsec = UTIME_OMIT;
    times[1].tv_sec = time_t(int64_t(ticks / kTicksPerSecond) - kSecondsFrom1601To1970);
    times[1].tv_nsec = long(ticks % kTicksPerSecond) * 100;
    return ::utimensat(AT_FDCWD, ToDiskName(path).c_str(), times, 0) == 0;
}

} // namespace qv
