// Block edits on a disk XDN container under every system-call fault: growing,
// shrinking and emptying a block, and adding a block that makes the table
// grow (which moves every block), each followed by Save.
#include <gtest/gtest.h>

#include <functional>

#include "indexed/BlockEditFaultCheck.h"
#include "qv/formats/indexed/XDNFile.h"

namespace qv::test {
namespace {

class XDNFaults : public ::testing::Test {
protected:
    ScratchDir dir;
    std::string path = dir.Path("c.xdn");
    std::u16string wide = Wide(path);
    // Four blocks fill the four slots of a new table.
    std::vector<Bytes> blocks = {Pattern(3000, 1), Pattern(2000, 2), Pattern(1000, 3), Pattern(1500, 4)};
    FaultBytes original;

    void SetUp() override {
        CXDNFile xdn;
        ASSERT_TRUE(xdn.Create(wide.c_str()));
        for (Bytes const &b : blocks) {
            uint32_t i = xdn.CreateIndex(1, 0, 0, 0xFFFFFFFF);
            ASSERT_NE(i, CXDNFile::kNoIndex);
            ASSERT_TRUE(SetBlock(xdn.GetIndexAt(i), b));
        }
        ASSERT_TRUE(xdn.Save());
        xdn.Close();
        original = FileBytes(path);
    }

    // Runs edit and Save on the container under every fault (see
    // CheckBlockEditUnderFaults).
    void Check(std::function<bool(CXDNFile &)> const &edit, uint32_t changed, Bytes const &expected,
               uint32_t count) {
        auto openForWrite = [&](CXDNFile &xdn) { return xdn.Open(wide.c_str(), false); };
        EXPECT_GT(CheckBlockEditUnderFaults<CXDNFile>(path, original, blocks, openForWrite, edit, changed, expected,
                                                      count),
                  20);
    }
};

TEST_F(XDNFaults, GrowingABlockKeepsTheOthers) {
    Bytes grown = Pattern(700000, 9);
    Check([&](CXDNFile &xdn) { return SetBlock(xdn.GetIndexAt(1), grown); }, 1, grown, 4);
}

TEST_F(XDNFaults, ShrinkingABlockKeepsTheOthers) {
    Bytes shrunk = Pattern(100, 8);
    Check([&](CXDNFile &xdn) { return SetBlock(xdn.GetIndexAt(0), shrunk); }, 0, shrunk, 4);
}

TEST_F(XDNFaults, EmptyingABlockKeepsTheOthers) {
    Check([&](CXDNFile &xdn) { return SetBlock(xdn.GetIndexAt(2), {}); }, 2, {}, 4);
}

// The fifth block grows the table by four slots, which moves every block.
TEST_F(XDNFaults, AddingABlockThatGrowsTheTableKeepsTheOthers) {
    Bytes added = Pattern(500, 7);
    Check(
        [&](CXDNFile &xdn) {
            uint32_t i = xdn.CreateIndex(2, 0, 0, 0xFFFFFFFF);
            return i == 4 && SetBlock(xdn.GetIndexAt(i), added);
        },
        4, added, 5);
}

} // namespace
} // namespace qv::test
