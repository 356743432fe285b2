// What the disk file system adds to the contract: permissions, the hidden
// mark, temporary files, full paths and the working directory, odd names,
// links, and the singleton seams.
#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "qv/files/File.h"
#include "qv/files/MemFile.h"
#include "qv/filesystems/CWDFixer.h"
#include "qv/filesystems/DirectoryMonitor.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "qv/filesystems/FileSystem.h"
#include "tests/filesystems/FileSystemTestSupport.h"

namespace qv::test {
namespace {

mode_t ModeOf(std::string const &path) {
    struct stat st {};
    return ::stat(path.c_str(), &st) == 0 ? st.st_mode & 07777 : 0;
}

bool HasHiddenMark(std::string const &path) {
    char value;
    return ::getxattr(path.c_str(), "user.qv.hidden", &value, 1) == 1;
}

TEST(DiskFileSystem, ReadOnlyIsTheWritePermissionAndHiddenAnExtendedAttribute) {
    ScratchDir dir;
    std::string path = dir.Path("f");
    ASSERT_TRUE(WriteWhole(*FileSystem, CString(path.c_str()), "x"));
    ::chmod(path.c_str(), 0664);
    EXPECT_TRUE(FileSystem->SetFileAttributesW(CString(path.c_str()), kAttributeReadOnly));
    EXPECT_EQ(ModeOf(path), 0444u);
    EXPECT_TRUE(FileSystem->SetFileAttributesW(CString(path.c_str()), 0));
    EXPECT_EQ(ModeOf(path), 0644u);

    bool keepsMarks = ::setxattr(path.c_str(), "user.qv.probe", "1", 1, 0) == 0;
    EXPECT_TRUE(FileSystem->SetFileAttributesW(CString(path.c_str()), kAttributeHidden));
    EXPECT_EQ(HasHiddenMark(path), keepsMarks);
    EXPECT_TRUE(FileSystem->SetFileAttributesW(CString(path.c_str()), 0));
    EXPECT_FALSE(HasHiddenMark(path));
    EXPECT_FALSE(FileSystem->SetFileAttributesW(CString(dir.Path("missing").c_str()), 0));
}

// Sets or clears the immutable flag of a directory, which stops even root
// from removing names in it; false where the file system has no such flag.
bool SetImmutable(std::string const &path, bool on) {
    int fd = ::open(path.c_str(), O_RDONLY | O_DIRECTORY);
    int flags = 0;
    bool done = fd >= 0 && ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
    flags = on ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
    done = done && ::ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
    if (fd >= 0) ::close(fd);
    return done;
}

// Deleting clears read-only so that the name can go; a file that stays (the
// removal failed) keeps its read-only mark, and deleting a link never changes
// the file it points to.
TEST(DiskFileSystem, DeleteChangesNoPermissionsOfWhatStays) {
    ScratchDir dir;
    ASSERT_TRUE(FileSystem->CreateDirectoryW(dir.Text("locked"), false));
    std::string const kept = dir.Path("locked/f");
    ASSERT_TRUE(WriteWhole(*FileSystem, CString(kept.c_str()), "x"));
    ASSERT_TRUE(FileSystem->SetFileAttributesW(CString(kept.c_str()), kAttributeReadOnly | kAttributeHidden));
    bool const hidden = HasHiddenMark(kept);
    if (SetImmutable(dir.Path("locked"), true)) {
        EXPECT_FALSE(FileSystem->DeleteFileW(CString(kept.c_str())));
        EXPECT_TRUE(SetImmutable(dir.Path("locked"), false));
        EXPECT_EQ(ModeOf(kept), 0444u);
        EXPECT_EQ(HasHiddenMark(kept), hidden);
    }

    ::chmod(kept.c_str(), 0444);
    std::string const link = dir.Path("link");
    ASSERT_EQ(::symlink(kept.c_str(), link.c_str()), 0);
    EXPECT_TRUE(FileSystem->DeleteFileW(CString(link.c_str())));
    EXPECT_NE(::access(link.c_str(), F_OK), 0);
    EXPECT_EQ(ModeOf(kept), 0444u) << "the link went, its target is untouched";
    EXPECT_TRUE(FileSystem->DeleteFileW(CString(kept.c_str())));
    EXPECT_NE(::access(kept.c_str(), F_OK), 0);
}

TEST(DiskFileSystem, TemporaryFilesAreLeftEmptyInTheTemporaryDirectory) {
    ScratchDir dir;
    std::string saved = getenv("TMPDIR") ? getenv("TMPDIR") : "";
    setenv("TMPDIR", dir.path.c_str(), 1);
    CString name = FileSystem->GetTempFilename();
    char16_t tiny[8];
    EXPECT_FALSE(FileSystem->GetTempFilename(tiny, 8)); // does not fit, and leaves nothing
    saved.empty() ? unsetenv("TMPDIR") : setenv("TMPDIR", saved.c_str(), 1);

    ASSERT_FALSE(name.IsEmpty());
    EXPECT_TRUE(IFileSystem::IsSamePath(IFileSystem::MakePath(dir.Text(), CString(u"tim"), u'/'),
                                        CString(name.GetUTF16()).Left(name.GetLength() - 6)));
    EXPECT_TRUE(FileSystem->FileExists(name));
    EXPECT_EQ(FileSystem->GetFileInfo(name).size, 0);
    EXPECT_EQ(FileSystem->GetDirectoryListing(dir.Text(), nullptr).GetSize(), 1u);
}

TEST(DiskFileSystem, FullPathsAndTheWorkingDirectory) {
    ScratchDir dir;
    CCWDFixer fixer;
    {
        CCWDFixer inner;
        ASSERT_TRUE(FileSystem->SetCurrentWorkingDirectory(dir.Text()));
        EXPECT_TRUE(IFileSystem::IsSamePath(FileSystem->GetCurrentWorkingDirectory(), dir.Text()));
        EXPECT_EQ(U16(FileSystem->GetFullPath(CString(u"a\\b/../c"))), U16(dir.Text() + u"/a/c"));

        char16_t buffer[512] = u"x/./y";
        EXPECT_TRUE(FileSystem->GetFullPath(buffer, buffer, 512)); // in place
        EXPECT_EQ(U16(buffer), U16(dir.Text() + u"/x/y"));
        EXPECT_FALSE(FileSystem->GetFullPath(buffer, u"x", 3));
        EXPECT_FALSE(FileSystem->GetCurrentWorkingDirectory(buffer, 2));

        ASSERT_TRUE(WriteWhole(*FileSystem, CString(u"rel.txt"), "r"));
        EXPECT_TRUE(FileSystem->FileExists(CString(dir.Path("rel.txt").c_str())));
        EXPECT_EQ(FileSystem->GetDirectoryListing(nullptr, u"*.txt").GetSize(), 1u);
    }
    EXPECT_FALSE(IFileSystem::IsSamePath(FileSystem->GetCurrentWorkingDirectory(), dir.Text())); // restored
    EXPECT_EQ(FileSystem->GetFileInfo(u"/").attributes, kAttributeNone);                         // a root is not found
}

TEST(DiskFileSystem, BackslashesSeparateAndLeadingSlashesStay) {
    ScratchDir dir;
    CString tree = dir.Text() + u"\\x\\y";
    EXPECT_TRUE(FileSystem->CreateDirectoryW(tree, true));
    struct stat st {};
    EXPECT_EQ(::stat(dir.Path("x/y").c_str(), &st), 0);
    EXPECT_TRUE(S_ISDIR(st.st_mode));
    EXPECT_TRUE(FileSystem->IsDirectory(dir.Text() + u"\\x\\"));
}

TEST(DiskFileSystem, NamesThatAreNotUtf8RoundTrip) {
    ScratchDir dir;
    std::string odd = dir.Path("bad\xff\xfe.bin");
    int fd = ::open(odd.c_str(), O_CREAT | O_WRONLY, 0644);
    ASSERT_NE(fd, -1);
    ::close(fd);
    IFileSystem::CDirectoryListing listing = FileSystem->GetDirectoryListing(dir.Text(), nullptr);
    ASSERT_EQ(listing.GetSize(), 1u);
    EXPECT_EQ(U16(listing[0].name), u"bad\xdcff\xdcfe.bin");
    EXPECT_TRUE(FileSystem->FileExists(listing[0].path));
    EXPECT_TRUE(FileSystem->DeleteFileW(listing[0].path));
    EXPECT_NE(::access(odd.c_str(), F_OK), 0);
}

TEST(DiskFileSystem, RecursiveRemovalRemovesLinksNotWhatTheyPointTo) {
    ScratchDir dir, outside;
    ASSERT_TRUE(WriteWhole(*FileSystem, outside.Text("keep.txt"), "k"));
    ASSERT_TRUE(FileSystem->CreateDirectoryW(dir.Text("tree"), false));
    ASSERT_EQ(::symlink(outside.path.c_str(), dir.Path("tree/link").c_str()), 0);
    ASSERT_EQ(::symlink("/nonexistent/qv", dir.Path("tree/dangling").c_str()), 0);
    EXPECT_TRUE(FileSystem->IsDirectory(dir.Text("tree/link"))); // a link is what it points to
    EXPECT_TRUE(FileSystem->IsFile(dir.Text("tree/dangling")));

    ASSERT_EQ(::symlink(outside.path.c_str(), dir.Path("direct").c_str()), 0);
    EXPECT_TRUE(FileSystem->RemoveDirectoryW(dir.Text("direct"), true)); // the link itself
    EXPECT_NE(::access(dir.Path("direct").c_str(), F_OK), 0);
    ASSERT_EQ(::symlink(outside.Path("keep.txt").c_str(), dir.Path("file-link").c_str()), 0);
    EXPECT_TRUE(FileSystem->DeleteFileW(dir.Text("file-link")));
    EXPECT_NE(::access(dir.Path("file-link").c_str(), F_OK), 0);
    EXPECT_TRUE(FileSystem->RemoveDirectoryW(dir.Text("tree"), true));
    EXPECT_FALSE(FileSystem->IsDirectory(dir.Text("tree")));
    EXPECT_EQ(ReadWhole(*FileSystem, outside.Text("keep.txt")), "k");
}

TEST(DiskFileSystem, CopyingAFileOntoItselfKeepsIt) {
    ScratchDir dir;
    ASSERT_TRUE(WriteWhole(*FileSystem, dir.Text("self"), "precious"));
    EXPECT_FALSE(
        IFileSystem::CopyFileW(FileSystem, dir.Text("self"), FileSystem, dir.Text("self"), true, nullptr, nullptr));
    EXPECT_EQ(ReadWhole(*FileSystem, dir.Text("self")), "precious");
}

TEST(DiskFileSystem, CopyingOutOfAMissingFileMakesItEmpty) {
    ScratchDir dir;
    CMemFile memory;
    // The source opens "open or create": existing callers depend on a missing
    // source giving an empty copy.
    EXPECT_TRUE(IFileSystem::CopyFileW(FileSystem, dir.Text("absent"), &memory, nullptr, nullptr));
    EXPECT_EQ(memory.GetSize(), 0);
    EXPECT_TRUE(FileSystem->FileExists(dir.Text("absent")));
}

TEST(DiskFileSystem, DirectoriesBeyondTheEntryTextAreStillListed) {
    ScratchDir dir;
    CString deep = dir.Text();
    while (deep.GetLength() < 700)
        deep += u"/directory-with-a-long-name";
    ASSERT_TRUE(FileSystem->CreateDirectoryW(deep, true));
    std::string file = std::string(deep.GetUTF8()) + "/f"; // too long for a CFile to open
    int fd = ::open(file.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
    ASSERT_NE(fd, -1);
    ::close(fd);
    IFileSystem::CDirectoryListing listing = FileSystem->GetDirectoryListing(deep, nullptr);
    ASSERT_EQ(listing.GetSize(), 1u);
    EXPECT_EQ(U16(listing[0].name), u"f");
    EXPECT_EQ(U16(listing.directory).size(), size_t(kDirectoryEntryTextSize - 1)); // cut, never overrun
    EXPECT_TRUE(FileSystem->RemoveDirectoryW(dir.Text("directory-with-a-long-name"), true));
}

TEST(DiskFileSystem, FindListsByTheLastItemsWildcards) {
    ScratchDir dir;
    for (char const *name : {"one.cal", "two.CAL", "three.inc"})
        ASSERT_TRUE(WriteWhole(*FileSystem, dir.Text(name), ""));
    IFileSystem::CDirectoryListing found = FileSystem->Find(dir.Text("*.cal"));
    EXPECT_EQ(found.GetSize(), 2u);
    EXPECT_EQ(U16(found.directory), U16(dir.Text()));
}

TEST(DiskFileSystem, IsTheOneDiskEverywhere) {
    ScratchDir dir;
    EXPECT_EQ(&GetFileSystem(), static_cast<IFileSystem *>(FileSystem));
    EXPECT_EQ(&CFile().GetFileSystem(), &GetFileSystem());
    EXPECT_EQ(FileSystem->GetCapabilities(), kCapabilityRename);
    EXPECT_FALSE(FileSystem->Defragment());
    ASSERT_TRUE(WriteWhole(*FileSystem, dir.Text("f"), ""));
    EXPECT_EQ(FileSystem->MonitorDirectory(dir.Text("f"), 1), nullptr); // not a directory
    std::unique_ptr<IDirectoryMonitor> monitor(FileSystem->MonitorDirectory(dir.Text(), 1));
    ASSERT_NE(monitor, nullptr);
    EXPECT_EQ(U16(monitor->GetDirectory()), U16(dir.Text()));
    IFile *file = FileSystem->CreateFileW(dir.Text("f"), 0x12);
    ASSERT_NE(file, nullptr);
    EXPECT_NE(dynamic_cast<CFile *>(file), nullptr);
    delete file;
}

} // namespace
} // namespace qv::test
