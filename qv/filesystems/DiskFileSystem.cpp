#include "qv/filesystems/DiskFileSystem.h"

#include "qv/core/StringFunctions.h"
#include "qv/files/File.h"
#include "qv/filesystems/DiskDirectoryMonitor.h"
#include "qv/filesystems/Path.h"
#include "qv/platform/DiskAttributes.h"
#include "qv/platform/DiskDirectory.h"
#include "qv/platform/FullPath.h"
#include "qv/platform/TempFile.h"
#include "qv/platform/WorkingDirectory.h"

namespace qv {

namespace {

constexpr char16_t kTempPrefix[] = u"tim";

uint32_t AttributesOf(DiskEntryStatus const &status) {
    return status.directory ? kAttributeDirectory : kAttributeFile;
}

CDirectoryEntry EntryOf(char16_t const *name, char16_t const *path, DiskEntryStatus const &status) {
    CDirectoryEntry entry;
    entry.SetName(name);
    entry.SetPath(path);
    entry.attributes = AttributesOf(status);
    entry.size = status.size;
    entry.modified = TicksToFileTime(status.modifiedTicks);
    return entry;
}

// Copies text into out (size units with terminator); false if it does not fit.
bool CopyOut(CString const &text, char16_t *out, int size) {
    if (!out || text.GetLength() >= size) return false;
    StrCpy(out, text.GetUTF16(), size_t(size));
    return true;
}

} // namespace

IDirectoryMonitor *CFileSystem::MonitorDirectory(char16_t const *dir, uint32_t flags) {
    if (!dir || !IsDirectory(dir)) return nullptr;
    return CreateDiskDirectoryMonitor(dir, flags);
}

IFile *CFileSystem::CreateFileW(char16_t const *path, uint32_t flags) {
    CFile *file = new CFile();
    if (file->Open(path, flags)) return file;
    delete file;
    return nullptr;
}

CDirectoryListing CFileSystem::GetDirectoryListing(char16_t const *dir, char16_t const *pattern) {
    CString directory = dir ? CString(dir) : GetCurrentWorkingDirectory();
    CDirectoryListing listing(this, directory);
    TArray<DiskDirectoryItem> items;
    ListDiskDirectory(directory, items);
    for (uint32_t i = 0; i < items.GetSize(); ++i) {
        DiskDirectoryItem const &item = items.GetAt(i);
        if (pattern && !WildcardMatch(pattern, item.name)) continue;
        listing.Add(EntryOf(item.name, MakePath(directory, item.name, u'/'), item.status));
    }
    return listing;
}

CDirectoryEntry CFileSystem::GetFileInfo(char16_t const *path) {
    if (!path) return CDirectoryEntry();
    CString trimmed = path::RemoveTrailingSlash(CString(path));
    DiskEntryStatus status;
    if (!GetDiskEntryStatus(trimmed, status)) return CDirectoryEntry();
    return EntryOf(GetFilename(trimmed.GetUTF16()), GetFullPath(trimmed), status);
}

bool CFileSystem::SetFileAttributesW(char16_t const *path, uint32_t attributes) {
    return path && SetDiskAttributes(path, attributes & kAttributeReadOnly, attributes & kAttributeHidden);
}

bool CFileSystem::SetFileModifiedTime(char16_t const *path, CDateTime time) {
    return path && SetDiskModifiedTime(path, FileTimeToTicks(time));
}

bool CFileSystem::GetFullPath(char16_t *out, char16_t const *path, int size) {
    CString full;
    return FullDiskPath(path, full) && CopyOut(full, out, size);
}

bool CFileSystem::DeleteFileW(char16_t const *path) {
    if (!path) return false;
    // Making the file normal first lets a read-only file go; existing callers
    // depend on that. A name that is not there asks for read-only and hidden,
    // which fails harmlessly. A file that stays gets its own back.
    DiskEntryStatus status;
    bool exists = GetDiskEntryStatus(path, status);
    if (exists && status.directory && !status.link) return false; // its permissions stay as they are
    DiskAttributeState const before = KeepDiskAttributes(path);
    SetFileAttributesW(path, (exists ? AttributesOf(status) : 0xFFFFFFFF) & ~1u);
    if (RemoveDiskName(path)) return true;
    RestoreDiskAttributes(path, before);
    return false;
}

bool CFileSystem::RenameFileW(char16_t const *oldPath, char16_t const *newPath) {
    return oldPath && newPath && RenameDiskName(oldPath, newPath);
}

uint32_t CFileSystem::GetCapabilities() {
    return kCapabilityRename;
}

bool CFileSystem::CreateDirectoryW(char16_t const *path, bool recursive) {
    if (!path) return false;
    if (!recursive) return MakeDiskDirectory(path);
    TArray<CString> items;
    SplitPath(items, path);
    CString level(IsSeparator(path[0]) ? u"/" : u"");
    bool made = true;
    for (uint32_t i = 0; i < items.GetSize(); ++i) {
        level += items.GetAt(i);
        DiskEntryStatus status;
        if (!GetDiskEntryStatus(level, status) && !MakeDiskDirectory(level)) made = false;
        level += u"/";
    }
    return made;
}

bool CFileSystem::RemoveDirectoryW(char16_t const *path, bool recursive) {
    if (!path) return false;
    if (!recursive) return RemoveDiskDirectory(path);
    DiskEntryStatus status;
    if (!GetDiskEntryStatus(path, status)) return false;
    if (status.link) return RemoveDiskName(path); // the link goes, never what it points to
    TArray<DiskDirectoryItem> items;
    ListDiskDirectory(path, items);
    for (uint32_t i = 0; i < items.GetSize(); ++i) {
        DiskDirectoryItem const &item = items.GetAt(i);
        CString child = MakePath(CString(path), item.name, u'/');
        if (item.status.directory && !item.status.link)
            RemoveDirectoryW(child, true);
        else
            DeleteFileW(child);
    }
    return RemoveDiskDirectory(path);
}

bool CFileSystem::SetCurrentWorkingDirectory(char16_t const *path) {
    return path && SetDiskWorkingDirectory(path);
}

bool CFileSystem::GetCurrentWorkingDirectory(char16_t *out, int size) {
    CString directory;
    return GetWorkingDirectory(directory) && CopyOut(directory, out, size);
}

bool CFileSystem::GetTempFilename(char16_t *out, int size) {
    CString path;
    if (!CreateDiskTempFile(kTempPrefix, path)) return false;
    if (CopyOut(path, out, size)) return true;
    RemoveDiskName(path);
    return false;
}

CString CFileSystem::GetTempFilename() {
    CString path;
    return CreateDiskTempFile(kTempPrefix, path) ? path : CString();
}

CDirectoryListing CFileSystem::Find(char16_t const *searchPath) {
    if (!searchPath) return CDirectoryListing(this);
    CString directory = path::GetDirectory(CString(searchPath));
    CDirectoryListing listing =
        GetDirectoryListing(directory.IsEmpty() ? nullptr : directory.GetUTF16(), GetFilename(searchPath));
    StrCpy(listing.directory, directory.GetUTF16(), kDirectoryEntryTextSize);
    return listing;
}

} // namespace qv
