// CVariant saved to and loaded from a store: the keys it writes, and an
// enum's table, over the memory tree and the SQLite store alike.
#include "config/ConfigTestSupport.h"

#include "qv/core/Variant.h"

namespace qv::test {
namespace {

TEST(VariantStore, ScalarsWriteTypeAndValue) {
    CMemStore store;
    store.cd(u"/v");
    CVariant number(int32_t(-42));
    EXPECT_TRUE(number.Save(store));
    EXPECT_EQ(Utf8(store.GetString(u"/v/Type", u"")), Utf8(CString(CVariant::TypeToString(number.getType()))));
    EXPECT_EQ(Utf8(store.GetString(u"/v/Value", u"")), "-42");
    CVariant back;
    EXPECT_TRUE(back.Load(store));
    EXPECT_EQ(back.getType(), number.getType());
    EXPECT_EQ(Utf8(back.ToString()), "-42");
    EXPECT_EQ(Utf8(store.GetCurrentPath()), "/v");
}

TEST(VariantStore, AnEnumKeepsItsTable) {
    ScratchDir dir;
    CsqliteStore store;
    ASSERT_TRUE(store.Open(dir.Text("v.db")));
    CVariant colour;
    colour.AddEnum(u"red", 1);
    colour.AddEnum(u"green", -2);
    colour.setEnumValue(-2);
    store.cd(u"/palette");
    EXPECT_TRUE(colour.Save(store));
    EXPECT_EQ(store.GetDWORD(u"/palette/EnumValues/Count", 0), 2u);
    EXPECT_EQ(Utf8(store.GetString(u"/palette/EnumValues/[001]/Name", u"")), "green");
    EXPECT_EQ(Utf8(store.GetString(u"/palette/EnumValues/[001]/Value", u"")), "-2");
    CVariant back;
    EXPECT_TRUE(back.Load(store));
    EXPECT_EQ(back.getType(), CVariant::Enum);
    EXPECT_EQ(back.GetEnumCount(), 2);
    EXPECT_EQ(back.getEnumValue(), -2);
    EXPECT_EQ(Utf8(back.ToString()), "green");
}

TEST(VariantStore, AHostileCountReadsNoMoreThanTheStoreHolds) {
    CMemStore store;
    store.SetString(u"/Type", CVariant::TypeToString(CVariant::Enum));
    store.SetDWORD(u"/EnumValues/Count", 4000000000u);
    store.SetString(u"/EnumValues/[000]/Name", u"only");
    CVariant back;
    EXPECT_TRUE(back.Load(store));
    EXPECT_EQ(back.GetEnumCount(), 2) << "bounded by what the store lists: Count and [000]";
    EXPECT_EQ(Utf8(CString(back.GetEnumName(0))), "only");
}

} // namespace
} // namespace qv::test
