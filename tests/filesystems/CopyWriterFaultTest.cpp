// CopyFileW under the fault harness, through the kernel copy and through the
// buffer: a copy over an existing file leaves it whole unless it succeeds, a
// copy to a new name leaves nothing there unless it succeeds, neither leaves
// a temporary file behind, and the source is never touched.
#include <linux/magic.h>
#include <sys/statfs.h>

#include <cerrno>
#include <filesystem>

#include "FileSystemTestSupport.h"
#include "qv/filesystems/FileSystem.h"
#include "support/FaultInjection.h"

namespace qv::test {
namespace {

ssize_t CrossDevice(int, int, size_t) {
    errno = EXDEV;
    return -1;
}

// Every copy takes the road of ext4, which claims the target's space ahead,
// whatever file system the scratch directory is on.
int OnExt4(int fd, struct statfs *st) {
    int result = ::fstatfs(fd, st);
    st->f_type = EXT4_SUPER_MAGIC;
    return result;
}

// A file system that cannot claim space ahead: the kernel copy goes on without.
int NoReservation(int, int, off_t, off_t) {
    errno = EOPNOTSUPP;
    return -1;
}

// Every fault but a failing close, which Linux answers having released the
// descriptor and kept what was written: over a file, what counts is the sync
// through its name before the rename; a new file is not synced at all.
std::vector<Fault> CopyFaults() {
    auto kinds = AllFaults();
    std::erase(kinds, Fault::kClose);
    return kinds;
}

class CopyWriterFaults : public testing::Test {
protected:
    ScratchDir dir;
    IFileSystem &disk = GetFileSystem();
    CString source = dir.Text("source.bin");
    CString target = dir.Text("target.bin");
    std::string bytes = std::string(3 * 0x80000 + 123, 'q');
    std::string old = "the old target, which must survive a failed copy";

    void SetUp() override {
        Syscalls().fstatfs = &OnExt4;
        for (size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = char(i * 7 + i / 4096);
        ASSERT_TRUE(WriteWhole(disk, source, bytes));
    }
    void TearDown() override { ResetSyscalls(); }

    size_t FilesInDir() const {
        return size_t(std::distance(std::filesystem::directory_iterator(dir.path), {}));
    }

    void Check(bool targetExists) {
        int runs = RunUnderFaults(
            [&] {
                std::filesystem::remove(dir.Path("target.bin"));
                if (targetExists) {
                    ASSERT_TRUE(WriteWhole(disk, target, old));
                }
            },
            [&] {
                return IFileSystem::CopyFileW(&disk, source.GetUTF16(), &disk, target.GetUTF16(), true, nullptr,
                                              nullptr);
            },
            [&](FaultRun const &run) {
                ExpectFailureReported(run);
                std::string now = ReadWhole(disk, target);
                // A failure after the rename (the directory's sync) leaves the new file.
                // A new name has no old bytes: it is written in place and deleted on failure.
                std::string before = targetExists ? old : std::string("<none>");
                if (run.succeeded) {
                    EXPECT_EQ(now, bytes);
                } else {
                    EXPECT_TRUE(now == before || now == bytes) << "the target is neither old nor new";
                }
                EXPECT_EQ(FilesInDir(), now == "<none>" ? 1u : 2u) << "a temporary file was left behind";
                EXPECT_EQ(ReadWhole(disk, source), bytes);
            },
            CopyFaults());
        // A new name takes no temporary file, sync or rename: fewer calls to fail.
        EXPECT_GT(runs, targetExists ? 8 : 2);
    }
};

TEST_F(CopyWriterFaults, KernelCopyOverAFile) {
    Check(true);
}

TEST_F(CopyWriterFaults, KernelCopyToANewName) {
    Check(false);
}

TEST_F(CopyWriterFaults, KernelCopyWithoutReservation) {
    Syscalls().fallocate = &NoReservation;
    Check(true);
    Check(false);
}

TEST_F(CopyWriterFaults, BufferedCopyOverAFile) {
    Syscalls().copyFileRange = &CrossDevice;
    Check(true);
}

TEST_F(CopyWriterFaults, BufferedCopyToANewName) {
    Syscalls().copyFileRange = &CrossDevice;
    Check(false);
}

} // namespace
} // namespace qv::test
