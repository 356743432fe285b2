// CXDNFile: exact bytes, item-size rule, new blocks at the end, hostile files,
// containers inside a CDFS and in memory.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "files/FileTestSupport.h"
#include "indexed/IndexedTestSupport.h"
#include "qv/filesystems/CDFileSystem.h"
#include "qv/filesystems/MemFileSystem.h"
#include "qv/formats/indexed/XDNFile.h"

namespace qv::test {
namespace {

Bytes ReadAll(std::string const &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void WriteAll(std::string const &path, Bytes const &b) {
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<char const *>(b.data()), std::streamsize(b.size()));
}

// An XDN file: always big-endian, the value 0x11223344 at 52.
Bytes BuildXDN(std::vector<Record> const &records, uint32_t slots = 4, size_t fileSize = 0) {
    Bytes b = BuildVQR(records, slots, 0x40, fileSize, false);
    Put(b, 0, 0x004E4458, 4, true);
    Put(b, 52, 0x11223344, 4, false);
    return b;
}

uint32_t Be32(Bytes const &b, size_t at) {
    return uint32_t(b[at]) << 24 | uint32_t(b[at + 1]) << 16 | uint32_t(b[at + 2]) << 8 | b[at + 3];
}

TEST(XDNFile, NewFileBytesAndBlocksAtTheEnd) {
    ScratchDir dir;
    std::string path = dir.Path("new.xdn");
    CXDNFile xdn;
    ASSERT_TRUE(xdn.Create(Wide(path).c_str()));
    // Two blocks made without writes share the end of the file.
    uint32_t a = xdn.CreateIndex(5, 1, 2, 0xFFFFFFFF), b = xdn.CreateIndex(6, 0, 0, 9);
    EXPECT_EQ(xdn.GetIndexAt(a)->getOffset(), 0xC0u);
    EXPECT_EQ(xdn.GetIndexAt(b)->getOffset(), 0xC0u);
    ASSERT_TRUE(SetBlock(xdn.GetIndexAt(b), Pattern(7, 2)));
    ASSERT_TRUE(SetBlock(xdn.GetIndexAt(a), Pattern(10, 1)));
    EXPECT_EQ(xdn.GetIndexAt(b)->getOffset(), 0xC0u + 10); // writing the first moved the second
    EXPECT_EQ(BlockBytes(xdn.GetIndexAt(b)), Pattern(7, 2));
    xdn.SetUserValue(0xCAFE);
    xdn.Close();

    Bytes f = ReadAll(path);
    ASSERT_EQ(f.size(), 0xC0u + 17);
    EXPECT_EQ(Bytes(f.begin(), f.begin() + 4), (Bytes{'X', 'D', 'N', 0}));
    EXPECT_EQ(Be32(f, 20), 100u);
    EXPECT_EQ(Be32(f, 24), 0x40u);
    EXPECT_EQ(Be32(f, 28), 4u);
    EXPECT_EQ(Be32(f, 32), 10u);
    EXPECT_EQ(Be32(f, 52), 0xCAFEu);
    EXPECT_EQ(Be32(f, 0x40 + 12), 0xC0u);
    EXPECT_EQ(Be32(f, 0x40 + 16), 10u);
    EXPECT_EQ(Be32(f, 0x40 + 24), 1u); // one item
    EXPECT_EQ(Be32(f, 0x60 + 12), 0xCAu);
    EXPECT_EQ(Be32(f, 0x60 + 16), 7u);
}

TEST(XDNFile, ItemSizeTimesCountAndWhatSaveKeeps) {
    ScratchDir dir;
    std::string path = dir.Path("items.xdn");
    Record three{1, 0, 0, 1, 0xC0, 100, 0, 3};         // 300 bytes
    Record zeroCount{2, 0, 0, 2, 0xC0 + 300, 50, 0, 0}; // 50 bytes
    Record empty{3, 0, 0, 3, 0xC0 + 350, 0, 0, 5};      // size 0, 5 items: kept
    WriteAll(path, BuildXDN({three, zeroCount, empty}, 4, 0xC0 + 350));
    CXDNFile xdn;
    ASSERT_TRUE(xdn.Open(Wide(path).c_str(), false));
    EXPECT_EQ(xdn.GetUserValue(), 0x11223344u);
    EXPECT_EQ(xdn.GetIndexAt(0)->m_size, 300);
    EXPECT_EQ(xdn.GetIndexAt(1)->m_size, 50);
    EXPECT_EQ(xdn.GetIndexAt(2)->m_size, 0);
    ASSERT_TRUE(xdn.Save());
    xdn.Close();
    Bytes f = ReadAll(path);
    EXPECT_EQ(Be32(f, 0x40 + 16), 300u);
    EXPECT_EQ(Be32(f, 0x40 + 24), 1u);
    EXPECT_EQ(Be32(f, 0x80 + 16), 0u);
    EXPECT_EQ(Be32(f, 0x80 + 24), 5u);
    EXPECT_EQ(Be32(f, 52), 0x11223344u);

    // Emptied since it was read: size 0 is saved (the count stays), so the
    // table never claims the next block's bytes.
    ASSERT_TRUE(xdn.Open(Wide(path).c_str(), false));
    ASSERT_TRUE(SetBlock(xdn.GetIndexAt(1), {}));
    Bytes first = BlockBytes(xdn.GetIndexAt(0));
    xdn.Close();
    f = ReadAll(path);
    EXPECT_EQ(Be32(f, 0x60 + 16), 0u);
    ASSERT_TRUE(xdn.Open(Wide(path).c_str(), true));
    EXPECT_EQ(xdn.GetIndexAt(1)->m_size, 0);
    EXPECT_EQ(BlockBytes(xdn.GetIndexAt(0)), first);
}

TEST(XDNFile, HostileFilesAreRefused) {
    ScratchDir dir;
    std::string path = dir.Path("bad.xdn");
    auto opens = [&](Bytes const &b) {
        WriteAll(path, b);
        CXDNFile xdn;
        bool ok = xdn.Open(Wide(path).c_str(), true);
        EXPECT_EQ(xdn.IsOpen(), ok);
        return ok;
    };
    EXPECT_TRUE(opens(BuildXDN({}, 100)));
    EXPECT_FALSE(opens(BuildXDN({}, 101)));
    EXPECT_FALSE(opens(BuildVQR({})));                                        // the other magic
    EXPECT_FALSE(opens(BuildXDN({Record{1, 0, 0, 1, 0xC0, 0x10000, 0, 0x10000}}, 4, 0xC0))); // product beyond the file
    EXPECT_FALSE(opens(BuildXDN({Record{1, 0, 0, 1, 0xC0, 0xFFFFFFFF, 0, 0xFFFFFFFF}})));  // product beyond 64-bit sums
    EXPECT_FALSE(opens(BuildXDN({Record{1, 0, 0, 1, 0xC0, 20, 0, 1}, Record{2, 0, 0, 2, 0xC8, 20, 0, 1}}, 4, 0xF0)));
    EXPECT_FALSE(opens(BuildXDN({Record{1, 0, 0, 1, 0x50, 8, 0, 1}}, 4, 0xD0))); // in the table
    CXDNFile missing;
    EXPECT_FALSE(missing.Open(Wide(dir.Path("none.xdn")).c_str(), true));

    Bytes whole = BuildXDN({Record{1, 0, 0, 1, 0xC0, 4, 0, 2}, Record{2, 0, 0, 2, 0xC8, 3, 0, 0}}, 4, 0xCB);
    ASSERT_TRUE(opens(whole));
    for (size_t cut = 0; cut < whole.size(); ++cut)
        EXPECT_FALSE(opens(Bytes(whole.begin(), whole.begin() + long(cut)))) << "cut at " << cut;
}

TEST(XDNFile, GrowingTheTableWaitsForSave) {
    ScratchDir dir;
    std::string path = dir.Path("grow.xdn");
    CXDNFile xdn;
    ASSERT_TRUE(xdn.Create(Wide(path).c_str()));
    std::vector<uint32_t> crcs;
    for (int i = 0; i < 4; ++i) {
        ASSERT_NE(xdn.CreateIndex(uint16_t(i + 1), 0, 0, 0xFFFFFFFF), CXDNFile::kNoIndex);
        ASSERT_TRUE(SetBlock(xdn.GetIndexAt(uint32_t(i)), Pattern(size_t(20 + i), i)));
    }
    ASSERT_TRUE(xdn.Save());
    ASSERT_EQ(xdn.CreateIndex(9, 0, 0, 0xFFFFFFFF), 4u);
    EXPECT_EQ(xdn.GetSlots(), 8u);
    EXPECT_EQ(Be32(ReadAll(path), 28), 4u); // on disk only at the next Save
    xdn.Close();
    CXDNFile back;
    ASSERT_TRUE(back.Open(Wide(path).c_str(), true));
    ASSERT_EQ(back.GetIndexCount(), 5u);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(BlockBytes(back.GetIndexAt(uint32_t(i))), Pattern(size_t(20 + i), i));
}

TEST(XDNFile, ContainerInsideACDFS) {
    ScratchDir dir;
    std::u16string box = Wide(dir.Path("box.cdfs"));
    CCDFileSystem cdfs;
    ASSERT_TRUE(cdfs.Create(box.c_str(), false));
    {
        CXDNFile inner;
        ASSERT_TRUE(inner.Create(&cdfs, u"inner.xdn"));
        inner.CreateIndex(1, 0, 0, 0xFFFFFFFF);
        inner.CreateIndex(2, 0, 0, 0xFFFFFFFF);
        ASSERT_TRUE(SetBlock(inner.GetIndexAt(1), Pattern(200, 5)));
        ASSERT_TRUE(SetBlock(inner.GetIndexAt(0), Pattern(100, 4))); // moves the second block up
        inner.SetUserValue(77);
    }
    {
        CXDNFile inner;
        ASSERT_TRUE(inner.Open(&cdfs, u"inner.xdn", false));
        EXPECT_EQ(inner.GetUserValue(), 77u);
        ASSERT_EQ(inner.GetIndexCount(), 2u);
        EXPECT_EQ(BlockBytes(inner.GetIndexAt(1)), Pattern(200, 5));
        ASSERT_TRUE(SetBlock(inner.GetIndexAt(0), Pattern(10, 6))); // shrink: the second moves down
        EXPECT_EQ(BlockBytes(inner.GetIndexAt(1)), Pattern(200, 5));
    }
    cdfs.Close();
    CCDFileSystem again;
    ASSERT_TRUE(again.Open(box.c_str(), true));
    CXDNFile inner;
    ASSERT_TRUE(inner.Open(&again, u"inner.xdn", true));
    EXPECT_EQ(BlockBytes(inner.GetIndexAt(0)), Pattern(10, 6));
    EXPECT_EQ(BlockBytes(inner.GetIndexAt(1)), Pattern(200, 5));
}

// A memory file system serves the caller's block: a container there opens,
// and edits stay in the open file (the file system keeps no new files).
TEST(XDNFile, ContainerInMemory) {
    Bytes image = BuildXDN({Record{1, 0, 0, 1, 0xC0, 16, 0, 1}, Record{2, 0, 0, 2, 0xD0, 8, 0, 2}}, 4, 0xE0);
    Bytes first = Pattern(16, 1), second = Pattern(16, 2);
    std::copy(first.begin(), first.end(), image.begin() + 0xC0);
    std::copy(second.begin(), second.end(), image.begin() + 0xD0);
    CMemFileSystem fs;
    ASSERT_TRUE(fs.AddFile(u"/m.xdn", image.data(), uint32_t(image.size())));
    CXDNFile xdn;
    EXPECT_FALSE(xdn.Create(&fs, u"/new.xdn"));
    EXPECT_FALSE(xdn.IsOpen());
    ASSERT_TRUE(xdn.Open(&fs, u"/m.xdn", false));
    EXPECT_EQ(xdn.GetUserValue(), 0x11223344u);
    ASSERT_EQ(xdn.GetIndexCount(), 2u);
    EXPECT_EQ(BlockBytes(xdn.GetIndexAt(0)), first);
    EXPECT_EQ(BlockBytes(xdn.GetIndexAt(1)), second); // 8 bytes times 2 items
    ASSERT_TRUE(SetBlock(xdn.GetIndexAt(0), Pattern(40, 3)));
    EXPECT_EQ(BlockBytes(xdn.GetIndexAt(1)), second);
    ASSERT_TRUE(SetBlock(xdn.GetIndexAt(0), Pattern(4, 4)));
    EXPECT_EQ(BlockBytes(xdn.GetIndexAt(1)), second);
    ASSERT_EQ(xdn.CreateIndex(3, 0, 0, 0xFFFFFFFF), 2u);
    ASSERT_TRUE(SetBlock(xdn.GetIndexAt(2), Pattern(30, 5)));
    EXPECT_EQ(xdn.GetIndexAt(2)->getOffset(), 0xC0u + 4 + 16);
    EXPECT_TRUE(xdn.Save());
    EXPECT_EQ(BlockBytes(xdn.GetIndexAt(0)), Pattern(4, 4));
    EXPECT_EQ(BlockBytes(xdn.GetIndexAt(1)), second);
    EXPECT_EQ(BlockBytes(xdn.GetIndexAt(2)), Pattern(30, 5));
}

} // namespace
} // namespace qv::test
