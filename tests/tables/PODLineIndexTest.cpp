#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "qv/core/PersistedArray.h"
#include "qv/files/MemFile.h"
#include "qv/tables/PODLineIndex.h"

namespace {

qv::SPODRowSpan Row(qv::CPersistedArray &index, uint32_t i) {
    qv::SPODRowSpan span{};
    uint8_t const *p = index.ReadItem(i);
    EXPECT_NE(p, nullptr);
    if (p) std::memcpy(&span, p, sizeof span);
    return span;
}

void Fill(qv::CMemFile &file, std::string const &text) {
    ASSERT_EQ(file.Write(text.data(), uint32_t(text.size())), text.size());
}

TEST(PODLineIndex, FinalLineEndMakesNoEmptyRow) {
    qv::CMemFile file;
    Fill(file, "HDR\na\tb\r\ncc\r\n");
    qv::CPersistedArray index(16);
    ASSERT_TRUE(qv::IndexPODLines(file, 4, index));
    ASSERT_EQ(index.GetCount(), 2u);
    EXPECT_EQ(Row(index, 0).position, 4);
    EXPECT_EQ(Row(index, 0).length, 5u);
    EXPECT_EQ(Row(index, 1).position, 9);
    EXPECT_EQ(Row(index, 1).length, 4u);
    EXPECT_EQ(index.ReadItem(1)[15], 0);
}

TEST(PODLineIndex, LastLineWithoutLineEndIsARow) {
    qv::CMemFile file;
    Fill(file, "x\ny");
    qv::CPersistedArray index(12);
    ASSERT_TRUE(qv::IndexPODLines(file, 0, index));
    ASSERT_EQ(index.GetCount(), 2u);
    EXPECT_EQ(Row(index, 1).position, 2);
    EXPECT_EQ(Row(index, 1).length, 1u);
}

TEST(PODLineIndex, LinesAcrossBlocksAndLongLinesKeepTheirLength) {
    qv::CMemFile file;
    std::string longLine(0x90000, 'v'); // longer than a block and than 16 bits
    Fill(file, "a\n" + longLine + "\nb\n");
    qv::CPersistedArray index(12);
    ASSERT_TRUE(qv::IndexPODLines(file, 0, index));
    ASSERT_EQ(index.GetCount(), 3u);
    EXPECT_EQ(Row(index, 1).length, 0x90001u);
    EXPECT_EQ(Row(index, 2).position, 2 + 0x90001);
}

TEST(PODLineIndex, RefusesAnItemTooSmallForTheSpan) {
    qv::CMemFile file;
    Fill(file, "a\n");
    qv::CPersistedArray index(8);
    EXPECT_FALSE(qv::IndexPODLines(file, 0, index));
    EXPECT_EQ(index.GetCount(), 0u);
}

} // namespace
