// The pieces of other layers that open files through a file system: the log
// and the checksums by path.
#include <gtest/gtest.h>

#include "qv/core/Log.h"
#include "qv/files/CRC.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "tests/filesystems/FileSystemTestSupport.h"

namespace qv::test {
namespace {

// Counts the opens that reach the disk and keeps the last flags.
class CountingFileSystem : public ForwardingFileSystem {
public:
    CountingFileSystem() : ForwardingFileSystem(*FileSystem) {}
    IFile *CreateFileW(char16_t const *path, uint32_t flags) override {
        ++opens;
        lastFlags = flags;
        return inner.CreateFileW(path, flags);
    }
    int opens = 0;
    uint32_t lastFlags = 0;
};

TEST(LogOnFileSystem, SetFileOpensThroughTheGivenFileSystem) {
    ScratchDir dir;
    CountingFileSystem counting;
    CLog log;
    log.Write(u"before\n");
    EXPECT_TRUE(log.SetFile(&counting, dir.Text("log.txt")));
    EXPECT_EQ(counting.opens, 1);
    EXPECT_EQ(counting.lastFlags, 0x361u); // open or create, write, at the end, share read and write
    log.Write(u"after\n");
    EXPECT_FALSE(log.SetFile(dir.Text("other.txt"))); // a log takes one file
    EXPECT_EQ(ReadWhole(*FileSystem, dir.Text("log.txt")), "before\r\nafter\r\n");

    CLog onDisk;
    EXPECT_TRUE(onDisk.SetFile(dir.Text("disk.txt")));
    onDisk.Write(u"x");
    EXPECT_EQ(ReadWhole(*FileSystem, dir.Text("disk.txt")), "x");

    CLog refused;
    EXPECT_FALSE(refused.SetFile(&counting, dir.Text("no/such/dir/log.txt")));
    refused.Write(u"kept");
    EXPECT_TRUE(refused.SetFile(nullptr, dir.Text("late.txt"))); // null is the disk
    EXPECT_EQ(ReadWhole(*FileSystem, dir.Text("late.txt")), "kept");
}

TEST(CRCOnFileSystem, ChecksumsWholeFilesByPath) {
    ScratchDir dir;
    CountingFileSystem counting;
    ASSERT_TRUE(WriteWhole(*FileSystem, dir.Text("check"), "123456789"));
    uint16_t crc16 = 0;
    uint32_t crc32 = 0;
    EXPECT_TRUE(CalcCRC16(crc16, &counting, dir.Text("check")));
    EXPECT_EQ(crc16, 0x31C3);
    EXPECT_EQ(counting.lastFlags, 0x12u); // read, must exist
    EXPECT_TRUE(CalcCRC32(crc32, nullptr, dir.Text("check")));
    EXPECT_EQ(crc32, 0xCBF43926u);

    crc16 = 7;
    crc32 = 7;
    EXPECT_FALSE(CalcCRC16(crc16, FileSystem, dir.Text("missing")));
    EXPECT_FALSE(CalcCRC32(crc32, FileSystem, dir.Text("missing")));
    EXPECT_EQ(crc16, 0);
    EXPECT_EQ(crc32, 0u);
    EXPECT_FALSE(FileSystem->FileExists(dir.Text("missing")));
}

} // namespace
} // namespace qv::test
