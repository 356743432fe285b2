// Length-prefixed, unicode and archive strings, lines and fixed fields, over
// every IFile kind.
#include <clocale>
#include <cstring>
#include <string>

#include "FileTestSupport.h"
#include "qv/core/WideChar.h"

namespace qv::test {
namespace {

template <class F> class IFileStrings : public testing::Test {
protected:
    std::unique_ptr<F> file = MakeEmptyFile<F>();
};
using FileKinds = testing::Types<CMemFile, CFile>;
TYPED_TEST_SUITE(IFileStrings, FileKinds);

Bytes Counted(uint32_t length, Bytes body, bool bigEndian = false) {
    Bytes out = bigEndian ? Bytes{uint8_t(length >> 24), uint8_t(length >> 16), uint8_t(length >> 8), uint8_t(length)}
                          : Bytes{uint8_t(length), uint8_t(length >> 8), uint8_t(length >> 16), uint8_t(length >> 24)};
    out.insert(out.end(), body.begin(), body.end());
    return out;
}

TYPED_TEST(IFileStrings, PutStringForms) {
    IFile &f = *this->file;
    EXPECT_TRUE(f.PutString("ab"));
    EXPECT_TRUE(f.PutString(static_cast<char const *>(nullptr)));
    EXPECT_TRUE(f.PutString(u"\u00e9"));           // UTF-8
    EXPECT_TRUE(f.PutString(CP_1252, u"\u00e9x")); // code page 1252
    f.m_swap = true;
    EXPECT_TRUE(f.PutString("z"));
    Bytes expected = Counted(2, Text("ab"));
    for (Bytes part : {Counted(0, {}), Counted(2, {0xC3, 0xA9}), Counted(2, {0xE9, 'x'}), Counted(1, {'z'}, true)})
        expected.insert(expected.end(), part.begin(), part.end());
    EXPECT_EQ(AllBytes(f), expected);

    f.SeekToBegin();
    f.m_swap = false;
    EXPECT_EQ(Str(f.GetString()), u"ab");
    CString s;
    EXPECT_TRUE(f.GetString(s));
    EXPECT_EQ(Str(s), u"");
    char16_t wide[8];
    EXPECT_TRUE(f.GetString(wide, 8));
    EXPECT_EQ(std::u16string(wide), u"\u00e9");
    EXPECT_EQ(Str(f.GetString(CP_1252)), u"\u00e9x");
    f.m_swap = true;
    char narrow[4];
    EXPECT_TRUE(f.GetString(narrow, 4));
    EXPECT_STREQ(narrow, "z");
}

TYPED_TEST(IFileStrings, FailedGetsStandWhereTheyStarted) {
    IFile &f = *this->file;
    SetBytes(f, Counted(5, Text("abcde")));
    char buf[8];
    EXPECT_FALSE(f.GetString(buf, 5)); // length 5 needs 6 bytes
    EXPECT_EQ(f.GetPosition(), 0);
    SetBytes(f, Counted(4, Text("abcd")));
    EXPECT_TRUE(f.GetString(buf, 5));
    EXPECT_STREQ(buf, "abcd");

    // A wide count not below size.
    SetBytes(f, Counted(3, Text("abc")));
    char16_t wide[4];
    EXPECT_FALSE(f.GetString(wide, 3));
    EXPECT_EQ(f.GetPosition(), 0);
    EXPECT_FALSE(f.GetString(CP_1252, wide, 3));
    EXPECT_EQ(f.GetPosition(), 0);
    EXPECT_TRUE(f.GetString(CP_1252, wide, 4));
    EXPECT_EQ(std::u16string(wide), u"abc");

    // A body shorter than its length, and a hostile length: back to the start.
    SetBytes(f, Counted(10, Text("abc")));
    CString s(u"kept");
    EXPECT_FALSE(f.GetString(s));
    EXPECT_EQ(f.GetPosition(), 0);
    EXPECT_FALSE(f.GetString(buf, 8));
    EXPECT_EQ(f.GetPosition(), 0);
    SetBytes(f, Counted(0xFFFFFFF0, Text("abc")));
    EXPECT_FALSE(f.GetString(s));
    EXPECT_EQ(f.GetPosition(), 0);
    EXPECT_FALSE(f.GetString(wide, 4));
    EXPECT_FALSE(f.GetUnicodeString(s));
    EXPECT_EQ(f.GetPosition(), 0);
    EXPECT_TRUE(f.GetString().IsEmpty());

    // A length field that does not come whole.
    SetBytes(f, {1, 0});
    EXPECT_FALSE(f.GetString(s));
}

TYPED_TEST(IFileStrings, UnicodeStringsSwapOnlyTheLength) {
    IFile &f = *this->file;
    f.m_swap = true;
    EXPECT_TRUE(f.PutUnicodeString(u"A\u20ac"));
    EXPECT_EQ(AllBytes(f), (Bytes{0, 0, 0, 2, 'A', 0, 0xAC, 0x20}));
    f.SeekToBegin();
    EXPECT_EQ(Str(f.GetUnicodeString()), u"A\u20ac");
    f.SeekToBegin();
    char16_t buf[3];
    EXPECT_TRUE(f.GetUnicodeString(buf, 3));
    EXPECT_EQ(std::u16string(buf), u"A\u20ac");
    f.SeekToBegin();
    EXPECT_FALSE(f.GetUnicodeString(buf, 2));
    EXPECT_EQ(f.GetPosition(), 0);

    // The CString form ends at a NUL in the data.
    f.m_swap = false;
    SetBytes(f, Counted(3, {'a', 0, 0, 0, 'b', 0}));
    CString s;
    EXPECT_TRUE(f.GetUnicodeString(s));
    EXPECT_EQ(Str(s), u"a");
    EXPECT_EQ(f.GetRemaining(), 0);
}

TYPED_TEST(IFileStrings, ArchiveStringPrefixes) {
    IFile &f = *this->file;
    struct Case {
        size_t length;
        Bytes prefix;
    };
    Case const cases[] = {
        {0, {0}},
        {254, {0xFE}},
        {255, {0xFF, 0xFF, 0x00}},
        {65533, {0xFF, 0xFD, 0xFF}},
        {65534, {0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0x00, 0x00}},
    };
    for (Case const &c : cases) {
        SetBytes(f, {});
        std::string text(c.length, 'q');
        EXPECT_EQ(f.PutArchiveString(text.c_str()), c.length != 0); // an empty text writes no byte
        Bytes all = AllBytes(f);
        ASSERT_EQ(all.size(), c.prefix.size() + c.length);
        EXPECT_EQ(Bytes(all.begin(), all.begin() + std::ptrdiff_t(c.prefix.size())), c.prefix);
        f.SeekToBegin();
        CString back;
        EXPECT_TRUE(f.GetArchiveString(back));
        EXPECT_EQ(size_t(back.GetLength()), c.length);
        EXPECT_EQ(f.GetRemaining(), 0);
    }

    f.m_swap = true;
    SetBytes(f, {});
    f.PutArchiveString(std::string(300, 'x').c_str());
    Bytes all = AllBytes(f);
    EXPECT_EQ(Bytes(all.begin(), all.begin() + 3), (Bytes{0xFF, 0x01, 0x2C}));

    // Reads are not checked: what came is the text, and the result is true.
    f.m_swap = false;
    SetBytes(f, {0xFF, 0xFF, 0xFF, 0xF0, 0xFF, 0xFF, 0xFF, 'h', 'i'});
    CString s;
    EXPECT_TRUE(f.GetArchiveString(s));
    EXPECT_EQ(Str(s), u"hi");
    EXPECT_TRUE(f.GetArchiveString(s));
    EXPECT_EQ(Str(s), u"");
    EXPECT_TRUE(f.GetArchiveString().IsEmpty());
}

TYPED_TEST(IFileStrings, GetLineSplitsAtLineFeeds) {
    IFile &f = *this->file;
    SetBytes(f, Text("ab\r\n\r\nlast"));
    char buf[16];
    EXPECT_TRUE(f.GetLine(buf, sizeof buf));
    EXPECT_STREQ(buf, "ab");
    EXPECT_EQ(f.GetPosition(), 4);
    EXPECT_TRUE(f.GetLine(buf, sizeof buf));
    EXPECT_STREQ(buf, ""); // CR LF alone is an empty line
    EXPECT_TRUE(f.GetLine(buf, sizeof buf));
    EXPECT_STREQ(buf, "last");
    EXPECT_FALSE(f.GetLine(buf, sizeof buf)); // once only

    SetBytes(f, Text("abcdefgh\nx"));
    f.SetPosition(1);
    EXPECT_FALSE(f.GetLine(buf, 4)); // too long for the buffer
    EXPECT_EQ(f.GetPosition(), 1);
    EXPECT_TRUE(f.GetLine(buf, 9));
    EXPECT_STREQ(buf, "bcdefgh");
    EXPECT_EQ(f.GetPosition(), 9);
    EXPECT_FALSE(f.GetLine(buf, 0));
}

TYPED_TEST(IFileStrings, GetLineTellsEndFromTooLong) {
    IFile &f = *this->file;
    using Outcome = IFile::LineOutcome;
    SetBytes(f, Text("abcdefgh\nlast"));
    char buf[16];
    Outcome outcome = Outcome::End;
    EXPECT_FALSE(f.GetLine(buf, 4, outcome));
    EXPECT_EQ(outcome, Outcome::TooLong);
    EXPECT_EQ(f.GetPosition(), 0);
    EXPECT_TRUE(f.GetLine(buf, sizeof buf, outcome));
    EXPECT_EQ(outcome, Outcome::Line);
    EXPECT_TRUE(f.GetLine(buf, sizeof buf, outcome));
    EXPECT_EQ(outcome, Outcome::Line);
    EXPECT_STREQ(buf, "last");
    EXPECT_FALSE(f.GetLine(buf, sizeof buf, outcome));
    EXPECT_EQ(outcome, Outcome::End);
    EXPECT_FALSE(f.GetLine(buf, 0, outcome));
    EXPECT_EQ(outcome, Outcome::TooLong);
}

TYPED_TEST(IFileStrings, FixedFieldsAndFormattedText) {
    IFile &f = *this->file;
    EXPECT_TRUE(f.WriteString("ab"));
    EXPECT_TRUE(f.PutFixedLengthString("xyz", 2));
    EXPECT_TRUE(f.PutFixedLengthString("k", 4));
    EXPECT_TRUE(f.WriteZeros(3));
    EXPECT_TRUE(f.WriteFormattedString("%d|%.2f|%s", 42, 1.5, "t"));
    Bytes expected = {'a', 'b', 'x', 'y', 'k', 0, 0, 0, 0, 0, 0};
    Bytes formatted = Text("42|1.50|t");
    expected.insert(expected.end(), formatted.begin(), formatted.end());
    EXPECT_EQ(AllBytes(f), expected);

    f.SeekToBegin();
    char buf[8];
    std::memset(buf, 'z', sizeof buf);
    EXPECT_TRUE(f.ReadString(buf, 3));
    EXPECT_STREQ(buf, "abx");
    EXPECT_TRUE(f.GetFixedLengthString(buf, 0));
    EXPECT_STREQ(buf, "");
    f.SeekToEnd();
    EXPECT_FALSE(f.GetFixedLengthString(buf, 2));
    EXPECT_EQ(buf[2], 0);

    // Long text goes through a temporary block; zeros in several pieces.
    SetBytes(f, {});
    std::string big(5000, 'w');
    EXPECT_TRUE(f.WriteFormattedString("<%s>", big.c_str()));
    EXPECT_TRUE(f.WriteZeros(1300));
    Bytes all = AllBytes(f);
    ASSERT_EQ(all.size(), 5002u + 1300u);
    EXPECT_EQ(all[0], '<');
    EXPECT_EQ(all[5001], '>');
    EXPECT_EQ(all.back(), 0);
}

TEST(IFileText, FormattedNumbersIgnoreTheLocale) {
    char const *previous = setlocale(LC_ALL, nullptr);
    std::string saved = previous ? previous : "C";
    if (!setlocale(LC_ALL, "de_DE.UTF-8")) GTEST_SKIP() << "no de_DE.UTF-8 locale";
    CMemFile f;
    f.WriteFormattedString("%.2f %g", 1.5, 0.25);
    setlocale(LC_ALL, saved.c_str());
    EXPECT_EQ(AllBytes(f), Text("1.50 0.25"));
}

} // namespace
} // namespace qv::test
