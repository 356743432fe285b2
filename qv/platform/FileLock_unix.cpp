// OS side: advisory whole-file locks (fcntl open-file-description locks),
// file identities by stat, and the user's configuration directory.
#include "qv/platform/FileLock.h"

#include <cerrno>
#include <cstdlib>
#include <sys/stat.h>

#include "qv/platform/DiskName.h"
#include "qv/platform/Syscalls.h"

namespace qv {

CFileLock::~CFileLock() {
    Release();
}

bool CFileLock::Acquire(char16_t const *path) {
    Release();
    int opened = SysOpen(ToDiskName(path).c_str(), O_RDWR | O_CREAT, 0666);
    if (opened < 0) return false;
    struct flock whole {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    if (SysLock(opened, F_OFD_SETLKW, &whole) != 0) {
        SysClose(opened);
        return false;
    }
    fd = opened;
    return true;
}

void CFileLock::Release() {
    if (fd < 0) return;
    SysClose(fd); // closing the description drops its lock
    fd = -1;
}

namespace {

void TakeIdentity(struct stat const &st, SFileIdentity &identity) {
    identity.device = st.st_dev;
    identity.inode = st.st_ino;
    identity.size = static_cast<unsigned long long>(st.st_size);
    identity.modified = static_cast<unsigned long long>(st.st_mtim.tv_sec) * 1000000000ull +
                        static_cast<unsigned long long>(st.st_mtim.tv_nsec);
}

} // namespace

bool GetFileIdentity(char16_t const *path, SFileIdentity &identity) {
    identity = SFileIdentity();
    struct stat st;
    if (::stat(ToDiskName(path).c_str(), &st) != 0) return false;
    TakeIdentity(st, identity);
    return true;
}

bool GetFileIdentity(intptr_t handle, SFileIdentity &identity) {
    identity = SFileIdentity();
    struct stat st;
    if (handle < 0 || SysFstat(int(handle), &st) != 0) return false;
    TakeIdentity(st, identity);
    return true;
}

CString GetUserConfigDirectory() {
    char const *config = std::getenv("XDG_CONFIG_HOME");
    if (config && config[0] == '/') return FromDiskName(config);
    char const *home = std::getenv("HOME");
    if (home && home[0] == '/') return FromDiskName(home) + u"/.config";
    return CString(u"");
}

} // namespace qv
