// The repository's sample SAF file reads as its generator wrote it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "SAFTestSupport.h"

using namespace qv;
using namespace qv::saftest;

TEST(SampleData, SampleSafHoldsFourFramesBehindItsHeader) {
    CFile file;
    ASSERT_TRUE(file.Open(Wide(std::string(QV_TEST_DATA_DIR) + "/sample.saf").c_str(), 0x02 | 0x10 | 0x200));
    CSAFFile saf;
    ASSERT_TRUE(saf.Load(&file));
    int32_t width = saf[u"Width"], height = saf[u"Height"], frames = saf[u"Frames"];
    EXPECT_EQ(width, 64);
    EXPECT_EQ(height, 48);
    EXPECT_EQ(frames, 4);
    EXPECT_EQ(Narrow(saf.GetTagValue(u"PixelType")), "UI16");
    EXPECT_EQ(saf.GetDataPosition(), 2271u);
    ASSERT_EQ(file.GetSize(), int64_t(saf.GetDataPosition()) + int64_t(width) * height * frames * 2);

    // The last frame: gradient, and the warm disc centred at column 46, row 24.
    std::vector<uint16_t> counts(size_t(width) * height);
    file.Seek(int64_t(saf.GetDataPosition()) + int64_t(counts.size()) * 2 * 3, 1);
    ASSERT_TRUE(file.ReadArray(counts.data(), uint32_t(counts.size()), 2));
    EXPECT_EQ(counts[0], 7000);
    EXPECT_EQ(counts[size_t(47) * 64 + 63], 7000 + 12 * 63 + 8 * 47);
    EXPECT_EQ(counts[size_t(24) * 64 + 46], 7000 + 12 * 46 + 8 * 24 + 2500);
    EXPECT_EQ(counts[size_t(24) * 64 + 16], 7000 + 12 * 16 + 8 * 24);
}
