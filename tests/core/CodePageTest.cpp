#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "qv/core/CodePage.h"

using namespace qv;

namespace {

std::u16string FromBytes(uint32_t codePage, std::string const &bytes) {
    int n = MultiByteToWideChar(codePage, bytes.data(), int(bytes.size()), nullptr, 0);
    std::u16string out(size_t(n), u'#');
    EXPECT_EQ(MultiByteToWideChar(codePage, bytes.data(), int(bytes.size()), out.data(), n), n);
    return out;
}

std::string ToBytes(uint32_t codePage, std::u16string const &text) {
    int n = WideCharToMultiByte(codePage, text.data(), int(text.size()), nullptr, 0);
    std::string out(size_t(n), '#');
    EXPECT_EQ(WideCharToMultiByte(codePage, text.data(), int(text.size()), out.data(), n), n);
    return out;
}

} // namespace

TEST(CodePage, CountRules) {
    char16_t const *text = u"h\u00e9\u20ac\U0001F600";
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, text, -1, nullptr, 0), 1 + 2 + 3 + 4 + 1); // counts the terminator
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, text, 5, nullptr, 0), 10);
    char out[11];
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, text, -1, out, 10), 0); // too small
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, text, -1, out, 11), 11);
    EXPECT_STREQ(out, "h\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, out, -1, nullptr, 0), 6);
    char16_t wide[6];
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, out, -1, wide, 5), 0);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, out, -1, wide, 6), 6);
    EXPECT_EQ(std::u16string(wide), text);
    // Bad arguments fail as 0.
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, nullptr, -1, nullptr, 0), 0);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, text, 0, nullptr, 0), 0);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, text, -2, nullptr, 0), 0);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, text, -1, nullptr, 5), 0);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, text, -1, out, -1), 0);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, "", 0, nullptr, 0), 0);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, "", -1, nullptr, 0), 1);
}

TEST(CodePage, EveryCodePointRoundTripsThroughUtf8) {
    std::u16string all;
    for (char32_t c = 1; c <= 0x10FFFF; ++c) {
        if (c >= 0xD800 && c <= 0xDFFF) continue;
        if (c < 0x10000) {
            all += char16_t(c);
        } else {
            all += char16_t(0xD800 + ((c - 0x10000) >> 10));
            all += char16_t(0xDC00 + ((c - 0x10000) & 0x3FF));
        }
    }
    std::string utf8 = ToBytes(CP_UTF8, all);
    EXPECT_EQ(utf8.size(), 0x7Fu + 0x780u * 2 + (0x10000u - 0x800 - 0x800) * 3 + 0x100000u * 4);
    EXPECT_TRUE(FromBytes(CP_UTF8, utf8) == all);
}

TEST(CodePage, InvalidUtf8BecomesOneReplacementPerMaximalSubpart) {
    struct Case {
        std::string bytes;
        std::u16string text;
    } cases[] = {
        {"\xC0\x80", u"\xFFFD\xFFFD"},                   // overlong
        {"\xE0\x80\x80", u"\xFFFD\xFFFD\xFFFD"},         // overlong
        {"\xF0\x80\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"}, // overlong
        {"\xED\xA0\x80", u"\xFFFD\xFFFD\xFFFD"},         // an encoded surrogate
        {"\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"}, // above U+10FFFF
        {"\xF5\x80", u"\xFFFD\xFFFD"},
        {"\xE2\x82", u"\xFFFD"},  // truncated at the end
        {"\xE2\x82" "A", u"\xFFFD" "A"},
        {"\xF0\x9F\x98" "A", u"\xFFFD" "A"},
        {"\xE1\x80\xC0", u"\xFFFD\xFFFD"},
        {"\x80\xBF\xFF\xFE", u"\xFFFD\xFFFD\xFFFD\xFFFD"},
        {"\xC2", u"\xFFFD"},
        {"a\xC3\xA9z", u"a\u00e9z"},
        {"\xEF\xBF\xBF", u"\xFFFF"},
        {"\xF4\x8F\xBF\xBF", u"\xDBFF\xDFFF"},
        {"\xF0\x90\x80\x80", u"\xD800\xDC00"},
        {"\xED\x9F\xBF", u"\uD7FF"},
    };
    for (auto const &c : cases) EXPECT_TRUE(FromBytes(CP_UTF8, c.bytes) == c.text) << c.bytes;
}

