#include <algorithm>
#include <memory>
#include <new>
#include <typeinfo>

#include "qv/files/File.h"
#include "qv/files/IFile.h"
#include "qv/filesystems/AtomicSave.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "qv/filesystems/IFileSystem.h"
#include "qv/platform/DiskFileCopy.h"

namespace qv {

namespace {

constexpr uint32_t kOpenForReading = 0x12; // read, must exist
constexpr uint32_t kOpenSourceFile = 0x11; // read, open or create
constexpr uint32_t kOpenNew = 0x24;        // write, must not exist
constexpr uint32_t kProbeWriting = 0x322;  // write, must exist, share read and write
constexpr int kTempPathSize = 260;
// A round of the kernel copy when nobody watches the progress: the system
// copies far faster in large requests than in blocks.
constexpr uint32_t kUnwatchedRound = 0x40000000;

void Report(CopyProgressRoutine progress, int64_t total, int64_t done, void *context) {
    if (progress) progress(total, done, context);
}

// A file that someone holds without sharing write (the copy's own source,
// among others) or that cannot be written is not replaced, as Windows
// refuses to open it; callers copying a file onto itself depend on that.
bool MayReplace(IFileSystem *fs, char16_t const *path) {
    if (!fs->FileExists(path)) return true;
    IFile *probe = fs->CreateFileW(path, kProbeWriting);
    delete probe;
    return probe != nullptr;
}

// Copies count bytes of src into path in fs. A path where nothing exists
// gets a new file: there are no old bytes to keep, so no temporary file and
// no sync, and a copy that fails deletes it again. A file that may be
// replaced is written beside it and renamed over it at the end (its data
// synced first), so a failed copy or a crash leaves it whole.
bool CopyIntoPath(IFile *src, IFileSystem *fs, char16_t const *path, int64_t count, bool overwrite,
                  CopyProgressRoutine progress, void *context) {
    IFile *dst = fs->CreateFileW(path, kOpenNew);
    if (!dst)
        return overwrite && MayReplace(fs, path) && SaveAtomically(fs, path, [&](IFile &file) {
                   return IFileSystem::CopyFileW(src, &file, count, progress, context);
               });
    bool copied = IFileSystem::CopyFileW(src, dst, count, progress, context);
    delete dst;
    if (!copied) fs->DeleteFileW(path);
    return copied;
}

// A copy in two halves (out to a temporary file and back) seen by the
// caller as one running total.
struct Halves {
    CopyProgressRoutine progress;
    void *context;
    int64_t size;
    int64_t doneBefore; // bytes of the halves already finished
};

void ReportHalf(int64_t, int64_t done, void *context) {
    auto *halves = static_cast<Halves *>(context);
    Report(halves->progress, 2 * halves->size, halves->doneBefore + done, halves->context);
}

struct Round {
    uint32_t read;
    uint32_t written;
};

// Moves a copy's bytes round by round: inside the system while both ends are
// plain disk files and the system can, otherwise through one heap block of
// kCopyBlockSize, allocated at the first round that needs it.
class RoundMover {
public:
    RoundMover(IFile *src, IFile *dst)
        : src(src), dst(dst), direct(typeid(*src) == typeid(CFile) && typeid(*dst) == typeid(CFile)) {}

    // Up to wanted bytes (through the buffer at most kCopyBlockSize). A round
    // that read nothing ends the copy; so does one whose block could not be had.
    Round Move(uint32_t wanted) {
        if (direct) {
            DiskCopyResult result = CopyDiskFileRange(Handle(src), Handle(dst), wanted);
            if (result.supported) return {result.moved, result.moved};
            direct = false;
        }
        wanted = std::min(wanted, kCopyBlockSize);
        if (!block) block.reset(new (std::nothrow) uint8_t[kCopyBlockSize]);
        if (!block) return {0, 0};
        uint32_t got = src->Read(block.get(), wanted);
        return {got, got ? dst->Write(block.get(), got) : 0};
    }

private:
    static intptr_t Handle(IFile *file) { return static_cast<CFile *>(file)->GetHandle(); }

