#include "qv/filesystems/IFileSystem.h"

namespace qv {

namespace {

constexpr int kHelperBufferSize = 2048;

} // namespace

IFileSystem::~IFileSystem() = default;

IDirectoryMonitor *IFileSystem::MonitorDirectory(char16_t const *, uint32_t) {
    return nullptr;
}

uint32_t IFileSystem::GetCapabilities() {
    return 0;
}

bool IFileSystem::Defragment() {
    return false;
}

bool IFileSystem::CopyFileW(IFileSystem *, char16_t const *, char16_t const *, bool, CopyProgressRoutine, void *) {
    return false;
}

bool IFileSystem::CopyFileW(char16_t const *, IFileSystem *, char16_t const *, bool, CopyProgressRoutine, void *) {
    return false;
}

bool IFileSystem::CopyFileW(IFile *, char16_t const *, int64_t, bool, CopyProgressRoutine, void *) {
    return false;
}

bool IFileSystem::CopyFileW(IFile *, char16_t const *, bool, CopyProgressRoutine, void *) {
    return false;
}

bool IFileSystem::CopyFileW(char16_t const *, IFile *, CopyProgressRoutine, void *) {
    return false;
}

bool IFileSystem::CopyFileW(char16_t const *, char16_t const *, bool, CopyProgressRoutine, void *) {
    return false;
}

bool IFileSystem::SetFileAttributesW(char16_t const *, uint32_t) {
    return false;
}

bool IFileSystem::SetFileModifiedTime(char16_t const *, CDateTime) {
    return false;
}

bool IFileSystem::RenameFileW(char16_t const *, char16_t const *) {
    return false;
}

bool IFileSystem::FileExists(char16_t const *path) {
    return IsFile(path);
}

bool IFileSystem::IsFile(char16_t const *path) {
    return (GetFileInfo(path).attributes & kAttributeFile) != 0;
}

bool IFileSystem::IsDirectory(char16_t const *path) {
    return (GetFileInfo(path).attributes & kAttributeDirectory) != 0;
}

CString IFileSystem::GetCurrentWorkingDirectory() {
    char16_t buffer[kHelperBufferSize];
    return GetCurrentWorkingDirectory(buffer, kHelperBufferSize) ? CString(buffer) : CString();
}

CString IFileSystem::GetFullPath(CString path) {
    char16_t buffer[kHelperBufferSize];
    return GetFullPath(buffer, path.GetUTF16(), kHelperBufferSize) ? CString(buffer) : CString();
}

} // namespace qv
