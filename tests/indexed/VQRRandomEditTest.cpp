// Random adds, grows, shrinks, empties, refills and saves over many seeds;
// every block is checked after every step, and after each save a fresh
// reader of the saved bytes sees the same blocks.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>

#include "files/FileTestSupport.h"
#include "indexed/IndexedTestSupport.h"
#include "qv/filesystems/MemFileSystem.h"
#include "qv/formats/indexed/XDNFile.h"

namespace qv::test {
namespace {

void CheckAll(CIndexedContainer &vqr, std::vector<Bytes> const &model, int step) {
    ASSERT_EQ(vqr.GetIndexCount(), model.size()) << "step " << step;
    for (uint32_t i = 0; i < model.size(); ++i)
        ASSERT_EQ(Crc(BlockBytes(vqr.GetIndexAt(i))), Crc(model[i])) << "block " << i << " step " << step;
}

// One random step on container and model; reread checks a fresh reader of
// the saved bytes.
template <class TReread>
void RandomStep(CIndexedContainer &vqr, std::vector<Bytes> &model, std::mt19937 &random, int step, TReread reread) {
    auto below = [&](size_t n) { return size_t(random() % n); };
    size_t op = model.empty() ? 0 : below(6);
    uint32_t at = model.empty() ? 0 : uint32_t(below(model.size()));
    if (op == 0 && model.size() < 12) {
        ASSERT_EQ(vqr.CreateIndex(uint16_t(1 + below(3)), 0, 0, 0xFFFFFFFF), model.size());
        model.emplace_back();
    } else if (op == 1) { // grow by writing at the end
        Bytes more = Pattern(1 + below(300), step);
        IFile &f = vqr.GetIndexAt(at)->m_file;
        f.Seek(0, 3);
        ASSERT_EQ(f.Write(more.data(), uint32_t(more.size())), more.size());
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
        reread();
    }
    CheckAll(vqr, model, step);
}

TEST(VQRRandomEdits, EveryBlockSurvivesEveryStep) {
    for (int seed = 0; seed < 150; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random{uint32_t(seed)};
        CMemFile host;
        CVQRFile vqr;
        ASSERT_TRUE(vqr.Create(&host));
        std::vector<Bytes> model;
        for (int step = 0; step < 60; ++step) {
            RandomStep(vqr, model, random, step, [&] {
                CMemFile copy = MemOf(HostBytes(host));
                CVQRFile reread;
                ASSERT_TRUE(reread.Open(&copy, true)) << "step " << step;
                CheckAll(reread, model, step);
            });
            if (HasFatalFailure()) return;
        }
    }
}

// XDN puts new blocks at the end of the host, so empty blocks pile up at one
// offset: the same edits must leave every block whole there too.
TEST(XDNRandomEdits, EveryBlockSurvivesEveryStep) {
    ScratchDir dir;
    for (int seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::string name = "r" + std::to_string(seed) + ".xdn";
        std::u16string path = Wide(dir.Path(name.c_str()));
        std::mt19937 random{uint32_t(seed)};
        CXDNFile xdn;
        ASSERT_TRUE(xdn.Create(path.c_str()));
        std::vector<Bytes> model;
        for (int step = 0; step < 60; ++step) {
            RandomStep(xdn, model, random, step, [&] {
                // The writer holds the file; a reader sees a copy of its bytes.
                std::ifstream in(dir.Path(name.c_str()), std::ios::binary);
                Bytes saved{std::istreambuf_iterator<char>(in), {}};
                CMemFileSystem fs;
                ASSERT_TRUE(fs.AddFile(u"/saved.xdn", saved.data(), uint32_t(saved.size())));
                CXDNFile reread;
                ASSERT_TRUE(reread.Open(&fs, u"/saved.xdn", true)) << "step " << step;
                CheckAll(reread, model, step);
            });
            if (HasFatalFailure()) return;
        }
    }
}

} // namespace
} // namespace qv::test
