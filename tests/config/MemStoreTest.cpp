// CMemStore and the contract's text forms: the tree that grows on lookup,
// and the exact texts that every store keeps.
#include "config/ConfigTestSupport.h"

#include <cstring>

namespace qv::test {
namespace {

TEST(MemStore, AReadOfAMissingKeyReturnsAndStoresTheDefault) {
    CMemStore store;
    EXPECT_EQ(store.GetLong(u"a/b", 7), 7);
    TArray<CString> names;
    store.list(names, u"a");
    EXPECT_EQ(NameSet(names), std::set<std::string>{"b"});
    EXPECT_TRUE(store.isLeaf(u"a/b"));
    EXPECT_EQ(Utf8(store.GetString(u"a/b", u"")), "7");
}

TEST(MemStore, ALookupGrowsTheTree) {
    CMemStore store;
    EXPECT_TRUE(store.isLeaf(u"/nowhere")) << "a missing path is a leaf";
    EXPECT_EQ(store.GetNodeCount(), 2u) << "and now exists";
    EXPECT_FALSE(store.isEntry(u"/nowhere"));
    EXPECT_FALSE(store.unlink(u"/nowhere")) << "the tree cannot delete";
}

TEST(MemStore, ListAppendsInTheOrderMade) {
    CMemStore store;
    store.SetString(u"/k/zeta", u"1");
    store.SetString(u"/k/alpha", u"2");
    store.SetString(u"/k/Mid", u"3");
    TArray<CString> names;
    names.Add(CString(u"kept"));
    store.list(names, u"/k");
    ASSERT_EQ(names.GetSize(), 4u);
    EXPECT_EQ(Utf8(names[0]), "kept");
    EXPECT_EQ(Utf8(names[1]), "zeta");
    EXPECT_EQ(Utf8(names[2]), "alpha");
    EXPECT_EQ(Utf8(names[3]), "Mid");
}

TEST(MemStore, CopiesTakeTheTreeAndTheCurrentPath) {
    CMemStore store;
    store.SetString(u"/x/y", u"v");
    store.cd(u"/x");
    CMemStore copy(store);
    store.SetString(u"/x/y", u"changed");
    EXPECT_EQ(Utf8(copy.GetCurrentPath()), "/x");
    EXPECT_EQ(Utf8(copy.GetString(u"y", u"")), "v");
    CMemStore assigned;
    assigned = store;
    EXPECT_EQ(Utf8(assigned.GetString(u"y", u"")), "changed");
}

TEST(MemStore, ManyKeysStayCheapToAdd) {
    CMemStore store;
    for (int i = 0; i < 20000; ++i)
        store.SetLong(CString::FromFormat(u"/s%d/k%d", i % 100, i), i);
    EXPECT_EQ(store.GetLong(u"/s42/k19942", 0), 19942);
    EXPECT_EQ(store.GetNodeCount(), 1u + 100u + 20000u);
}

TEST(ValueTexts, AreTheDesignedForms) {
    CMemStore store;
    store.SetDouble(u"d", 1);
    EXPECT_EQ(Utf8(store.GetString(u"d", u"")), "1.00000000000000e+000");
    store.SetFloat(u"f", -0.25f);
    EXPECT_EQ(Utf8(store.GetString(u"f", u"")), "-2.50000000000000e-001");
    store.SetBool(u"b", true);
    EXPECT_EQ(Utf8(store.GetString(u"b", u"")), "1");
    store.SetBool(u"b0", false);
    EXPECT_EQ(Utf8(store.GetString(u"b0", u"")), "0");
    store.SetLong(u"l", -12);
    EXPECT_EQ(Utf8(store.GetString(u"l", u"")), "-12");
    store.SetDWORD(u"u", 4294967295u);
    EXPECT_EQ(Utf8(store.GetString(u"u", u"")), "4294967295");
    store.SetQWORD(u"q", 18446744073709551615ull);
    EXPECT_EQ(Utf8(store.GetString(u"q", u"")), "18446744073709551615");
    store.SetRect(u"r", RECT{1, 2, 3, 4});
    EXPECT_EQ(Utf8(store.GetString(u"r", u"")), "{ 2, 1, 4, 3 }") << "top, left, bottom, right";
    store.SetClr(u"c", 0x00332211);
    EXPECT_EQ(Utf8(store.GetString(u"c", u"")), "RGB(17, 34, 51)") << "red is the low byte";
    store.SetFont(u"font", IConfigStore::DefaultFont);
    EXPECT_EQ(Utf8(store.GetString(u"font", u"")), "{ -12, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 0, 0, \"Arial\" }");
}

TEST(ValueTexts, DefaultsAreStoredAsText) {
    CMemStore store;
    EXPECT_EQ(store.GetWORD(u"w", 0xFFFF), 0xFFFF);
    EXPECT_EQ(Utf8(store.GetString(u"w", u"")), "65535");
    EXPECT_EQ(store.GetBYTE(u"byte", 0x7F), 0x7F);
    EXPECT_EQ(Utf8(store.GetString(u"byte", u"")), "127");
    RECT r = store.GetRect(u"rect", RECT{5, 6, 7, 8});
    EXPECT_EQ(r.left, 5);
    EXPECT_EQ(Utf8(store.GetString(u"rect", u"")), "{ 6, 5, 8, 7 }");
}

TEST(ValueTexts, MalformedTextsGiveTheDesignedResults) {
    CMemStore store;
    store.SetString(u"rect", u"{ 1, 2, 3 }");
    RECT r = store.GetRect(u"rect", RECT{9, 9, 9, 9});
    EXPECT_EQ(std::make_tuple(r.left, r.top, r.right, r.bottom), std::make_tuple(0, 0, 0, 0)) << "not the default";
    store.SetString(u"colour", u"RGB(1, 2)");
    EXPECT_EQ(store.GetClr(u"colour", 0x123456), 0xFFFFFFFFu);
    store.SetString(u"word", u"70000");
    EXPECT_EQ(store.GetWORD(u"word", 0), 70000 & 0xFFFF) << "masked";
    store.SetString(u"byte", u"256");
    EXPECT_EQ(store.GetBYTE(u"byte", 1), 0);
    EXPECT_FALSE(store.GetBool(u"byte", true)) << "256 masks to zero";
    store.SetString(u"dword", u"4294967297");
    EXPECT_EQ(store.GetDWORD(u"dword", 0), 1u) << "cut to 32 bits";
    store.SetString(u"double", u"not a number");
    EXPECT_EQ(store.GetDouble(u"double", 5), 0.0);
    LOGFONTW fallback = IConfigStore::DefaultFont;
    fallback.lfWeight = 700;
    store.SetString(u"font", u"{ -20, 3");
    LOGFONTW f = store.GetFont(u"font", fallback);
    EXPECT_EQ(f.lfHeight, -20);
    EXPECT_EQ(f.lfWidth, 3);
    EXPECT_EQ(f.lfWeight, 700) << "a field that does not scan keeps the default's";
    EXPECT_EQ(std::u16string(f.lfFaceName), u"Arial");
    std::u16string longFace = u"{ 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, \"" + std::u16string(100, u'F') + u"\" }";
    store.SetString(u"font2", longFace.c_str());
    f = store.GetFont(u"font2", fallback);
    EXPECT_EQ(std::u16string(f.lfFaceName).size(), 31u) << "the face name is cut to the record";
    EXPECT_EQ(f.lfPitchAndFamily, 13);
}

TEST(StoreCopy, AFailingChildDoesNotStopTheWalk) {
    CMemStore source;
    source.SetString(u"/a/one", u"1");
    source.SetString(u"/a/two", u"2");
    CsqliteStore closed; // every write fails
    EXPECT_FALSE(source.copy(closed, u"/t", u"/a"));
    CMemStore target;
    EXPECT_TRUE(IConfigStore::copy(target, u"/t", source, u"/a"));
    EXPECT_EQ(Utf8(target.GetString(u"/t/two", u"")), "2");
}

} // namespace
} // namespace qv::test
