#include "qv/filesystems/AtomicSave.h"

#include <atomic>

#include "qv/files/IFile.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "qv/platform/Ticks.h"

namespace qv {

namespace {

constexpr uint32_t kCreateNewReadWrite = 0x04 | 0x10 | 0x20;
constexpr uint32_t kCreateOrTruncateReadWrite = 0x08 | 0x10 | 0x20;
constexpr int kNameAttempts = 16;

// A suffix that differs between calls and between processes started apart.
uint32_t NextSuffix() {
    static std::atomic<uint32_t> counter{0};
    return GetTickCount() * 2654435761u + counter.fetch_add(0x9E3779B9u);
}

} // namespace

CAtomicSave::CAtomicSave(IFileSystem *fileSystem, char16_t const *path)
    : fs(fileSystem ? fileSystem : static_cast<IFileSystem *>(FileSystem)), target(path ? path : u"") {
    if (target.IsEmpty()) return;
    atomic = (fs->GetCapabilities() & kCapabilityRename) != 0;
    if (!atomic) {
        file = fs->CreateFileW(target, kCreateOrTruncateReadWrite);
        return;
    }
    for (int attempt = 0; attempt < kNameAttempts && !file; ++attempt) {
        temporary = target + CString::FromFormat(u".~qv%08X", NextSuffix());
        file = fs->CreateFileW(temporary, kCreateNewReadWrite);
    }
}

CAtomicSave::~CAtomicSave() {
    Abandon();
}

void CAtomicSave::Abandon() {
    if (!file) return;
    delete file;
    file = nullptr;
    if (atomic) fs->DeleteFileW(temporary);
}

bool CAtomicSave::Commit() {
    if (!file || failed) {
        Abandon();
        return false;
    }
    file->Close();
    delete file;
    file = nullptr;
    if (!atomic) return true;
    if (fs->RenameFileW(temporary, target)) return true;
    fs->DeleteFileW(temporary);
    return false;
}

} // namespace qv
