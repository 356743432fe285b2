#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "core/Utf8Text.h"
#include "qv/core/WideScan.h"

using namespace qv;

TEST(WideScan, DateForms) {
    int y = 0, mo = 0, d = 0, h = 0, mi = 0, s = 0;
    EXPECT_EQ(swscanf(u"2004-03-01 10:20:30", u"%04d-%02d-%02d %02d:%02d:%02d", &y, &mo, &d, &h, &mi, &s), 6);
    EXPECT_EQ(y * 10000 + mo * 100 + d, 20040301);
    EXPECT_EQ(h * 10000 + mi * 100 + s, 102030);
    // %04d also reads two digits, so the first form takes this text too.
    EXPECT_EQ(swscanf(u"12-25-99 10:00:00", u"%04d-%02d-%02d %02d:%02d:%02d", &y, &mo, &d, &h, &mi, &s), 6);
    EXPECT_EQ(y, 12);
    // A form whose literal does not match stops early.
    EXPECT_EQ(swscanf(u"10:20:30", u"%04d-%02d-%02d %02d:%02d:%02d", &y, &mo, &d, &h, &mi, &s), 1);
    double seconds = 0;
    EXPECT_EQ(swscanf(u"10:20:30.5", u"%02d:%02d:%lf", &h, &mi, &seconds), 3);
    EXPECT_EQ(seconds, 30.5);
    int day = 0;
    EXPECT_EQ(swscanf(u"123:10:20:30.25", u"%03d:%02d:%02d:%lf", &day, &h, &mi, &seconds), 4);
    EXPECT_EQ(day, 123);
    EXPECT_EQ(seconds, 30.25);
    char16_t suffix[8] = {};
    EXPECT_EQ(swscanf(u"03/01/2004 10:20 PM", u"%02d/%02d/%04d %02d:%02d %7s", &mo, &d, &y, &h, &mi, suffix), 6);
    EXPECT_EQ(Utf8(suffix, 2), "PM");
    EXPECT_EQ(suffix[2], 0);
    EXPECT_EQ(swscanf(u"10:20:30", u"%02d:%02d", &h, &mi), 2);
    // Widths cut fields that run together.
    EXPECT_EQ(swscanf(u"123456", u"%02d%02d%02d", &h, &mi, &s), 3);
    EXPECT_EQ(h * 10000 + mi * 100 + s, 123456);
}

TEST(WideScan, EndOfInputBeforeTheFirstConversionIsMinusOne) {
    int a = 0, b = 0;
    EXPECT_EQ(swscanf(u"", u"%d", &a), -1);
    EXPECT_EQ(swscanf(u"   ", u"%d", &a), -1);
    EXPECT_EQ(swscanf(u"", u"abc%d", &a), -1);
    EXPECT_EQ(swscanf(u"ab", u"abc%d", &a), -1);
    EXPECT_EQ(swscanf(u"abc", u"%d", &a), 0);
    EXPECT_EQ(swscanf(u"x", u"%*d", &a), 0);
    EXPECT_EQ(swscanf(u"12", u"%d %d", &a, &b), 1);
    EXPECT_EQ(swscanf(u"5", u"%*d %d", &a), 0); // a suppressed conversion completed, so not -1
    EXPECT_EQ(swscanf(u"", u""), 0);
    EXPECT_EQ(swscanf(nullptr, u"%d", &a), -1);
}

TEST(WideScan, Integers) {
    int a = 0, b = 0;
    EXPECT_EQ(swscanf(u"12345", u"%2d%3d", &a, &b), 2);
    EXPECT_EQ(a, 12);
    EXPECT_EQ(b, 345);
    EXPECT_EQ(swscanf(u"-5", u"%1d", &a), 0); // the width holds the sign only
    EXPECT_EQ(swscanf(u"  +17 -0", u"%d%d", &a, &b), 2);
    EXPECT_EQ(a, 17);
    EXPECT_EQ(b, 0);
    int i[4] = {};
    EXPECT_EQ(swscanf(u"0x1A 010 -0x10 9", u"%i %i %i %i", &i[0], &i[1], &i[2], &i[3]), 4);
    EXPECT_EQ(i[0], 26);
    EXPECT_EQ(i[1], 8);
    EXPECT_EQ(i[2], -16);
    EXPECT_EQ(i[3], 9);
    unsigned u[4] = {};
    EXPECT_EQ(swscanf(u"ff 0xFF FFg 777", u"%x %X %x%*c %o", &u[0], &u[1], &u[2], &u[3]), 4);
    EXPECT_EQ(u[0], 255u);
    EXPECT_EQ(u[1], 255u);
    EXPECT_EQ(u[2], 255u);
    EXPECT_EQ(u[3], 511u);
    // Like the designed runtime, integers wrap instead of saturating.
    EXPECT_EQ(swscanf(u"-1 4294967297", u"%u %d", &u[0], &a), 2);
    EXPECT_EQ(u[0], 4294967295u);
    EXPECT_EQ(a, 1);
    int16_t h = 0;
    uint8_t hh = 0;
    int32_t l = 0;
    int64_t big = 0, big2 = 0;
    uint64_t ubig = 0;
    EXPECT_EQ(swscanf(u"-300 255 -7 -9223372036854775808 18446744073709551615 7fffffffffffffff",
                      u"%hd %hhu %ld %I64d %I64u %I64x", &h, &hh, &l, &big, &ubig, &big2),
              6);
    EXPECT_EQ(h, -300);
    EXPECT_EQ(hh, 255);
    EXPECT_EQ(l, -7);
    EXPECT_EQ(big, INT64_MIN);
    EXPECT_EQ(ubig, UINT64_MAX);
    EXPECT_EQ(big2, INT64_MAX);
    EXPECT_EQ(swscanf(u"123", u"%lld", &big), 1);
    EXPECT_EQ(big, 123);
    unsigned v = 0;
    EXPECT_EQ(swscanf(u"0x0000ABCD", u"0x%08X", &v), 1);
    EXPECT_EQ(v, 0xABCDu);
    // Unicode white space is skipped in wide input.
    EXPECT_EQ(swscanf(u"\u00a0\u3000 42", u"%d", &a), 1);
    EXPECT_EQ(a, 42);
}

