// One check for block edits of every indexed container on disk under every
// system-call fault: the container is restored to its original bytes before
// each run, opened for writing, edited and saved.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "files/FileTestSupport.h"
#include "indexed/IndexedTestSupport.h"
#include "support/FaultInjection.h"

namespace qv::test {

// blocks: the container's blocks in original. changed is the block the edit
// may leave anywhere between its old and new bytes; expected is what it holds
// after a clean run, and count the number of blocks then. A fault that passes
// must reach the caller and leave a container that opens with its old block
// count or count, every other block whole. A fault that stays (a dead disk)
// after the blocks have moved stops the table's own write too, and the
// formats have no journal, so those runs need only report the failure.
// Returns the number of runs.
template <class Container>
int CheckBlockEditUnderFaults(std::string const &path, FaultBytes const &original, std::vector<Bytes> const &blocks,
                              std::function<bool(Container &)> const &openForWrite,
                              std::function<bool(Container &)> const &edit, uint32_t changed, Bytes const &expected,
                              uint32_t count) {
    std::u16string const wide = Wide(path);
    return RunUnderFaults(
        [&] { WriteDiskBytes(path, original); },
        [&] {
            Container container;
            if (!openForWrite(container)) return false;
            bool done = edit(container);
            return container.Save() && done;
        },
        [&](FaultRun const &run) {
            ExpectFailureReported(run);
            if (run.sticky && !run.succeeded) return;
            Container container;
            ASSERT_TRUE(container.Open(wide.c_str(), true)) << "the container no longer opens";
            uint32_t n = container.GetIndexCount();
            ASSERT_TRUE(n == blocks.size() || n == count) << n << " blocks";
            if (run.succeeded) {
                ASSERT_EQ(n, count);
                EXPECT_EQ(BlockBytes(container.GetIndexAt(changed)), expected);
            }
            for (uint32_t i = 0; i < blocks.size(); ++i) {
                if (i != changed) {
                    EXPECT_EQ(Crc(BlockBytes(container.GetIndexAt(i))), Crc(blocks[i])) << "block " << i;
                }
            }
        },
        // close comes after every byte is written, and Close reports nothing
        {Fault::kWrite, Fault::kWriteShort, Fault::kRead, Fault::kLseek, Fault::kFtruncate, Fault::kFallocate,
         Fault::kFsync, Fault::kCopyFileRange, Fault::kMapShared});
}

} // namespace qv::test
