#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "core/Utf8Text.h"
#include "qv/core/WideFormat.h"

using namespace qv;

namespace {

// Formats wide and narrow, checks that counting, the wide and the narrow
// forms agree, and returns the text as UTF-8.
std::string Wide(char16_t const *fmt, ...) {
    va_list args, counting;
    va_start(args, fmt);
    va_copy(counting, args);
    int needed = _vscwprintf(fmt, counting);
    va_end(counting);
    std::u16string buf(size_t(needed) + 1, u'#');
    int n = vswprintf(buf.data(), buf.size(), fmt, args);
    va_end(args);
    EXPECT_EQ(n, needed);
    EXPECT_EQ(buf[size_t(n)], 0);
    buf.resize(size_t(n));
    return Utf8(buf);
}

std::string Narrow(char const *fmt, ...) {
    va_list args, counting;
    va_start(args, fmt);
    va_copy(counting, args);
    int needed = c_vscprintf(fmt, counting);
    va_end(counting);
    std::string buf(size_t(needed) + 1, '#');
    int n = c_vsnprintf(buf.data(), buf.size(), fmt, args);
    va_end(args);
    EXPECT_EQ(n, needed);
    EXPECT_EQ(buf[size_t(n)], 0);
    buf.resize(size_t(n));
    return buf;
}

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

} // namespace

TEST(WideFormat, Integers) {
    EXPECT_EQ(Wide(u"%d|%i|%5d|%-5d|%05d|%+d|% d", 42, -7, 42, 42, -42, 3, 3), "42|-7|   42|42   |-0042|+3| 3");
    EXPECT_EQ(Wide(u"%.3d|%8.3d|%08.3d|%.0d|%.0d", 7, -7, 7, 0, 1), "007|    -007|     007||1");
    EXPECT_EQ(Wide(u"%u|%x|%X|%o|%#o|%#o", -1, 255, 255, 8, 8, 0), "4294967295|ff|FF|10|010|0");
    // The designed runtime prefixes %#x even for zero.
    EXPECT_EQ(Wide(u"%#x|%#X|%#x|%#010x", 255, 255, 0, 255), "0xff|0XFF|0x0|0x000000ff");
    EXPECT_EQ(Wide(u"%hd|%hu|%hhd|%hhu", 70000, -1, 200, -1), "4464|65535|-56|255");
    // long is 32 bits: %ld reads an int-sized value.
    EXPECT_EQ(Wide(u"%ld|%lu|%lx|%d", int32_t(-1), int32_t(-1), int32_t(-1), 5), "-1|4294967295|ffffffff|5");
    EXPECT_EQ(Wide(u"%I64d|%I64u", INT64_MIN, UINT64_MAX), "-9223372036854775808|18446744073709551615");
    EXPECT_EQ(Wide(u"%I64x|%I64X|%lld|%I32d|%zu|%jd", int64_t(0xABCDEF0123), int64_t(-1), int64_t(1) << 40, INT32_MIN,
                   size_t(12), int64_t(-3)),
              "abcdef0123|FFFFFFFFFFFFFFFF|1099511627776|-2147483648|12|-3");
    EXPECT_EQ(Wide(u"%d", INT32_MIN), "-2147483648");
}

TEST(WideFormat, ExponentsHaveThreeDigits) {
    EXPECT_EQ(Wide(u"%e|%E", 1.5, 1.5), "1.500000e+000|1.500000E+000");
    EXPECT_EQ(Wide(u"%e|%e|%e", 0.0, 1e-300, -2.5e300), "0.000000e+000|1.000000e-300|-2.500000e+300");
    EXPECT_EQ(Wide(u"%.0e|%#.0e|%.2e|%12.3e|%-12.1e|", 15.0, 1.0, 9.999, 1234.5, 0.5),
              "2e+001|1.e+000|1.00e+001|  1.234e+003|5.0e-001    |");
    EXPECT_EQ(Wide(u"%013.2e|%+e", -1.0, 1e10), "-0001.00e+000|+1.000000e+010");
    EXPECT_EQ(Narrow("%e", 5e-324), "4.940656e-324");
}

