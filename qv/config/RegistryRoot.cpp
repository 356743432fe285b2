// CRegistryRoot: a root file read when it changed, written under a lock.
#include "qv/config/RegistryRoot.h"

#include <string>

#include "qv/config/Registry.h"
#include "qv/config/RegistryText.h"
#include "qv/files/IFile.h"
#include "qv/filesystems/AtomicSave.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "qv/filesystems/Path.h"

namespace qv {

namespace {

constexpr uint32_t kMustExistRead = 0x02 | 0x10;
constexpr char16_t kMachineDirectory[] = u"/etc/qv/registry";

// The whole file, up to one byte past the limit (enough to refuse it).
bool ReadFileBytes(CString const &file, std::string &bytes) {
    IFile *in = FileSystem->CreateFileW(file, kMustExistRead);
    if (!in) return false;
    char block[0x10000];
    bool complete = true;
    for (;;) {
        uint32_t got = in->Read(block, sizeof block);
        if (got == 0) {
            complete = in->GetRemaining() <= 0;
            break;
        }
        bytes.append(block, got);
        if (bytes.size() > kMaxRegistryFileSize) break;
    }
    delete in;
    return complete;
}

} // namespace

CRegistryRoot::CRegistryRoot(char16_t const *name, char16_t const *fileName, bool user)
    : name(name), fileName(fileName), user(user) {}

CString CRegistryRoot::Directory() {
    if (!directory.IsEmpty()) return directory;
    if (!user) return CString(kMachineDirectory);
    CString config = GetUserConfigDirectory();
    return config.IsEmpty() ? CString(u"") : config + u"/qv/registry";
}

CString CRegistryRoot::File() {
    std::lock_guard<std::mutex> hold(mutex);
    CString dir = Directory();
    return dir.IsEmpty() ? dir : path::MakePath(dir, CString(fileName), u'/');
}

void CRegistryRoot::SetDirectory(char16_t const *dir) {
    std::lock_guard<std::mutex> hold(mutex);
    directory = dir ? dir : u"";
    loaded = false;
}

int32_t CRegistryRoot::Refresh(CString const &file, bool force) {
    SFileIdentity now;
    bool exists = GetFileIdentity(file, now);
    if (!force && loaded && now == identity && loadedFile.Equals(file)) return readable ? ERROR_SUCCESS : ERROR_BADDB;
    std::string bytes;
    loaded = false;
    if (exists && !ReadFileBytes(file, bytes)) return ERROR_BADDB;
    readable = ParseRegistryText(bytes, name, tree);
    tree.name = u"";
    identity = now;
    loadedFile = file;
    loaded = true;
    return readable ? ERROR_SUCCESS : ERROR_BADDB;
}

bool CRegistryRoot::Save(CString const &file) {
    std::string bytes = FormatRegistryText(tree, name);
    bool saved = SaveAtomically(FileSystem, file,
                                [&](IFile &out) { return out.WriteBytes(bytes.data(), uint32_t(bytes.size())); });
    loaded = saved && GetFileIdentity(file, identity);
    return saved;
}

int32_t CRegistryRoot::Read(std::function<int32_t(SRegNode &)> const &read) {
    std::lock_guard<std::mutex> hold(mutex);
    CString dir = Directory();
    if (dir.IsEmpty()) return ERROR_FILE_NOT_FOUND;
    int32_t status = Refresh(path::MakePath(dir, CString(fileName), u'/'), false);
    return status == ERROR_SUCCESS ? read(tree) : status;
}

int32_t CRegistryRoot::Write(std::function<int32_t(SRegNode &, bool &)> const &change) {
    std::lock_guard<std::mutex> hold(mutex);
    CString dir = Directory();
    if (dir.IsEmpty()) return ERROR_FILE_NOT_FOUND;
    CString file = path::MakePath(dir, CString(fileName), u'/');
    if (!FileSystem->IsDirectory(dir)) FileSystem->CreateDirectoryW(dir, true);
    CFileLock lock;
    if (!lock.Acquire(file + u".lock")) return ERROR_WRITE_FAULT;
    // Another process may have written since this one last read.
    int32_t status = Refresh(file, true);
    if (status != ERROR_SUCCESS) return status;
    bool changed = false;
    status = change(tree, changed);
    if (status == ERROR_SUCCESS && changed && !Save(file)) return ERROR_WRITE_FAULT;
    if (status != ERROR_SUCCESS && changed) loaded = false; // a half change: read the file again
    return status;
}

CRegistryRoot &UserRoot() {
    static CRegistryRoot root(u"HKEY_CURRENT_USER", u"user.reg", true);
    return root;
}

CRegistryRoot &MachineRoot() {
    static CRegistryRoot root(u"HKEY_LOCAL_MACHINE", u"machine.reg", false);
    return root;
}

} // namespace qv
