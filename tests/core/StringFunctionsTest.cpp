// The free text helpers and the number syntax checks.
#include <gtest/gtest.h>

#include <string>

#include "qv/core/StringFunctions.h"

using namespace qv;

TEST(StringFunctions, BoundedCopyAndAppendAlwaysTerminate) {
    char narrow[6] = "zzzzz";
    EXPECT_EQ(StrCpy(narrow, "abcdefgh", sizeof narrow), narrow);
    EXPECT_STREQ(narrow, "abcde");
    StrCpy(narrow, "ab", sizeof narrow);
    EXPECT_STREQ(narrow, "ab");
    StrCat(narrow, "cdefg", sizeof narrow);
    EXPECT_STREQ(narrow, "abcde");
    StrCat(narrow, "x", sizeof narrow); // full: stays terminated
    EXPECT_STREQ(narrow, "abcde");
    StrCpy(narrow, "q", 0); // no room: untouched
    EXPECT_STREQ(narrow, "abcde");

    char16_t wide[4];
    StrCpy(wide, u"wxyz", 4);
    EXPECT_EQ(std::u16string(wide), u"wxy");
    StrCpy(wide, u"w", 4);
    StrCat(wide, u"xyz", 4);
    EXPECT_EQ(std::u16string(wide), u"wxy");
    EXPECT_EQ(StrLen(wide), 3u);
    EXPECT_EQ(StrLen("abcd"), 4u);
}

TEST(StringFunctions, Compares) {
    EXPECT_EQ(StrCmp("a", "b"), -1);
    EXPECT_EQ(StrCmp("b", "a"), 1);
    EXPECT_EQ(StrCmp("\xE9", "a"), 1); // unsigned
    EXPECT_EQ(StrCmp(u"\xFFFF", u"a"), 1);
    EXPECT_EQ(StrCmp(u"ab", u"ab"), 0);
    EXPECT_EQ(StrCmp(u"ab", u"abc"), -1);
    EXPECT_LT(StrICmp("_", "A"), 0); // folds to lower case before comparing
    EXPECT_LT(StrICmp(u"_", u"A"), 0);
    EXPECT_EQ(StrICmp(u"MiXed", u"mIxED"), 0);
    EXPECT_EQ(StrNCmp("abcx", "abcy", 3), 0);
    EXPECT_NE(StrNCmp(u"abcx", u"abcy", 4), 0);
    EXPECT_EQ(StrNICmp("ABCx", "abcy", 3), 0);
    EXPECT_EQ(StrNICmp(u"ABCx", u"abcy", 3), 0);
}

TEST(StringFunctions, TrimInPlace) {
    char narrow[] = " \t ab c \r\n";
    char *first = Trim(narrow);
    EXPECT_EQ(first, narrow + 3); // the text never moves
    EXPECT_STREQ(first, "ab c");  // every trailing blank goes
    char16_t wide[] = u"  x  ";
    EXPECT_EQ(LTrim(wide), wide + 2);
    EXPECT_EQ(std::u16string(LTrim(wide)), u"x  ");
    EXPECT_EQ(std::u16string(Trim(wide)), u"x");
    char16_t blank[] = u"   ";
    EXPECT_EQ(std::u16string(Trim(blank)), u"");
}

TEST(StringFunctions, NumberSyntax) {
    int end = -1;
    EXPECT_TRUE(IsFloat(u"1e5", &end));
    EXPECT_EQ(end, 1); // no exponent without a point
    EXPECT_TRUE(IsFloat(u"1.e5", &end));
    EXPECT_EQ(end, 4);
    EXPECT_FALSE(IsFloat(u".", &end));
    EXPECT_TRUE(IsFloat(u"-.5", &end));
    EXPECT_EQ(end, 3);
    EXPECT_TRUE(IsFloat(u"+2.5E-3x", &end));
    EXPECT_EQ(end, 7);
    EXPECT_FALSE(IsFloat(u"2.5e", &end));
    EXPECT_FALSE(IsFloat(u"2.5e+", &end));
    EXPECT_FALSE(IsFloat(u"-", &end));
    EXPECT_FALSE(IsFloat(u"", &end));
    EXPECT_TRUE(IsFloat(u"7."));

    EXPECT_TRUE(IsInteger(u"-12a", &end));
    EXPECT_EQ(end, 3);
    EXPECT_FALSE(IsInteger(u"+", &end));
    EXPECT_TRUE(IsULong(u"0042", &end));
    EXPECT_EQ(end, 4);
    EXPECT_FALSE(IsULong(u"+1", &end));
}
