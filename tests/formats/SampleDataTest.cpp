// The repository's sample SAF file reads as its generator wrote it: an image
// header and four frames of counts that follow the sample calibration.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "SAFTestSupport.h"
#include "qv/formats/tagged/SAFFrames.h"

using namespace qv;
using namespace qv::saftest;

namespace {

std::string const kSample = std::string(QV_TEST_DATA_DIR) + "/sample.saf";

// Counts of the black bodies of data/cal_points.csv page 0, as the generator
// interpolates them.
uint16_t CountsAt(double t0, double c0, double t1, double c1, double celsius) {
    return uint16_t(std::lround(c0 + (celsius - t0) * (c1 - c0) / (t1 - t0)));
}

} // namespace

TEST(SampleData, SampleSafHoldsFourImageFramesBehindItsHeader) {
    CSAFFrames frames;
    ASSERT_TRUE(frames.Open(Wide(kSample).c_str()));
    EXPECT_EQ(frames.Width(), 64u);
    EXPECT_EQ(frames.Height(), 48u);
    EXPECT_EQ(frames.Bits(), 14u);
    EXPECT_EQ(frames.FrameBytes(), 64u * 48 * 2);
    EXPECT_EQ(frames.FrameCount(), 4u);

    // The last frame: gradient from 15 C, and the 45 C disc at column 46, row 24.
    std::vector<uint16_t> counts(size_t(64) * 48);
    ASSERT_TRUE(frames.ReadFrame(3, counts.data()));
    EXPECT_EQ(counts[0], CountsAt(10, 4291.54, 20, 5372.09, 15.0));
    EXPECT_EQ(counts[size_t(47) * 64 + 63], CountsAt(20, 5372.09, 40, 8662.20, 15.0 + 0.2 * 63 + 0.1 * 47));
    EXPECT_EQ(counts[size_t(24) * 64 + 46], CountsAt(40, 8662.20, 50, 11030.58, 45.0));
    EXPECT_EQ(counts[size_t(24) * 64 + 16], CountsAt(20, 5372.09, 40, 8662.20, 15.0 + 0.2 * 16 + 0.1 * 24));
    EXPECT_FALSE(frames.ReadFrame(4, counts.data()));

    CFile file;
    ASSERT_TRUE(file.Open(Wide(kSample).c_str(), 0x02 | 0x10 | 0x200));
    EXPECT_EQ(file.GetSize(), int64_t(frames.DataPosition()) + 4 * 64 * 48 * 2);
}

// Headers that do not describe frames, and sizes no file should make us
// allocate: Open refuses them and holds nothing.
TEST(SAFFrames, RefusesHeadersThatDescribeNoFrames) {
    ScratchDir dir;
    auto make = [&](char const *name, std::vector<std::pair<char16_t const *, char16_t const *>> const &tags) {
        CSAFFile saf;
        saf.New(true);
        for (auto const &tag : tags) saf.AddTag(tag.first, tag.second);
        std::string path = dir.Path(name);
        EXPECT_TRUE(saf.Save(Wide(path).c_str(), false));
        return path;
    };
    std::vector<std::pair<char16_t const *, char16_t const *>> good = {
        {u"KeyWrd", u"IMG"}, {u"BytOrd", u"LH"}, {u"DaType", u"UInt16"}, {u"xPixls", u"2"}, {u"yPixls", u"2"},
        {u"IMSize", u"8"}};
    CSAFFrames frames;
    std::string path = make("good.saf", good);
    ASSERT_TRUE(frames.Open(Wide(path).c_str()));
    EXPECT_EQ(frames.FrameCount(), 0u) << "no data: no frames";
    EXPECT_EQ(frames.Bits(), 16u);

    char16_t const *const wrong[][2] = {{u"KeyWrd", u"POD"},     {u"BytOrd", u"HL"},    {u"DaType", u"Float"},
                                        {u"xPixls", u"0"},       {u"yPixls", u"-2"},    {u"IMSize", u"7"},
                                        {u"xPixls", u"99999999"}, {u"IMSize", u"x"},    {u"ADBits", u"17"}};
    int number = 0;
    for (auto const &change : wrong) {
        auto tags = good;
        bool replaced = false;
        for (auto &tag : tags)
            if (std::u16string(tag.first) == change[0]) tag.second = change[1], replaced = true;
        if (!replaced) tags.push_back({change[0], change[1]});
        std::string name = "bad" + std::to_string(++number) + ".saf";
        EXPECT_FALSE(frames.Open(Wide(make(name.c_str(), tags)).c_str())) << Narrow(change[0]) << Narrow(change[1]);
        EXPECT_EQ(frames.Width(), 0u);
    }
    EXPECT_FALSE(frames.Open(Wide(dir.Path("missing.saf")).c_str()));
}

TEST(SampleData, FramesReadFromAnOpenFileAsFromThePath) {
    CFile disk;
    ASSERT_TRUE(disk.Open(Wide(kSample).c_str(), 0x02 | 0x10 | 0x200));
    CMemFile memory;
    std::vector<uint8_t> bytes(size_t(disk.GetSize()));
    ASSERT_EQ(disk.Read(bytes.data(), uint32_t(bytes.size())), bytes.size());
    memory.Write(bytes.data(), uint32_t(bytes.size()));
    CSAFFrames byPath, byFile;
    ASSERT_TRUE(byPath.Open(Wide(kSample).c_str()));
    ASSERT_TRUE(byFile.Open(&memory));
    EXPECT_EQ(byFile.FrameCount(), 4u);
    EXPECT_EQ(byFile.DataPosition(), byPath.DataPosition());
    std::vector<uint16_t> a(size_t(64) * 48), b(a.size());
    ASSERT_TRUE(byPath.ReadFrame(2, a.data()));
    ASSERT_TRUE(byFile.ReadFrame(2, b.data()));
    EXPECT_EQ(a, b);
    // Cut inside the last frame: three whole frames remain.
    memory.SetSize(memory.GetSize() - 1);
    ASSERT_TRUE(byFile.Open(&memory));
    EXPECT_EQ(byFile.FrameCount(), 3u);
    EXPECT_FALSE(byFile.Open(static_cast<IFile *>(nullptr)));
}
