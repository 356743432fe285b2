// Whole-file saves through a temporary file and a rename: the target is
// either the old file or the new one, whatever call fails, and no temporary
// file is left behind.
#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "FileSystemTestSupport.h"
#include "qv/filesystems/AtomicSave.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "qv/platform/Syscalls.h"

namespace qv::test {
namespace {

// A file system that cannot rename: the save writes the target directly.
class NoRenameFileSystem : public ForwardingFileSystem {
public:
    using ForwardingFileSystem::ForwardingFileSystem;
    uint32_t GetCapabilities() override { return 0; }
    bool RenameFileW(char16_t const *, char16_t const *) override { return false; }
};

class AtomicSaveTest : public testing::Test {
protected:
    ScratchDir dir;
    CString target = dir.Text("table.txt");

    void SetUp() override { ASSERT_TRUE(WriteWhole(*FileSystem, target, "old bytes")); }
    void TearDown() override { ResetSyscalls(); }

    bool Save(IFileSystem *fs, std::string const &bytes) {
        return SaveAtomically(fs, target, [&](IFile &file) {
            return file.Write(bytes.data(), uint32_t(bytes.size())) == bytes.size();
        });
    }
    size_t Entries() const {
        return size_t(std::distance(std::filesystem::directory_iterator(dir.path), {}));
    }
};

TEST_F(AtomicSaveTest, ReplacesTheTargetAndLeavesNothingElse) {
    EXPECT_TRUE(Save(nullptr, "new bytes, longer than before"));
    EXPECT_EQ(ReadWhole(*FileSystem, target), "new bytes, longer than before");
    EXPECT_EQ(Entries(), 1u);

    CAtomicSave save(FileSystem, dir.Text("fresh.txt"));
    ASSERT_NE(save.File(), nullptr);
    EXPECT_TRUE(save.IsAtomic());
    EXPECT_TRUE(save.Commit());
    EXPECT_EQ(ReadWhole(*FileSystem, dir.Text("fresh.txt")), "");
}

TEST_F(AtomicSaveTest, AFailedOrAbandonedSaveKeepsTheOldFile) {
    EXPECT_FALSE(SaveAtomically(FileSystem, target, [](IFile &file) {
        file.Write("partial", 7);
        return false;
    }));
    { CAtomicSave abandoned(FileSystem, target); }
    EXPECT_EQ(ReadWhole(*FileSystem, target), "old bytes");
    EXPECT_EQ(Entries(), 1u);
    CAtomicSave none(FileSystem, dir.Text("missing/dir/x"));
    EXPECT_EQ(none.File(), nullptr);
    EXPECT_FALSE(none.Commit());
}

TEST_F(AtomicSaveTest, FailingSyncOrRenameKeepsTheOldFile) {
    Syscalls().fsync = [](int) {
        errno = EIO;
        return -1;
    };
    EXPECT_FALSE(Save(nullptr, "never seen"));
    EXPECT_EQ(ReadWhole(*FileSystem, target), "old bytes");
    EXPECT_EQ(Entries(), 1u);
    ResetSyscalls();
    Syscalls().rename = [](char const *, char const *) {
        errno = ENOSPC;
        return -1;
    };
    EXPECT_FALSE(Save(nullptr, "never seen"));
    EXPECT_EQ(ReadWhole(*FileSystem, target), "old bytes");
    EXPECT_EQ(Entries(), 1u);
}

TEST_F(AtomicSaveTest, WithoutRenameTheTargetIsWrittenDirectly) {
    NoRenameFileSystem direct(*FileSystem);
    CAtomicSave save(&direct, target);
    ASSERT_NE(save.File(), nullptr);
    EXPECT_FALSE(save.IsAtomic());
    save.File()->Write("direct", 6);
    EXPECT_TRUE(save.Commit());
    EXPECT_EQ(ReadWhole(*FileSystem, target), "direct");
    EXPECT_EQ(Entries(), 1u);
}

} // namespace
} // namespace qv::test