TEST(WideFormat, GeneralForm) {
    EXPECT_EQ(Wide(u"%g|%g|%g|%g|%g|%g", 0.0, 1e-5, 1e5, 1e6, 123456789.0, 0.0001),
              "0|1e-005|100000|1e+006|1.23457e+008|0.0001");
    EXPECT_EQ(Wide(u"%g|%g|%g|%G|%g", 0.5, 100.0, -0.0, 1e-10, 999999.5), "0.5|100|-0|1E-010|1e+006");
    EXPECT_EQ(Wide(u"%#g|%#.1g|%.3g|%0.10g|%.0g", 1.0, 1.0, 1234.5, 0.1, 26.0), "1.00000|1.|1.23e+003|0.1|3e+001");
    EXPECT_EQ(Wide(u"%g|%g", 1.0 / 3, 2.0 / 3 * 1e-4), "0.333333|6.66667e-005");
    EXPECT_EQ(Wide(u"%10g|%-10g|%010g", 1.5, 1.5, -1.5), "       1.5|1.5       |-0000001.5");
}

TEST(WideFormat, FixedForm) {
    EXPECT_EQ(Wide(u"%f|%.2f|%.0f|%#.0f|%.1f", 1.5, 2.675, 2.0, 3.0, 0.05), "1.500000|2.67|2|3.|0.1");
    EXPECT_EQ(Wide(u"%10.3f|%-10.3f|%010.3f|%+.1f|% .1f", -3.14159, 3.14159, -3.14159, 2.0, 2.0),
              "    -3.142|3.142     |-00003.142|+2.0| 2.0");
    // Ties of exactly representable values round to even, as the exact value
    // decides everywhere else.
    EXPECT_EQ(Wide(u"%.0f|%.0f|%.0f|%.2f", 0.5, 1.5, 2.5, 0.125), "0|2|2|0.12");
    std::string big = Wide(u"%f", 1e308);
    EXPECT_EQ(big.size(), 309u + 7u);
    EXPECT_EQ(big.substr(0, 4), "1000");
    // Precision past the exact expansion only adds zeros.
    std::string tiny = Narrow("%.1100f", 0.1);
    ASSERT_EQ(tiny.size(), 1102u);
    EXPECT_EQ(tiny.substr(0, 20), "0.100000000000000005");
    EXPECT_EQ(tiny.find_last_not_of('0'), 2u + 55u - 1u);
    EXPECT_EQ(Narrow("%.800e", 1.0).size(), 1u + 1u + 800u + 5u);
    EXPECT_EQ(Narrow("%.1200e", 1.0).size(), 1u + 1u + 1200u + 5u);
}

TEST(WideFormat, InfinityAndNaN) {
    EXPECT_EQ(Wide(u"%f|%f|%f|%e|%g", kInf, -kInf, kNaN, kInf, -kInf), "inf|-inf|nan|inf|-inf");
    EXPECT_EQ(Wide(u"%6f|%-6f|%06f|%+f|%E|%G|%F", kInf, kInf, -kInf, kInf, kInf, kNaN, kInf),
              "   inf|inf   |  -inf|+inf|INF|NAN|INF");
    EXPECT_EQ(Wide(u"%f", -kNaN), "nan");
}

TEST(WideFormat, HexFloat) {
    EXPECT_EQ(Wide(u"%a|%A|%.1a|%a|%a", 1.5, 1.5, 1.0, 0.0, -2.0),
              "0x1.8000000000000p+0|0X1.8000000000000P+0|0x1.0p+0|0x0.0000000000000p+0|-0x1.0000000000000p+1");
}

TEST(WideFormat, Text) {
    EXPECT_EQ(Wide(u"%s|%5s|%-5s|%.2s|%05s", u"ab", u"ab", u"ab", u"abc", u"ab"), "ab|   ab|ab   |ab|000ab");
    EXPECT_EQ(Wide(u"%s|%.3s|%S|%ls", static_cast<char16_t const *>(nullptr), static_cast<char16_t const *>(nullptr),
                   static_cast<char const *>(nullptr), u"w"),
              "(null)|(nu|(null)|w");
    EXPECT_EQ(Wide(u"%S|%hs|%ws|%4S|", "h\xC3\xA9", "x", u"y", "\xE2\x82\xAC"), "h\xC3\xA9|x|y|   \xE2\x82\xAC|");
    // Invalid UTF-8 in %S becomes U+FFFD per maximal invalid subpart.
    EXPECT_EQ(Wide(u"%S", "a\xE2\x82z\xFF"), "a\xEF\xBF\xBDz\xEF\xBF\xBD");
    // A precision counts output units and never splits a converted character.
    EXPECT_EQ(Wide(u"%.2S|", "a\xF0\x9F\x98\x80"), "a|");
    EXPECT_EQ(Narrow("%s|%S|%ls|%.2S|%hs", "h\xC3\xA9", u"h\u00e9\u20ac", u"\xD83D\xDE00", u"\u00e9\u00e9", "n"),
              "h\xC3\xA9|h\xC3\xA9\xE2\x82\xAC|\xF0\x9F\x98\x80|\xC3\xA9|n");
    EXPECT_EQ(Narrow("%S", u"a\xD800z"), "a\xEF\xBF\xBDz");
    EXPECT_EQ(Narrow("%s|%.1s", static_cast<char const *>(nullptr), "xyz"), "(null)|x");
}

