// CopyFileW under the fault harness, through the kernel copy and through the
// buffer: a copy over an existing file leaves it whole unless it succeeds,
// leaves no temporary file behind, and never touches the source.
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

// Every fault but a failing close: the last close of the new file comes
// after its data was synced through its name, which is what counts.
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
        EXPECT_GT(runs, 8);
    }
};

TEST_F(CopyWriterFaults, KernelCopyOverAFile) {
    Check(true);
}

TEST_F(CopyWriterFaults, KernelCopyToANewName) {
    Check(false);
}

TEST_F(CopyWriterFaults, BufferedCopyOverAFile) {
    Syscalls().copyFileRange = &CrossDevice;
    Check(true);
}

} // namespace
} // namespace qv::test
