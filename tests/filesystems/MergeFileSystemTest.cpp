// The mount table: first mount that has a file wins, new files go to the
// first mount they could lie under, mount points are directories, and the
// registry of composite formats.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "qv/filesystems/CDFileSystem.h"
#include "qv/filesystems/CompositeFile.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "qv/filesystems/MemFileSystem.h"
#include "qv/filesystems/MergeFileSystem.h"
#include "tests/filesystems/FileSystemTestSupport.h"

namespace qv::test {
namespace {

class MergeFileSystemTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(first.Create(&hosts, u"/first", false));
        ASSERT_TRUE(second.Create(&hosts, u"/second", false));
        ASSERT_TRUE(WriteWhole(first, u"/in/only-first", "1"));
        ASSERT_TRUE(WriteWhole(second, u"/x", "second x"));
        ASSERT_TRUE(WriteWhole(second, u"/in/only-first", "hidden"));
        ASSERT_TRUE(merge.Mount(u"/a", &first, u"/"));
        ASSERT_TRUE(merge.Mount(u"/a", &second, u"/"));
    }
    MemoryHosts hosts;
    CCDFileSystem first, second;
    CMergeFileSystem merge;
};

TEST_F(MergeFileSystemTest, TheFirstMountThatHasTheFileWins) {
    IFileSystem::CDirectoryEntry x = merge.GetFileInfo(u"/a/x");
    EXPECT_EQ(x.attributes, kAttributeFile);
    EXPECT_EQ(U16(x.path), u"/a/x");
    EXPECT_EQ(U16(x.properties.GetValue(u"ResolvedPath")), u"/x");
    EXPECT_EQ(static_cast<void *>(x.properties[u"FileSystem"]), static_cast<void *>(&second));
    EXPECT_EQ(ReadWhole(merge, u"/a/x"), "second x");
    EXPECT_EQ(ReadWhole(merge, u"/a/in/only-first"), "1");

    // A new file goes to the first mount it could lie under.
    ASSERT_TRUE(WriteWhole(merge, u"/a/y", "new"));
    EXPECT_TRUE(first.FileExists(u"/y"));
    EXPECT_FALSE(second.FileExists(u"/y"));
    bool exists = true;
    IFileSystem::CDirectoryEntry place = merge.intGetFileInfo(u"/a/z", exists);
    EXPECT_FALSE(exists);
    EXPECT_EQ(place.attributes, kAttributeFile);
    EXPECT_EQ(merge.GetFileInfo(u"/a/z").attributes, kAttributeNone);
    EXPECT_FALSE(merge.DeleteFileW(u"/a/z"));
    EXPECT_TRUE(merge.DeleteFileW(u"/a/x"));
    EXPECT_FALSE(second.FileExists(u"/x"));

    EXPECT_EQ(merge.GetFileInfo(u"/elsewhere").attributes, kAttributeNone);
    EXPECT_EQ(merge.CreateFileW(u"/elsewhere", 0x28), nullptr);
}

TEST_F(MergeFileSystemTest, MountPointsAreDirectories) {
    CMergeFileSystem deep;
    ASSERT_TRUE(deep.Mount(u"/a/b/c", &first, u"/"));
    EXPECT_TRUE(deep.IsDirectory(u"/a"));
    EXPECT_TRUE(deep.IsDirectory(u"/a/b/c"));
    EXPECT_FALSE(deep.FileExists(u"/a"));
    IFileSystem::CDirectoryListing top = deep.GetDirectoryListing(u"/", nullptr);
    ASSERT_EQ(top.GetSize(), 1u);
    EXPECT_EQ(U16(top[0].name), u"c"); // the mount point's last item
    EXPECT_EQ(U16(top[0].path), u"/a/b/c");
    EXPECT_EQ(top[0].attributes, kAttributeDirectory);
    EXPECT_FALSE(deep.RemoveDirectoryW(u"/a/b/c", true));

    IFileSystem::CDirectoryListing a = merge.GetDirectoryListing(u"/a", nullptr);
    ASSERT_EQ(a.GetSize(), 2u); // "in" once, from the first mount, and "x"
    a.Sort(kSortByName);
    EXPECT_EQ(U16(a[0].name), u"in");
    EXPECT_EQ(U16(a[1].name), u"x");
    EXPECT_EQ(U16(a[1].path), u"/a/x");
    EXPECT_EQ(U16(a[1].properties.GetValue(u"ResolvedPath")), u"/x");
    EXPECT_EQ(merge.GetDirectoryListing(u"/a", u"*.none").GetSize(), 0u);
}

TEST_F(MergeFileSystemTest, ARootMountComesFirst) {
    CMemFileSystem memory;
    char bytes[] = "root f";
    ASSERT_TRUE(memory.AddFile(u"/m/f", bytes, 6));
    CMergeFileSystem both;
    ASSERT_TRUE(both.Mount(u"/", &memory, u"/"));
    ASSERT_TRUE(both.Mount(u"/m", &second, u"/"));
    EXPECT_EQ(ReadWhole(both, u"/m/f"), "root f");
    EXPECT_EQ(ReadWhole(both, u"/m/x"), "second x"); // not in the first: on to the next
}

