#include "qv/filesystems/MergeFileSystem.h"

#include "qv/core/StringFunctions.h"
#include "qv/core/WideChar.h"
#include "qv/filesystems/FlatPaths.h"
#include "qv/filesystems/MadeUpEntries.h"
#include "qv/filesystems/Path.h"

namespace qv {

namespace {

constexpr char16_t kFileSystemKey[] = u"FileSystem";
constexpr char16_t kResolvedKey[] = u"ResolvedPath";

// The number of leading items a and b share, case ignored.
uint32_t CommonItems(TArray<CString> const &a, TArray<CString> const &b) {
    uint32_t k = 0;
    while (k < a.GetSize() && k < b.GetSize() && _wcsicmp(a.GetAt(k), b.GetAt(k)) == 0)
        ++k;
    return k;
}

// base, then items from first on, joined with '/'.
CString Join(CString base, TArray<CString> const &items, uint32_t first) {
    for (uint32_t i = first; i < items.GetSize(); ++i)
        base = path::MakePath(base, items.GetAt(i), u'/');
    return base;
}

} // namespace

CMergeFileSystem::CMergeFileSystem() : currentDirectory{u'/', 0} {}

CMergeFileSystem::~CMergeFileSystem() = default;

bool CMergeFileSystem::Mount(char16_t const *mountPoint, IFileSystem *fs, char16_t const *subPath) {
    // A text that does not fit is refused rather than cut to another path.
    if (!fs || (subPath && wcslen(subPath) >= 260) || (mountPoint && wcslen(mountPoint) >= 260)) return false;
    MOUNT mount{};
    mount.fileSystem = fs;
    StrCpy(mount.subPath, subPath ? subPath : u"", 260);
    StrCpy(mount.mountPoint, mountPoint ? mountPoint : u"", 260);
    return mounts.Add(mount);
}

bool CMergeFileSystem::Unmount(char16_t const *mountPoint, IFileSystem *fs) {
    for (uint32_t i = 0; mountPoint && i < mounts.GetSize(); ++i) {
        MOUNT const &mount = mounts.GetAt(i);
        if (mount.fileSystem == fs && _wcsicmp(mount.mountPoint, mountPoint) == 0) return mounts.Remove(i);
    }
    return false;
}

IFileSystem::CDirectoryEntry CMergeFileSystem::intGetFileInfo(char16_t const *path, bool &exists) {
    exists = false;
    char16_t full[PathBufferSize];
    CDirectoryEntry fallback;
    bool haveFallback = false;
    if (!GetFullPath(full, path, PathBufferSize)) return fallback;
    TArray<CString> items, point;
    SplitPath(items, full);
    for (uint32_t m = 0; m < mounts.GetSize(); ++m) {
        MOUNT const &mount = mounts.GetAt(m);
        SplitPath(point, mount.mountPoint);
        uint32_t k = CommonItems(items, point);
        if (k < point.GetSize() && k < items.GetSize()) continue;
        if (k == items.GetSize()) {
            // The mount point itself or above it: a directory of the merged tree.
            exists = true;
            CString trimmed = path::RemoveTrailingSlash(CString(full));
            return MadeUpDirectory(GetFilename(trimmed.GetUTF16()), full);
        }
        CString resolved = Join(CString(mount.subPath), items, k);
        CDirectoryEntry entry = mount.fileSystem->GetFileInfo(resolved);
        entry.properties[kResolvedKey] = resolved.GetUTF16();
        entry.properties[kFileSystemKey] = static_cast<void *>(mount.fileSystem);
        if (!(entry.attributes & kAttributeNone)) {
            exists = true;
            entry.SetPath(full);
            return entry;
        }
        if (!haveFallback) {
            // Where a new file would go: the first mount it could lie under.
            fallback = entry;
            fallback.attributes = kAttributeFile;
            haveFallback = true;
        }
    }
    return fallback;
}

IFileSystem *CMergeFileSystem::ResolvedFileSystem(CDirectoryEntry &entry, CString &resolved) {
    resolved = entry.properties.GetValue(kResolvedKey);
    return static_cast<IFileSystem *>(static_cast<void *>(entry.properties[kFileSystemKey]));
}

IFileSystem::CDirectoryEntry CMergeFileSystem::GetFileInfo(char16_t const *path) {
    bool exists = false;
    CDirectoryEntry entry = intGetFileInfo(path, exists);
    if (!exists) entry.attributes = kAttributeNone;
    return entry;
}

uint32_t CMergeFileSystem::GetCapabilities() {
    return kCapabilityRename;
}

IFile *CMergeFileSystem::CreateFileW(char16_t const *path, uint32_t flags) {
    bool exists = false;
    CDirectoryEntry entry = intGetFileInfo(path, exists);
    CString resolved;
    IFileSystem *fs = entry.attributes == kAttributeFile ? ResolvedFileSystem(entry, resolved) : nullptr;
    return fs ? fs->CreateFileW(resolved, flags) : nullptr;
}

bool CMergeFileSystem::DeleteFileW(char16_t const *path) {
    bool exists = false;
    CDirectoryEntry entry = intGetFileInfo(path, exists);
    CString resolved;
    IFileSystem *fs = exists && entry.attributes == kAttributeFile ? ResolvedFileSystem(entry, resolved) : nullptr;
    return fs && fs->DeleteFileW(resolved);
}

bool CMergeFileSystem::SetFileAttributesW(char16_t const *path, uint32_t attributes) {
    bool exists = false;
    CDirectoryEntry entry = intGetFileInfo(path, exists);
    CString resolved;
    IFileSystem *fs = entry.attributes == kAttributeFile ? ResolvedFileSystem(entry, resolved) : nullptr;
    return fs && fs->SetFileAttributesW(resolved, attributes);
}

bool CMergeFileSystem::SetFileModifiedTime(char16_t const *path, CDateTime time) {
    bool exists = false;
    CDirectoryEntry entry = intGetFileInfo(path, exists);
    CString resolved;
    IFileSystem *fs = entry.attributes == kAttributeFile ? ResolvedFileSystem(entry, resolved) : nullptr;
    return fs && fs->SetFileModifiedTime(resolved, time);
}

bool CMergeFileSystem::RemoveDirectoryW(char16_t const *path, bool recursive) {
    bool exists = false;
    CDirectoryEntry entry = intGetFileInfo(path, exists);
    CString resolved;
    // A made-up directory (a mount point) carries no file system: never removed.
    IFileSystem *fs = entry.attributes == kAttributeDirectory ? ResolvedFileSystem(entry, resolved) : nullptr;
    return fs && fs->RemoveDirectoryW(resolved, recursive);
}

bool CMergeFileSystem::CreateDirectoryW(char16_t const *path, bool recursive) {
    char16_t full[260];
    if (mounts.GetSize() != 1 || !GetFullPath(full, path, 260)) return false;
    MOUNT const &mount = mounts.GetAt(0);
    return mount.fileSystem->CreateDirectoryW(path::MakePath(CString(mount.subPath), CString(full), u'/'), recursive);
}

bool CMergeFileSystem::RenameFileW(char16_t const *oldPath, char16_t const *newPath) {
    bool exists = false, ignored = false;
    CDirectoryEntry from = intGetFileInfo(oldPath, exists);
    CDirectoryEntry to = intGetFileInfo(newPath, ignored);
    CString fromPath, toPath;
    IFileSystem *fs = exists && from.attributes == kAttributeFile ? ResolvedFileSystem(from, fromPath) : nullptr;
    IFileSystem *target = to.attributes == kAttributeFile ? ResolvedFileSystem(to, toPath) : nullptr;
    return fs && fs == target && fs->RenameFileW(fromPath, toPath);
}

IFileSystem::CDirectoryListing CMergeFileSystem::GetDirectoryListing(char16_t const *dir, char16_t const *pattern) {
    char16_t full[PathBufferSize];
    CString asked = dir ? path::ConvertSlashes(CString(dir), u'/') : CString(currentDirectory);
    if (!GetFullPath(full, asked, PathBufferSize)) return CDirectoryListing(this, nullptr);
    CDirectoryListing listing(this, full);
    char16_t const *patterns = pattern ? pattern : u"*";
    TArray<CString> items, point;
    SplitPath(items, full);
    for (uint32_t m = 0; m < mounts.GetSize(); ++m) {
        MOUNT const &mount = mounts.GetAt(m);
        SplitPath(point, mount.mountPoint);
        uint32_t k = CommonItems(items, point);
        if (k == point.GetSize()) {
            IFileSystem *fs = mount.fileSystem;
            CDirectoryListing inner = fs->GetDirectoryListing(Join(CString(mount.subPath), items, k), patterns);
            for (uint32_t i = 0; i < inner.GetSize(); ++i) {
                CDirectoryEntry entry = inner.GetAt(i);
                if (IsListed(listing, entry.name)) continue; // an earlier mount keeps the name
                entry.properties[kFileSystemKey] = static_cast<void *>(fs);
                entry.properties[kResolvedKey] = entry.path;
                entry.SetPath(MakePath(CString(full), CString(entry.name), u'/'));
                listing.Add(entry);
            }
        } else if (k == items.GetSize()) {
            // A mount point below dir shows as a directory named by its last item.
            CString below = path::MakePath(CString(full), Join(point.GetAt(k), point, k + 1), u'/');
            char16_t const *name = GetFilename(below.GetUTF16());
            if (!IsListed(listing, name)) listing.Add(MadeUpDirectory(name, below));
        }
    }
    return listing;
}

bool CMergeFileSystem::GetFullPath(char16_t *out, char16_t const *path, int size) {
    return FlatFullPath(currentDirectory, out, path, size);
}

bool CMergeFileSystem::SetCurrentWorkingDirectory(char16_t const *path) {
    return SetFlatWorkingDirectory(*this, currentDirectory, path);
}

bool CMergeFileSystem::GetCurrentWorkingDirectory(char16_t *out, int size) {
    return GetFlatWorkingDirectory(currentDirectory, out, size);
}

} // namespace qv
