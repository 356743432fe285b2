// CLocale over the string tables of libqv and of test_core
// (tests/core/resources.qvrc), and the user's language from the environment.
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

#include "qv/core/LanguageTags.h"
#include "qv/core/Locale.h"
#include "qv/core/ModuleResources.h"
#include "qv/core/StringTableBlock.h" // StringBlockOfId

namespace qv {
namespace {

std::u16string Text(char16_t const *s) {
    return s ? std::u16string(s) : u"(null)";
}

// Sets the locale variables for one test and puts the old values back.
class LocaleEnvironment : public testing::Test {
protected:
    void SetUp() override {
        for (int i = 0; i < 3; ++i) {
            char const *value = std::getenv(kNames[i]);
            saved[i] = value ? std::optional<std::string>(value) : std::nullopt;
            unsetenv(kNames[i]);
        }
    }
    void TearDown() override {
        for (int i = 0; i < 3; ++i) {
            if (saved[i])
                setenv(kNames[i], saved[i]->c_str(), 1);
            else
                unsetenv(kNames[i]);
        }
    }
    // The LCID that the environment gives.
    uint32_t With(char const *lcAll, char const *lcMessages, char const *lang) {
        char const *values[] = {lcAll, lcMessages, lang};
        for (int i = 0; i < 3; ++i) {
            if (values[i])
                setenv(kNames[i], values[i], 1);
            else
                unsetenv(kNames[i]);
        }
        return GetUserDefaultLCID();
    }

