// CCDFileSystem::CCDFile: one entry of a CDFS as an IFile.
#include "qv/core/StringFunctions.h"
#include "qv/filesystems/CDFileSystem.h"
#include "qv/threads/AutoLock.h"
#include "qv/filesystems/FileSystem.h"

namespace qv {

CCDFileSystem::CCDFile::CCDFile(CCDFileSystem *owner, int index) : owner(owner), index(index) {}

CCDFileSystem::CCDFile::~CCDFile() {
    Close();
}

char16_t *CCDFileSystem::CCDFile::GetFilename(char16_t *buf, int size) {
    if (!buf || size < 1) return buf;
    buf[0] = 0;
    if (!owner) return buf;
    CAutoCriticalSection guard(&owner->lock);
    if (index >= 0)
        StrCpy(buf, owner->entries.GetAt(uint32_t(index)).path, size_t(size));
    else if (index == -1)
        StrCpy(buf, owner->root.path, size_t(size));
    return buf;
}

IFileSystem &CCDFileSystem::CCDFile::GetFileSystem() {
    return owner ? *static_cast<IFileSystem *>(owner) : qv::GetFileSystem();
}

uint32_t CCDFileSystem::CCDFile::Write(void const *p, uint32_t n) {
    if (!owner) return 0;
    CAutoCriticalSection guard(&owner->lock); // a delete on another thread re-targets index
    if (index < -1 || !p) return 0;
    uint32_t written = owner->WriteEntry(index, position, p, n);
    position += written;
    return written;
}

uint32_t CCDFileSystem::CCDFile::Read(void *p, uint32_t n) {
    if (!owner) return 0;
    CAutoCriticalSection guard(&owner->lock); // a delete on another thread re-targets index
    if (index < -1 || !p) return 0;
    uint32_t read = owner->ReadEntry(index, position, p, n);
    position += read;
    return read;
}

int64_t CCDFileSystem::CCDFile::GetSize() {
    if (!owner) return 0;
    CAutoCriticalSection guard(&owner->lock);
    return index < -1 ? 0 : owner->EntrySize(index);
}

int64_t CCDFileSystem::CCDFile::GetPosition() {
    return position;
}

int64_t CCDFileSystem::CCDFile::Seek(int64_t offset, uint32_t origin) {
    // Past the end is allowed (the next write grows the file); before the start is 0.
    int64_t from = origin == 1 ? 0 : origin == 2 ? position : origin == 3 ? GetSize() : -1;
    if (from < 0) return position;
    position = offset < -from ? 0 : offset > INT64_MAX - from ? INT64_MAX : from + offset;
    return position;
}

bool CCDFileSystem::CCDFile::SetSize(int64_t size) {
    if (!owner) return false;
    CAutoCriticalSection guard(&owner->lock);
    return index >= -1 && size >= 0 && owner->SetEntrySize(index, size) == size;
}

void CCDFileSystem::CCDFile::Flush() {
    if (!owner) return;
    CAutoCriticalSection guard(&owner->lock); // a delete on another thread re-targets index
    if (index >= -1) owner->Flush();
}

void CCDFileSystem::CCDFile::Close() {
    if (!owner) return;
    CAutoCriticalSection guard(&owner->lock); // a delete on another thread re-targets index
    if (index != -2) owner->Flush();
    owner->Forget(this);
}

} // namespace qv
