// CSAFFile::Update under failure: every fault reaches the caller, the data
// position it returns never lies, and the file still says where its data is;
// a full small file system leaves the file untouched; a fixed-size header
// whose size falls inside a line is refused.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <sys/mount.h>
#include <unistd.h>

#include "SAFTestSupport.h"
#include "support/FaultInjection.h"

using namespace qv;
using namespace qv::saftest;
using qv::test::FaultRun;

namespace {

constexpr uint32_t kMustExistReadWrite = 0x02 | 0x10 | 0x20;

std::string ReadFile(std::string const &path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void WriteFile(std::string const &path, std::string const &bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc).write(bytes.data(), std::streamsize(bytes.size()));
}

// A SAF file of the camera tags over data bytes, and where its data begins.
std::string SafBytes(std::string const &data, uint32_t &dataPosition) {
    CMemFile f;
    f.SetGrowthRate(60000);
    CSAFFile saf;
    MakeCameraHeader(saf);
    dataPosition = 0;
    EXPECT_TRUE(saf.SaveTo(&f, dataPosition, true));
    f.Write(data.data(), uint32_t(data.size()));
    return AllBytes(f);
}

class SAFUpdateFaults : public testing::Test {
protected:
    ScratchDir dir;
    std::string path = dir.Path("f.saf");
    std::string data = DataPattern(30000);
    uint32_t oldPosition = 0;
    std::string before = SafBytes(data, oldPosition);

    // Runs Update with the header saf holds under every fault.
    void Check(CSAFFile const &saf) {
        uint32_t position = 0;
        std::string after;
        int runs = qv::test::RunUnderFaults(
            [&] { WriteFile(path, before); },
            [&] {
                CFile f;
                position = oldPosition;
                return f.Open(Wide(path).c_str(), kMustExistReadWrite) && saf.Update(&f, position, true);
            },
            [&](FaultRun const &run) {
                std::string now = ReadFile(path);
                if (run.IsClean()) {
                    after = now;
                    EXPECT_EQ(now.substr(position), data);
                    return;
                }
                qv::test::ExpectFailureReported(run);
                if (run.succeeded) {
                    EXPECT_EQ(now, after);
                    return;
                }
                EXPECT_EQ(position, oldPosition) << "a failed update keeps the data position";
                // A passing fault is undone; one that stays may keep the undo
                // from finishing, but the data bytes all remain.
                if (!run.sticky) {
                    EXPECT_TRUE(now == before) << "not undone";
                } else if (now != before) {
                    CheckNoDataByteLost(now, int64_t(after.size()) - int64_t(before.size()));
                }
            },
            {qv::test::Fault::kWrite, qv::test::Fault::kWriteShort, qv::test::Fault::kRead, qv::test::Fault::kLseek,
             qv::test::Fault::kFtruncate, qv::test::Fault::kFallocate});
        EXPECT_GT(runs, 5);
    }

    // Each data byte is at its old place or shifted by shift, or, for a
    // growth, in the insert's scratch copy of the file past its new end.
    void CheckNoDataByteLost(std::string const &now, int64_t shift) {
        int64_t lost = 0;
        int64_t scratch = shift > 0 ? int64_t(before.size()) + shift : -1;
        for (size_t i = 0; i < data.size(); ++i) {
            int64_t at = int64_t(oldPosition + i);
            auto holds = [&](int64_t p) { return p >= 0 && p < int64_t(now.size()) && now[size_t(p)] == data[i]; };
            if (!holds(at) && !holds(at + shift) && !(scratch >= 0 && holds(scratch + at))) ++lost;
        }
        EXPECT_EQ(lost, 0);
    }