    static constexpr char const *kNames[3] = {"LC_ALL", "LC_MESSAGES", "LANG"};
    std::optional<std::string> saved[3];
};

TEST_F(LocaleEnvironment, UserLanguageFollowsLocaleVariables) {
    EXPECT_EQ(With(nullptr, nullptr, nullptr), 0x0409u);
    EXPECT_EQ(With(nullptr, nullptr, "de_DE.UTF-8"), 0x0407u);
    EXPECT_EQ(With("fr_CA.UTF-8", "de_DE", "ja_JP"), 0x0C0Cu); // LC_ALL first
    EXPECT_EQ(With("", "de_AT@euro", "ja_JP"), 0x0C07u);       // an empty one counts as unset
    EXPECT_EQ(With(nullptr, nullptr, "C"), 0x0409u);
    EXPECT_EQ(With(nullptr, nullptr, "POSIX"), 0x0409u);
    EXPECT_EQ(With(nullptr, nullptr, "xx_YY.UTF-8"), 0x0409u); // unknown language
    EXPECT_EQ(With(nullptr, nullptr, "de_XX"), 0x0407u);       // unknown territory
    EXPECT_EQ(With(nullptr, nullptr, "pt"), 0x0416u);

    With(nullptr, nullptr, "de_DE.UTF-8");
    CLocale german;
    EXPECT_EQ(german.getLocale(), 0x0407u);
    EXPECT_EQ(german.getLanguage(), 0x0407);
    EXPECT_EQ(Text(german.getString(1)), u"Eins");
}

TEST(LanguageTags, NamesAndTags) {
    EXPECT_EQ(LcidFromLocaleName("en_GB.ISO-8859-1"), 0x0809u);
    EXPECT_EQ(LcidFromLocaleName("zh-tw"), 0x0404u);
    EXPECT_EQ(LcidFromLocaleName("zh"), 0x0804u);
    EXPECT_EQ(LcidFromLocaleName("es_ES"), 0x0C0Au);
    EXPECT_EQ(LcidFromLocaleName(""), 0u);
    EXPECT_EQ(LcidFromLocaleName(nullptr), 0u);
    EXPECT_EQ(LcidFromLocaleName("english_United-States"), 0u);
    CString tag;
    ASSERT_TRUE(LocaleTagFromLanguage(0x0407, tag));
    EXPECT_EQ(std::u16string(tag.GetUTF16()), u"de-DE");
    EXPECT_FALSE(LocaleTagFromLanguage(0x7777, tag));
    EXPECT_TRUE(IsRightToLeftLanguage(0x0401));
    EXPECT_TRUE(IsRightToLeftLanguage(0x040D));
    EXPECT_FALSE(IsRightToLeftLanguage(0x0409));
}

TEST(StringTableBlock, WindowsFormOfSixteenStrings) {
    // Block 1 of the English table: ids 1, 2 and 15 set, the rest empty.
    HRSRC block = FindResourceExact(GetProgramModule(), SResourceId::Number(kResourceTypeString),
                                    SResourceId::Number(StringBlockOfId(15)), 0x0409);
    ASSERT_NE(block, nullptr);
    std::string const expected("\0\0"
                               "\3\0O\0n\0e\0"
                               "\3\0T\0w\0o\0"
                               "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
                               "\7\0F\0i\0f\0t\0e\0e\0n\0",
                               2 + 8 + 8 + 24 + 16);
    EXPECT_EQ(std::string(reinterpret_cast<char const *>(block->data), block->size), expected);
    EXPECT_EQ(StringBlockOfId(16), 2);
}

TEST(Locale, StringsInTheChosenLanguage) {
    CLocale locale;
    locale.setLanguage(0x0409);
    EXPECT_EQ(locale.getLocale(), 0x0409u);
    EXPECT_EQ(Text(locale.getString(1)), u"One");
    EXPECT_EQ(Text(locale.getString(15)), u"Fifteen");
    EXPECT_EQ(Text(locale.getString(16)), u"Sixteen");
    EXPECT_EQ(Text(locale.getString(17)), u""); // present and empty
    EXPECT_EQ(Text(locale.getString(18)), u""); // absent from its block
    EXPECT_EQ(Text(locale.getString(0)), u"");
    EXPECT_EQ(Text(locale.getString(100)), u"Hundred");
    EXPECT_EQ(Text(locale.getString(1024)), u"English"); // the library's own text
    EXPECT_EQ(locale.getLastID(), 65u << 4);
    EXPECT_EQ(Text(locale.getString(locale.getLastID())), u"");
    EXPECT_EQ(Text(locale.getString(4000000000u)), u"");
    EXPECT_FALSE(locale.getRightToLeftLayout());

    // A block is chosen whole: German block 1 has no id 2, block 7 falls back to English.
    locale.setLanguage(0x0407);
    EXPECT_EQ(Text(locale.getString(1)), u"Eins");
    EXPECT_EQ(Text(locale.getString(2)), u"");
    EXPECT_EQ(Text(locale.getString(16)), u"Sechzehn");
    EXPECT_EQ(Text(locale.getString(100)), u"Hundred");
    EXPECT_EQ(Text(locale.getString(1024)), u"Deutsch");

    locale.setLocale(0x0C07); // Austrian German takes the German blocks
    EXPECT_EQ(locale.getLanguage(), 0x0C07);
    EXPECT_EQ(Text(locale.getString(1)), u"Eins");

    locale.setLanguage(0x0401);
    EXPECT_TRUE(locale.getRightToLeftLayout());
    EXPECT_EQ(Text(locale.getString(1)), u"\u0648\u0627\u062d\u062f");
    EXPECT_EQ(Text(locale.getString(224)), u"ar");
}

TEST(Locale, LaterModulesReplaceWholeBlocks) {
    CLocale locale;
    locale.setLanguage(0x0409);
    EXPECT_EQ(Text(locale.getString(1025)), u"qv infrared and radiometry library");

    // Block 65 in English with id 1025 only, and a block 1 whose second length runs
    // past its end (cut there).
    static unsigned char const replacement[] = {0,   0, 8,   0, 'r', 0, 'e', 0, 'p', 0,
                                                'l', 0, 'a', 0, 'c', 0, 'e', 0, 'd', 0};
    static unsigned char const cut[] = {0, 0, 0x40, 0, 'x', 0};
    static SResourceEntry const entries[] = {
        {SResourceId::Number(6), SResourceId::Number(1), 0x0409, sizeof cut, cut},
        {SResourceId::Number(6), SResourceId::Number(65), 0x0409, sizeof replacement, replacement},
    };
    static SResourceModule const plugin = {u"plugin", EResourceModuleKind::Library, entries, 2};
    CResourceRegistration registration(plugin);
    locale.AddModule(&plugin);
    EXPECT_EQ(Text(locale.getString(1025)), u"replaced");
    EXPECT_EQ(Text(locale.getString(1024)), u"");
    EXPECT_EQ(Text(locale.getString(1)), u"x");
    EXPECT_EQ(Text(locale.getString(2)), u"");
    EXPECT_EQ(Text(locale.getString(100)), u"Hundred");
}

TEST(Locale, LanguagesOnOfferAndResources) {
    CLocale locale;
    TArray<SLocale> const &languages = locale.getLanguages();
    ASSERT_EQ(languages.GetSize(), 4u);
    EXPECT_EQ(languages.GetAt(0).language, 0x0401);
    EXPECT_EQ(std::u16string(languages.GetAt(0).name.GetUTF16()), u"ar-SA"); // libqv has no Arabic name
    EXPECT_TRUE(languages.GetAt(0).rightToLeft);
    EXPECT_EQ(std::u16string(languages.GetAt(1).name.GetUTF16()), u"Deutsch");
    EXPECT_EQ(std::u16string(languages.GetAt(2).name.GetUTF16()), u"English");
    EXPECT_EQ(std::u16string(languages.GetAt(3).name.GetUTF16()), u"\u65e5\u672c\u8a9e");
    EXPECT_FALSE(languages.GetAt(3).rightToLeft);

    locale.setLanguage(0x0C07);
    HINSTANCE program = GetProgramModule();
    HRSRC found = locale.FindResourceW(program, MakeIntResource(kResourceTypeRCData), u"ORDER1");
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->language, 0x0007);
    EXPECT_EQ(locale.GetResourceLangID(program, u"#10", u"ORDER4"), 0x0407);
    EXPECT_EQ(locale.GetResourceLangID(program, u"#10", u"MISSING"), 0);
    EXPECT_EQ(locale.FindResourceW(nullptr, u"#10", u"ORDER1"), nullptr);
}

TEST(Locale, GlobalInstance) {
    ASSERT_NE(Locale->getString(1), nullptr);
    EXPECT_EQ(Locale.GetInstance(), Locale.GetInstance());
}

} // namespace
} // namespace qv
