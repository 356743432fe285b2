// CString's whole-text operations: Format, Split/Join, pig Latin.
#include <gtest/gtest.h>

#include <string>

#include "qv/core/String.h"

using qv::CString;
using qv::TArray;

namespace {

std::u16string Text(char16_t const *s) {
    return s ? std::u16string(s) : u"<null>";
}

} // namespace

TEST(StringText, Format) {
    CString s(u"old contents that are longer");
    s.Format(u"%d-%s", 42, u"x");
    EXPECT_EQ(Text(s), u"42-x");
    EXPECT_EQ(s.GetLength(), 4);

    std::u16string text(5000, u'w');
    s.Format(u"[%s] %S", text.c_str(), "\xC3\xA9");
    EXPECT_EQ(s.GetLength(), 5000 + 4);
    EXPECT_EQ(Text(s), u"[" + text + u"] \u00E9");

    s.Format(u"<%s>", s.GetTChar()); // an argument from the string itself
    EXPECT_EQ(s.GetLength(), 5000 + 6);

    EXPECT_EQ(Text(CString::FromInt(-17)), u"-17");
    EXPECT_EQ(Text(CString::FromDouble(1.5)), u"1.5");
    EXPECT_EQ(Text(CString::FromDouble(1e20)), u"1e+020");
    EXPECT_EQ(Text(CString::FromFormat(u"%05.1f|%x", 3.14159, 255u)), u"003.1|ff");
}

TEST(StringText, SplitAndJoin) {
    TArray<CString> parts;
    EXPECT_EQ(CString(u"a,,b,").Split(parts, u","), 4);
    ASSERT_EQ(parts.nItems(), 4u);
    EXPECT_EQ(Text(parts[0]), u"a");
    EXPECT_EQ(Text(parts[1]), u"");
    EXPECT_EQ(Text(parts[2]), u"b");
    EXPECT_EQ(Text(parts[3]), u"");
    EXPECT_EQ(Text(CString::Join(parts, u"+")), u"a++b+");

    EXPECT_EQ(CString::Split(u"x;y z", parts, u"; "), 3); // any unit of the set cuts; out is emptied
    EXPECT_EQ(Text(parts[2]), u"z");
    EXPECT_EQ(Text(CString::Join(parts, nullptr)), u"xyz");

    EXPECT_EQ(CString(u"").Split(parts, u","), 1);
    EXPECT_EQ(Text(parts[0]), u"");
    EXPECT_EQ(CString(u"a,b").Split(parts, u""), 1);

    parts.Empty();
    CString joined = CString::Join(parts, u",");
    ASSERT_NE(joined.GetTChar(), nullptr);
    EXPECT_EQ(Text(joined), u"");
}

TEST(StringText, PigLatin) {
    EXPECT_EQ(Text(CString(u"hello world").ToPigLatin()), u"ellohay orldway");
    EXPECT_EQ(Text(CString::ToPigLatin(u"apple")), u"appleay");
    EXPECT_EQ(Text(CString::ToPigLatin(u"Rhythm")), u"Rhythmay"); // no vowel: empty first part
    EXPECT_EQ(Text(CString::ToPigLatin(u"Hello, World! 42 \u00E9t\u00E9")), u"elloHay, orldWay! 42 \u00E9tay\u00E9");
    EXPECT_EQ(Text(CString::ToPigLatin(u"strIng")), u"Ingstray");
    EXPECT_EQ(Text(CString::ToPigLatin(u"")), u"");
}
