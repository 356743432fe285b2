// CFileStore: the by-name loads and the atomic saves of the file stores.
#include "qv/config/FileStore.h"

#include "qv/files/IFile.h"
#include "qv/filesystems/AtomicSave.h"
#include "qv/filesystems/DiskFileSystem.h"

namespace qv {

namespace {

constexpr uint32_t kMustExistRead = 0x02 | 0x10;

IFileSystem *OrDisk(IFileSystem *fs) {
    return fs ? fs : static_cast<IFileSystem *>(FileSystem);
}

} // namespace

bool CFileStore::Load(IFileSystem *fs, char16_t const *name) {
    if (!name) return false;
    IFile *file = OrDisk(fs)->CreateFileW(name, kMustExistRead);
    if (!file) return false;
    bool loaded = Load(file);
    file->Close();
    delete file;
    return loaded;
}

bool CFileStore::Load(char16_t const *name) {
    return Load(nullptr, name);
}

bool CFileStore::Save(IFileSystem *fs, char16_t const *name) {
    return SaveAtomically(OrDisk(fs), name, [this](IFile &file) { return Save(&file); });
}

bool CFileStore::Save(char16_t const *name) {
    return Save(nullptr, name);
}

} // namespace qv
