#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "qv/core/WideChar.h"

using namespace qv;

TEST(WideChar, LengthsAndCompares) {
    EXPECT_EQ(wcslen(u""), 0u);
    EXPECT_EQ(wcslen(u"abc\U0001F600"), 5u);
    EXPECT_EQ(wcscmp(u"abc", u"abc"), 0);
    EXPECT_LT(wcscmp(u"ab", u"abc"), 0);
    EXPECT_GT(wcscmp(u"\xFFFF", u"a"), 0); // by unsigned code unit
    EXPECT_EQ(wcsncmp(u"abcX", u"abcY", 3), 0);
    EXPECT_LT(wcsncmp(u"abcX", u"abcY", 4), 0);
    EXPECT_EQ(wcsncmp(u"a", u"b", 0), 0);
}

TEST(WideChar, CaseInsensitiveComparesFoldToLowerCase) {
    // '_' lies between the upper- and the lower-case letters: folding to lower
    // case sorts it before letters, which sort orders in files depend on.
    EXPECT_LT(_wcsicmp(u"_", u"A"), 0);
    EXPECT_LT(_wcsicmp(u"[", u"a"), 0);
    EXPECT_LT(_stricmp("_", "A"), 0);
    EXPECT_EQ(_wcsicmp(u"Hello", u"hELLO"), 0);
    EXPECT_EQ(_wcsicmp(u"\u00c4\u00d6\u00dc\u0100", u"\u00e4\u00f6\u00fc\u0101"), 0);
    EXPECT_EQ(_wcsicmp(u"\u041f\u0420\u0418\u0412\u0415\u0422", u"\u043f\u0440\u0438\u0432\u0435\u0442"), 0);
    EXPECT_EQ(_wcsicmp(u"\u0391\u03a9", u"\u03b1\u03c9"), 0);
    EXPECT_NE(_wcsicmp(u"\u03a3", u"\u03c2"), 0); // final sigma is its own lower case
    EXPECT_LT(_wcsicmp(u"abc", u"ABCD"), 0);
    EXPECT_EQ(_wcsnicmp(u"abcX", u"ABCy", 3), 0);
    EXPECT_NE(_wcsnicmp(u"abcX", u"ABCy", 4), 0);
    // Narrow text folds ASCII only.
    EXPECT_EQ(_stricmp("Hello", "hELLO"), 0);
    EXPECT_NE(_stricmp("\xC3\x84", "\xC3\xA4"), 0);
    EXPECT_EQ(_strnicmp("abcX", "ABCy", 3), 0);
    EXPECT_GT(_stricmp("\xC3", "a"), 0); // bytes compare unsigned
}

TEST(WideChar, CaseMappingOfTheWholeBmp) {
    int lowered = 0, raised = 0;
    for (uint32_t i = 0; i <= 0xFFFF; ++i) {
        auto c = char16_t(i);
        char16_t lo = towlower(c), up = towupper(c);
        if (i < 0x80) {
            EXPECT_EQ(lo, i >= 'A' && i <= 'Z' ? c + 32 : c);
            EXPECT_EQ(up, i >= 'a' && i <= 'z' ? c - 32 : c);
        }
        if (i >= 0xD800 && i <= 0xDFFF) {
            EXPECT_EQ(lo, c);
            EXPECT_EQ(up, c);
        }
        EXPECT_EQ(towlower(lo), lo) << std::hex << i;
        EXPECT_EQ(towupper(up), up) << std::hex << i;
        lowered += lo != c;
        raised += up != c;
    }
    EXPECT_GT(lowered, 1000);
    EXPECT_GT(raised, 1000);
    // Upper-case letters of the main alphabets come back from lower case.
    auto roundTrips = [](char16_t first, char16_t last, int step = 1) {
        for (char32_t c = first; c <= last; c += step)
            if (c != 0xD7 && c != 0x3A2) {
                EXPECT_EQ(towupper(towlower(char16_t(c))), c) << std::hex << uint32_t(c);
            }
    };
    roundTrips(0xC0, 0xDE);        // Latin-1
    roundTrips(0x100, 0x12E, 2);   // Latin Extended-A
    roundTrips(0x391, 0x3A9);      // Greek
    roundTrips(0x400, 0x42F);      // Cyrillic
    roundTrips(0x531, 0x556);      // Armenian
    roundTrips(0x10A0, 0x10C5);    // Georgian
    roundTrips(0x1E00, 0x1E94, 2); // Latin Extended Additional
    roundTrips(0xFF21, 0xFF3A);    // full-width forms
    EXPECT_EQ(towupper(u'\u00ff'), u'\u0178');
    EXPECT_EQ(towupper(u'\u00b5'), u'\u039c');
    EXPECT_EQ(towupper(u'\u00df'), u'\u00df'); // no one-character upper case
    EXPECT_EQ(towupper(u'\u0131'), u'I');
    EXPECT_EQ(towlower(u'\u0130'), u'i');
    EXPECT_EQ(towlower(u'\u212a'), u'k'); // Kelvin sign
    EXPECT_EQ(towupper(u'\u1f80'), u'\u1f88');
    EXPECT_EQ(towlower(u'\u00d7'), u'\u00d7');
}

