// The entries of a CDFS: their regions, growth, reads and writes, and the
// file-system calls that make, delete and rename them.
#include <algorithm>

#include "qv/core/StringFunctions.h"
#include "qv/core/WideChar.h"
#include "qv/filesystems/CDFileLayout.h"
#include "qv/filesystems/CDFileSystem.h"
#include "qv/threads/AutoLock.h"
#include "qv/filesystems/HostMove.h"

namespace qv {

using namespace cdfs;

namespace {

// Sizes beyond this are refused, so region arithmetic cannot overflow.
constexpr int64_t kMaxEntrySize = INT64_MAX / 4;

} // namespace

void CCDFileSystem::SetRegion(int index, int64_t offset, int64_t capacity) {
    CDirectoryEntry &entry = index < 0 ? root : entries.GetItem(uint32_t(index));
    if (index < 0)
        rootRegion = {offset, capacity};
    else
        regions.GetItem(uint32_t(index)) = {offset, capacity};
    entry.properties[kOffsetKey] = offset;
    entry.properties[kCapacityKey] = capacity;
}

int64_t CCDFileSystem::NextFileOffset() {
    CAutoCriticalSection guard(&lock);
    return NextFileOffset(-2);
}

int64_t CCDFileSystem::NextFileOffset(int except) {
    int64_t next = rootRegion.offset + rootRegion.capacity;
    for (uint32_t i = 0; i < regions.GetSize(); ++i)
        if (int(i) != except) next = std::max(next, regions.GetAt(i).offset + regions.GetAt(i).capacity);
    return next;
}

void CCDFileSystem::AdjustOffsets(int64_t from, int64_t delta) {
    // Equality counts: an empty entry at from moves with the growth.
    for (uint32_t i = 0; i < regions.GetSize(); ++i) {
        SRegion region = regions.GetAt(i);
        if (region.offset >= from) SetRegion(int(i), region.offset + delta, region.capacity);
    }
}

// Makes the region of index hold size bytes, moving the host's tail up.
bool CCDFileSystem::GrowRegion(int index, int64_t size) {
    SRegion region = index < 0 ? rootRegion : regions.GetAt(uint32_t(index));
    if (size <= region.capacity) return true;
    if (region.capacity == 0) {
        // Entries made back to back share an offset: place this one behind
        // every region first, so its growth never lands on another's bytes.
        region.offset = NextFileOffset(index);
        SetRegion(index, region.offset, 0);
    }
    int64_t capacity = (size / kBlock + 1) * kBlock;
    int64_t delta = capacity - region.capacity;
    int64_t at = region.offset + region.capacity;
    if (!MoveTailUp(*host, base + at, delta)) return false;
    SetRegion(index, region.offset, capacity);
    AdjustOffsets(at, delta); // an empty entry moves itself: its first block stays a hole
    return true;
}

int64_t CCDFileSystem::EntrySize(int index) {
    return index < 0 ? root.size : entries.GetAt(uint32_t(index)).size;
}

void CCDFileSystem::SetEntrySizeField(int index, int64_t size) {
    (index < 0 ? root : entries.GetItem(uint32_t(index))).size = size;
}

// Zeros over [from, to) of the entry's region.
bool CCDFileSystem::ZeroEntry(int index, int64_t from, int64_t to) {
    SRegion region = index < 0 ? rootRegion : regions.GetAt(uint32_t(index));
    int64_t at = base + region.offset + from;
    if (host->Seek(at, 1) != at) return false;
    for (int64_t left = to - from; left > 0;) {
        uint32_t n = uint32_t(std::min<int64_t>(left, 0x40000000));
        if (!host->WriteZeros(n)) return false;
        left -= n;
    }
    return true;
}

int64_t CCDFileSystem::SetEntrySize(int index, int64_t size) {
    CAutoCriticalSection guard(&lock);
    if (!host || index < -1 || index >= int(entries.GetSize())) return 0;
    int64_t old = EntrySize(index);
    if (size < 0 || readOnly || size > kMaxEntrySize || !GrowRegion(index, size)) return old;
    if (size > old && !ZeroEntry(index, old, size)) return old;
    SetEntrySizeField(index, size);
    return size;
}

uint32_t CCDFileSystem::ReadEntry(int index, int64_t position, void *buffer, uint32_t n) {
    CAutoCriticalSection guard(&lock);
    if (!host || index < -1 || index >= int(entries.GetSize()) || position < 0) return 0;
    int64_t size = EntrySize(index);
    if (position >= size) return 0;
    n = uint32_t(std::min<int64_t>(n, size - position));
    int64_t at = base + (index < 0 ? rootRegion : regions.GetAt(uint32_t(index))).offset + position;
    return host->Seek(at, 1) == at ? host->Read(buffer, n) : 0;
}

uint32_t CCDFileSystem::WriteEntry(int index, int64_t position, void const *buffer, uint32_t n) {
    CAutoCriticalSection guard(&lock);
    if (!host || readOnly || index < -1 || index >= int(entries.GetSize()) || position < 0 ||
        position > kMaxEntrySize)
        return 0;
    int64_t old = EntrySize(index);
    int64_t end = position + n;
    if (end > old) {
        if (!GrowRegion(index, end)) return 0;
        if (position > old && !ZeroEntry(index, old, position)) return 0;
    }
    int64_t at = base + (index < 0 ? rootRegion : regions.GetAt(uint32_t(index))).offset + position;
    uint32_t written = host->Seek(at, 1) == at ? host->Write(buffer, n) : 0;
    if (position + written > old) SetEntrySizeField(index, position + written);
    return written;
}

uint32_t CCDFileSystem::GetCapabilities() {
    return kCapabilityRename;
}

IFile *CCDFileSystem::CreateFileW(char16_t const *path, uint32_t flags) {
    CAutoCriticalSection guard(&lock);
    char16_t full[kNameLimit + 1];
    if (!host || !path || !GetFullPath(full, path, kNameLimit + 1)) return nullptr;
    int index = FindFullPath(full);
    if (index >= 0 ? (flags & 0x04) != 0 : (flags & 0x02) != 0 || readOnly) return nullptr;
    if (index < 0) {
        if (IsDirectory(full) || HasFileAbove(full, -1)) return nullptr;
        if (!entries.Add(MakeFileEntry(full))) return nullptr;
        if (!regions.Add(SRegion{0, 0})) {
            entries.Remove(entries.GetSize() - 1);
            return nullptr;
        }
        index = int(entries.GetSize()) - 1;
        SetRegion(index, NextFileOffset(index), 0);
    }
    CCDFile *file = new CCDFile(this, index);
    // Every handle is tracked, so a delete ahead of it re-targets it.
    if (!openFiles.Add(file)) {
        file->index = -2;
        delete file;
        return nullptr;
    }
    if (flags & 0x08) file->SetSize(0);
    if (flags & 0x40) file->Seek(0, 3);
    return file;
}

void CCDFileSystem::RemoveEntry(int index) {
    entries.Remove(uint32_t(index));
    regions.Remove(uint32_t(index));
    for (uint32_t i = 0; i < openFiles.GetSize(); ++i) {
        CCDFile *file = openFiles.GetItem(i);
        if (file->index == index)
            file->index = -2;
        else if (file->index > index)
            --file->index;
    }
}

// Whether a file other than except stands where full needs a directory
// ("/a" for "/a/b" or "/a/"): Open refuses a table that holds both.
bool CCDFileSystem::HasFileAbove(char16_t const *full, int except) const {
    char16_t parent[kNameLimit + 1];
    StrCpy(parent, full, kNameLimit + 1);
    for (size_t i = wcslen(parent); i-- > 1;) {
        if (parent[i] != u'/') continue;
        parent[i] = 0;
        int index = FindFullPath(parent);
        if (index >= 0 && index != except) return true;
    }
    return false;
}

bool CCDFileSystem::DeleteFileW(char16_t const *path) {
    CAutoCriticalSection guard(&lock);
    int index = host && !readOnly ? FindFile(path) : -1;
    if (index >= 0) {
        SetEntrySizeField(index, 0);
        RemoveEntry(index);
    }
    return true; // also for a path that is not there: existing callers depend on it
}

bool CCDFileSystem::RenameFileW(char16_t const *oldPath, char16_t const *newPath) {
    CAutoCriticalSection guard(&lock);
    char16_t full[kNameLimit + 1];
    int index = host && !readOnly ? FindFile(oldPath) : -1;
    if (index < 0 || !newPath || !GetFullPath(full, newPath, kNameLimit + 1)) return false;
    int target = FindFullPath(full);
    if (target == index) return true;
    if ((target < 0 && IsDirectory(full)) || HasFileAbove(full, index)) return false;
    if (target >= 0) {
        RemoveEntry(target);
        if (target < index) --index;
    }
    return MoveEntry(index, full);
}

bool CCDFileSystem::CreateDirectoryW(char16_t const *, bool) {
    return false;
}

bool CCDFileSystem::RemoveDirectoryW(char16_t const *, bool) {
    return false;
}

IFileSystem::CDirectoryListing CCDFileSystem::GetDirectoryListing(char16_t const *dir, char16_t const *pattern) {
    CAutoCriticalSection guard(&lock);
    return CFlatFileSystem::GetDirectoryListing(dir, pattern);
}

IFileSystem::CDirectoryEntry CCDFileSystem::GetFileInfo(char16_t const *path) {
    CAutoCriticalSection guard(&lock);
    return CFlatFileSystem::GetFileInfo(path);
}

// The working directory is read by every relative path, so it changes under the lock.
bool CCDFileSystem::GetFullPath(char16_t *out, char16_t const *path, int size) {
    CAutoCriticalSection guard(&lock);
    return CFlatFileSystem::GetFullPath(out, path, size);
}

bool CCDFileSystem::SetCurrentWorkingDirectory(char16_t const *path) {
    CAutoCriticalSection guard(&lock);
    return CFlatFileSystem::SetCurrentWorkingDirectory(path);
}

bool CCDFileSystem::GetCurrentWorkingDirectory(char16_t *out, int size) {
    CAutoCriticalSection guard(&lock);
    return CFlatFileSystem::GetCurrentWorkingDirectory(out, size);
}

void CCDFileSystem::Forget(CCDFile *file) {
    CAutoCriticalSection guard(&lock);
    file->index = -2;
    for (uint32_t i = 0; i < openFiles.GetSize(); ++i)
        if (openFiles.GetAt(i) == file) {
            openFiles.Remove(i);
            break;
        }
}

} // namespace qv
