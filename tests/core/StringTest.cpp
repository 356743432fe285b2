// CString: the null state, sharing, growth and the odd edits callers rely on.
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "qv/core/String.h"

using qv::CString;

namespace {

// The text up to the terminator, or "<null>" for a null pointer.
std::u16string Text(char16_t const *s) {
    return s ? std::u16string(s) : u"<null>";
}

} // namespace

TEST(String, NullStateAnswers) {
    CString fresh;
    ASSERT_NE(fresh.GetTChar(), nullptr);
    EXPECT_EQ(Text(fresh), u"");

    CString s;
    s.Empty();
    EXPECT_EQ(s.GetLength(), 0);
    EXPECT_TRUE(s.IsEmpty());
    EXPECT_EQ(static_cast<char16_t const *>(s), nullptr);
    EXPECT_EQ(s.GetTChar(), nullptr);
    EXPECT_EQ(Text(s.GetUTF16()), u"");
    EXPECT_EQ(Text(s.ConvertToUTF16()), u"");
    EXPECT_STREQ(s.GetUTF8(), "");
    EXPECT_STREQ(s.ConvertToCodePage(1252), "");
    EXPECT_EQ(s.Compare(u""), -1);
    EXPECT_EQ(s.CompareTo(u"", 0), -1);
    EXPECT_EQ(s.CompareNoCase(u""), -1);
    EXPECT_FALSE(s.Equals(u""));
    EXPECT_FALSE(s.EqualsNoCase(u""));
    EXPECT_FALSE(s.StartsWith(u""));
    EXPECT_FALSE(s.StartsWithNoCase(u""));
    EXPECT_FALSE(s.EndsWith(u""));
    EXPECT_FALSE(s.EndsWithNoCase(u""));
    EXPECT_EQ(s.FindChar(u'a'), -1);
    EXPECT_EQ(s.FindString(u""), -1);
    EXPECT_EQ(s.ReverseFindChar(u'a'), -1);
    EXPECT_EQ(s.SubString(0).GetLength(), 0);

    s.Destroy();
    s += u"ab"; // appends as to the empty text
    EXPECT_EQ(Text(s), u"ab");
    EXPECT_TRUE(fresh.Equals(u""));
    EXPECT_TRUE(fresh.StartsWith(u""));
}

TEST(String, CopyOnWriteSharing) {
    CString a(u"shared");
    CString b = a;
    EXPECT_EQ(a.GetTChar(), b.GetTChar()); // copies share the record
    b += u"!";
    EXPECT_EQ(Text(a), u"shared");
    EXPECT_EQ(Text(b), u"shared!");

    CString c;
    c = a;
    c.Delete(0, 1);
    c.Insert(0, u'S');
    EXPECT_EQ(Text(a), u"shared");
    EXPECT_EQ(Text(c), u"Shared");

    // operator[] writes through the shared record without detaching.
    CString d = a;
    d[0] = u'Z';
    EXPECT_EQ(Text(a), u"Zhared");

    CString moved = std::move(d);
    EXPECT_EQ(d.GetTChar(), nullptr);
    EXPECT_EQ(Text(moved), u"Zhared");
}

TEST(String, CopyClampsAndConvertsUtf8) {
    CString s;
    s.Copy(u"abcdef", 3);
    EXPECT_EQ(Text(s), u"abc");
    s.Copy(u"abc", 10);
    EXPECT_EQ(Text(s), u"abc");
    s.Copy(static_cast<char16_t const *>(nullptr), -1);
    EXPECT_EQ(Text(s), u"");
    s.Copy("h\xC3\xA9llo", 3); // n counts bytes
    EXPECT_EQ(Text(s), u"h\u00E9");
    s = "\xF0\x9F\x98\x80 x"; // a supplementary character is two units
    EXPECT_EQ(s.GetLength(), 4);
    EXPECT_EQ(s[0], 0xD83D);
    EXPECT_EQ(s[1], 0xDE00);
    EXPECT_STREQ(s.GetUTF8(), "\xF0\x9F\x98\x80 x");

    s = s.GetTChar() + 2; // a text taken from the string itself
    EXPECT_EQ(Text(s), u" x");
    s += s;
    EXPECT_EQ(Text(s), u" x x");
}

TEST(String, OperatorIndexAtLengthAppendsNul) {
    CString s(u"ab");
    s[2] = u'c';
    EXPECT_EQ(s.GetLength(), 3);
    EXPECT_EQ(Text(s), u"abc");
    s[9] = u'x'; // past the length: a scratch unit
    EXPECT_EQ(Text(s), u"abc");
    EXPECT_EQ(s[9], 0);
    s[3]; // inserts one NUL: length grows, visible text does not
    EXPECT_EQ(s.GetLength(), 4);
    EXPECT_EQ(Text(s), u"abc");
}