    IFile *src;
    IFile *dst;
    bool direct;
    std::unique_ptr<uint8_t[]> block;
};

} // namespace

bool IFileSystem::CopyFileW(IFile *src, IFile *dst, int64_t count, CopyProgressRoutine progress, void *context) {
    if (!src || !dst) return false;
    Report(progress, count, 0, context);
    if (count == 0) return true;
    if (count < 0) return false;
    RoundMover mover(src, dst);
    uint32_t const roundSize = progress ? kCopyBlockSize : kUnwatchedRound;
    for (int64_t done = 0; done < count;) {
        Round round = mover.Move(uint32_t(std::min<int64_t>(count - done, roundSize)));
        if (round.read == 0) return false;
        done += round.written;
        Report(progress, count, done, context);
        if (round.written != round.read) return false;
    }
    return true;
}

bool IFileSystem::CopyFileW(IFile *src, IFile *dst, CopyProgressRoutine progress, void *context) {
    if (!src || src->SeekToBegin() != 0) return false;
    return CopyFileW(src, dst, src->GetSize(), progress, context);
}

bool IFileSystem::CopyFileW(IFileSystem *fs, char16_t const *path, IFile *dst, CopyProgressRoutine progress,
                            void *context) {
    if (!fs || !path || !dst) return false;
    if (fs->GetCapabilities() & kCapabilityCopyAcross) return fs->CopyFileW(path, dst, progress, context);
    IFile *src = fs->CreateFileW(path, kOpenSourceFile);
    if (!src) return false;
    bool copied = CopyFileW(src, dst, progress, context);
    delete src;
    return copied;
}

bool IFileSystem::CopyFileW(IFile *src, IFileSystem *fs, char16_t const *path, bool overwrite,
                            CopyProgressRoutine progress, void *context) {
    if (!src || !fs || !path) return false;
    if (fs->GetCapabilities() & kCapabilityCopyAcross) return fs->CopyFileW(src, path, overwrite, progress, context);
    if (src->SeekToBegin() != 0) return false;
    return CopyIntoPath(src, fs, path, src->GetSize(), overwrite, progress, context);
}

bool IFileSystem::CopyFileW(IFile *src, IFileSystem *fs, char16_t const *path, int64_t count, bool overwrite,
                            CopyProgressRoutine progress, void *context) {
    if (!src || !fs || !path) return false;
    if (fs->GetCapabilities() & kCapabilityCopyAcross)
        return fs->CopyFileW(src, path, count, overwrite, progress, context);
    return CopyIntoPath(src, fs, path, count, overwrite, progress, context);
}

bool IFileSystem::CopyFileW(IFileSystem *src, char16_t const *srcPath, IFileSystem *dst, char16_t const *dstPath,
                            bool overwrite, CopyProgressRoutine progress, void *context) {
    if (!src || !srcPath || !dst || !dstPath) return false;
    if (src == dst) {
        uint32_t capabilities = src->GetCapabilities();
        if (capabilities & kCapabilityCopyWithin) return src->CopyFileW(srcPath, dstPath, overwrite, progress, context);
        if (capabilities & kCapabilityCopyAcross) {
            char16_t temporary[kTempPathSize];
            CFileSystem *disk = FileSystem;
            if (!disk->GetTempFilename(temporary, kTempPathSize)) return false;
            Halves halves{progress, context, src->GetFileInfo(srcPath).size, 0};
            bool copied = src->CopyFileW(srcPath, disk, temporary, true, &ReportHalf, &halves);
            halves.doneBefore = halves.size;
            copied = copied && src->CopyFileW(disk, temporary, dstPath, overwrite, &ReportHalf, &halves);
            disk->DeleteFileW(temporary);
            return copied;
        }
    }
    if (src->GetCapabilities() & kCapabilityCopyAcross)
        return src->CopyFileW(srcPath, dst, dstPath, overwrite, progress, context);
    if (dst->GetCapabilities() & kCapabilityCopyAcross)
        return dst->CopyFileW(src, srcPath, dstPath, overwrite, progress, context);
    IFile *in = src->CreateFileW(srcPath, kOpenForReading);
    if (!in) return false;
    bool copied = in->SeekToBegin() == 0 && CopyIntoPath(in, dst, dstPath, in->GetSize(), overwrite, progress, context);
    delete in;
    return copied;
}

} // namespace qv
