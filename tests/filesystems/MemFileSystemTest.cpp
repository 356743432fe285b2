// The memory file system and the flat table it shares with the resource and
// composite file systems: implied directories, listings, the current
// directory, blocks served in place, renames.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "qv/files/IFile.h"
#include "qv/filesystems/MemFileSystem.h"
#include "tests/filesystems/FileSystemTestSupport.h"

namespace qv::test {
namespace {

class MemFileSystemTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(fs.AddFile(u"/a/b/c.txt", one, 3));
        ASSERT_TRUE(fs.AddFile(u"/a/b/d.txt", two, 4));
        ASSERT_TRUE(fs.AddFile(u"/a/B/e.txt", two, 4));
        ASSERT_TRUE(fs.AddFile(u"/top.bin", two, 2));
    }
    char one[4] = "one";
    char two[5] = "two!";
    CMemFileSystem fs;
};

TEST_F(MemFileSystemTest, DirectoriesExistByTheirFiles) {
    EXPECT_TRUE(fs.IsDirectory(u"/a"));
    EXPECT_TRUE(fs.IsDirectory(u"/a/b/"));
    EXPECT_TRUE(fs.IsDirectory(u"\\A\\b")); // '\' and case do not matter below the root
    EXPECT_FALSE(fs.IsFile(u"/a/b"));
    EXPECT_FALSE(fs.FileExists(u"/a"));
    EXPECT_TRUE(fs.IsDirectory(u"/"));
    CMemFileSystem empty;
    EXPECT_FALSE(empty.IsDirectory(u"/")); // the root only while some entry exists

    IFileSystem::CDirectoryEntry dir = fs.GetFileInfo(u"/a/b");
    EXPECT_EQ(dir.attributes, kAttributeDirectory);
    EXPECT_EQ(U16(dir.name), u"b");
    EXPECT_EQ(U16(dir.path), u"/a/b/");
    EXPECT_EQ(dir.size, 0);

    IFileSystem::CDirectoryEntry file = fs.GetFileInfo(u"/A/B/C.TXT");
    EXPECT_EQ(file.attributes, kAttributeFile);
    EXPECT_EQ(file.size, 3);
    EXPECT_EQ(U16(file.name), u"c.txt");
    EXPECT_EQ(U16(file.path), u"/a/b/c.txt");
    EXPECT_EQ(static_cast<void *>(file.properties[u"Data"]), static_cast<void *>(one));
    EXPECT_EQ(fs.GetFileInfo(u"/a/b/x").attributes, kAttributeNone);
}

TEST_F(MemFileSystemTest, ListsFilesAndOneRowPerDirectoryName) {
    IFileSystem::CDirectoryListing top = fs.GetDirectoryListing(u"/", nullptr);
    ASSERT_EQ(top.GetSize(), 2u);
    EXPECT_EQ(U16(top[0].name), u"a");
    EXPECT_EQ(top[0].attributes, kAttributeDirectory);
    EXPECT_EQ(U16(top[0].path), u"/a");
    EXPECT_EQ(U16(top[1].name), u"top.bin");

    IFileSystem::CDirectoryListing a = fs.GetDirectoryListing(u"\\a", nullptr);
    EXPECT_EQ(U16(a.directory), u"/a/");
    ASSERT_EQ(a.GetSize(), 1u); // "b" and "B" are one directory: the first wins
    EXPECT_EQ(U16(a[0].name), u"b");

    EXPECT_EQ(fs.GetDirectoryListing(u"/a/b", u"*.TXT").GetSize(), 3u); // "/a/B/e.txt" too
    EXPECT_EQ(fs.GetDirectoryListing(u"/a/b", u"c*").GetSize(), 1u);
    EXPECT_EQ(fs.GetDirectoryListing(u"/nowhere", nullptr).GetSize(), 0u);
}

