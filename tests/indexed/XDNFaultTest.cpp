// Block edits on a disk XDN container under every system-call fault: growing
// and shrinking a block, and adding a block that makes the table grow (which
// moves every block), each followed by Save. A fault that passes (transient)
// must reach the caller as a failure and leave every other block's bytes and
// a readable container. A fault that stays (a dead disk) after the blocks
// have moved stops the table's own write too: the old table is left, as the
// format has no journal, so those runs are only required to report failure.
#include <gtest/gtest.h>

#include <functional>

#include "files/FileTestSupport.h"
#include "indexed/IndexedTestSupport.h"
#include "qv/formats/indexed/XDNFile.h"
#include "support/FaultInjection.h"

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

    // Runs edit on a container opened for writing, then Save, under every
    // fault. changed is the block the edit may leave anywhere between its old
    // and new bytes; expected is what it holds after a clean run. count is
    // the number of blocks after a clean run.
    void Check(std::function<bool(CXDNFile &)> const &edit, uint32_t changed, Bytes const &expected,
               uint32_t count) {
        int runs = RunUnderFaults(
            [&] { WriteDiskBytes(path, original); },
            [&] {
                CXDNFile xdn;
                if (!xdn.Open(wide.c_str(), false)) return false;
                bool done = edit(xdn);
                return xdn.Save() && done;
            },
            [&](FaultRun const &run) {
                ExpectFailureReported(run);
                if (run.sticky && !run.succeeded) return;
                CXDNFile xdn;
                ASSERT_TRUE(xdn.Open(wide.c_str(), true)) << "the container no longer opens";
                uint32_t n = xdn.GetIndexCount();
                ASSERT_TRUE(n == blocks.size() || n == count) << n << " blocks";
                if (run.succeeded) {
                    ASSERT_EQ(n, count);
                    EXPECT_EQ(BlockBytes(xdn.GetIndexAt(changed)), expected);
                }
                for (uint32_t i = 0; i < blocks.size(); ++i) {
                    if (i != changed) {
                        EXPECT_EQ(Crc(BlockBytes(xdn.GetIndexAt(i))), Crc(blocks[i])) << "block " << i;
                    }
                }
            },
            // close comes after every byte is written, and Close reports nothing
            {Fault::kWrite, Fault::kWriteShort, Fault::kRead, Fault::kLseek, Fault::kFtruncate, Fault::kFallocate,
             Fault::kFsync, Fault::kCopyFileRange});
        EXPECT_GT(runs, 20);
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
