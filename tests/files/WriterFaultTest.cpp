// Every writer of the file layer under the fault harness: each failing system
// call reaches the caller, and the bytes left behind are what the writer's
// header promises.
#include "FileTestSupport.h"
#include "support/FaultInjection.h"

namespace qv::test {
namespace {

constexpr uint32_t kOpenReadWrite = 0x01 | 0x10 | 0x20; // open or create, read and write

Bytes Pattern(size_t n, unsigned seed) {
    Bytes out(n);
    for (size_t i = 0; i < n; ++i)
        out[i] = uint8_t(i * 131 + seed + i / 251);
    return out;
}

// Every fault but a failing close, for writers whose close reports nothing.
std::vector<Fault> WithoutClose() {
    auto kinds = AllFaults();
    std::erase(kinds, Fault::kClose);
    return kinds;
}

class WriterFaults : public testing::Test {
protected:
    ScratchDir dir;
    std::string path = dir.Path("w.bin");
    std::u16string name = Wide(path);
};

// A plain write passes what it can and says how much: the file holds the old
// bytes with a prefix of the new ones over them.
TEST_F(WriterFaults, CFileWriteReportsWhatPassed) {
    Bytes old = Pattern(10000, 1), data = Pattern(7000, 2);
    uint32_t written = 0;
    int runs = RunUnderFaults(
        [&] { WriteDiskBytes(path, old); },
        [&] {
            CFile f;
            written = 0;
            if (!f.Open(name.c_str(), kOpenReadWrite) || f.Seek(1000, 1) != 1000) return false;
            written = f.Write(data.data(), uint32_t(data.size()));
            return written == data.size();
        },
        [&](FaultRun const &run) {
            ExpectFailureReported(run);
            Bytes expected = old;
            std::copy(data.begin(), data.begin() + written, expected.begin() + 1000);
            EXPECT_EQ(ReadDiskBytes(path), expected);
        },
        WithoutClose()); // CFile::Close reports nothing: the data passed at Write

    EXPECT_GT(runs, 0);
}

} // namespace
} // namespace qv::test
