// OS side: stat, directory reading, mkdir/rmdir/unlink and chdir for the disk file system.
#include "qv/platform/DiskDirectory.h"

#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "qv/platform/DiskFile.h"
#include "qv/platform/DiskName.h"

namespace qv {

namespace {

constexpr int64_t kSecondsFrom1601To1970 = 11644473600;
constexpr int64_t kTicksPerSecond = 10000000;

uint64_t FileTimeTicks(struct timespec const &t) {
    int64_t seconds = t.tv_sec + kSecondsFrom1601To1970;
    return seconds < 0 ? 0 : uint64_t(seconds) * kTicksPerSecond + uint64_t(t.tv_nsec / 100);
}

DiskEntryStatus StatusOf(struct stat const &st, bool link) {
    DiskEntryStatus status;
    status.directory = S_ISDIR(st.st_mode);
    status.link = link;
    status.size = status.directory ? 0 : int64_t(st.st_size);
    status.modifiedTicks = FileTimeTicks(st.st_mtim);
    return status;
}

// fstatat relative to dirFd (AT_FDCWD for a whole path), following links.
bool StatAt(int dirFd, char const *name, DiskEntryStatus &status) {
    struct stat st;
    if (::fstatat(dirFd, name, &st, AT_SYMLINK_NOFOLLOW) != 0) return false;
    bool link = S_ISLNK(st.st_mode);
    if (link) ::fstatat(dirFd, name, &st, 0); // a dangling link keeps its own status
    status = StatusOf(st, link);
    return true;
}

bool IsDotOrDotDot(char const *name) {
    return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
}

} // namespace

bool GetDiskEntryStatus(char16_t const *path, DiskEntryStatus &status) {
    std::string name = ToDiskName(path);
    return !name.empty() && StatAt(AT_FDCWD, name.c_str(), status);
}

bool ListDiskDirectory(char16_t const *dir, TArray<DiskDirectoryItem> &items) {
    DIR *stream = ::opendir(ToDiskName(dir).c_str());
    if (!stream) return false;
    while (struct dirent *entry = ::readdir(stream)) {
        if (IsDotOrDotDot(entry->d_name)) continue;
        DiskDirectoryItem item;
        if (!StatAt(::dirfd(stream), entry->d_name, item.status)) continue; // gone meanwhile
        item.name = FromDiskName(entry->d_name);
        items.Add(item);
    }
    ::closedir(stream);
    return true;
}

bool MakeDiskDirectory(char16_t const *path) {
    return ::mkdir(ToDiskName(path).c_str(), 0777) == 0;
}

bool RemoveDiskDirectory(char16_t const *path) {
    return ::rmdir(ToDiskName(path).c_str()) == 0;
}

bool RemoveDiskName(char16_t const *path) {
    return RemoveDiskFile(ToDiskName(path).c_str());
}

bool RenameDiskName(char16_t const *from, char16_t const *to) {
    return RenameDiskFile(ToDiskName(from).c_str(), ToDiskName(to).c_str());
}

bool SetDiskWorkingDirectory(char16_t const *path) {
    return ::chdir(ToDiskName(path).c_str()) == 0;
}

} // namespace qv
