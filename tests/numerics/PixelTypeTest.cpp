// The pixel-type registry: built-in rows, lookups, names, registration and
// duplicates, use from several threads.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "qv/core/WideChar.h"
#include "qv/numerics/PixelType.h"

namespace qv {
namespace {

std::u16string Name(uint32_t code) { return PixelTypeToString(code); }

TEST(PixelType, BuiltInRows) {
    EXPECT_EQ(PixelCode("UI16"), 0x36314955u);
    EXPECT_EQ(PixelCode("YUY2"), 0x32595559u);
    EXPECT_EQ(PixelCode("UYVY"), 0x59565955u);
    EXPECT_EQ(PixelCode("RGB8"), 0x38424752u);

    EXPECT_EQ(Name(0x36314955), u"Grayscale (UInt16)");
    EXPECT_EQ(Name(0x32595559), u"YUV (YUY2)");
    EXPECT_EQ(Name(0x59565955), u"YUV (UYVY)");
    EXPECT_EQ(Name(0x38424752), u"RGB (24-Bit)");
    EXPECT_EQ(PixelWidth(0x36314955), 2);
    EXPECT_EQ(PixelWidth(0x32595559), 2);
    EXPECT_EQ(PixelWidth(0x59565955), 2);
    EXPECT_EQ(PixelWidth(0x38424752), 3);
    EXPECT_EQ(PixelTypeToDataType(0x36314955), DT_UInt16);
    EXPECT_EQ(PixelTypeToDataType(0x32595559), DT_Packed);
    EXPECT_EQ(PixelTypeToDataType(0x38424752), DT_Packed);
}

TEST(PixelType, UnknownCodes) {
    EXPECT_EQ(PixelWidth(0), -1);
    EXPECT_EQ(PixelWidth(PixelCode("NONE")), -1);
    EXPECT_EQ(Name(0), u"I AM ERROR");
    EXPECT_EQ(PixelTypeToDataType(0), DT_Unknown);
}

TEST(PixelType, ParseNames) {
    EXPECT_EQ(ParsePixelType(nullptr), 0u);
    EXPECT_EQ(ParsePixelType(u"yuv"), PixelCode("YUY2"));
    EXPECT_EQ(ParsePixelType(u"GRAYSCALE"), PixelCode("UI16"));
    EXPECT_EQ(ParsePixelType(u"Rgb"), PixelCode("RGB8"));
    EXPECT_EQ(ParsePixelType(u"YUV (UYVY)"), PixelCode("UYVY"));
    EXPECT_EQ(ParsePixelType(u"grayscale (uint16)"), PixelCode("UI16"));
    EXPECT_EQ(ParsePixelType(u"rgb (24-bit)"), PixelCode("RGB8"));
    EXPECT_EQ(ParsePixelType(u"Thermal"), 0u);
    EXPECT_EQ(ParsePixelType(u""), 0u);
}

TEST(PixelType, RegisterAndDuplicates) {
    EXPECT_FALSE(RegisterPixelType(PixelCode("UI16"), u"Other", 4, DT_Float));
    EXPECT_EQ(Name(PixelCode("UI16")), u"Grayscale (UInt16)");
    EXPECT_EQ(PixelWidth(PixelCode("UI16")), 2);
    EXPECT_EQ(PixelTypeToDataType(PixelCode("UI16")), DT_UInt16);

    uint32_t const code = PixelCode("FL32");
    EXPECT_TRUE(RegisterPixelType(code, u"Radiance (Float)", 4, DT_Float));
    EXPECT_FALSE(RegisterPixelType(code, u"Again", 8, DT_Double));
    EXPECT_EQ(Name(code), u"Radiance (Float)");
    EXPECT_EQ(PixelWidth(code), 4);
    EXPECT_EQ(PixelTypeToDataType(code), DT_Float);
    EXPECT_EQ(ParsePixelType(u"RADIANCE (FLOAT)"), code);

    // A second code with a name already taken: the first row wins the parse.
    EXPECT_TRUE(RegisterPixelType(PixelCode("FL3B"), u"radiance (float)", 4, DT_Float));
    EXPECT_EQ(ParsePixelType(u"Radiance (Float)"), code);

    EXPECT_TRUE(RegisterPixelType(PixelCode("NUL0"), nullptr, 1, DT_UInt8));
    EXPECT_EQ(Name(PixelCode("NUL0")), u"");
}

TEST(PixelType, OldNumbering) {
    EXPECT_EQ(OldPixelTypeToNewPixelType(0), PixelCode("UI16"));
    EXPECT_EQ(OldPixelTypeToNewPixelType(1), PixelCode("YUY2"));
    EXPECT_EQ(OldPixelTypeToNewPixelType(2), PixelCode("RGB8"));
    EXPECT_EQ(OldPixelTypeToNewPixelType(3), 0u);
    EXPECT_EQ(OldPixelTypeToNewPixelType(255), 0u);
}

TEST(PixelType, ManyThreads) {
    // Each thread registers its own codes (growing the table) while reading
    // the built-in rows; every row must be there afterwards, none twice.
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([t] {
            for (int i = 0; i < 50; ++i) {
                uint32_t code = 0x54000000u | uint32_t(t) << 16 | uint32_t(i);
                char16_t name[] = u"thread x item xx";
                name[7] = char16_t(u'0' + t);
                name[14] = char16_t(u'0' + i / 10);
                name[15] = char16_t(u'0' + i % 10);
                EXPECT_TRUE(RegisterPixelType(code, name, uint8_t(i), DT_Int32));
                EXPECT_FALSE(RegisterPixelType(code, name, uint8_t(i), DT_Int32));
                EXPECT_EQ(PixelWidth(PixelCode("RGB8")), 3);
                EXPECT_EQ(ParsePixelType(name), code);
            }
        });
    for (auto &thread : threads)
        thread.join();
    for (int t = 0; t < 4; ++t)
        for (int i = 0; i < 50; ++i)
            EXPECT_EQ(PixelWidth(0x54000000u | uint32_t(t) << 16 | uint32_t(i)), i);
}

} // namespace
} // namespace qv
