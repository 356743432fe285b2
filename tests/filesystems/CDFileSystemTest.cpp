// The CDFS composite: exact bytes of the layout, growth in place, the foot of
// an appended CDFS, handles across deletes, and reopening.
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "qv/files/MemFile.h"
#include "qv/filesystems/CDFileSystem.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "tests/filesystems/CDFileSystemTestSupport.h"
#include "tests/filesystems/FileSystemTestSupport.h"

namespace qv::test {
namespace {

TEST(CDFileSystemLayout, NewCDFSHasHeaderTableAndNoFoot) {
    MemoryHosts hosts;
    CCDFileSystem cdfs;
    ASSERT_TRUE(cdfs.Create(&hosts, u"/h", false));
    EXPECT_TRUE(cdfs.IsOpen());
    EXPECT_EQ(cdfs.GetType(), 0xFFFFFFFFu);
    EXPECT_EQ(cdfs.GetCapabilities(), kCapabilityRename);
    std::string bytes = hosts.Bytes(u"/h");
    ASSERT_EQ(bytes.size(), 0x1000u);
    std::string table = ExpectedTable(StoredStamp(bytes, 0), 0x1000, Count(0));
    EXPECT_EQ(bytes.substr(0, table.size()), table);
    EXPECT_EQ(bytes.substr(table.size()), std::string(0x1000 - table.size(), '\0'));
    EXPECT_EQ(cdfs.NextFileOffset(), 0x1000);

    ASSERT_TRUE(cdfs.Flush());
    bytes = hosts.Bytes(u"/h");
    EXPECT_EQ(bytes.size(), 0x1010u);
    EXPECT_EQ(bytes.substr(0x1000), Foot(0));
}

TEST(CDFileSystemLayout, EntriesGrowShrinkAndGoByExactBytes) {
    MemoryHosts hosts;
    CCDFileSystem cdfs;
    ASSERT_TRUE(cdfs.Create(&hosts, u"/h", false));
    std::unique_ptr<IFile> a(cdfs.CreateFileW(u"/d/a.bin", 0x28));
    ASSERT_TRUE(a);
    EXPECT_EQ(Offset(cdfs, u"/d/a.bin"), 0x1000);
    std::string hundred = SeededBytes(100, 1);
    ASSERT_EQ(a->Write(hundred.data(), 100), 100u);
    // A lone new file moves one block up on its first write.
    EXPECT_EQ(Offset(cdfs, u"/d/a.bin"), 0x2000);
    EXPECT_EQ(Capacity(cdfs, u"/d/a.bin"), 0x1000);
    EXPECT_EQ(cdfs.GetFileInfo(u"/d/a.bin").size, 100);

    std::unique_ptr<IFile> b(cdfs.CreateFileW(u"b", 0x28));
    std::string block = SeededBytes(0x1000, 2);
    ASSERT_EQ(b->Write(block.data(), 0x1000), 0x1000u);
    EXPECT_EQ(Capacity(cdfs, u"/b"), 0x2000); // a whole block more than the size rounded down
    EXPECT_EQ(Offset(cdfs, u"/b"), 0x5000);   // made at 0x3000, moved by its first growth

    // Growing the first entry moves the second up, bytes and offset.
    a->Seek(0, 3);
    std::string more = SeededBytes(0x1000, 3);
    ASSERT_EQ(a->Write(more.data(), 0x1000), 0x1000u);
    EXPECT_EQ(Capacity(cdfs, u"/d/a.bin"), 0x2000);
    EXPECT_EQ(Offset(cdfs, u"/b"), 0x6000);
    EXPECT_TRUE(ReadWhole(cdfs, u"/b") == block);
    EXPECT_TRUE(ReadWhole(cdfs, u"/d/a.bin") == hundred + more);

    // Shrinking keeps the capacity; a delete leaves a hole.
    ASSERT_TRUE(a->SetSize(10));
    EXPECT_EQ(Capacity(cdfs, u"/d/a.bin"), 0x2000);
    a.reset();
    b.reset();
    EXPECT_TRUE(cdfs.DeleteFileW(u"/d/a.bin"));
    EXPECT_TRUE(cdfs.DeleteFileW(u"/d/a.bin")); // true also when it is not there
    ASSERT_TRUE(cdfs.Flush());

    std::string bytes = hosts.Bytes(u"/h");
    CDirectoryEntry entryB = cdfs.GetFileInfo(u"/b");
    std::string table = ExpectedTable(StoredStamp(bytes, 0), 0x1000, Count(1) + Record(entryB));
    EXPECT_EQ(bytes.substr(0, table.size()), table);
    EXPECT_TRUE(bytes.substr(table.size(), 0x1000 - table.size()) == std::string(0x1000 - table.size(), '\0'));
    EXPECT_TRUE(bytes.substr(0x1000, 0x1000) == std::string(0x1000, '\0')); // the first block of a
    EXPECT_EQ(bytes.substr(0x2000, 10), hundred.substr(0, 10));             // deleted entry stays
    EXPECT_TRUE(bytes.substr(0x6000, 0x1000) == block);
    EXPECT_EQ(bytes.substr(0x8000), Foot(0));
    EXPECT_EQ(bytes.size(), 0x8010u);
}

TEST(CDFileSystemLayout, AppendsBehindAnotherFileAndFindsItByTheFoot) {
    ScratchDir dir;
    CString path = dir.Text("image.dat");
    std::string original = SeededBytes(10000, 4);
    ASSERT_TRUE(WriteWhole(*FileSystem, path, original));
    EXPECT_FALSE(CCDFileSystem::IsCDFile(path));
    {
        CCDFileSystem cdfs;
        EXPECT_FALSE(cdfs.Create(path, false)); // exists
        ASSERT_TRUE(cdfs.Create(path, true));
        ASSERT_TRUE(WriteWhole(cdfs, u"/inside.txt", "inside"));
    }
    std::string bytes = ReadWhole(*FileSystem, path);
    EXPECT_TRUE(bytes.substr(0, 10000) == original);
    EXPECT_EQ(bytes.substr(10000, 4), "CDFS");
    EXPECT_EQ(bytes.substr(bytes.size() - 16), Foot(10000));
    EXPECT_TRUE(CCDFileSystem::IsCDFile(path));

    CCDFileSystem again;
    EXPECT_FALSE(again.Create(path, true)); // it holds one already
    EXPECT_TRUE(ReadWhole(*FileSystem, path) == bytes);
    ASSERT_TRUE(again.Open(path, true));
    EXPECT_EQ(ReadWhole(again, u"/inside.txt"), "inside");
    EXPECT_EQ(again.CreateFileW(u"/new", 0x28), nullptr); // read-only
    std::unique_ptr<IFile> file(again.CreateFileW(u"/inside.txt", 0x32));
    ASSERT_TRUE(file);
    EXPECT_EQ(file->Write("x", 1), 0u);
    file.reset();
    again.Close();
    EXPECT_TRUE(ReadWhole(*FileSystem, path) == bytes);
}

TEST(CDFileSystemEntries, HandlesFollowDeletesAndSeeksStopAtZero) {
    MemoryHosts hosts;
    CCDFileSystem cdfs;
    ASSERT_TRUE(cdfs.Create(&hosts, u"/h", false));
    ASSERT_TRUE(WriteWhole(cdfs, u"/first", "first"));
    std::unique_ptr<IFile> second(cdfs.CreateFileW(u"/second", 0x28)); // made by this handle
    std::unique_ptr<IFile> third(cdfs.CreateFileW(u"/third", 0x28));
    ASSERT_TRUE(second && third);
    std::unique_ptr<IFile> first(cdfs.CreateFileW(u"/first", 0x32));
    EXPECT_TRUE(cdfs.DeleteFileW(u"/first"));
    char buffer[8];
    EXPECT_EQ(first->Read(buffer, 8), 0u); // deleted under it
    EXPECT_EQ(first->Write("x", 1), 0u);
    EXPECT_EQ(second->Write("two", 3), 3u); // still its own entry
    EXPECT_EQ(third->Write("three", 5), 5u);
    EXPECT_EQ(ReadWhole(cdfs, u"/second"), "two");
    EXPECT_EQ(ReadWhole(cdfs, u"/third"), "three");

    EXPECT_EQ(second->Seek(-1, 1), 0);
    EXPECT_EQ(second->Seek(2, 1), 2);
    EXPECT_EQ(second->Seek(-10, 2), 0);
    EXPECT_EQ(second->Seek(5, 3), 8); // past the end is allowed
    EXPECT_EQ(second->Write("!", 1), 1u);
    EXPECT_EQ(ReadWhole(cdfs, u"/second"), std::string("two\0\0\0\0\0!", 9));
    char16_t name[64];
    EXPECT_EQ(U16(second->GetFilename(name, 64)), u"/second");
    EXPECT_EQ(&second->GetFileSystem(), &cdfs);
}

TEST(CDFileSystemEntries, FilesMadeBackToBackNeverShareBytes) {
    MemoryHosts hosts;
    CCDFileSystem cdfs;
    ASSERT_TRUE(cdfs.Create(&hosts, u"/h", false));
    std::unique_ptr<IFile> a(cdfs.CreateFileW(u"/a", 0x28));
    std::unique_ptr<IFile> b(cdfs.CreateFileW(u"/b", 0x28));
    std::string bytesB = SeededBytes(5000, 5), bytesA = SeededBytes(3000, 6);
    ASSERT_EQ(b->Write(bytesB.data(), 5000), 5000u);
    ASSERT_EQ(a->Write(bytesA.data(), 3000), 3000u);
    EXPECT_EQ(ReadWhole(cdfs, u"/a"), bytesA);
    EXPECT_EQ(ReadWhole(cdfs, u"/b"), bytesB);
}

TEST(CDFileSystemEntries, OpenFlagsAndRenames) {
    MemoryHosts hosts;
    CCDFileSystem cdfs;
    ASSERT_TRUE(cdfs.Create(&hosts, u"/h", false));
    ASSERT_TRUE(WriteWhole(cdfs, u"/x/one", "one"));
    EXPECT_EQ(cdfs.CreateFileW(u"/x/one", 0x24), nullptr);
    EXPECT_EQ(cdfs.CreateFileW(u"/x/two", 0x12), nullptr);
    EXPECT_EQ(cdfs.CreateFileW(u"/x", 0x28), nullptr); // a directory by its files
    std::unique_ptr<IFile> append(cdfs.CreateFileW(u"/x/one", 0x60));
    EXPECT_EQ(append->Write("+", 1), 1u);
    append.reset();
    EXPECT_EQ(ReadWhole(cdfs, u"/x/one"), "one+");
    EXPECT_FALSE(cdfs.CreateDirectoryW(u"/y", false));
    EXPECT_FALSE(cdfs.RemoveDirectoryW(u"/x", true));

    ASSERT_TRUE(WriteWhole(cdfs, u"/x/two", "two"));
    EXPECT_TRUE(cdfs.RenameFileW(u"/x/one", u"/x/two")); // replaces
    EXPECT_EQ(ReadWhole(cdfs, u"/x/two"), "one+");
    EXPECT_FALSE(cdfs.FileExists(u"/x/one"));
    EXPECT_FALSE(cdfs.RenameFileW(u"/x/two", u"/"));
    ASSERT_TRUE(cdfs.Flush());
    CCDFileSystem again;
    ASSERT_TRUE(again.Open(&hosts, u"/h", true));
    EXPECT_EQ(ReadWhole(again, u"/x/two"), "one+");
    EXPECT_EQ(again.GetDirectoryListing(u"/x", nullptr).GetSize(), 1u);
}

// A file below a file would make a table that Open refuses, losing every entry.
TEST(CDFileSystemEntries, NoFileIsMadeOrRenamedBelowAFile) {
    MemoryHosts hosts;
    {
        CCDFileSystem cdfs;
        ASSERT_TRUE(cdfs.Create(&hosts, u"/h", false));
        ASSERT_TRUE(WriteWhole(cdfs, u"/d/a", "a"));
        ASSERT_TRUE(WriteWhole(cdfs, u"/x", "x"));
        EXPECT_EQ(cdfs.CreateFileW(u"/d/a/b", 0x28), nullptr);
        EXPECT_EQ(cdfs.CreateFileW(u"/D/A/", 0x28), nullptr);
        EXPECT_EQ(cdfs.CreateFileW(u"/d/a//b", 0x28), nullptr);
        EXPECT_FALSE(cdfs.RenameFileW(u"/x", u"/d/A/b"));
        EXPECT_TRUE(cdfs.RenameFileW(u"/d/a", u"/d/a/b")); // its own name makes way
        EXPECT_TRUE(WriteWhole(cdfs, u"/d/ab", "ab"));
    }
    CCDFileSystem again;
    ASSERT_TRUE(again.Open(&hosts, u"/h", true));
    EXPECT_EQ(ReadWhole(again, u"/d/a/b"), "a");
    EXPECT_EQ(ReadWhole(again, u"/x"), "x");
    EXPECT_EQ(ReadWhole(again, u"/d/ab"), "ab");
}

TEST(CDFileSystemEntries, ATableThatOutgrowsItsBlockMovesEveryRegion) {
    MemoryHosts hosts;
    std::map<std::u16string, std::string> expected;
    {
        CCDFileSystem cdfs;
        ASSERT_TRUE(cdfs.Create(&hosts, u"/h", false));
        std::vector<std::unique_ptr<IFile>> open; // nothing flushes the table meanwhile
        for (int i = 0; i < 40; ++i) {
            std::u16string path = u"/a fairly long directory name/and a long file name " + Number(i);
            expected[path] = SeededBytes(size_t(50 + i), i);
            open.emplace_back(cdfs.CreateFileW(path.c_str(), 0x28));
            ASSERT_EQ(open.back()->Write(expected[path].data(), uint32_t(50 + i)), uint32_t(50 + i));
        }
        int64_t before = Offset(cdfs, expected.begin()->first.c_str());
        ASSERT_TRUE(cdfs.Flush());
        EXPECT_GT(Offset(cdfs, expected.begin()->first.c_str()), before);
        for (auto const &[path, bytes] : expected)
            EXPECT_EQ(ReadWhole(cdfs, CString(path.c_str())), bytes);
    }
    CCDFileSystem again;
    ASSERT_TRUE(again.Open(&hosts, u"/h", false));
    for (auto const &[path, bytes] : expected)
        EXPECT_EQ(ReadWhole(again, CString(path.c_str())), bytes);
}

TEST(CDFileSystemEntries, ACDFSInsideACDFS) {
    MemoryHosts hosts;
    CCDFileSystem outer, inner;
    ASSERT_TRUE(outer.Create(&hosts, u"/h", false));
    ASSERT_TRUE(WriteWhole(outer, u"/before", "before"));
    ASSERT_TRUE(inner.Create(&outer, u"/inner.cdfs", false));
    ASSERT_TRUE(WriteWhole(outer, u"/after", "after"));
    std::string big = SeededBytes(20000, 7);
    ASSERT_TRUE(WriteWhole(inner, u"/big", big));
    ASSERT_TRUE(WriteWhole(inner, u"/small", "small"));
    inner.Close();
    EXPECT_EQ(ReadWhole(outer, u"/before"), "before");
    EXPECT_EQ(ReadWhole(outer, u"/after"), "after");
    ASSERT_TRUE(inner.Open(&outer, u"/inner.cdfs", true));
    EXPECT_EQ(ReadWhole(inner, u"/big"), big);
    EXPECT_EQ(ReadWhole(inner, u"/small"), "small");
}

} // namespace
} // namespace qv::test
