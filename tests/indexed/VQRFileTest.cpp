// CVQRFile in memory files and inside a CDFS: exact bytes, edits that keep every other block, odd required
// behaviours, and hostile files.
#include <gtest/gtest.h>

#include <fstream>

#include "files/FileTestSupport.h"
#include "indexed/IndexedTestSupport.h"
#include "qv/filesystems/CDFileSystem.h"

namespace qv::test {
namespace {

Bytes NewContainerBytes() {
    Bytes b(0xC0, 0);
    Put(b, 0, 0x00525156, 4, true);
    Put(b, 20, 100, 4, false);
    Put(b, 24, 0x40, 4, false);
    Put(b, 28, 4, 4, false);
    Put(b, 32, 1, 4, false);
    return b;
}

TEST(VQRFile, NewContainerAndEditsHaveExactBytes) {
    CMemFile host;
    CVQRFile vqr;
    ASSERT_TRUE(vqr.Create(&host));
    EXPECT_EQ(HostBytes(host), NewContainerBytes());
    EXPECT_EQ(vqr.GetEndOfData(), 0xC0);

    ASSERT_EQ(vqr.CreateIndex(3, 4, 5, 0xFFFFFFFF), 0u);
    CVQRFile::CIndex *a = vqr.GetIndexAt(0);
    ASSERT_TRUE(SetBlock(a, {'a', 'b', 'c'}));
    ASSERT_TRUE(vqr.Save());
    Bytes expected = NewContainerBytes();
    Put(expected, 32, 2, 4, false); // next id
    Put(expected, 0x40, 3, 2, false);
    Put(expected, 0x42, 4, 2, false);
    Put(expected, 0x44, 5, 4, false);
    Put(expected, 0x48, 1, 4, false);
    Put(expected, 0x4C, 0xC0, 4, false);
    Put(expected, 0x50, 3, 4, false);
    expected.insert(expected.end(), {'a', 'b', 'c'});
    EXPECT_EQ(HostBytes(host), expected);

    // Grow: the block's bytes move up at its end; shrink: they go again.
    ASSERT_TRUE(SetBlock(a, {'a', 'b', 'c', 'd', 'e'}));
    ASSERT_TRUE(vqr.Save());
    Put(expected, 0x50, 5, 4, false);
    expected.insert(expected.end(), {'d', 'e'});
    EXPECT_EQ(HostBytes(host), expected);
    ASSERT_TRUE(a->m_file.SetSize(0)); // delete: the bytes leave the host
    ASSERT_TRUE(vqr.Save());
    Put(expected, 0x50, 0, 4, false);
    expected.resize(0xC0);
    EXPECT_EQ(HostBytes(host), expected);
}

TEST(VQRFile, EditsKeepEveryOtherBlock) {
    CMemFile host;
    CVQRFile vqr;
    ASSERT_TRUE(vqr.Create(&host));
    std::vector<Bytes> content;
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(vqr.CreateIndex(uint16_t(i + 1), 0, 0, 0xFFFFFFFF), uint32_t(i));
        content.push_back(Pattern(size_t(100 + i), i));
        ASSERT_TRUE(SetBlock(vqr.GetIndexAt(uint32_t(i)), content.back()));
    }
    for (size_t size : {size_t(5000), size_t(10), size_t(0), size_t(77)}) {
        for (uint32_t edited = 0; edited < 3; ++edited) {
            content[edited] = Pattern(size, int(size + edited));
            ASSERT_TRUE(SetBlock(vqr.GetIndexAt(edited), content[edited]));
            for (uint32_t i = 0; i < 3; ++i)
                EXPECT_EQ(Crc(BlockBytes(vqr.GetIndexAt(i))), Crc(content[i])) << "block " << i;
        }
    }
    ASSERT_TRUE(vqr.Save());
    CMemFile copy = MemOf(HostBytes(host));
    CVQRFile reread;
    ASSERT_TRUE(reread.Open(&copy, true));
    for (uint32_t i = 0; i < 3; ++i)
        EXPECT_EQ(BlockBytes(reread.GetIndexAt(i)), content[i]);
}

// A block's position may be sought anywhere; a write that far cannot be
// given room, and the end it would reach must not wrap.
TEST(VQRFile, AWriteAtTheFarthestPositionIsRefusedAndChangesNothing) {
    CMemFile host;
    CVQRFile vqr;
    ASSERT_TRUE(vqr.Create(&host));
    ASSERT_EQ(vqr.CreateIndex(1, 0, 0, 0xFFFFFFFF), 0u);
    CVQRFile::CIndex *block = vqr.GetIndexAt(0);
    ASSERT_TRUE(SetBlock(block, {'a', 'b', 'c'}));
    Bytes const before = HostBytes(host);
    for (int64_t far : {INT64_MAX, INT64_MAX - 1, int64_t(1) << 40}) {
        ASSERT_EQ(block->m_file.Seek(far, 1), far);
        EXPECT_EQ(block->m_file.Write("xy", 2), 0u);
    }
    EXPECT_EQ(block->m_size, 3);
    EXPECT_EQ(HostBytes(host), before);
}

// Offsets are stored in 32 bits: a table that grows near that limit would
// push the block behind it to an offset the table cannot hold, and the saved
// container would no longer open. The file is sparse.
TEST(VQRFile, NoTableGrowthPushesABlockPast32BitOffsets) {
    ScratchDir dir;
    std::string const path = dir.Path("big.vqr");
    uint32_t const table = 0xFFFFFF00, behind = table + 4 * 32;
    std::vector<Record> records(4);
    for (uint32_t i = 0; i < 4; ++i) {
        records[i].id = i + 1;
        records[i].offset = i < 3 ? 0x40 : behind; // three empty blocks, one full behind the table
        records[i].size = i < 3 ? 0 : 16;
    }
    Bytes const built = BuildVQR(records, 4, 0x40);
    Bytes head(built.begin(), built.begin() + 0x40);
    Put(head, 24, table, 4, false);
    Bytes const blockBytes = Pattern(16, 5);
    {
        std::ofstream out(path, std::ios::binary);
        out.write(reinterpret_cast<char const *>(head.data()), std::streamsize(head.size()));
        out.seekp(std::streamoff(table));
        out.write(reinterpret_cast<char const *>(built.data() + 0x40), 4 * 32);
        out.write(reinterpret_cast<char const *>(blockBytes.data()), 16);
        ASSERT_TRUE(out.good());
    }
    std::u16string const wide = Wide(path);
    {
        CVQRFile vqr;
        ASSERT_TRUE(vqr.Open(wide.c_str(), true));
        ASSERT_TRUE(vqr.ReOpenForWrite());
        EXPECT_EQ(vqr.CreateIndex(2, 0, 0, 0xFFFFFFFF), CVQRFile::kNoIndex);
        vqr.Close();
    }
    CVQRFile reread;
    ASSERT_TRUE(reread.Open(wide.c_str(), true)) << "the container no longer opens";
    ASSERT_EQ(reread.GetIndexCount(), 4u);
    EXPECT_EQ(BlockBytes(reread.GetIndexAt(3)), blockBytes);
}

TEST(VQRFile, FifthIndexGrowsTheTableAndMovesTheData) {
    CMemFile host;
    CVQRFile vqr;
    ASSERT_TRUE(vqr.Create(&host));
    for (int i = 0; i < 4; ++i) {
        vqr.CreateIndex(1, 0, 0, 0xFFFFFFFF);
        ASSERT_TRUE(SetBlock(vqr.GetIndexAt(uint32_t(i)), Pattern(10, i)));
    }
    EXPECT_EQ(vqr.GetIndexAt(0)->m_offset, 0xC0);
    ASSERT_EQ(vqr.CreateIndex(1, 0, 0, 0xFFFFFFFF), 4u);
    EXPECT_EQ(vqr.GetSlots(), 8u);
    EXPECT_EQ(vqr.GetIndexAt(0)->m_offset, 0xC0 + 0x80);
    EXPECT_EQ(vqr.GetIndexAt(4)->m_offset, 0xC0 + 0x80 + 40);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(BlockBytes(vqr.GetIndexAt(uint32_t(i))), Pattern(10, i));
}

TEST(VQRFile, WritingAnEmptyBlockMovesTheNextAndKeepsItsOwnOffset) {
    CMemFile host;
    CVQRFile vqr;
    ASSERT_TRUE(vqr.Create(&host));
    vqr.CreateIndex(1, 0, 0, 0xFFFFFFFF);
    vqr.CreateIndex(2, 0, 0, 0xFFFFFFFF);
    CVQRFile::CIndex *first = vqr.GetIndexAt(0), *second = vqr.GetIndexAt(1);
    EXPECT_EQ(first->m_offset, second->m_offset); // both empty at the end
    ASSERT_TRUE(SetBlock(second, Pattern(20, 2)));
    ASSERT_EQ(first->m_file.Write("0123456789", 10), 10u);
    EXPECT_EQ(first->m_offset, 0xC0);
    EXPECT_EQ(second->m_offset, 0xC0 + 10);
    EXPECT_EQ(BlockBytes(second), Pattern(20, 2));
}

TEST(VQRFile, EmptiedNeighboursRefilledNeverLandInTheTable) {
    CMemFile host;
    CVQRFile vqr;
    ASSERT_TRUE(vqr.Create(&host));
    vqr.CreateIndex(1, 0, 0, 0xFFFFFFFF);
    vqr.CreateIndex(2, 0, 0, 0xFFFFFFFF);
    CVQRFile::CIndex *a = vqr.GetIndexAt(0), *b = vqr.GetIndexAt(1);
    ASSERT_TRUE(SetBlock(a, Pattern(50, 1)));
    ASSERT_TRUE(SetBlock(b, Pattern(60, 2)));
    ASSERT_TRUE(SetBlock(a, {}));
    ASSERT_TRUE(SetBlock(b, {}));
    ASSERT_TRUE(SetBlock(a, Pattern(30, 3)));
    EXPECT_EQ(a->m_offset, 0xC0);
    ASSERT_TRUE(vqr.Save());
    EXPECT_EQ(BlockBytes(a), Pattern(30, 3));
    ASSERT_TRUE(SetBlock(b, Pattern(40, 4)));
    ASSERT_TRUE(vqr.Save());
    EXPECT_EQ(BlockBytes(a), Pattern(30, 3));
    EXPECT_EQ(BlockBytes(b), Pattern(40, 4));
}

TEST(VQRFile, ABlockEndingWhereTheTableStartsKeepsItsNewBytes) {
    // Data first, the table behind it, as some writers leave files.
    Bytes data = Pattern(16, 9);
    Bytes file = BuildVQR({{1, 0, 0, 1, 0x40, 16}}, 4, 0x50);
    std::copy(data.begin(), data.end(), file.begin() + 0x40);
    CMemFile host = MemOf(file);
    CVQRFile vqr;
    ASSERT_TRUE(vqr.Open(&host, false));
    CVQRFile::CIndex *a = vqr.GetIndexAt(0);
    ASSERT_EQ(BlockBytes(a), data);
    Bytes grown = Pattern(40, 10);
    ASSERT_TRUE(SetBlock(a, grown));
    EXPECT_EQ(vqr.GetIndexOffset(), 0x50u + 24);
    ASSERT_TRUE(vqr.Save());
    EXPECT_EQ(BlockBytes(a), grown);
    vqr.Close();
    CVQRFile reread;
    ASSERT_TRUE(reread.Open(&host, true));
    EXPECT_EQ(BlockBytes(reread.GetIndexAt(0)), grown);
}

TEST(VQRFile, ByteOrderSlotsAndEmptySlots) {
    std::vector<Record> records = {{5, 6, 7, 8, 0xC0, 2, 11, 12}};
    for (bool little : {false, true}) {
        Bytes file = BuildVQR(records, 4, 0x40, 0xC2, little);
        CMemFile host = MemOf(file);
        CVQRFile vqr;
        ASSERT_TRUE(vqr.Open(&host, false)) << little;
        CVQRFile::CIndex *i = vqr.GetIndexAt(0);
        EXPECT_EQ(i->m_type, 5);
        EXPECT_EQ(i->m_subtype, 6);
        EXPECT_EQ(i->m_version, 7u);
        EXPECT_EQ(i->m_id, 8u);
        EXPECT_EQ(i->m_spare1, 11u);
        EXPECT_EQ(vqr.GetNextId(), 7u);
        vqr.Close();
        EXPECT_EQ(HostBytes(host), BuildVQR(records, 4, 0x40, 0xC2, false)) << little;
    }
    // An empty slot between used ones is dropped and written last.
    Bytes gap = BuildVQR({{1, 0, 0, 1, 0xC0, 1}, {0}, {2, 0, 0, 2, 0xC1, 1}}, 4, 0x40, 0xC2);
    CMemFile host = MemOf(gap);
    CVQRFile vqr;
    ASSERT_TRUE(vqr.Open(&host, false));
    ASSERT_EQ(vqr.GetIndexCount(), 2u);
    vqr.Close();
    EXPECT_EQ(HostBytes(host), BuildVQR({{1, 0, 0, 1, 0xC0, 1}, {2, 0, 0, 2, 0xC1, 1}}, 4, 0x40, 0xC2));
}

TEST(VQRFile, FindIndexMatchesTypeSubtypeAndVersionRange) {
    CMemFile host;
    CVQRFile vqr;
    ASSERT_TRUE(vqr.Create(&host));
    vqr.CreateIndex(1, 2, 10, 0xFFFFFFFF);
    vqr.CreateIndex(1, 3, 20, 0xFFFFFFFF);
    vqr.CreateIndex(1, 2, 30, 40);
    EXPECT_EQ(vqr.GetNextId(), 41u);
    EXPECT_EQ(vqr.FindIndex(1, 0xFFFF, 0, 100, 0), 0u);
    EXPECT_EQ(vqr.FindIndex(1, 3, 0, 100, 0), 1u);
    EXPECT_EQ(vqr.FindIndex(1, 2, 15, 100, 0), 2u);
    EXPECT_EQ(vqr.FindIndex(1, 2, 0, 100, 1), 2u);
    EXPECT_EQ(vqr.FindIndex(2, 0xFFFF, 0, 100, 0), CVQRFile::kNoIndex);
    EXPECT_EQ(vqr.FindIndex(1, 0xFFFF, 0, 100, 3), CVQRFile::kNoIndex);
    EXPECT_EQ(vqr.GetIndex(1, 3, 0, 100, 0), vqr.GetIndexAt(1));
    EXPECT_EQ(vqr.GetIndex(9, 3, 0, 100, 0), nullptr);
}

TEST(VQRFile, HostileFilesAreRefused) {
    auto opens = [](Bytes const &b) {
        CMemFile host = MemOf(b);
        CVQRFile vqr;
        bool ok = vqr.Open(&host, true);
        EXPECT_EQ(vqr.IsOpen(), ok);
        return ok;
    };
    EXPECT_TRUE(opens(BuildVQR({}, 100, 0x40)));
    EXPECT_FALSE(opens(BuildVQR({}, 101, 0x40)));
    EXPECT_FALSE(opens(BuildVQR({}, 4, 0x20)));                          // table in the header
    EXPECT_FALSE(opens(Bytes(0x100, 0)));                               // no magic
    EXPECT_FALSE(opens([] { Bytes b = BuildVQR({}, 8, 0x40); b.resize(0x40 + 4 * 32); return b; }())); // slots beyond the file
    EXPECT_FALSE(opens(BuildVQR({{1, 0, 0, 1, 0xC0, 100}}, 4, 0x40, 0xC0 + 99)));   // block beyond the file
    EXPECT_FALSE(opens(BuildVQR({{1, 0, 0, 1, 0xFFFFFFF0, 0x20}}, 4, 0x40, 0x100))); // far beyond
    EXPECT_FALSE(opens(BuildVQR({{1, 0, 0, 1, 0x20, 8}}, 4, 0x40, 0x100)));        // in the header
    EXPECT_FALSE(opens(BuildVQR({{1, 0, 0, 1, 0x60, 8}}, 4, 0x40, 0x100)));        // in the table
    EXPECT_FALSE(opens(BuildVQR({{1, 0, 0, 1, 0x80, 0}}, 4, 0x40, 0x100)));        // empty, in the table
    EXPECT_FALSE(opens(BuildVQR({{1, 0, 0, 1, 0xC0, 16}, {2, 0, 0, 2, 0xC8, 16}}, 4, 0x40, 0x100))); // overlap
    EXPECT_FALSE(opens(BuildVQR({{1, 0, 0, 1, 0xC0, 16}, {2, 0, 0, 2, 0xC4, 0}}, 4, 0x40, 0x100)));  // empty inside
    EXPECT_TRUE(opens(BuildVQR({{1, 0, 0, 1, 0xC0, 16}, {2, 0, 0, 2, 0xD0, 16}}, 4, 0x40, 0xE0)));

    // Every truncation of a sound file is refused (its last block ends the file).
    Bytes whole = BuildVQR({{1, 0, 0, 1, 0xC0, 16}, {2, 0, 0, 2, 0xD0, 16}}, 4, 0x40, 0xE0);
    for (size_t n = 0; n < whole.size(); ++n)
        EXPECT_FALSE(opens(Bytes(whole.begin(), whole.begin() + long(n)))) << n;
}

TEST(VQRFile, ContainerInsideACDFS) {
    ScratchDir dir;
    std::u16string box = Wide(dir.Path("box.cdfs"));
    CCDFileSystem cdfs;
    ASSERT_TRUE(cdfs.Create(box.c_str(), false));
    CVQRFile inner;
    ASSERT_TRUE(inner.Create(&cdfs, u"inner.vqr"));
    inner.CreateIndex(1, 0, 0, 0xFFFFFFFF);
    inner.CreateIndex(2, 0, 0, 0xFFFFFFFF);
    ASSERT_TRUE(SetBlock(inner.GetIndexAt(1), Pattern(200, 5)));
    ASSERT_TRUE(SetBlock(inner.GetIndexAt(0), Pattern(100, 4)));
    inner.Close();
    ASSERT_TRUE(inner.Open(&cdfs, u"inner.vqr", true));
    EXPECT_EQ(BlockBytes(inner.GetIndexAt(0)), Pattern(100, 4));
    EXPECT_EQ(BlockBytes(inner.GetIndexAt(1)), Pattern(200, 5));
}

} // namespace
} // namespace qv::test