TEST(CodePage, LoneSurrogatesBecomeReplacementCharacters) {
    EXPECT_EQ(ToBytes(CP_UTF8, u"a\xD800z"), "a\xEF\xBF\xBDz");
    EXPECT_EQ(ToBytes(CP_UTF8, u"\xDC00\xD800"), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(ToBytes(CP_UTF8, u"\xD83D"), "\xEF\xBF\xBD");
    EXPECT_EQ(ToBytes(CP_UTF8, std::u16string(u"\xD83D\xDE00", 1)), "\xEF\xBF\xBD"); // a pair cut by the length
}

TEST(CodePage, AsciiRunsOfAnyLengthAndAlignment) {
    for (size_t at = 0; at < 20; ++at) {
        std::u16string text(24, u'x');
        text[at] = u'\u00e9';
        std::string bytes = ToBytes(CP_UTF8, text);
        EXPECT_EQ(bytes.size(), 25u);
        EXPECT_EQ(bytes.substr(at, 2), "\xC3\xA9");
        EXPECT_TRUE(FromBytes(CP_UTF8, bytes) == text);
    }
}

TEST(CodePage, Western1252) {
    std::string every;
    for (int b = 1; b < 256; ++b) every += char(b);
    std::u16string text = FromBytes(CP_1252, every);
    ASSERT_EQ(text.size(), 255u);
    EXPECT_EQ(ToBytes(CP_1252, text), every); // every byte round trips
    EXPECT_EQ(text[0x80 - 1], u'\u20ac');
    EXPECT_EQ(text[0x9F - 1], u'\u0178');
    for (int b : {0x81, 0x8D, 0x8F, 0x90, 0x9D}) EXPECT_EQ(text[size_t(b - 1)], char16_t(b)); // undefined bytes
    EXPECT_EQ(text[0xE9 - 1], u'\u00e9');
    EXPECT_TRUE(FromBytes(CP_ACP, every) == text);
    EXPECT_EQ(ToBytes(CP_1252, u"\u0100\u0080\xD800|\U0001F600|\uFFFD"), "??" "?|?|?");
    EXPECT_EQ(MultiByteToWideChar(CP_1252, "ab", -1, nullptr, 0), 3);
}

TEST(CodePage, OtherCodePagesGoThroughTheSystem) {
    std::u16string russian = u"\u041f\u0440\u0438\u0432\u0435\u0442";
    std::string cp1251 = ToBytes(1251, russian);
    EXPECT_EQ(cp1251, "\xCF\xF0\xE8\xE2\xE5\xF2");
    EXPECT_TRUE(FromBytes(1251, cp1251) == russian);
    EXPECT_EQ(ToBytes(1251, u"a\u0100b\U0001F600c"), "a?b?c");
    EXPECT_EQ(ToBytes(28591, u"\u00e9"), "\xE9");
    EXPECT_TRUE(FromBytes(932, "\x82\xA0") == u"\u3042");
    EXPECT_TRUE(FromBytes(932, "a\x82") == u"a\xFFFD"); // a lead byte without its trail
    char out[4];
    EXPECT_EQ(WideCharToMultiByte(1251, russian.c_str(), -1, out, 4), 0); // too small
    EXPECT_EQ(WideCharToMultiByte(1251, russian.c_str(), -1, nullptr, 0), 7);
    EXPECT_EQ(WideCharToMultiByte(12345, u"x", -1, nullptr, 0), 0); // unknown code page
    EXPECT_EQ(MultiByteToWideChar(12345, "x", -1, nullptr, 0), 0);
}
