// Block edits on a disk VQR container under every system-call fault: growing
// and shrinking a block, and adding a block that makes the table grow (which
// moves every block), each followed by Save.
#include <gtest/gtest.h>

#include "indexed/BlockEditFaultCheck.h"

namespace qv::test {
namespace {

class VQRFaults : public ::testing::Test {
protected:
    ScratchDir dir;
    std::string path = dir.Path("c.vqr");
    std::u16string wide = Wide(path);
    FaultBytes original;

    void Create(std::vector<Bytes> const &blocks) {
        CVQRFile vqr;
        ASSERT_TRUE(vqr.Create(wide.c_str()));
        for (Bytes const &b : blocks)
            ASSERT_TRUE(SetBlock(vqr.GetIndexAt(vqr.CreateIndex(1, 0, 0, 0xFFFFFFFF)), b));
        vqr.Close();
        original = FileBytes(path);
    }
    int Check(std::vector<Bytes> const &blocks, std::function<bool(CVQRFile &)> const &edit, uint32_t changed,
              Bytes const &expected, uint32_t count) {
        auto openForWrite = [&](CVQRFile &vqr) { return vqr.Open(wide.c_str(), true) && vqr.ReOpenForWrite(); };
        return CheckBlockEditUnderFaults<CVQRFile>(path, original, blocks, openForWrite, edit, changed, expected,
                                                   count);
    }
};

TEST_F(VQRFaults, GrowingAndShrinkingABlockKeepsTheOthers) {
    std::vector<Bytes> blocks = {Pattern(3000, 1), Pattern(2000, 2), Pattern(1000, 3)};
    Create(blocks);
    for (size_t newSize : {size_t(700000), size_t(100)}) {
        SCOPED_TRACE("block 0 resized to " + std::to_string(newSize));
        Bytes resized = Pattern(newSize, 9);
        EXPECT_GT(Check(blocks, [&](CVQRFile &vqr) { return SetBlock(vqr.GetIndexAt(0), resized); }, 0, resized, 3),
                  0);
    }
}

// The fifth block grows the table, which moves every block and writes the
// table at once.
TEST_F(VQRFaults, AddingABlockThatGrowsTheTableKeepsTheOthers) {
    std::vector<Bytes> blocks = {Pattern(3000, 1), Pattern(2000, 2), Pattern(1000, 3), Pattern(1500, 4)};
    Create(blocks);
    Bytes added = Pattern(500, 7);
    auto add = [&](CVQRFile &vqr) {
        uint32_t i = vqr.CreateIndex(2, 0, 0, 0xFFFFFFFF);
        return i == 4 && SetBlock(vqr.GetIndexAt(i), added);
    };
    EXPECT_GT(Check(blocks, add, 4, added, 5), 20);
}

} // namespace
} // namespace qv::test