TEST(String, DeleteClampsAgainstCapacity) {
    CString s(u"abcdef");
    EXPECT_EQ(s.Delete(4, 5), 4); // capacity 6: clamped to the end
    EXPECT_EQ(Text(s), u"abcd");
    EXPECT_EQ(s.Delete(4, 1), 4);
    EXPECT_EQ(s.Delete(-1, 1), 4);
    EXPECT_EQ(s.Delete(1, 0), 4);

    CString t(u"abcdefgh");
    t = u"abcdef";                // keeps the block of 8
    EXPECT_EQ(t.Delete(4, 4), 2); // not clamped to the text: length too small
    EXPECT_EQ(Text(t), u"abcd");
    EXPECT_EQ(t.GetLength(), 2);

    CString u(u"abcdefgh");
    u = u"abc";
    EXPECT_EQ(u.Delete(1, 7), 0); // never below zero
}

TEST(String, InsertReplaceTruncate) {
    CString s(u"held");
    EXPECT_EQ(s.Insert(2, u"llo wor", 3), 7);
    EXPECT_EQ(Text(s), u"hellold");
    EXPECT_EQ(s.Insert(8, u"x"), 7); // past the length: unchanged
    EXPECT_EQ(s.Insert(7, u"!"), 8);
    EXPECT_EQ(s.Replace(4, 3, u"o, world", -1), 13);
    EXPECT_EQ(Text(s), u"hello, world!");
    EXPECT_EQ(s.Replace(5, 7, u"", 0), 6);
    EXPECT_EQ(Text(s), u"hello!");
    EXPECT_EQ(s.Replace(6, 1, u"x"), 6); // pos at the length: unchanged

    CString r(u"one two one two");
    EXPECT_EQ(r.Replace(u"one", u"one one"), 2); // replaced text is not searched again
    EXPECT_EQ(Text(r), u"one one two one one two");
    EXPECT_EQ(r.Replace(u"TWO", u"2", false), 2);
    EXPECT_EQ(Text(r), u"one one 2 one one 2");
    EXPECT_EQ(r.Replace(u"zzz", u"y"), 0);
    EXPECT_EQ(r.Replace(u"", u"y"), 0);

    EXPECT_FALSE(r.Truncate(100));
    EXPECT_FALSE(r.Truncate(-1));
    EXPECT_TRUE(r.Truncate(3));
    EXPECT_EQ(Text(r), u"one");
}

TEST(String, FindAndCompare) {
    CString s(u"Hello, World");
    EXPECT_EQ(s.FindChar(u'o'), 4);
    EXPECT_EQ(s.FindChar(5, u'o'), 8);
    EXPECT_EQ(s.FindChar(u",W"), 5);
    EXPECT_EQ(s.FindChar(u""), -1);
    EXPECT_EQ(s.ReverseFindChar(u'o'), 8);
    EXPECT_EQ(s.ReverseFindChar(7, u'o'), 4);
    EXPECT_EQ(s.ReverseFindChar(100, u"lH"), 10);
    EXPECT_EQ(s.FindString(u"World"), 7);
    EXPECT_EQ(s.FindString(u"world"), -1);
    EXPECT_EQ(s.FindString(u"world", false), 7);
    EXPECT_EQ(s.FindString(8, u"World"), -1);
    EXPECT_EQ(s.FindString(3, u""), 3);
    EXPECT_TRUE(s.ContainsNoCase(u"LO, w"));

    EXPECT_EQ(s.Compare(u"Hello, Xorld"), -1);
    EXPECT_EQ(s.Compare(u"Hello"), 1);
    EXPECT_EQ(s.Compare(u"Help", 3), 0);
    EXPECT_EQ(CString(u"\xFFFF").Compare(u"a"), 1); // unsigned units
    EXPECT_EQ(CString::Compare(u"a", u"b"), -1);
    EXPECT_LT(CString(u"_").CompareNoCase(u"A"), 0); // folds to lower case
    EXPECT_EQ(CString::CompareNoCase(u"ABC", u"abc"), 0);
    EXPECT_TRUE(s.EqualsNoCase(u"hello, world"));
    EXPECT_TRUE(s.StartsWith(u"Hell"));
    EXPECT_TRUE(s.StartsWithNoCase(u"hELL"));
    EXPECT_TRUE(s.EndsWith(u"World"));
    EXPECT_TRUE(s.EndsWithNoCase(u"WORLD"));
    EXPECT_FALSE(s.EndsWith(u"Hello, World!"));

    s[12]; // a NUL counted in the length: EndsWith scans for the terminator
    EXPECT_TRUE(s.EndsWith(u"World"));
}

