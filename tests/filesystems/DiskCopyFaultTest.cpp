// Faults injected into the kernel copy between two disk files: a file system
// that cannot copy in the kernel falls back to the buffer, interrupted calls
// are retried, and a failure half-way fails the copy and removes the target.
// Also which road a copy takes: a new target is written in place, unsynced;
// an existing one is replaced by a synced temporary file.
#include <algorithm>
#include <cerrno>
#include <unistd.h>

#include "FileSystemTestSupport.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/platform/Syscalls.h"

namespace qv::test {
namespace {

int interruptions = 0;   // kernel copies left to interrupt
size_t copyBudget = 0;   // bytes the failing kernel copy still lets through
int kernelCopyCalls = 0; // kernel copies asked for
int syncs = 0;           // fsync calls
int renames = 0;         // rename calls

ssize_t CrossDevice(int, int, size_t) {
    ++kernelCopyCalls;
    errno = EXDEV;
    return -1;
}

ssize_t InterruptedCopy(int in, int out, size_t n) {
    ++kernelCopyCalls;
    if (interruptions > 0) {
        --interruptions;
        errno = EINTR;
        return -1;
    }
    return ::copy_file_range(in, nullptr, out, nullptr, n, 0);
}

// Lets copyBudget bytes through, then fails with EIO.
ssize_t DwindlingCopy(int in, int out, size_t n) {
    ++kernelCopyCalls;
    if (copyBudget == 0) {
        errno = EIO;
        return -1;
    }
    ssize_t moved = ::copy_file_range(in, nullptr, out, nullptr, std::min(n, copyBudget), 0);
    if (moved > 0) copyBudget -= size_t(moved);
    return moved;
}

int CountedSync(int fd) {
    ++syncs;
    return ::fsync(fd);
}

int CountedRename(char const *from, char const *to) {
    ++renames;
    return ::rename(from, to);
}

class DiskCopyFaults : public testing::Test {
protected:
    ScratchDir dir;
    IFileSystem &disk = GetFileSystem();
    CString source = dir.Text("source.bin");
    CString target = dir.Text("target.bin");
    std::string bytes = std::string(3 * 0x80000 + 123, 'q');

    void SetUp() override {
        for (size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = char(i * 7 + i / 4096);
        ASSERT_TRUE(WriteWhole(disk, source, bytes));
        kernelCopyCalls = syncs = renames = 0;
    }
    void TearDown() override { ResetSyscalls(); }

    bool Copy() {
        return IFileSystem::CopyFileW(&disk, source.GetUTF16(), &disk, target.GetUTF16(), true, nullptr, nullptr);
    }
};

TEST_F(DiskCopyFaults, CopyFallsBackToTheBufferAndRetriesInterruptions) {
    Syscalls().copyFileRange = &CrossDevice;
    EXPECT_TRUE(Copy());
    EXPECT_EQ(kernelCopyCalls, 1) << "one refusal switches the copy to the buffer";
    EXPECT_EQ(ReadWhole(disk, target), bytes);

    Syscalls().copyFileRange = &InterruptedCopy;
    interruptions = 3;
    kernelCopyCalls = 0;
    EXPECT_TRUE(Copy());
    EXPECT_EQ(interruptions, 0);
    EXPECT_GT(kernelCopyCalls, 3);
    EXPECT_EQ(ReadWhole(disk, target), bytes);
}

TEST_F(DiskCopyFaults, FailureHalfWayFailsTheCopyAndRemovesTheTarget) {
    Syscalls().copyFileRange = &DwindlingCopy;
    copyBudget = 0x80000 + 10;
    EXPECT_FALSE(Copy());
    EXPECT_FALSE(disk.FileExists(target.GetUTF16()));
    EXPECT_EQ(ReadWhole(disk, source), bytes) << "the source is never touched";
}

TEST_F(DiskCopyFaults, NewTargetIsWrittenInPlaceAndAnExistingOneReplacedAfterASync) {
    Syscalls().fsync = &CountedSync;
    Syscalls().rename = &CountedRename;
    EXPECT_TRUE(Copy());
    EXPECT_EQ(renames, 0) << "a new target needs no temporary file";
    EXPECT_EQ(syncs, 0) << "a new target has no old bytes to protect";
    EXPECT_TRUE(Copy());
    EXPECT_EQ(renames, 1) << "an existing target is replaced in one step";
    EXPECT_GE(syncs, 1) << "the new bytes reach the disk before the old ones go";
    EXPECT_EQ(ReadWhole(disk, target), bytes);
}

} // namespace
} // namespace qv::test
