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

TEST(VQRFaults, GrowingAndShrinkingABlockKeepsTheOthers) {
    ScratchDir dir;
    std::string path = dir.Path("c.vqr");
    std::u16string wide = Wide(path);
    Bytes first = Pattern(3000, 1), second = Pattern(2000, 2), third = Pattern(1000, 3);
    {
        CVQRFile vqr;
        ASSERT_TRUE(vqr.Create(wide.c_str()));
        for (Bytes const *b : {&first, &second, &third}) {
            uint32_t i = vqr.CreateIndex(1, 0, 0, 0xFFFFFFFF);
            ASSERT_TRUE(SetBlock(vqr.GetIndexAt(i), *b));
        }
    }
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

} // namespace
} // namespace qv::test