namespace qv::test {
namespace {

TEST(VQRFile, AFirstOpenOfAPathReadsEvenForAWriter) {
    ScratchDir dir;
    std::u16string path = Wide(dir.Path("w.vqr"));
    {
        CVQRFile vqr;
        ASSERT_TRUE(vqr.Create(path.c_str()));
        vqr.CreateIndex(1, 0, 0, 0xFFFFFFFF);
        ASSERT_TRUE(SetBlock(vqr.GetIndexAt(0), Pattern(10, 1)));
    }
    CVQRFile vqr;
    ASSERT_TRUE(vqr.Open(path.c_str(), false)); // existing writers rely on this host being read-only
    EXPECT_FALSE(vqr.IsReadOnly());
    EXPECT_FALSE(vqr.GetIndexAt(0)->m_file.SetSize(20));
    EXPECT_EQ(BlockBytes(vqr.GetIndexAt(0)), Pattern(10, 1));
    vqr.Close();
    ASSERT_TRUE(vqr.Open(path.c_str(), true));
    ASSERT_TRUE(vqr.ReOpenForWrite());
    ASSERT_TRUE(SetBlock(vqr.GetIndexAt(0), Pattern(30, 2)));
    ASSERT_TRUE(vqr.ReOpenForRead());
    EXPECT_TRUE(vqr.IsReadOnly());
    EXPECT_EQ(BlockBytes(vqr.GetIndexAt(0)), Pattern(30, 2));
}

} // namespace
} // namespace qv::test