TEST(WideChar, Classes) {
    for (char16_t c : u" \t\n\v\f\r\u0085\u00a0\u1680\u2000\u200a\u2028\u2029\u202f\u205f\u3000") EXPECT_TRUE(iswspace(c) || !c);
    for (char16_t c : u"a0_\u200b\ufeff\u0008") EXPECT_FALSE(iswspace(c));
    EXPECT_TRUE(iswdigit(u'0'));
    EXPECT_TRUE(iswdigit(u'9'));
    EXPECT_FALSE(iswdigit(u'\u0660')); // ASCII digits only
    EXPECT_FALSE(iswdigit(u'a'));
}

TEST(WideChar, IntegersSaturate) {
    EXPECT_EQ(_wtol(u"99999999999"), INT32_MAX);
    EXPECT_EQ(_wtol(u"-99999999999"), INT32_MIN);
    EXPECT_EQ(_wtol(u"2147483647"), INT32_MAX);
    EXPECT_EQ(_wtol(u"-2147483648"), INT32_MIN);
    EXPECT_EQ(_wtol(u" \t-42abc"), -42);
    EXPECT_EQ(_wtol(u"\u3000+7"), 7);
    EXPECT_EQ(_wtol(u""), 0);
    EXPECT_EQ(_wtol(u"abc"), 0);
    EXPECT_EQ(_wtol(u"- 5"), 0);
    EXPECT_EQ(_wtol(nullptr), 0);
    EXPECT_EQ(_wtoi64(u"9223372036854775807"), INT64_MAX);
    EXPECT_EQ(_wtoi64(u"-9223372036854775808"), INT64_MIN);
    EXPECT_EQ(_wtoi64(u"99999999999999999999"), INT64_MAX);
    EXPECT_EQ(_wtoi64(u"-99999999999999999999"), INT64_MIN);
    EXPECT_EQ(_wtoi64(u"  12345678901x"), 12345678901);
}

TEST(WideChar, FloatingPointParsing) {
    constexpr double kInf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(_wtof(u"1.5e3"), 1500.0);
    EXPECT_EQ(_wtof(u"  -0.25"), -0.25);
    EXPECT_EQ(_wtof(u"1e"), 1.0);
    EXPECT_EQ(_wtof(u".5"), 0.5);
    EXPECT_EQ(_wtof(u"5."), 5.0);
    EXPECT_EQ(_wtof(u"."), 0.0);
    EXPECT_EQ(_wtof(u"0.1"), 0.1);
    EXPECT_EQ(_wtof(u"2.2250738585072011e-308"), 2.2250738585072011e-308);
    EXPECT_EQ(_wtof(u"4.9406564584124654e-324"), 4.9406564584124654e-324);
    EXPECT_EQ(_wtof(u"1e400"), kInf);
    EXPECT_EQ(_wtof(u"-1e400"), -kInf);
    EXPECT_EQ(_wtof(u"1e-400"), 0.0);
    EXPECT_EQ(_wtof(u"1.7976931348623157e308"), 1.7976931348623157e308);
    EXPECT_EQ(_wtof(u"inf"), kInf);
    EXPECT_EQ(_wtof(u"-Infinity"), -kInf);
    EXPECT_TRUE(_wtof(u"nan") != _wtof(u"nan"));
    EXPECT_TRUE(_wtof(u"NaN(123)") != _wtof(u"nan"));
    EXPECT_EQ(_wtof(u"0x10"), 0.0); // no hexadecimal form
    EXPECT_EQ(_wtof(nullptr), 0.0);
    // Long mantissas round correctly: 2^53 + 1 is a tie that goes to even,
    // and any nonzero digit far behind it breaks the tie upwards.
    EXPECT_EQ(_wtof(u"9007199254740993"), 9007199254740992.0);
    std::u16string tie = u"9007199254740993" + std::u16string(900, u'0') + u"1e-901";
    EXPECT_EQ(_wtof(tie.c_str()), 9007199254740994.0);
    std::u16string ones = u"1" + std::u16string(1000, u'0') + u"e-1000";
    EXPECT_EQ(_wtof(ones.c_str()), 1.0);
    std::u16string small = u"0." + std::u16string(5000, u'0') + u"1e5001";
    EXPECT_EQ(_wtof(small.c_str()), 1.0);
}

TEST(WideChar, ParsersReportWhereTheyStopped) {
    char16_t const *end = nullptr;
    char16_t const *text = u"  12.5xyz";
    EXPECT_EQ(wcstod(text, &end), 12.5);
    EXPECT_EQ(end, text + 6);
    text = u"1e+x";
    EXPECT_EQ(wcstod(text, &end), 1.0);
    EXPECT_EQ(end, text + 1);
    text = u"  xyz";
    EXPECT_EQ(wcstod(text, &end), 0.0);
    EXPECT_EQ(end, text);
    text = u"-.";
    EXPECT_EQ(wcstod(text, &end), 0.0);
    EXPECT_EQ(end, text);
    char const *nend = nullptr;
    char const *narrow = "\t-3.5e-2,";
    EXPECT_EQ(c_strtod(narrow, &nend), -3.5e-2);
    EXPECT_EQ(nend, narrow + 8);
    EXPECT_EQ(c_atof("2,5"), 2.0);
    EXPECT_EQ(c_atof("1E2"), 100.0);
}
