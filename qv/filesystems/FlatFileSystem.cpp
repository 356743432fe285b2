#include "qv/filesystems/FlatFileSystem.h"

#include "qv/core/WideChar.h"
#include "qv/filesystems/FlatPaths.h"
#include "qv/filesystems/MadeUpEntries.h"
#include "qv/filesystems/Path.h"

namespace qv {

namespace {

} // namespace

CFlatFileSystem::CFlatFileSystem() : currentDirectory{u'/', 0} {}

bool CFlatFileSystem::GetFullPath(char16_t *out, char16_t const *path, int size) {
    return FlatFullPath(currentDirectory, out, path, size);
}

int CFlatFileSystem::FindFile(char16_t const *path) {
    char16_t full[PathBufferSize];
    return path && GetFullPath(full, path, PathBufferSize) ? FindFullPath(full) : -1;
}

int CFlatFileSystem::FindFullPath(char16_t const *full) const {
    for (uint32_t i = 0; i < entries.GetSize(); ++i)
        if (_wcsicmp(entries.GetAt(i).path, full) == 0) return int(i);
    return -1;
}

CDirectoryEntry CFlatFileSystem::GetFileInfo(char16_t const *path) {
    char16_t full[PathBufferSize];
    if (!path || !GetFullPath(full, path, PathBufferSize)) return CDirectoryEntry();
    int index = FindFullPath(full);
    if (index >= 0) return entries.GetAt(uint32_t(index));
    AppendTrailingSlash(full, u'/');
    size_t length = wcslen(full);
    for (uint32_t i = 0; i < entries.GetSize(); ++i) {
        if (_wcsnicmp(entries.GetAt(i).path, full, length) != 0) continue;
        CString trimmed = path::RemoveTrailingSlash(CString(full));
        return MadeUpDirectory(GetFilename(trimmed.GetUTF16()), full);
    }
    return CDirectoryEntry();
}

CDirectoryListing CFlatFileSystem::GetDirectoryListing(char16_t const *dir, char16_t const *pattern) {
    CString prefix = dir ? path::ConvertSlashes(CString(dir), u'/') : CString(currentDirectory);
    prefix = path::AppendTrailingSlash(prefix, u'/');
    if (prefix.IsEmpty()) prefix = u"/";
    CDirectoryListing listing(this, prefix.GetUTF16());
    char16_t const *patterns = pattern ? pattern : u"*";
    size_t length = size_t(prefix.GetLength());
    for (uint32_t i = 0; i < entries.GetSize(); ++i) {
        CDirectoryEntry const &entry = entries.GetAt(i);
        if (_wcsnicmp(entry.path, prefix.GetUTF16(), length) != 0) continue;
        CString rest(entry.path + length);
        int slash = rest.FindChar(u'/');
        CString name = slash < 0 ? rest : rest.Left(slash);
        if (!WildcardMatch(patterns, name.GetUTF16()) || IsListed(listing, name.GetUTF16())) continue;
        listing.Add(slash < 0 ? entry : MadeUpDirectory(name.GetUTF16(), MakePath(prefix, name, u'/').GetUTF16()));
    }
    return listing;
}

bool CFlatFileSystem::SetCurrentWorkingDirectory(char16_t const *path) {
    return SetFlatWorkingDirectory(*this, currentDirectory, path);
}

bool CFlatFileSystem::GetCurrentWorkingDirectory(char16_t *out, int size) {
    return GetFlatWorkingDirectory(currentDirectory, out, size);
}

CDirectoryEntry CFlatFileSystem::MakeFileEntry(char16_t const *fullPath) {
    CDirectoryEntry entry;
    entry.SetPath(fullPath);
    entry.SetName(GetFilename(fullPath));
    entry.attributes = kAttributeFile;
    entry.modified = CDateTime::NewNow();
    return entry;
}

bool CFlatFileSystem::MoveEntry(int &index, char16_t const *newPath) {
    char16_t full[PathBufferSize];
    if (!newPath || !GetFullPath(full, newPath, PathBufferSize)) return false;
    int target = FindFullPath(full);
    if (target == index) return true;
    if (target < 0 && IsDirectory(full)) return false;
    CDirectoryEntry &entry = entries.GetItem(uint32_t(index));
    entry.SetPath(full);
    entry.SetName(GetFilename(full));
    if (target < 0) return true;
    entries.Remove(uint32_t(target));
    if (target < index) --index;
    return true;
}

} // namespace qv
