// One contract, one suite: every store runs the same cases; where a store
// differs by design, its StoreKind says so and the case checks that instead.
#include "config/ConfigTestSupport.h"

#include <cstring>

namespace qv::test {
namespace {

class StoreContract : public testing::TestWithParam<StoreKind> {
protected:
    ScratchDir dir;
    StoreUnderTest subject{GetParam(), dir};
    IConfigStore &store = subject.Store();
    StoreKind const &kind = GetParam();
};

TEST_P(StoreContract, StringsRoundTripByAbsoluteAndRelativePaths) {
    EXPECT_TRUE(store.SetString(u"/a/b/c", u"first"));
    EXPECT_EQ(Utf8(store.GetString(u"/a/b/c", u"none")), "first");
    EXPECT_TRUE(store.cd(u"/a"));
    EXPECT_EQ(Utf8(store.GetCurrentPath()), "/a");
    EXPECT_EQ(Utf8(store.GetString(u"b/c", u"none")), "first");
    EXPECT_EQ(Utf8(store.GetString(u"b\\c", u"none")), "first") << "a backslash separates too";
    EXPECT_EQ(Utf8(store.GetString(u"/a/b/c", u"none")), "first") << "absolute from anywhere";
    EXPECT_TRUE(store.cdin(u"%s", u"b"));
    EXPECT_EQ(Utf8(store.GetCurrentPath()), "/a/b");
    EXPECT_TRUE(store.SetString(u"d", u"second"));
    EXPECT_TRUE(store.cdout());
    EXPECT_EQ(Utf8(store.GetCurrentPath()), "/a/") << "as the path algebra steps up";
    EXPECT_EQ(Utf8(store.GetString(u"b/d", u"none")), "second");
    EXPECT_EQ(Utf8(store.GetString(u"../a/b/d", u"none")), "second");
}

TEST_P(StoreContract, TypedValuesRoundTrip) {
    LOGFONTW font = IConfigStore::DefaultFont;
    font.lfHeight = -17;
    font.lfItalic = 1;
    std::memcpy(font.lfFaceName, u"DejaVu Sans", sizeof(u"DejaVu Sans"));
    RECT rect{-1, 2, 300, 40000};
    EXPECT_TRUE(store.SetDouble(u"/t/double", 6.02214076e23));
    EXPECT_TRUE(store.SetFloat(u"/t/float", 0.5f));
    EXPECT_TRUE(store.SetLong(u"/t/long", -2147483647 - 1));
    EXPECT_TRUE(store.SetDWORD(u"/t/dword", 4294967295u));
    EXPECT_TRUE(store.SetQWORD(u"/t/qword", 18446744073709551615ull));
    EXPECT_TRUE(store.SetWORD(u"/t/word", 65535));
    EXPECT_TRUE(store.SetBYTE(u"/t/byte", 255));
    EXPECT_TRUE(store.SetBool(u"/t/bool", true));
    EXPECT_TRUE(store.SetRect(u"/t/rect", rect));
    EXPECT_TRUE(store.SetClr(u"/t/colour", 0x00123456));
    EXPECT_TRUE(store.SetFont(u"/t/font", font));
    for (int pass = 0; pass < 2; ++pass) {
        std::unique_ptr<IConfigStore> reopened = pass ? subject.Reopen() : nullptr;
        IConfigStore &s = pass ? *reopened : store;
        SCOPED_TRACE(pass ? "reopened" : "same store");
        EXPECT_DOUBLE_EQ(s.GetDouble(u"/t/double", 0), 6.02214076e23);
        EXPECT_EQ(s.GetFloat(u"/t/float", 0), 0.5f);
        EXPECT_EQ(s.GetLong(u"/t/long", 0), -2147483647 - 1);
        EXPECT_EQ(s.GetDWORD(u"/t/dword", 0), 4294967295u);
        EXPECT_EQ(s.GetQWORD(u"/t/qword", 0), 18446744073709551615ull);
        EXPECT_EQ(s.GetWORD(u"/t/word", 0), 65535);
        EXPECT_EQ(s.GetBYTE(u"/t/byte", 0), 255);
        EXPECT_TRUE(s.GetBool(u"/t/bool", false));
        RECT r = s.GetRect(u"/t/rect", IConfigStore::DefaultRect);
        EXPECT_EQ(std::make_tuple(r.left, r.top, r.right, r.bottom), std::make_tuple(-1, 2, 300, 40000));
        EXPECT_EQ(s.GetClr(u"/t/colour", 0), 0x00123456u);
        LOGFONTW f = s.GetFont(u"/t/font", IConfigStore::DefaultFont);
        EXPECT_EQ(f.lfHeight, -17);
        EXPECT_EQ(f.lfItalic, 1);
        EXPECT_EQ(f.lfWeight, 400);
        EXPECT_EQ(std::u16string(f.lfFaceName), u"DejaVu Sans");
    }
}

TEST_P(StoreContract, AMissingKeyGivesTheDefaultAndMayKeepIt) {
    EXPECT_EQ(store.GetLong(u"/fresh/n", 7), 7);
    EXPECT_EQ(Utf8(store.GetString(u"/fresh/s", u"dflt")), "dflt");
    EXPECT_EQ(store.GetLong(u"/fresh/n", 8), kind.storesDefaults ? 7 : 8);
    EXPECT_EQ(Utf8(store.GetString(u"/fresh/s", u"other")), kind.storesDefaults ? "dflt" : "other");
}

TEST_P(StoreContract, TextsWithQuotesUnicodeAndBackslashesSurvive) {
    std::u16string tricky = u"it's \"quoted\" \\ ünïcødé 𝄞 [x] ;#";
    if (kind.valuesHoldDelimiters) tricky += u" a=b\tc";
    EXPECT_TRUE(store.SetString(u"/text/tricky", tricky.c_str()));
    EXPECT_TRUE(store.SetString(u"/text/empty", u""));
    std::unique_ptr<IConfigStore> again = subject.Reopen();
    EXPECT_EQ(U16(again->GetString(u"/text/tricky", u"")), tricky);
    EXPECT_EQ(U16(again->GetString(u"/text/empty", u"dflt")), kind.emptyValuesVanish ? u"dflt" : u"");
}

TEST_P(StoreContract, ListGivesTheChildrenAndLeavesAndEntriesAreTold) {
    store.SetString(u"/l/one", u"1");
    store.SetLong(u"/l/two", 2);
    store.SetString(u"/l/sub/three", u"3");
    TArray<CString> names;
    names.Add(CString(u"before"));
    EXPECT_TRUE(store.list(names, u"/l"));
    std::set<std::string> expected{"one", "two", "sub"};
    if (!kind.listEmptiesFirst) expected.insert("before");
    EXPECT_EQ(NameSet(names), expected);
    EXPECT_TRUE(store.isLeaf(u"/l/one"));
    EXPECT_FALSE(store.isEntry(u"/l/one"));
    EXPECT_TRUE(store.isEntry(u"/l/sub"));
    EXPECT_FALSE(store.isLeaf(u"/l/sub"));
    EXPECT_EQ(store.isLeaf(u"/l/missing"), kind.missingIsLeaf);
    EXPECT_FALSE(store.isEntry(u"/l/missing2"));
}

TEST_P(StoreContract, NamesDifferingInCase) {
    store.SetString(u"/Case/Key", u"upper");
    store.SetString(u"/case/key", u"lower");
    if (kind.caseBlindNames) {
        EXPECT_EQ(Utf8(store.GetString(u"/CASE/KEY", u"")), "lower");
        TArray<CString> names;
        store.list(names, u"/case");
        EXPECT_EQ(NameSet(names), std::set<std::string>{"Key"}) << "the first spelling stays";
    } else {
        EXPECT_EQ(Utf8(store.GetString(u"/Case/Key", u"")), "upper");
        EXPECT_EQ(Utf8(store.GetString(u"/case/key", u"")), "lower");
    }
}

TEST_P(StoreContract, CopyBringsASubtreeIntoAnotherStore) {
    store.SetString(u"/src/name", u"value");
    store.SetLong(u"/src/deep/number", -5);
    store.SetDouble(u"/src/deep/real", 2.5);
    CMemStore target;
    EXPECT_TRUE(store.copy(target, u"/dst", u"/src"));
    EXPECT_EQ(Utf8(target.GetString(u"/dst/name", u"")), "value");
    EXPECT_EQ(target.GetLong(u"/dst/deep/number", 0), -5);
    EXPECT_EQ(target.GetDouble(u"/dst/deep/real", 0), 2.5);
}

TEST_P(StoreContract, ALaterTypeReadsBackAsText) {
    store.SetLong(u"/mixed/v", 12);
    store.SetString(u"/mixed/v", u"34");
    EXPECT_EQ(store.GetLong(u"/mixed/v", 0), 34);
    EXPECT_EQ(Utf8(store.GetString(u"/mixed/v", u"")), "34");
}

TEST_P(StoreContract, HostilePathsAreHandled) {
    std::u16string deep;
    for (int i = 0; i < 1000; ++i)
        deep += u"/x";
    EXPECT_EQ(Utf8(store.GetString(deep.c_str(), u"d")), "d");
    EXPECT_EQ(Utf8(store.GetString(u"/../../..", u"up")),
              kind.name == "registry" ? "up" : Utf8(store.GetString(u"/", u"up")));
    store.SetString(u"/bad\xDC80utf16", u"lone surrogate");
    EXPECT_TRUE(store.cd(u""));
}

TEST_P(StoreContract, NumbersIgnoreTheProcessLocale) {
    GermanLocale german;
    if (!german.Active()) GTEST_SKIP() << "de_DE.UTF-8 is not installed";
    EXPECT_TRUE(store.SetDouble(u"/locale/half", 1.5));
    std::unique_ptr<IConfigStore> again = subject.Reopen();
    EXPECT_EQ(again->GetDouble(u"/locale/half", 0), 1.5);
    EXPECT_EQ(Utf8(again->GetString(u"/locale/half", u"")), kind.name == "sqlite" ? "1.5" : "1.50000000000000e+000");
}

INSTANTIATE_TEST_SUITE_P(Stores, StoreContract, testing::ValuesIn(AllStoreKinds()),
                         [](testing::TestParamInfo<StoreKind> const &info) { return info.param.name; });

} // namespace
} // namespace qv::test