    CSAFFile Loaded() {
        CMemFile f;
        f.Write(before.data(), uint32_t(before.size()));
        CSAFFile saf;
        EXPECT_TRUE(saf.Load(&f));
        return saf;
    }
};

TEST_F(SAFUpdateFaults, InPlace) {
    CSAFFile saf = Loaded();
    saf.SetTagValue(u"Camera", u"Another camera");
    Check(saf);
}

TEST_F(SAFUpdateFaults, DataMovesOut) {
    CSAFFile saf = Loaded();
    saf.AddTag(u"Notes", std::u16string(400, u'n').c_str());
    for (int i = 0; i < 6; ++i)
        saf.AddTag(u"More", std::u16string(400, u'm').c_str());
    Check(saf);
}

TEST_F(SAFUpdateFaults, DataMovesIn) {
    // A header with 4,500 bytes of slack shrinks back to 2,048.
    CSAFFile big = Loaded();
    for (int i = 0; i < 11; ++i)
        big.AddTag(u"More", std::u16string(400, u'm').c_str());
    CMemFile f;
    f.SetGrowthRate(60000);
    oldPosition = 0;
    ASSERT_TRUE(big.SaveTo(&f, oldPosition, true));
    f.Write(data.data(), uint32_t(data.size()));
    before = AllBytes(f);
    CSAFFile saf = Loaded();
    Check(saf);
}

// An older fixed-size header whose HdSize falls inside a line: the reader
// passes over it into the image data, so the file must not be rewritten.
TEST(SAFFixedSize, SizeInsideALineIsNotRewritten) {
    std::string bytes = "HdSize 64\r\nWidth 2\r\n" + std::string(44, '\0') + DataPattern(20000);
    CMemFile f;
    f.Write(bytes.data(), uint32_t(bytes.size()));
    CSAFFile saf;
    ASSERT_TRUE(saf.Load(&f));
    EXPECT_FALSE(saf.HeaderEndsAsStated());
    EXPECT_NE(saf.GetDataPosition(), 64u);
    ASSERT_TRUE(saf.SetTagValue(u"Width", u"3"));
    uint32_t position = saf.GetDataPosition();
    EXPECT_FALSE(saf.Update(&f, position, true));
    EXPECT_EQ(AllBytes(f), bytes);

    // The same header ending at a line's end is one of ours.
    std::string exact = "HdSize 20\r\nWidth 2\r\n" + DataPattern(1000);
    CMemFile g;
    g.Write(exact.data(), uint32_t(exact.size()));
    ASSERT_TRUE(saf.Load(&g));
    EXPECT_TRUE(saf.HeaderEndsAsStated());
    EXPECT_EQ(saf.GetDataPosition(), 20u);
    position = 20;
    EXPECT_TRUE(saf.Update(&g, position, true));
    EXPECT_EQ(AllBytes(g).substr(position), DataPattern(1000));
}

#ifdef QV_TOOL
// The tool says so and leaves the file alone.
TEST(SAFFixedSize, ToolRefusesASizeInsideALine) {
    ScratchDir dir;
    std::string path = dir.Path("old.saf");
    std::string bytes = "HdSize 64\r\nWidth 2\r\n" + std::string(44, '\0') + DataPattern(20000);
    WriteFile(path, bytes);
    std::string command = std::string(QV_TOOL) + " saf set '" + path + "' Width 3 >/dev/null 2>&1";
    EXPECT_NE(std::system(command.c_str()), 0);
    EXPECT_EQ(ReadFile(path), bytes);
}
#endif

// The real thing: a small file system that fills up while the header grows.
// Needs root and a tmpfs mount; skipped elsewhere.
TEST(SAFFullDisk, HeaderGrowthOnAFullFileSystemLeavesTheFileWhole) {
    ScratchDir dir;
    std::string mountPoint = dir.Path("small");
    ASSERT_EQ(::mkdir(mountPoint.c_str(), 0700), 0);
    if (::mount("tmpfs", mountPoint.c_str(), "tmpfs", 0, "size=256k") != 0)
        GTEST_SKIP() << "cannot mount a small tmpfs here";
    struct Unmount {
        std::string at;
        ~Unmount() { ::umount2(at.c_str(), MNT_DETACH); }
    } unmount{mountPoint};

    uint32_t position = 0;
    std::string bytes = SafBytes(DataPattern(256 * 1024 - 6000), position);
    std::string path = mountPoint + "/full.saf";
    WriteFile(path, bytes);
    ASSERT_EQ(ReadFile(path), bytes);

    CFile f;
    ASSERT_TRUE(f.Open(Wide(path).c_str(), kMustExistReadWrite));
    CSAFFile saf;
    ASSERT_TRUE(saf.Load(&f));
    for (int i = 0; i < 12; ++i)
        saf.AddTag(u"More", std::u16string(400, u'm').c_str());
    uint32_t newPosition = position;
    EXPECT_FALSE(saf.Update(&f, newPosition, true));
    EXPECT_EQ(newPosition, position);
    f.Close();
    EXPECT_EQ(ReadFile(path), bytes) << "the file changed on a full disk";
}

} // namespace
