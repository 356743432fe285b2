// The conversion classes, FmtFloat and the float-to-integer rule.
#include <gtest/gtest.h>

#include <bit>
#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "Utf8Text.h"
#include "qv/core/Conversions.h"
#include "qv/core/FloatNarrow.h"
#include "qv/core/FloatToInt.h"

namespace qv {
namespace {

std::string Text(CString const &s) {
    return s.GetTChar() ? Utf8(s.GetTChar(), s.GetLength()) : "(null)";
}

std::string Text(char16_t const *s) {
    return Utf8(s, wcslen(s));
}

// Compile time and run time must agree: constant folding never changes a result.
static_assert(FloatToInt<uint16_t>(-1.0) == 65535 && FloatToInt<uint16_t>(70000.0) == 4464);
static_assert(FloatToInt<int64_t>(__builtin_nan("")) == INT64_MIN && FloatToInt<int32_t>(__builtin_nan("")) == 0);
static_assert(FloatToInt<int64_t>(1e300) == INT64_MIN && FloatToInt<int64_t>(-1e300) == INT64_MIN);
static_assert(FloatToInt<int64_t>(0x1p63) == INT64_MIN && FloatToInt<int64_t>(-0x1p63) == INT64_MIN);
static_assert(FloatToInt<int64_t>(0x1.fffffffffffffp62) == 0x7ffffffffffffc00);
static_assert(FloatToInt<int8_t>(-0.9) == 0 && FloatToInt<uint8_t>(255.9) == 255 &&
              FloatToInt<int32_t>(3e9) == -1294967296);
static_assert(FloatToInt<uint64_t>(-1.0) == UINT64_MAX);

TEST(FloatToInt, RunTimeMatchesTheRule) {
    volatile double minusOne = -1.0, big = 70000.0, nan = std::nan(""), huge = 1e300, inf = INFINITY;
    EXPECT_EQ(FloatToInt<uint16_t>(minusOne), 65535);
    EXPECT_EQ(FloatToInt<uint16_t>(big), 4464);
    EXPECT_EQ(FloatToInt<int16_t>(big), 4464);
    EXPECT_EQ(FloatToInt<int64_t>(nan), INT64_MIN);
    EXPECT_EQ(FloatToInt<int32_t>(nan), 0);
    EXPECT_EQ(FloatToInt<int64_t>(huge), INT64_MIN);
    EXPECT_EQ(FloatToInt<int64_t>(-huge), INT64_MIN);
    EXPECT_EQ(FloatToInt<uint8_t>(huge), 0);
    EXPECT_EQ(FloatToInt<int64_t>(inf), INT64_MIN);
    EXPECT_EQ(FloatToInt<uint64_t>(inf), uint64_t(1) << 63);
    volatile double cut = -2.99, edge = 0x1p63, minEdge = -0x1p63;
    EXPECT_EQ(FloatToInt<int32_t>(cut), -2);
    EXPECT_EQ(FloatToInt<int64_t>(edge), INT64_MIN);
    EXPECT_EQ(FloatToInt<int64_t>(minEdge), INT64_MIN);
}

TEST(FloatNarrow, RoundsAsIeeeWithoutUndefinedCasts) {
    static_assert(NarrowToFloat(1e300) == INFINITY && NarrowToFloat(-1e300) == -INFINITY);
    static_assert(NarrowToFloat(0x1.ffffffp127) == INFINITY);                                 // the tie
    static_assert(NarrowToFloat(0x1.fffffefffffffp127) == std::numeric_limits<float>::max()); // below it
    static_assert(NarrowToFloat(0.1) == 0.1f);
    volatile double nan = std::nan("");
    EXPECT_TRUE(std::isnan(NarrowToFloat(nan)));
}

TEST(IntegerConversions, ParseReadsTheDigitRunOnly) {
    EXPECT_EQ(CInt32::Parse(u"123abc"), 123);
    EXPECT_EQ(CInt32::Parse(u" 5"), 0); // no white space skipped
    EXPECT_EQ(CInt32::Parse(u"+5"), 0); // no plus sign
    EXPECT_EQ(CInt32::Parse(u"-5"), -5);
    EXPECT_EQ(CInt32::Parse(u"--5"), 0);
    EXPECT_EQ(CUInt32::Parse(u"-5"), 0u); // unsigned classes take no sign
    EXPECT_EQ(CInt32::Parse(u""), 0);
    EXPECT_EQ(CInt32::Parse(nullptr), 0);
    EXPECT_EQ(CInt8::Parse(u"300"), 44); // truncated to the width
    EXPECT_EQ(CUInt8::Parse(u"256"), 0);
    EXPECT_EQ(CInt16::Parse(u"-32769"), 32767);
    EXPECT_EQ(CUInt16::Parse(u"65536"), 0);
    EXPECT_EQ(CInt32::Parse(u"2147483648"), INT32_MIN); // wraps, unlike _wtol
    EXPECT_EQ(CUInt64::Parse(u"18446744073709551615"), UINT64_MAX);
    EXPECT_EQ(CUInt64::Parse(u"18446744073709551617"), 1u); // overflow wraps in 64 bits
    EXPECT_EQ(CInt64::Parse(u"-9223372036854775808"), INT64_MIN);
    EXPECT_EQ(CIntPtr::Parse(u"-7"), -7);
    EXPECT_EQ(CUIntPtr::Parse(u"7x"), 7u);
}

TEST(IntegerConversions, ParseHexTakesOnlyLowerCasePrefix) {
    EXPECT_EQ(CUInt32::ParseHex(u"0xff"), 255u);
    EXPECT_EQ(CUInt32::ParseHex(u"Ab"), 171u);
    EXPECT_EQ(CUInt32::ParseHex(u"0XFF"), 0u); // "0X" is not recognised: the run ends at X
    EXPECT_EQ(CUInt32::ParseHex(u"0x"), 0u);
    EXPECT_EQ(CUInt32::ParseHex(u"1g2"), 1u);
    EXPECT_EQ(CUInt32::ParseHex(nullptr), 0u);
    EXPECT_EQ(CInt8::ParseHex(u"ff"), -1);
    EXPECT_EQ(CUInt16::ParseHex(u"0x12345"), 0x2345);
    EXPECT_EQ(CUInt64::ParseHex(u"0xFFFFFFFFFFFFFFFF"), UINT64_MAX);
    EXPECT_EQ(CUInt64::ParseHex(u"1FFFFFFFFFFFFFFFF"), UINT64_MAX); // shifts out the top
}

TEST(IntegerConversions, ToStringAndHexWithItsExtraLeadingZero) {
    EXPECT_EQ(Text(CInt8::ToString(-128)), "-128");
    EXPECT_EQ(Text(CUInt8::ToString(255)), "255");
    EXPECT_EQ(Text(CInt64::ToString(INT64_MIN)), "-9223372036854775808");
    EXPECT_EQ(Text(CUInt64::ToString(UINT64_MAX)), "18446744073709551615");
    EXPECT_EQ(Text(CUInt32::ToString(4294967295u)), "4294967295");
    // Stored texts carry one digit more than the value needs.
    EXPECT_EQ(Text(CUInt8::ToStringHex(255)), "0FF");
    EXPECT_EQ(Text(CUInt32::ToStringHex(0xAB)), "0AB");
    EXPECT_EQ(Text(CUInt32::ToStringHex(0)), "0");
    EXPECT_EQ(Text(CUInt16::ToStringHex(0x1000)), "01000");
    EXPECT_EQ(Text(CUInt32::ToStringHex(0xFFFFFFFF)), "0FFFFFFFF");
    EXPECT_EQ(Text(CInt8::ToStringHex(-1)), "0FFFFFFFFFFFFFFFF"); // signed: extended to 64 bits
    EXPECT_EQ(Text(CInt32::ToStringHex(-1)), "0FFFFFFFFFFFFFFFF");
    EXPECT_EQ(Text(CInt16::ToStringHex(0x7FFF)), "07FFF");
    for (uint64_t v : {uint64_t(0), uint64_t(1), uint64_t(0xABCDEF), UINT64_MAX})
        EXPECT_EQ(CUInt64::ParseHex(CUInt64::ToStringHex(v)), v);
}

TEST(IntegerConversions, Limits) {
    static_assert(CInt8::Min == -128 && CInt8::Max == 127 && CUInt8::Min == 0 && CUInt8::Max == 255);
    static_assert(CInt16::Min == -32768 && CInt16::Max == 32767 && CUInt16::Max == 65535);
    static_assert(CInt32::Min == INT32_MIN && CInt32::Max == 2147483647 && CUInt32::Max == 4294967295u);
    static_assert(CInt64::Min == INT64_MIN && CInt64::Max == INT64_MAX && CUInt64::Max == UINT64_MAX);
    static_assert(CIntPtr::Min == INTPTR_MIN && CIntPtr::Max == INTPTR_MAX && CUIntPtr::Max == UINTPTR_MAX);
    SUCCEED();
}

TEST(BoolConversions, ParseWordsLettersAndNumbers) {
    for (char16_t const *s : {u"true", u"TRUE", u"Yes", u"t", u"Y", u"1", u"12", u"-1", u"7x"})
        EXPECT_TRUE(CBool::Parse(s)) << Text(s);
    for (char16_t const *s : {u"false", u"False", u"NO", u"f", u"n", u"0", u"00", u"", u"abc", u" 1", u"yess"})
        EXPECT_FALSE(CBool::Parse(s)) << Text(s);
    EXPECT_FALSE(CBool::Parse(nullptr));
    EXPECT_TRUE(CBool::ParseHex(u"0x10"));
    EXPECT_TRUE(CBool::ParseHex(u"a"));
    EXPECT_FALSE(CBool::ParseHex(u"0x0"));
    EXPECT_EQ(Text(CBool::ToString(true)), "True");
    EXPECT_EQ(Text(CBool::ToString(false)), "False");
    EXPECT_EQ(Text(CBool::ToStringHex(true)), "1");
    EXPECT_EQ(Text(CBool::ToStringHex(false)), "0");
}

TEST(FloatConversions, LimitsAreTheNearestToTheirDecimals) {
    EXPECT_EQ(std::bit_cast<uint32_t>(CFlt32::Max), 0x7F7FC99Eu);
    EXPECT_EQ(std::bit_cast<uint32_t>(CFlt32::Min), 0xFF7FC99Eu);
    EXPECT_EQ(std::bit_cast<uint64_t>(CFlt64::Max), 0x7FEE42D130773B76u);
    EXPECT_EQ(std::bit_cast<uint64_t>(CFlt64::Min), 0xFFEE42D130773B76u);
}

TEST(FloatConversions, ParseAndText) {
    EXPECT_EQ(CFlt64::Parse(u"1.5"), 1.5);
    EXPECT_EQ(CFlt64::Parse(u"  -2.5e3x"), -2500.0);
    EXPECT_EQ(CFlt64::Parse(nullptr), 0.0);
    EXPECT_EQ(CFlt32::Parse(u"0.1"), 0.1f);
    EXPECT_EQ(CFlt32::Parse(u"1e300"), INFINITY); // narrowed
    EXPECT_EQ(Text(CFlt64::ToString(1.5)), "1.5");
    EXPECT_EQ(Text(CFlt64::ToString(1e10)), "1e+010");
    EXPECT_EQ(Text(CFlt32::ToString(0.1f)), "0.1"); // through double, then "%g"
    EXPECT_EQ(Text(CFlt64::ToStringExact(1.5)), "1.500000000000000e+000");
    EXPECT_EQ(Text(CFlt64::ToStringExact(-0.1)), "-1.000000000000000e-001");
    EXPECT_EQ(Text(CFlt32::ToStringExact(1.5f)), "1.5000000e+00");
    EXPECT_EQ(Text(CFlt32::ToStringExact(1500.0f)), "1.5000000e+03");
}

TEST(FloatConversions, HexCarriesTheDoubleBits) {
    EXPECT_EQ(Text(CFlt64::ToStringHex(1.0)), "03FF0000000000000");
    EXPECT_EQ(Text(CFlt32::ToStringHex(1.0f)), "03FF0000000000000"); // widened first
    EXPECT_EQ(Text(CFlt64::ToStringHex(0.0)), "0");
    for (double v : {0.1, -1e-300, 1e308, -0.0, double(INFINITY)}) {
        double back = CFlt64::ParseHex(CFlt64::ToStringHex(v));
        EXPECT_EQ(std::bit_cast<uint64_t>(back), std::bit_cast<uint64_t>(v)) << v;
    }
    for (float v : {0.1f, -3.0e38f, 1e-40f}) {
        float back = CFlt32::ParseHex(CFlt32::ToStringHex(v));
        EXPECT_EQ(std::bit_cast<uint32_t>(back), std::bit_cast<uint32_t>(v)) << v;
    }
    EXPECT_TRUE(std::isnan(CFlt64::ParseHex(CFlt64::ToStringHex(std::nan("")))));
}

TEST(FloatConversions, TextIgnoresTheProcessLocale) {
    char const *old = std::setlocale(LC_ALL, nullptr);
    std::string saved = old ? old : "C";
    if (!std::setlocale(LC_ALL, "de_DE.UTF-8")) GTEST_SKIP() << "no de_DE.UTF-8 locale";
    EXPECT_EQ(Text(CFlt64::ToString(1.5)), "1.5");
    EXPECT_EQ(CFlt64::Parse(u"1.5"), 1.5);
    EXPECT_EQ(Text(CFlt32::ToStringExact(2.25f)), "2.2500000e+00");
    char16_t buf[64];
    EXPECT_EQ(Text(FmtFloat(buf, 64, 1, 2.5, 2, 2)), "2.50");
    std::setlocale(LC_ALL, saved.c_str());
}

std::string Fmt(int mode, double value, int precision, int expWidth, unsigned size = 64) {
    char16_t buf[64];
    std::memset(buf, 0xEE, sizeof buf);
    char16_t *result = FmtFloat(buf, size, mode, value, precision, expWidth);
    if (result != buf) return "<static>" + Text(result);
    return Text(buf);
}

TEST(FmtFloat, ModesAndExponentDigits) {
    EXPECT_EQ(Fmt(2, 1500, 2, 2), "1.50e+03");
    EXPECT_EQ(Fmt(2, -1500, 2, 2), "-1.50e+03");
    EXPECT_EQ(Fmt(2, 0.0015, 2, 2), "1.50e-03");
    EXPECT_EQ(Fmt(2, 1500, 2, 3), "1.50e+003");
    EXPECT_EQ(Fmt(2, 1500, 2, 1), "1.50e+3");
    EXPECT_EQ(Fmt(2, 1500, 2, 5), "1.50e+00003");
    EXPECT_EQ(Fmt(2, 0.0, 2, 2), "0.00e+00");
    EXPECT_EQ(Fmt(2, 1e-5, 2, 2), "1.00e-05");
    EXPECT_EQ(Fmt(2, 1e300, 2, 2), "1.00e+00"); // beyond float: the narrowed exponent is 0
    // The exponent comes from float arithmetic: just below 1000, the float is 1000.
    EXPECT_EQ(Fmt(2, 999.99999999, 10, 2), "9.9999999999e+03");
    // No exponent digits to find in inf and nan: the text stays as printed.
    EXPECT_EQ(Fmt(2, INFINITY, 2, 2), "inf");
    EXPECT_EQ(Fmt(2, std::nan(""), 2, 2), "nan");

    EXPECT_EQ(Fmt(0, 3.99, 0, 0), "3");
    EXPECT_EQ(Fmt(0, -3.99, 0, 0), "-3");
    EXPECT_EQ(Fmt(0, 1e300, 0, 0), "0"); // the float-to-integer rule, cut to 32 bits
    EXPECT_EQ(Fmt(0, 123456, 0, 0, 4), "");
    EXPECT_EQ(Fmt(1, 3.14159, 2, 0), "3.14");
    EXPECT_EQ(Fmt(1, -0.5, 3, 0), "-0.500");

    EXPECT_EQ(Fmt(3, 1500, 2, 2), "1500.00");   // e = 3 within [-2, 4]
    EXPECT_EQ(Fmt(3, 1e7, 2, 2), "1.00e+07");   // e = 7 above 4
    EXPECT_EQ(Fmt(3, 0.01, 2, 2), "0.01");      // e = -2
    EXPECT_EQ(Fmt(3, 0.001, 2, 2), "1.00e-03"); // e = -3 below -2
    EXPECT_EQ(Fmt(3, 0.0, 2, 2), "0.00");
}

TEST(FmtFloat, FailuresAndUnknownModes) {
    char16_t buf[8] = u"keep";
    EXPECT_EQ(FmtFloat(buf, 8, 7, 1.0, 2, 2), buf);
    EXPECT_EQ(Text(buf), "keep");
    EXPECT_EQ(Fmt(1, 5.0, 0, 0), "<static>");      // shorter than three units
    EXPECT_EQ(Fmt(1, 1500, 2, 0, 5), "<static>");  // does not fit
    EXPECT_EQ(Fmt(2, 1500, 2, 2, 10), "1.50e+03"); // the runtime's "1.50e+003" just fits
    EXPECT_EQ(Fmt(2, 1500, 2, 2, 9), "<static>");
    EXPECT_EQ(Fmt(2, 1500, 2, 5, 10), "<static>"); // the wider exponent does not fit
    EXPECT_EQ(Fmt(2, 1500, 2, 2, 0), "<static>");
}

TEST(GuidText, ParseForms) {
    GUID const expected = CGUID::Create(0x01234567, 0x89AB, 0xCDEF, 0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF);
    for (char16_t const *s : {u"{01234567-89AB-CDEF-0123-456789ABCDEF}", u"0123456789abcdef0123456789ABCDEF",
                              u"{0123456789ABCDEF-0123456789ABCDEF", u"01234567-89ABCDEF0123-456789ABCDEFxyz"})
        EXPECT_TRUE(CGUID::Parse(s) == expected) << Text(s);
    for (char16_t const *s : {u"", u"{", u"{01234567-89AB-CDEF-0123-456789ABCDE",
                              u"{{01234567-89AB-CDEF-0123-456789ABCDEF}", u"01234567--89AB-CDEF-0123-456789ABCDEF",
                              u"0123456G-89AB-CDEF-0123-456789ABCDEF", u"-01234567-89AB-CDEF-0123-456789ABCDEF"})
        EXPECT_TRUE(CGUID::Parse(s) == CGUID::Empty) << Text(s);
    EXPECT_TRUE(CGUID::Parse(nullptr) == CGUID::Empty);
    EXPECT_TRUE(CGUID::ParseHex(u"01234567-89AB-CDEF-0123-456789ABCDEF") == expected);
}

TEST(GuidText, ToStringEndsWithALineEnd) {
    GUID g = CGUID::Create(0xA, 0xB, 0xC, 1, 2, 3, 4, 5, 6, 7, 0xFF);
    EXPECT_EQ(Text(CGUID::ToString(g)), "{0000000A-000B-000C-0102-0304050607FF}\n");
    EXPECT_EQ(Text(CGUID::ToString(CGUID::Empty)), "{00000000-0000-0000-0000-000000000000}\n");
    EXPECT_TRUE(CGUID::Parse(CGUID::ToString(g)) == g);
    EXPECT_EQ(Text(CGUID::ToStringHex(g)), Text(CGUID::ToString(g)));
}

TEST(GuidText, FromBytesInMemoryOrder) {
    unsigned char bytes[16];
    for (int i = 0; i < 16; ++i)
        bytes[i] = static_cast<unsigned char>(i + 1);
    GUID g = CGUID::FromBytes(bytes);
    EXPECT_EQ(g.Data1, 0x04030201u);
    EXPECT_EQ(g.Data2, 0x0605);
    EXPECT_EQ(g.Data3, 0x0807);
    EXPECT_EQ(g.Data4[0], 9);
    EXPECT_EQ(g.Data4[7], 16);
}

} // namespace
} // namespace qv