TEST(WideScan, Floats) {
    float f = 0;
    double d = 0, e = 0;
    EXPECT_EQ(swscanf(u"0.1 0.1", u"%f %lf", &f, &d), 2);
    EXPECT_EQ(f, 0.1f);
    EXPECT_EQ(d, 0.1);
    EXPECT_EQ(swscanf(u"1.2345", u"%3lf", &d), 1);
    EXPECT_EQ(d, 1.2);
    EXPECT_EQ(swscanf(u"1e5 -.5", u"%le %lg", &d, &e), 2);
    EXPECT_EQ(d, 1e5);
    EXPECT_EQ(e, -0.5);
    EXPECT_EQ(swscanf(u"abc", u"%lf", &d), 0);
    EXPECT_EQ(swscanf(u"2,5", u"%lf", &d), 1);
    EXPECT_EQ(d, 2.0);
}

TEST(WideScan, Text) {
    char16_t a[8], b[8];
    EXPECT_EQ(swscanf(u"  abcdef", u"%3s%7s", a, b), 2);
    EXPECT_EQ(Utf8(a, 3) + "|" + Utf8(b, 3), "abc|def");
    EXPECT_EQ(a[3], 0);
    char16_t c[4] = {u'#', u'#', u'#', u'#'};
    EXPECT_EQ(swscanf(u" xyz", u"%c%3c", &a[0], c), 2);
    EXPECT_EQ(a[0], u' '); // %c skips no white space
    EXPECT_EQ(Utf8(c, 3), "xyz");
    EXPECT_EQ(c[3], u'#'); // and stores no terminator
    EXPECT_EQ(swscanf(u"abc123", u"%7[a-z]%7[0-9]", a, b), 2);
    EXPECT_EQ(Utf8(a, 3) + Utf8(b, 3), "abc123");
    EXPECT_EQ(swscanf(u"a b,c", u"%7[^,],%7s", a, b), 2);
    EXPECT_EQ(Utf8(a, 3) + Utf8(b, 1), "a bc");
    EXPECT_EQ(swscanf(u"]a]b", u"%7[]a]", a), 1);
    EXPECT_EQ(Utf8(a, 3), "]a]");
    EXPECT_EQ(swscanf(u"123456789", u"%5[0-9]", a), 1);
    EXPECT_EQ(Utf8(a, 5), "12345");
    EXPECT_EQ(a[5], 0);
    EXPECT_EQ(swscanf(u"123", u"%7[a-z]", a), 0);
    EXPECT_EQ(swscanf(u"x-y", u"%7[x-]", a), 1); // a trailing '-' is a member
    EXPECT_EQ(Utf8(a, 2), "x-");
    EXPECT_EQ(swscanf(u"caf\u00e9 x", u"%7ls", a), 1);
    EXPECT_EQ(Utf8(a, 4), "caf\xC3\xA9");
}

TEST(WideScan, LiteralsCountsAndUnknownDirectives) {
    int a = 0, b = 0, n = -1;
    EXPECT_EQ(swscanf(u"  42xyz", u"%d%n", &a, &n), 1); // %n is not counted
    EXPECT_EQ(n, 4);
    EXPECT_EQ(swscanf(u"5%", u"%d%%", &a), 1);
    EXPECT_EQ(swscanf(u"1 2", u"%*d %d", &a), 1);
    EXPECT_EQ(a, 2);
    EXPECT_EQ(swscanf(u"1;2", u"%d,%d", &a, &b), 1);
    EXPECT_EQ(swscanf(u"ab", u"a b", &a), 0); // white space in the format matches none too
    EXPECT_EQ(swscanf(u"1,2", u"%d , %d", &a, &b), 2);
    EXPECT_EQ(swscanf(u"1 2 3", u"%d %y %d", &a, &b), 1);
    EXPECT_EQ(swscanf(u"abc", u"%[abc", &a), 0); // no closing bracket
}

TEST(WideScan, NarrowFormsShareTheEngine) {
    double d = 0;
    char c = 0;
    char word[8] = {};
    int64_t big = 0;
    EXPECT_EQ(c_sscanf("1.5 x caf\xC3\xA9 -9223372036854775808", "%lf %c %7s %I64d", &d, &c, word, &big), 4);
    EXPECT_EQ(d, 1.5);
    EXPECT_EQ(c, 'x');
    EXPECT_STREQ(word, "caf\xC3\xA9");
    EXPECT_EQ(big, INT64_MIN);
    EXPECT_EQ(c_sscanf("", "%d", &big), -1);
    EXPECT_EQ(c_sscanf("x", "%ls", word), 0); // narrow text only
}