TEST(String, Pieces) {
    CString s(u"abc");
    EXPECT_EQ(Text(s.Left(100)), u"abc");
    EXPECT_EQ(Text(s.Mid(10, 2)), u"");
    EXPECT_EQ(Text(s.Mid(1)), u"bc");
    EXPECT_EQ(Text(s.Mid(1, 1)), u"b");
    EXPECT_EQ(Text(s.Right(2)), u"bc");
    EXPECT_EQ(Text(s.Right(5)), u"abc");
    EXPECT_EQ(Text(s.TrimLeft(1)), u"bc");
    EXPECT_EQ(Text(s.TrimLeft(-4)), u"abc");
    EXPECT_EQ(Text(s.TrimRight(1)), u"ab");
    EXPECT_EQ(Text(s.TrimRight(7)), u"");
    EXPECT_NE(s.Mid(10).GetTChar(), nullptr); // the empty text, not null
}

TEST(String, TrimRemovesOneTrailingBlank) {
    CString s(u"  ab  ");
    EXPECT_EQ(Text(s.Trim()), u"ab ");
    EXPECT_EQ(Text(s.LTrim()), u"ab  ");
    EXPECT_EQ(Text(s.RTrim()), u"  ab ");
    EXPECT_EQ(s.Trim().GetLength(), 3);
    EXPECT_EQ(Text(CString(u" \t ").LTrim()), u"");
    EXPECT_EQ(Text(CString(u"x\t").Trim()), u"x");
    CString null;
    null.Empty();
    EXPECT_EQ(Text(null.Trim()), u"");
}

TEST(String, FromCodePageCountsTheTerminator) {
    CString s;
    s.FromCodePage(65001, "h\xC3\xA9");
    EXPECT_EQ(Text(s), u"h\u00E9");
    EXPECT_EQ(s.GetLength(), 3);
    s.ReleaseBuffer();
    EXPECT_EQ(s.GetLength(), 2);

    s.FromCodePage(1252, "\x80\xE9");
    EXPECT_EQ(Text(s), u"\u20AC\u00E9");
    EXPECT_EQ(s.GetLength(), 3);

    CString euro(u"\u20AC \u00E9 \u4E00");
    EXPECT_STREQ(euro.ConvertToCodePage(1252), "\x80 \xE9 ?");
    EXPECT_STREQ(euro.ConvertToUTF8(), "\xE2\x82\xAC \xC3\xA9 \xE4\xB8\x80");
    CString shared = euro;
    shared += u"!"; // the clone carries the cache along
    EXPECT_STREQ(shared.GetUTF8(), "\xE2\x82\xAC \xC3\xA9 \xE4\xB8\x80!");
}

TEST(String, StaticConversions) {
    char narrow[16];
    EXPECT_EQ(CString::ConvertToUTF8(u"\u00E9a", 2, narrow, sizeof narrow), 3);
    EXPECT_STREQ(narrow, "\xC3\xA9"
                         "a");
    EXPECT_EQ(CString::ConvertToCodePage(1252, u"\u00E9", -1, narrow, sizeof narrow), 2);
    EXPECT_STREQ(narrow, "\xE9");
    char16_t wide[8];
    EXPECT_EQ(CString::ConvertToUTF16("\xF0\x9F\x98\x80", 4, wide, 8), 2);
    EXPECT_EQ(Text(wide), u"\U0001F600");
    EXPECT_EQ(CString::ConvertFromCodePage(1252, "\x80", 1, wide, 8), 1);
    EXPECT_EQ(Text(wide), u"\u20AC");
    EXPECT_EQ(CString::ConvertToTCHAR("ab", -1, wide, 8), 3);

    EXPECT_EQ(CString::ConvertToTCHAR(u"abc", -1, wide, 0), 3);
    EXPECT_EQ(CString::ConvertToTCHAR(u"abc", -1, wide, 2), -1);
    EXPECT_EQ(CString::ConvertToTCHAR(u"abcdef", 3, wide, 8), 3);
    EXPECT_EQ(Text(wide), u"abc");
}

TEST(String, BuffersAndConcatenation) {
    CString s;
    char16_t *buffer = s.GetBuffer(10);
    std::u16string(u"0123456789").copy(buffer, 10);
    buffer[4] = 0;
    s.ReleaseBuffer();
    EXPECT_EQ(Text(s), u"0123");

    CString a(u"ab");
    EXPECT_EQ(Text(a + u"cd"), u"abcd");
    EXPECT_EQ(Text(u"xy" + a), u"xyab");
    EXPECT_EQ(Text(a + a), u"abab");
    a += u'c';
    a.Concatenate(u"defgh", 2);
    EXPECT_EQ(Text(a), u"abcde");
}

TEST(String, SharedRecordAcrossThreads) {
    CString shared(u"shared text");
    auto work = [&shared] {
        for (int i = 0; i < 20000; ++i) {
            CString mine = shared; // sharing and releasing race on the count only
            if (i % 2) mine += u"!";
            ASSERT_TRUE(mine.StartsWith(u"shared text"));
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(Text(shared), u"shared text");
}
