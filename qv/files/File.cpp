#include "qv/files/File.h"

#include "qv/core/Log.h"
#include "qv/core/StringFunctions.h"
#include "qv/files/OpenRequest.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/platform/DiskFile.h"
#include "qv/platform/DiskName.h"
#include "qv/platform/FullPath.h"

namespace qv {

namespace {

// The full path of path, or false when there is none or it is too long.
bool DiskPath(char16_t const *path, CString &fullPath) {
    return FullDiskPath(path, fullPath) && fullPath.GetLength() <= kMaxFullPathLength;
}

} // namespace

CFile::CFile() : handle(kInvalidFileHandle) {}

CFile::CFile(FileHandle adopted) : handle(adopted) {}

CFile::CFile(CFile const &other) : IFile(other), handle(DuplicateDiskFile(other.handle)), filename(other.filename) {}

CFile &CFile::operator=(CFile const &other) {
    if (&other == this) return *this;
    Close();
    IFile::operator=(other);
    handle = DuplicateDiskFile(other.handle);
    filename = other.filename;
    return *this;
}

CFile::~CFile() {
    Close();
}

bool CFile::Open(char16_t const *path, uint32_t flags) {
    if (!path) return false;
    CString fullPath;
    bool named = FullDiskPath(path, fullPath);
    bool fits = named && fullPath.GetLength() <= kMaxFullPathLength;
    OpenRequest request = DecodeOpenFlags(flags);
    FileHandle opened = fits ? OpenDiskFile(ToDiskName(fullPath.GetUTF16()).c_str(), request) : kInvalidFileHandle;
    // A file that should start at its end but cannot get there is not opened:
    // its first write would land at the start.
    if (opened != kInvalidFileHandle && request.seekToEnd && SeekDiskFile(opened, 0, SeekOrigin::End) < 0) {
        CloseDiskFile(opened);
        opened = kInvalidFileHandle;
    }
    if (opened == kInvalidFileHandle) {
        qvLogWriteLineW(u"CFile::Open(%s) FAILED.", named ? fullPath.GetUTF16() : path);
        return false;
    }
    handle = opened;
    filename = fullPath;
    return true;
}

void CFile::Attach(FileHandle adopted) {
    handle = adopted;
}

FileHandle CFile::Detach() {
    FileHandle detached = handle;
    handle = kInvalidFileHandle;
    return detached;
}

FileHandle CFile::GetHandle() const {
    return handle;
}

bool CFile::SetEOF() {
    return SetSize(GetPosition());
}

bool CFile::Remove(char16_t const *path) {
    CString fullPath;
    return DiskPath(path, fullPath) && RemoveDiskFile(ToDiskName(fullPath.GetUTF16()).c_str());
}

char16_t *CFile::GetFilename(char16_t *buf, int size) {
    return StrCpy(buf, filename.GetUTF16(), size > 0 ? size_t(size) : 0);
}

IFileSystem &CFile::GetFileSystem() {
    return qv::GetFileSystem();
}

uint32_t CFile::Write(void const *p, uint32_t n) {
    return WriteDiskFile(handle, p, n);
}

uint32_t CFile::Read(void *p, uint32_t n) {
    return ReadDiskFile(handle, p, n);
}

int64_t CFile::GetSize() {
    return GetDiskFileSize(handle);
}

int64_t CFile::GetPosition() {
    return Seek(0, 2);
}

int64_t CFile::Seek(int64_t offset, uint32_t origin) {
    static constexpr SeekOrigin kOrigins[] = {SeekOrigin::Begin, SeekOrigin::Current, SeekOrigin::End};
    if (origin < 1 || origin > 3) return 0;
    return SeekDiskFile(handle, offset, kOrigins[origin - 1]);
}

bool CFile::SetSize(int64_t size) {
    return SetDiskFileSize(handle, size);
}

void CFile::Flush() {
    FlushDiskFile(handle);
}

void *CFile::EditView(int64_t pos, uint32_t n) {
    return MapDiskFileRange(handle, pos, n);
}

void CFile::ReleaseEditView(void *view, uint32_t n) {
    UnmapDiskFileRange(view, n);
}

bool CFile::Sync() {
    return FlushDiskFile(handle);
}

void CFile::Close() {
    CloseDiskFile(handle);
    handle = kInvalidFileHandle;
}

} // namespace qv
