#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <string>

#include "qv/tables/PODValueFormat.h"

namespace {

using qv::FormatPODValue;
using qv::ParsePODValue;

std::u16string Format(double v, char16_t const *format, bool expected = true) {
    char16_t out[64];
    EXPECT_EQ(FormatPODValue(v, out, 64, format), expected);
    return out;
}

TEST(PODValueFormat, ReadsTokensWithScalesAndLiterals) {
    double v = -1;
    ASSERT_TRUE(ParsePODValue(v, u"01:02:03.5", u"%d(3600):%d(60):%f(1)"));
    EXPECT_DOUBLE_EQ(v, 3723.5);
    ASSERT_TRUE(ParsePODValue(v, u"-2.5e+1", u"%f(2)"));
    EXPECT_DOUBLE_EQ(v, -50.0);
}

TEST(PODValueFormat, TrailingTextIsIgnored) {
    double v = 0;
    ASSERT_TRUE(ParsePODValue(v, u"12.5x", u"%f(1)"));
    EXPECT_DOUBLE_EQ(v, 12.5);
}

TEST(PODValueFormat, BadFormatsAndMismatchesAreFalse) {
    double v = 0;
    EXPECT_FALSE(ParsePODValue(v, u"12", u"%g(1)"));
    EXPECT_FALSE(ParsePODValue(v, u"12", u"%f1"));
    EXPECT_FALSE(ParsePODValue(v, u"12", u"%f(1"));
    EXPECT_FALSE(ParsePODValue(v, u"12-3", u"%d(1):%d(1)"));
    EXPECT_FALSE(ParsePODValue(v, nullptr, u"%f(1)"));
    // A cell that holds no number is not 0: MergeWith would match it as a key.
    for (char16_t const *text : {u"", u"abc", u"-", u"."}) EXPECT_FALSE(ParsePODValue(v, text, u"%f(1)"));
    EXPECT_FALSE(ParsePODValue(v, u"-", u"%d(1)"));
    EXPECT_FALSE(ParsePODValue(v, u"01:", u"%d(60):%d(1)"));
    EXPECT_FALSE(ParsePODValue(v, u"12", u"%f()"));
    EXPECT_FALSE(ParsePODValue(v, u"12", u"%f(x)"));
}

TEST(PODValueFormat, ANumberNeedsOnlyOneDigit) {
    double v = 7;
    ASSERT_TRUE(ParsePODValue(v, u".5", u"%f(1)"));
    EXPECT_DOUBLE_EQ(v, 0.5);
}

TEST(PODValueFormat, OverlongNumbersAreCutNotOverrun) {
    std::u16string digits(500, u'1');
    double v = 0;
    ASSERT_TRUE(ParsePODValue(v, digits.c_str(), u"%f(1)"));
    EXPECT_GT(v, 1e62);
    EXPECT_LT(v, 1e63);
}

TEST(PODValueFormat, FloatTokensWriteWithTenSignificantDigits) {
    EXPECT_EQ(Format(12.5, u"%f(1)"), u"12.5");
    EXPECT_EQ(Format(1.0 / 3.0, u"v=%f(1)s"), u"v=0.3333333333s");
    // The running value keeps only what is left over the whole part.
    EXPECT_EQ(Format(3723.5, u"%f(3600) %f(60)"), u"1.034305556 2.058333333");
}

// "%d" hands the double itself to a 64-bit integer directive: what comes out
// is the bit pattern's decimal; stored files carry that form.
TEST(PODValueFormat, IntegerTokensWriteTheBitPattern) {
    double const q = 3723.5 / 3600;
    std::u16string expected;
    for (char c : std::to_string(std::bit_cast<int64_t>(q))) expected += char16_t(c);
    EXPECT_EQ(Format(3723.5, u"%d(3600)"), expected);
}

TEST(PODValueFormat, WritingRefusesMalformedTokensAndSmallBuffers) {
    Format(1, u"%x(1)", false);
    Format(1, u"%f()", false); // a scale without digits
    char16_t small[4];
    EXPECT_FALSE(FormatPODValue(123456, small, 4, u"%f(1)"));
    EXPECT_FALSE(FormatPODValue(1, small, 4, u"abcd"));
    EXPECT_EQ(small[3], 0);
}

} // namespace
