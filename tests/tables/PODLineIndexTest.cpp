#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qv/files/MemFile.h"
#include "qv/tables/PODLineIndex.h"

namespace {

using qv::CPODLineIndex;

void Fill(qv::CMemFile &file, std::string const &text) {
    ASSERT_EQ(file.Write(text.data(), uint32_t(text.size())), text.size());
}

// Line i as text, or "<none>" when the index gives none.
std::string LineText(CPODLineIndex &index, qv::IFile &file, uint32_t i) {
    uint32_t length = 0;
    char const *text = index.Line(file, i, length);
    return text ? std::string(text, length) : "<none>";
}

TEST(PODLineIndex, FinalLineEndMakesNoEmptyLineAndALastLineWithoutOneIsALine) {
    qv::CMemFile file;
    Fill(file, "HDR\na\tb\r\ncc\r\n");
    CPODLineIndex index;
    ASSERT_TRUE(index.Build(file, 4));
    ASSERT_EQ(index.GetCount(), 2u);
    EXPECT_EQ(LineText(index, file, 0), "a\tb\r\n");
    EXPECT_EQ(LineText(index, file, 1), "cc\r\n");
    EXPECT_EQ(LineText(index, file, 2), "<none>");

    qv::CMemFile open;
    Fill(open, "x\ny");
    ASSERT_TRUE(index.Build(open, 0)); // replaces the first index
    ASSERT_EQ(index.GetCount(), 2u);
    EXPECT_EQ(LineText(index, open, 1), "y");

    qv::CMemFile empty;
    ASSERT_TRUE(index.Build(empty, 0));
    EXPECT_EQ(index.GetCount(), 0u);
    EXPECT_EQ(LineText(index, empty, 0), "<none>");
}

// Lines of many lengths around and across checkpoints, reached in order,
// backwards and by jumps, with a checkpoint window of two items so that the
// checkpoints themselves come back from the temporary file.
TEST(PODLineIndex, EveryLineIsFoundFromItsCheckpointOrTheLastLineFound) {
    std::vector<std::string> lines;
    std::string text = "header\n";
    for (uint32_t i = 0; i < 1000; ++i) {
        lines.push_back(std::to_string(i) + "\t" + std::string(i % 97, 'x') + (i % 3 ? "\r\n" : "\n"));
        text += lines.back();
    }
    qv::CMemFile file;
    Fill(file, text);
    CPODLineIndex index(16);
    ASSERT_TRUE(index.Build(file, 7));
    ASSERT_EQ(index.GetCount(), 1000u);
    for (uint32_t i = 0; i < 1000; ++i)
        ASSERT_EQ(LineText(index, file, i), lines[i]) << i;
    for (uint32_t i = 1000; i-- > 0;)
        ASSERT_EQ(LineText(index, file, i), lines[i]) << i;
    for (uint32_t i : {63u, 64u, 65u, 0u, 127u, 128u, 129u, 999u, 191u, 192u, 640u, 1u})
        EXPECT_EQ(LineText(index, file, i), lines[i]) << i;
}

TEST(PODLineIndex, LinesLongerThanTheBufferAreCrossedButNotGiven) {
    qv::CMemFile file;
    std::string const longLine(0x90000, 'v'); // longer than a read block and the buffer
    Fill(file, "a\n" + longLine + "\nb\n" + std::string(CPODLineIndex::kBufferSize - 1, 'w') + "\n");
    CPODLineIndex index;
    ASSERT_TRUE(index.Build(file, 0));
    ASSERT_EQ(index.GetCount(), 4u);
    EXPECT_EQ(index.GetLongestLine(), longLine.size() + 1);
    EXPECT_EQ(LineText(index, file, 2), "b\n");
    EXPECT_EQ(LineText(index, file, 1), "<none>");
    EXPECT_EQ(LineText(index, file, 3).size(), CPODLineIndex::kBufferSize);
    EXPECT_EQ(LineText(index, file, 0), "a\n");
}

TEST(PODLineIndex, AFileCutAfterTheBuildGivesNoLines) {
    qv::CMemFile file;
    std::string text;
    for (int i = 0; i < 200; ++i)
        text += "row " + std::to_string(i) + "\n";
    Fill(file, text);
    CPODLineIndex index;
    ASSERT_TRUE(index.Build(file, 0));
    ASSERT_TRUE(file.SetSize(100));
    EXPECT_EQ(LineText(index, file, 150), "<none>");
    EXPECT_EQ(LineText(index, file, 199), "<none>");
    EXPECT_EQ(LineText(index, file, 0), "<none>"); // the buffer's read comes short too
}

} // namespace
