#include "qv/filesystems/MemFileSystem.h"

#include "qv/files/MemFile.h"

namespace qv {

namespace {
constexpr char16_t kDataKey[] = u"Data";
}

bool CMemFileSystem::AddFile(char16_t const *path, void const *data, uint32_t size) {
    if (!path || FileExists(path)) return false;
    CDirectoryEntry entry = MakeFileEntry(path);
    entry.size = size;
    entry.properties[kDataKey] = const_cast<void *>(data);
    return entries.Add(entry);
}

uint32_t CMemFileSystem::GetCapabilities() {
    return kCapabilityRename;
}

IFile *CMemFileSystem::CreateFileW(char16_t const *path, uint32_t) {
    int index = FindFile(path);
    if (index < 0) return nullptr;
    CDirectoryEntry &entry = entries.GetItem(uint32_t(index));
    CMemFile *file = new CMemFile();
    file->Attach(static_cast<unsigned char *>(static_cast<void *>(entry.properties[kDataKey])), uint32_t(entry.size),
                 false);
    return file;
}

bool CMemFileSystem::DeleteFileW(char16_t const *) {
    return false;
}

bool CMemFileSystem::CreateDirectoryW(char16_t const *, bool) {
    return false;
}

bool CMemFileSystem::RemoveDirectoryW(char16_t const *, bool) {
    return false;
}

bool CMemFileSystem::RenameFileW(char16_t const *oldPath, char16_t const *newPath) {
    int index = FindFile(oldPath);
    return index >= 0 && MoveEntry(index, newPath);
}

} // namespace qv