TEST_F(MergeFileSystemTest, UnmountsDirectoriesAndRenames) {
    EXPECT_FALSE(merge.Unmount(u"/a", &hosts));
    EXPECT_FALSE(merge.CreateDirectoryW(u"/a/d", false)); // two mounts
    EXPECT_TRUE(merge.RenameFileW(u"/a/in/only-first", u"/a/moved"));
    EXPECT_EQ(ReadWhole(first, u"/moved"), "1");
    EXPECT_FALSE(merge.RenameFileW(u"/a/x", u"/nowhere/x"));
    EXPECT_TRUE(merge.Unmount(u"/A", &first));
    EXPECT_EQ(ReadWhole(merge, u"/a/in/only-first"), "hidden");
    EXPECT_TRUE(merge.SetCurrentWorkingDirectory(u"/a/in"));
    EXPECT_EQ(U16(merge.GetCurrentWorkingDirectory()), u"/a/in/");
    EXPECT_EQ(ReadWhole(merge, u"only-first"), "hidden");
    EXPECT_FALSE(merge.SetCurrentWorkingDirectory(u"/b"));

    ScratchDir dir;
    CMergeFileSystem one;
    ASSERT_TRUE(one.Mount(u"/", FileSystem, dir.Text()));
    EXPECT_TRUE(one.CreateDirectoryW(u"/made", false)); // behind the one mount's sub-path
    EXPECT_TRUE(FileSystem->IsDirectory(dir.Text("made")));
}

// A composite format for the registry: a CDFS whose test is IsCDFile.
class CompositeCDFS : public ICompositeFile {
public:
    bool OpenComposite(IFileSystem *fs, char16_t const *path) override { return cdfs.Open(fs, path, true); }
    bool CloseComposite() override {
        cdfs.Close();
        return true;
    }
    IFile *CreateFileW(char16_t const *path, uint32_t flags) override { return cdfs.CreateFileW(path, flags); }
    CDirectoryListing GetDirectoryListing(char16_t const *d, char16_t const *p) override {
        return cdfs.GetDirectoryListing(d, p);
    }
    CDirectoryEntry GetFileInfo(char16_t const *path) override { return cdfs.GetFileInfo(path); }
    bool GetFullPath(char16_t *out, char16_t const *path, int size) override {
        return cdfs.GetFullPath(out, path, size);
    }
    bool DeleteFileW(char16_t const *) override { return false; }
    bool CreateDirectoryW(char16_t const *, bool) override { return false; }
    bool RemoveDirectoryW(char16_t const *, bool) override { return false; }
    bool SetCurrentWorkingDirectory(char16_t const *) override { return false; }
    bool GetCurrentWorkingDirectory(char16_t *, int) override { return false; }
    using IFileSystem::GetCurrentWorkingDirectory;
    using IFileSystem::GetFullPath;

private:
    CCDFileSystem cdfs;
};

TEST(CompositeRegistry, OpensByTheFirstFormatThatTakesTheFile) {
    MemoryHosts hosts;
    hosts.SetBytes(u"/plain", "not a composite");
    EXPECT_EQ(ICompositeFile::OpenCompositeFile(&hosts, u"/plain"), nullptr); // nothing takes it
    {
        CCDFileSystem cdfs;
        ASSERT_TRUE(cdfs.Create(&hosts, u"/c", false));
        ASSERT_TRUE(WriteWhole(cdfs, u"/inside", "inside"));
    }
    auto make = []() -> ICompositeFile * { return new CompositeCDFS(); };
    auto never = [](IFileSystem *, char16_t const *) { return false; };
    auto test = [](IFileSystem *fs, char16_t const *path) { return CCDFileSystem::IsCDFile(fs, path); };
    uint32_t first = ICompositeFile::Register(u"registry test never", make, never);
    EXPECT_NE(first, kCompositeNameTaken);
    EXPECT_EQ(ICompositeFile::Register(u"registry test never", make, test), kCompositeNameTaken);
    EXPECT_EQ(ICompositeFile::Register(u"registry test cdfs", make, test), first + 1);
    EXPECT_TRUE(ICompositeFile::IsCompositeFile(&hosts, u"/c"));
    EXPECT_FALSE(ICompositeFile::IsCompositeFile(&hosts, u"/plain"));
    std::unique_ptr<ICompositeFile> opened(ICompositeFile::OpenCompositeFile(&hosts, u"/c"));
    ASSERT_TRUE(opened);
    EXPECT_EQ(ReadWhole(*opened, u"/inside"), "inside");
    char16_t out[8];
    EXPECT_FALSE(opened->GetDefaultFile(out));
    EXPECT_TRUE(opened->CloseComposite());
}

} // namespace
} // namespace qv::test
