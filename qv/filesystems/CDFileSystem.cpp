// Opening, creating, flushing and closing a CDFS host.
#include "qv/filesystems/CDFileSystem.h"
#include "qv/threads/AutoLock.h"

#include <cstring>
#include <memory>

#include "qv/filesystems/CDFileLayout.h"
#include "qv/filesystems/FileSystem.h"

namespace qv {

using namespace cdfs;

namespace {

bool HasMagic(IFile &file, int64_t at) {
    char magic[4];
    return at >= 0 && file.Seek(at, 1) == at && file.ReadBytes(magic, 4) && std::memcmp(magic, kMagic, 4) == 0;
}

// The base named by a foot at the end of file, if there is one.
bool ReadFoot(IFile &file, int64_t &base) {
    int64_t size = file.GetSize();
    char foot[8];
    if (size < kFootSize || file.Seek(size - kFootSize, 1) != size - kFootSize || !file.GetInt64(base) ||
        !file.ReadBytes(foot, 8) || std::memcmp(foot, kFootMagic, 8) != 0)
        return false;
    return base >= 0 && base <= size - kFootSize - kHeaderSize;
}

// The start of the CDFS in file: 0, or the base of a foot that points at one.
bool LocateCDFS(IFile &file, int64_t &base) {
    if (HasMagic(file, 0)) {
        base = 0;
        return true;
    }
    return ReadFoot(file, base) && HasMagic(file, base);
}

} // namespace

CCDFileSystem::CCDFileSystem() {
    root.SetName(u"/");
    root.SetPath(u"/");
    root.attributes = kAttributeDirectory;
    root.modified = CDateTime::NewNow();
}

CCDFileSystem::~CCDFileSystem() {
    Close();
    CAutoCriticalSection guard(&lock);
    for (uint32_t i = 0; i < openFiles.GetSize(); ++i)
        openFiles.GetItem(i)->owner = nullptr;
}

bool CCDFileSystem::IsCDFile(char16_t const *path) {
    return IsCDFile(&GetFileSystem(), path);
}

bool CCDFileSystem::IsCDFile(IFileSystem *fs, char16_t const *path) {
    if (!fs || !path) return false;
    std::unique_ptr<IFile> file(fs->CreateFileW(path, 0x312));
    int64_t base = 0;
    return file && LocateCDFS(*file, base);
}

bool CCDFileSystem::Create(char16_t const *path, bool append) {
    return Create(&GetFileSystem(), path, append);
}

bool CCDFileSystem::Open(char16_t const *path, bool readOnly) {
    return Open(&GetFileSystem(), path, readOnly);
}

bool CCDFileSystem::Check(IFileSystem *fs, char16_t const *path, CString &problem) {
    CCDFileSystem cdfs;
    cdfs.refusal = "the file cannot be opened";
    if (fs && path && fs->FileExists(path) && cdfs.Open(fs, path, true)) {
        problem = CString();
        return true;
    }
    problem = CString(cdfs.refusal);
    return false;
}

bool CCDFileSystem::Create(IFileSystem *fs, char16_t const *path, bool append) {
    CAutoCriticalSection guard(&lock);
    Close();
    if (!fs || !path) return false;
    bool exists = fs->IsFile(path);
    if (exists && !append) return false;
    host = fs->CreateFileW(path, exists ? 0x32 : 0x34);
    if (!host) return false;
    int64_t found = 0;
    if (exists && (HasMagic(*host, 0) || ReadFoot(*host, found))) {
        // It holds a CDFS already: leave it untouched (no flush).
        delete host;
        host = nullptr;
        return false;
    }
    base = exists ? host->GetSize() : 0;
    if (WriteHeader()) return true;
    // Whatever was appended goes; the file's own bytes stay.
    if (exists) host->SetSize(base);
    delete host;
    host = nullptr;
    if (!exists) fs->DeleteFileW(path);
    return false;
}

// The first block of zeros, then the table of an empty CDFS.
bool CCDFileSystem::WriteHeader() {
    root.size = 0;
    rootRegion = {0, kBlock};
    root.properties.Clear();
    SetRegion(-1, 0, kBlock);
    return host->Seek(base, 1) == base && host->WriteZeros(uint32_t(kBlock)) && SaveFileTable();
}

bool CCDFileSystem::Open(IFileSystem *fs, char16_t const *path, bool openReadOnly) {
    CAutoCriticalSection guard(&lock);
    Close();
    if (!fs || !path) return false;
    if (!fs->FileExists(path)) return !openReadOnly && Create(fs, path, false);
    host = fs->CreateFileW(path, openReadOnly ? 0x12 : 0x32);
    if (!host) return false;
    readOnly = openReadOnly;
    if (!LocateCDFS(*host, base)) Refuse("no \"CDFS\" at the start, nor a foot that points at one");
    else if (LoadFileTable()) return true;
    Close();
    return false;
}

void CCDFileSystem::Close() {
    CAutoCriticalSection guard(&lock);
    if (host) Flush();
    delete host;
    host = nullptr;
    readOnly = false;
    base = 0;
    entries.Empty();
    regions.Empty();
    rootRegion = {0, 0};
    root.size = 0;
    for (uint32_t i = 0; i < openFiles.GetSize(); ++i)
        openFiles.GetItem(i)->index = -2;
}

bool CCDFileSystem::Flush() {
    CAutoCriticalSection guard(&lock);
    if (!host || readOnly) return false;
    bool ok = SaveFileTable();
    int64_t foot = base + NextFileOffset(); // behind a table that may have grown
    ok = ok && host->Seek(foot, 1) == foot && host->PutInt64(base) && host->WriteBytes(kFootMagic, 8);
    host->Flush();
    return ok;
}

bool CCDFileSystem::IsOpen() {
    CAutoCriticalSection guard(&lock);
    return host != nullptr;
}

void CCDFileSystem::Lock() {
    lock.Enter();
}

void CCDFileSystem::Unlock() {
    lock.Leave();
}

} // namespace qv