TEST(WideFormat, Characters) {
    EXPECT_EQ(Wide(u"%c|%3c|%-3c|%C|%lc|%hc", u'A', u'b', u'c', 'd', u'\u00e9', 'e'), "A|  b|c  |d|\xC3\xA9|e");
    EXPECT_EQ(Narrow("%c|%C|%lc|%C", 'A', u'\u00e9', u'\u20ac', u'\xD800'), "A|\xC3\xA9|\xE2\x82\xAC|\xEF\xBF\xBD");
    EXPECT_EQ(Wide(u"%C", 0xC3), "\xEF\xBF\xBD"); // a lone byte of UTF-8 is invalid
}

TEST(WideFormat, PointerHasFullWidthInUpperCase) {
    EXPECT_EQ(Wide(u"%p", reinterpret_cast<void *>(uintptr_t(0xDEADBEEF))), "00000000DEADBEEF");
    EXPECT_EQ(Narrow("%p|%20p|", reinterpret_cast<void *>(uintptr_t(0x1234)), nullptr),
              "0000000000001234|    0000000000000000|");
}

TEST(WideFormat, StrayAndUnknownDirectivesPrintAsTheyStand) {
    EXPECT_EQ(Wide(u"%y|100%|%5.2y|%%|%Lc|%hf", 1), "%y|100%|%5.2y|%|%Lc|%hf");
    EXPECT_EQ(Wide(u"%"), "%");
    EXPECT_EQ(Wide(u"abc%-"), "abc%-");
    EXPECT_EQ(Wide(u"x%I64"), "x%I64");
    // An unknown directive consumes no argument.
    EXPECT_EQ(Wide(u"%y %d", 5), "%y 5");
    EXPECT_EQ(Narrow("%q%s", "ok"), "%qok");
    // %n consumes its pointer but never writes through it.
    int n = 7;
    EXPECT_EQ(Wide(u"ab%ncd%d", &n, 3), "abcd3");
    EXPECT_EQ(n, 7);
}

TEST(WideFormat, StarWidthAndPrecision) {
    EXPECT_EQ(Wide(u"%*d|%-*d|%*d|", 5, 42, 4, 1, -4, 2), "   42|1   |2   |");
    EXPECT_EQ(Wide(u"%.*f|%.*f|%*.*s|", 2, 3.14159, -1, 1.0, 6, 2, u"abcdef"), "3.14|1.000000|    ab|");
    EXPECT_EQ(Narrow("%0*d", 5, -3), "-0003");
}

TEST(WideFormat, TruncationContract) {
    char16_t buf[5];
    std::fill(std::begin(buf), std::end(buf), u'#');
    EXPECT_EQ(swprintf(buf, 5, u"hello %s", u"world"), 11);
    EXPECT_EQ(Utf8(buf, 4), "hell");
    EXPECT_EQ(buf[4], 0);
    EXPECT_EQ(swprintf(buf, 1, u"%d", 12345), 5);
    EXPECT_EQ(buf[0], 0);
    EXPECT_EQ(swprintf(nullptr, 0, u"%d", 12345), 5);
    char narrow[4] = {'#', '#', '#', '#'};
    EXPECT_EQ(c_snprintf(narrow, 3, "%s", "abcdef"), 6);
    EXPECT_STREQ(narrow, "ab");
    EXPECT_EQ(narrow[3], '#');
    // Long padding is counted, not written.
    EXPECT_EQ(_scwprintf(u"%1000000d", 1), 1000000);
    EXPECT_EQ(_scwprintf(u"%2147483647d%2147483647d", 1, 2), -1);
    EXPECT_EQ(_scwprintf(nullptr), -1);
}

TEST(WideFormat, NarrowFormsShareTheGrammar) {
    EXPECT_EQ(Narrow("%I64d|%ld|%g|%e|%5.1f|%s", INT64_MIN, int32_t(7), 1e6, 1.5, 2.25, "x"),
              "-9223372036854775808|7|1e+006|1.500000e+000|  2.2|x");
}
