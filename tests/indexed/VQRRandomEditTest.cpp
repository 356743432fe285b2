// Random adds, grows, shrinks, empties, refills and saves over many seeds;
// every block is checked after every step, and after each save a fresh
// reader of the saved bytes sees the same blocks.
#include <gtest/gtest.h>

#include <random>

#include "indexed/IndexedTestSupport.h"

namespace qv::test {
namespace {

void CheckAll(CVQRFile &vqr, std::vector<Bytes> const &model, int step) {
    ASSERT_EQ(vqr.GetIndexCount(), model.size()) << "step " << step;
    for (uint32_t i = 0; i < model.size(); ++i)
        ASSERT_EQ(Crc(BlockBytes(vqr.GetIndexAt(i))), Crc(model[i])) << "block " << i << " step " << step;
}

TEST(VQRRandomEdits, EveryBlockSurvivesEveryStep) {
    for (int seed = 0; seed < 150; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random{uint32_t(seed)};
        auto below = [&](size_t n) { return size_t(random() % n); };
        CMemFile host;
        CVQRFile vqr;
        ASSERT_TRUE(vqr.Create(&host));
        std::vector<Bytes> model;
        for (int step = 0; step < 60; ++step) {
            size_t op = model.empty() ? 0 : below(6);
            uint32_t at = model.empty() ? 0 : uint32_t(below(model.size()));
            if (op == 0 && model.size() < 12) {
                ASSERT_EQ(vqr.CreateIndex(uint16_t(1 + below(3)), 0, 0, 0xFFFFFFFF), model.size());
                model.emplace_back();
            } else if (op == 1) { // grow by writing at the end
                Bytes more = Pattern(1 + below(300), step);
                {
                    IFile &f = vqr.GetIndexAt(at)->m_file;
                    f.Seek(0, 3);
                    ASSERT_EQ(f.Write(more.data(), uint32_t(more.size())), more.size());
                }
                model[at].insert(model[at].end(), more.begin(), more.end());
            } else if (op == 2) { // shrink
                size_t size = model[at].empty() ? 0 : below(model[at].size());
                ASSERT_TRUE(vqr.GetIndexAt(at)->m_file.SetSize(int64_t(size)));
                model[at].resize(size);
            } else if (op == 3) { // empty
                ASSERT_TRUE(SetBlock(vqr.GetIndexAt(at), {}));
                model[at].clear();
            } else if (op == 4) { // refill
                model[at] = Pattern(below(200), step + 1000);
                ASSERT_TRUE(SetBlock(vqr.GetIndexAt(at), model[at]));
            } else {
                ASSERT_TRUE(vqr.Save());
                CMemFile copy = MemOf(HostBytes(host));
                CVQRFile reread;
                ASSERT_TRUE(reread.Open(&copy, true)) << "step " << step;
                CheckAll(reread, model, step);
            }
            CheckAll(vqr, model, step);
            if (HasFatalFailure()) return;
        }
    }
}

} // namespace
} // namespace qv::test