TEST_F(MemFileSystemTest, CurrentDirectoryAndFullPaths) {
    char16_t out[512];
    ASSERT_TRUE(fs.GetCurrentWorkingDirectory(out, 512));
    EXPECT_EQ(U16(out), u"/");
    EXPECT_FALSE(fs.SetCurrentWorkingDirectory(u"/nowhere"));
    EXPECT_FALSE(fs.SetCurrentWorkingDirectory(u"/top.bin"));
    ASSERT_TRUE(fs.SetCurrentWorkingDirectory(u"/a/b"));
    EXPECT_EQ(U16(fs.GetCurrentWorkingDirectory()), u"/a/b/");
    EXPECT_TRUE(fs.IsFile(u"c.txt"));
    EXPECT_EQ(U16(fs.GetFullPath(CString(u"..\\x"))), u"/a/x");
    EXPECT_EQ(U16(fs.GetFullPath(CString(u"\\x"))), u"/a/b/x"); // only '/' makes a path absolute
    EXPECT_EQ(U16(fs.GetFullPath(CString(u"/a/../b"))), u"/a/../b"); // not normalised
    EXPECT_FALSE(fs.IsFile(u"/a/b/../b/c.txt"));
    EXPECT_FALSE(fs.GetCurrentWorkingDirectory(out, 3));
    EXPECT_FALSE(fs.GetFullPath(out, u"/long/path", 5));
}

TEST_F(MemFileSystemTest, AddingKeepsTheFirstBlock) {
    char other[] = "other";
    EXPECT_FALSE(fs.AddFile(u"/A/b/C.txt", other, 5));
    EXPECT_EQ(ReadWhole(fs, u"/a/b/c.txt"), "one");
    // A relative path is stored as given and never found.
    EXPECT_TRUE(fs.AddFile(u"rel.txt", other, 5));
    EXPECT_FALSE(fs.IsFile(u"rel.txt"));
}

TEST_F(MemFileSystemTest, FilesUseTheBlockInPlace) {
    EXPECT_EQ(fs.CreateFileW(u"/a/b", 0x12), nullptr); // a directory
    EXPECT_EQ(fs.CreateFileW(u"/missing", 0x28), nullptr);
    std::unique_ptr<IFile> file(fs.CreateFileW(u"/a/b/c.txt", 0x24)); // flags are not looked at
    ASSERT_TRUE(file);
    EXPECT_EQ(file->GetSize(), 3);
    EXPECT_EQ(file->Write("O", 1), 1u);
    EXPECT_EQ(std::string(one), "One"); // in place
    file->SeekToEnd();
    EXPECT_EQ(file->Write("!", 1), 1u); // growth moves to the file's own block
    EXPECT_EQ(std::string(one), "One");
    file.reset();
    EXPECT_EQ(ReadWhole(fs, u"/a/b/c.txt"), "One");
}

TEST_F(MemFileSystemTest, RenamesButNeverMakesOrDeletes) {
    EXPECT_EQ(fs.GetCapabilities(), kCapabilityRename);
    EXPECT_FALSE(fs.DeleteFileW(u"/top.bin"));
    EXPECT_FALSE(fs.CreateDirectoryW(u"/new", true));
    EXPECT_FALSE(fs.RemoveDirectoryW(u"/a", true));

    EXPECT_TRUE(fs.RenameFileW(u"/top.bin", u"/moved/top2.bin"));
    EXPECT_FALSE(fs.FileExists(u"/top.bin"));
    EXPECT_EQ(ReadWhole(fs, u"/moved/top2.bin"), "tw");
    EXPECT_EQ(U16(fs.GetFileInfo(u"/moved/top2.bin").name), u"top2.bin");

    EXPECT_TRUE(fs.RenameFileW(u"/moved/top2.bin", u"/a/b/c.txt")); // replaces
    EXPECT_EQ(ReadWhole(fs, u"/a/b/c.txt"), "tw");
    EXPECT_EQ(fs.GetDirectoryListing(u"/a/b", nullptr).GetSize(), 3u);
    EXPECT_FALSE(fs.RenameFileW(u"/a/b/c.txt", u"/a")); // never over a directory
    EXPECT_FALSE(fs.RenameFileW(u"/none", u"/x"));
    EXPECT_TRUE(fs.RenameFileW(u"/a/b/c.txt", u"/A/B/C.TXT")); // itself
    EXPECT_EQ(ReadWhole(fs, u"/a/b/c.txt"), "tw");
}

} // namespace
} // namespace qv::test
