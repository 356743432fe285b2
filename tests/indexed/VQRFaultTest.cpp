// A block edit on a disk container under every system-call fault. A fault
// that passes (transient) leaves the other blocks' bytes and a readable
// container. A fault that stays (a dead disk) after the blocks have moved
// stops the table's own write too: the old table is left, and the container
// is refused or shows moved blocks, as the format has no journal.
#include <gtest/gtest.h>

#include "files/FileTestSupport.h"
#include "indexed/IndexedTestSupport.h"
#include "support/FaultInjection.h"

namespace qv::test {
namespace {

void CreateOnDisk(std::u16string const &wide, std::vector<Bytes> const &blocks) {
    CVQRFile vqr;
    ASSERT_TRUE(vqr.Create(wide.c_str()));
    for (Bytes const &b : blocks)
        ASSERT_TRUE(SetBlock(vqr.GetIndexAt(vqr.CreateIndex(1, 0, 0, 0xFFFFFFFF)), b));
}

TEST(VQRFaults, GrowingAndShrinkingABlockKeepsTheOthers) {
    ScratchDir dir;
    std::string path = dir.Path("c.vqr");
    std::u16string wide = Wide(path);
    Bytes first = Pattern(3000, 1), second = Pattern(2000, 2), third = Pattern(1000, 3);
    CreateOnDisk(wide, {first, second, third});
    FaultBytes original = FileBytes(path);
    for (size_t newSize : {size_t(700000), size_t(100)}) {
        SCOPED_TRACE("block 0 resized to " + std::to_string(newSize));
        Bytes grown = Pattern(newSize, 9);
        int runs = RunUnderFaults(
            [&] { WriteDiskBytes(path, original); },
            [&] {
                CVQRFile vqr;
                if (!vqr.Open(wide.c_str(), true) || !vqr.ReOpenForWrite()) return false;
                bool done = SetBlock(vqr.GetIndexAt(0), grown);
                return vqr.Save() && done;
            },
            [&](FaultRun const &run) {
                ExpectFailureReported(run);
                if (run.sticky && !run.succeeded) return;
                CVQRFile vqr;
                ASSERT_TRUE(vqr.Open(wide.c_str(), true)) << "the container no longer opens";
                ASSERT_EQ(vqr.GetIndexCount(), 3u);
                if (run.succeeded) {
                    EXPECT_EQ(BlockBytes(vqr.GetIndexAt(0)), grown);
                }
                EXPECT_EQ(Crc(BlockBytes(vqr.GetIndexAt(1))), Crc(second));
                EXPECT_EQ(Crc(BlockBytes(vqr.GetIndexAt(2))), Crc(third));
            },
            // close comes after every byte is written, and Close reports nothing
            {Fault::kWrite, Fault::kWriteShort, Fault::kRead, Fault::kLseek, Fault::kFtruncate, Fault::kFallocate,
             Fault::kFsync, Fault::kCopyFileRange});
        EXPECT_GT(runs, 0);
    }
}

// The fifth block grows the table, which moves every block and writes the
// table at once.
TEST(VQRFaults, AddingABlockThatGrowsTheTableKeepsTheOthers) {
    ScratchDir dir;
    std::string path = dir.Path("t.vqr");
    std::u16string wide = Wide(path);
    std::vector<Bytes> blocks = {Pattern(3000, 1), Pattern(2000, 2), Pattern(1000, 3), Pattern(1500, 4)};
    CreateOnDisk(wide, blocks);
    FaultBytes original = FileBytes(path);
    Bytes added = Pattern(500, 7);
    int runs = RunUnderFaults(
        [&] { WriteDiskBytes(path, original); },
        [&] {
            CVQRFile vqr;
            if (!vqr.Open(wide.c_str(), true) || !vqr.ReOpenForWrite()) return false;
            uint32_t i = vqr.CreateIndex(2, 0, 0, 0xFFFFFFFF);
            bool done = i == 4 && SetBlock(vqr.GetIndexAt(i), added);
            return vqr.Save() && done;
        },
        [&](FaultRun const &run) {
            ExpectFailureReported(run);
            if (run.sticky && !run.succeeded) return;
            CVQRFile vqr;
            ASSERT_TRUE(vqr.Open(wide.c_str(), true)) << "the container no longer opens";
            if (run.succeeded) {
                ASSERT_EQ(vqr.GetIndexCount(), 5u);
                EXPECT_EQ(BlockBytes(vqr.GetIndexAt(4)), added);
            }
            ASSERT_GE(vqr.GetIndexCount(), 4u);
            for (uint32_t i = 0; i < blocks.size(); ++i)
                EXPECT_EQ(Crc(BlockBytes(vqr.GetIndexAt(i))), Crc(blocks[i])) << "block " << i;
        },
        {Fault::kWrite, Fault::kWriteShort, Fault::kRead, Fault::kLseek, Fault::kFtruncate, Fault::kFallocate,
         Fault::kFsync, Fault::kCopyFileRange});
    EXPECT_GT(runs, 20);
}

} // namespace
} // namespace qv::test
