// CVariant: types, conversions, FromString, setValue and the enum table.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "Utf8Text.h"
#include "qv/core/Variant.h"

namespace qv {
namespace {

std::string Text(CString const &s) {
    return s.GetTChar() ? Utf8(s.GetTChar(), s.GetLength()) : "(null)";
}

std::string Text(char16_t const *s) {
    return Utf8(s, wcslen(s));
}

std::vector<unsigned char> BlobBytes(CVariant const &v) {
    // Saved form: type, size, bytes.
    CMemFile file;
    v.Save(&file);
    return std::vector<unsigned char>(file.GetData() + 8, file.GetData() + file.nItems());
}

CVariant Colours(int64_t value) {
    CVariant v;
    v.setEnumValue(value);
    v.AddEnum(u"Red", 1);
    v.AddEnum(u"Green", 2);
    v.AddEnum(u"Verde", 2);
    return v;
}

TEST(Variant, ConstructorsTakeTheArgumentsType) {
    EXPECT_EQ(CVariant().getType(), CVariant::Undefined);
    EXPECT_EQ(CVariant(true).getType(), CVariant::Bool);
    EXPECT_EQ(CVariant('a').getType(), CVariant::Int8);
    EXPECT_EQ(CVariant(int8_t(1)).getType(), CVariant::Int8);
    EXPECT_EQ(CVariant(uint8_t(1)).getType(), CVariant::UInt8);
    EXPECT_EQ(CVariant(int16_t(1)).getType(), CVariant::Int16);
    EXPECT_EQ(CVariant(uint16_t(1)).getType(), CVariant::UInt16);
    EXPECT_EQ(CVariant(1).getType(), CVariant::Int32); // int gives int32
    EXPECT_EQ(CVariant(1u).getType(), CVariant::UInt32);
    EXPECT_EQ(CVariant(int64_t(1)).getType(), CVariant::Int64);
    EXPECT_EQ(CVariant(uint64_t(1)).getType(), CVariant::UInt64);
    EXPECT_EQ(CVariant(1.0f).getType(), CVariant::Flt32);
    EXPECT_EQ(CVariant(1.0).getType(), CVariant::Flt64);
    EXPECT_EQ(CVariant(u"x").getType(), CVariant::String);
    CVariant null(static_cast<char16_t const *>(nullptr));
    EXPECT_EQ(null.getType(), CVariant::String);
    EXPECT_EQ(Text(null.ToString()), "");
    CVariant typed(CVariant::UInt16);
    EXPECT_EQ(typed.getType(), CVariant::UInt16);
    EXPECT_EQ(typed.ToUInt16(), 0);
    unsigned char bytes[] = {0x0B, 0xC2};
    CVariant blob(bytes, 2);
    EXPECT_EQ(blob.getType(), CVariant::Blob);
    bytes[0] = 0; // copied
    EXPECT_EQ(Text(blob.ToString()), "0BC2");
    TArray<SEnumValue> table;
    table.Add(SEnumValue{CString(u"One"), 1});
    CVariant e(int64_t(1), table);
    EXPECT_EQ(e.getType(), CVariant::Enum);
    EXPECT_EQ(Text(e.ToString()), "One");
}

TEST(Variant, AssignmentChangesTheTypeSetValueKeepsIt) {
    CVariant v(5);
    v = 1.5;
    EXPECT_EQ(v.getType(), CVariant::Flt64);
    EXPECT_EQ(v.ToFlt64(), 1.5);
    CVariant w(5);
    w.setValue(CVariant(1.5));
    EXPECT_EQ(w.getType(), CVariant::Int32);
    EXPECT_EQ(w.ToInt32(), 1);
    v = u"text";
    EXPECT_EQ(v.getType(), CVariant::String);
    v = static_cast<char16_t const *>(v.ToString()); // its own text
    EXPECT_EQ(Text(v.ToString()), "text");
    v = true;
    EXPECT_EQ(v.getType(), CVariant::Bool);
    v = uint64_t(7);
    EXPECT_EQ(v.getType(), CVariant::UInt64);

    CVariant e = Colours(2);
    CVariant copy;
    copy = e;
    EXPECT_EQ(copy.getType(), CVariant::Enum);
    EXPECT_EQ(copy.GetEnumCount(), 3);
    EXPECT_EQ(Text(copy.ToString()), "Green");
    copy = 3; // assignment drops the table
    EXPECT_EQ(copy.GetEnumCount(), 0);
    CVariant const &same = copy;
    copy = same;
    EXPECT_EQ(copy.ToInt32(), 3);
}

TEST(Variant, IntegerTargets) {
    struct Row {
        CVariant v;
        int8_t i8;
        uint8_t u8;
        int16_t i16;
        uint16_t u16;
        int32_t i32;
        uint32_t u32;
        int64_t i64;
        uint64_t u64;
    };
    unsigned char bytes[] = {1, 2};
    Row const rows[] = {
        {CVariant(true), 1, 1, 1, 1, 1, 1, 1, 1},
        {CVariant(false), 0, 0, 0, 0, 0, 0, 0, 0},
        {CVariant(int8_t(-1)), -1, 255, -1, 65535, -1, 0xFFFFFFFF, -1, UINT64_MAX},
        {CVariant(uint8_t(200)), -56, 200, 200, 200, 200, 200, 200, 200},
        {CVariant(int16_t(-300)), -44, 212, -300, 65236, -300, 0xFFFFFED4, -300, uint64_t(-300)},
        {CVariant(uint16_t(65535)), -1, 255, -1, 65535, 65535, 65535, 65535, 65535},
        {CVariant(int32_t(-70000)), -112, 144, -4464, 61072, -70000, 0xFFFEEE90, -70000, uint64_t(-70000)},
        {CVariant(uint32_t(0xFFFFFFFF)), -1, 255, -1, 65535, -1, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF},
        {CVariant(int64_t(0x123456789)), -119, 137, 0x6789, 0x6789, 0x23456789, 0x23456789, 0x123456789, 0x123456789},
        {CVariant(UINT64_MAX), -1, 255, -1, 65535, -1, 0xFFFFFFFF, -1, UINT64_MAX},
        {CVariant(-1.9f), -1, 255, -1, 65535, -1, 0xFFFFFFFF, -1, UINT64_MAX},
        {CVariant(70000.9), 112, 112, 4464, 4464, 70000, 70000, 70000, 70000},
        {CVariant(std::nan("")), 0, 0, 0, 0, 0, 0, INT64_MIN, uint64_t(INT64_MIN)},
        {CVariant(1e300), 0, 0, 0, 0, 0, 0, INT64_MIN, uint64_t(INT64_MIN)},
        // Strings: _wtol (saturating at 32 bits) up to 32-bit targets, _wtoi64 for 64-bit ones.
        {CVariant(u"4294967295"), -1, 255, -1, 65535, 2147483647, 2147483647, 4294967295, 4294967295},
        {CVariant(u" -12abc"), -12, 244, -12, 65524, -12, uint32_t(-12), -12, uint64_t(-12)},
        {CVariant(u"-99999999999"), 0, 0, 0, 0, INT32_MIN, 0x80000000, -99999999999, uint64_t(-99999999999)},
        {CVariant(u"99999999999999999999"), -1, 255, -1, 65535, INT32_MAX, INT32_MAX, INT64_MAX, INT64_MAX},
        {CVariant(u"yes"), 0, 0, 0, 0, 0, 0, 0, 0},
        {Colours(-2), -2, 254, -2, 65534, -2, 0xFFFFFFFE, -2, uint64_t(-2)},
        {CVariant(bytes, 2), 0, 0, 0, 0, 0, 0, 0, 0},
        {CVariant(), 0, 0, 0, 0, 0, 0, 0, 0},
    };
    for (Row const &r : rows) {
        SCOPED_TRACE(Text(CVariant::TypeToString(r.v.getType())) + " " + Text(r.v.ToString()));
        EXPECT_EQ(r.v.ToInt8(), r.i8);
        EXPECT_EQ(r.v.ToUInt8(), r.u8);
        EXPECT_EQ(r.v.ToInt16(), r.i16);
        EXPECT_EQ(r.v.ToUInt16(), r.u16);
        EXPECT_EQ(r.v.ToInt32(), r.i32);
        EXPECT_EQ(r.v.ToUInt32(), r.u32);
        EXPECT_EQ(r.v.ToInt64(), r.i64);
        EXPECT_EQ(r.v.ToUInt64(), r.u64);
        int8_t asInt8 = r.v; // the cast operators are the same conversions
        uint32_t asUInt32 = r.v;
        int64_t asInt64 = r.v;
        EXPECT_EQ(asInt8, r.i8);
        EXPECT_EQ(asUInt32, r.u32);
        EXPECT_EQ(asInt64, r.i64);
    }
    // The float rule in every width: -1.0 to uint16 is 65535, 70000.0 is 4464.
    EXPECT_EQ(CVariant(-1.0).ToUInt16(), 65535);
    EXPECT_EQ(CVariant(70000.0).ToUInt16(), 4464);
}

TEST(Variant, BoolAndFloatTargets) {
    unsigned char bytes[] = {1};
    EXPECT_TRUE(CVariant(u"yes").ToBool());
    EXPECT_TRUE(CVariant(u"TRUE").ToBool());
    EXPECT_FALSE(CVariant(u"1").ToBool()); // only the words: callers depend on it
    EXPECT_EQ(CVariant(u"1").ToInt32(), 1);
    EXPECT_FALSE(CVariant(u"").ToBool());
    EXPECT_TRUE(CVariant(std::nan("")).ToBool());
    EXPECT_TRUE(CVariant(0.5f).ToBool());
    EXPECT_FALSE(CVariant(-0.0).ToBool());
    EXPECT_TRUE(CVariant(int8_t(-128)).ToBool());
    EXPECT_FALSE(CVariant(uint64_t(0)).ToBool());
    EXPECT_TRUE(Colours(1).ToBool());
    EXPECT_FALSE(CVariant(bytes, 1).ToBool());
    EXPECT_FALSE(CVariant().ToBool());
    bool asBool = CVariant(3);
    EXPECT_TRUE(asBool);

    EXPECT_EQ(CVariant(true).ToFlt64(), 1.0);
    EXPECT_EQ(CVariant(uint32_t(0xFFFFFFFF)).ToFlt64(), 4294967295.0); // unsigned
    EXPECT_EQ(CVariant(UINT64_MAX).ToFlt64(), -1.0);                   // through the signed conversion
    EXPECT_EQ(CVariant(int64_t(-3)).ToFlt32(), -3.0f);
    EXPECT_EQ(CVariant(int64_t(0x7FFFFFFFFFFFFFFF)).ToFlt32(), 0x1p63f);
    EXPECT_EQ(CVariant(1e300).ToFlt32(), INFINITY);
    EXPECT_EQ(CVariant(0.1f).ToFlt64(), double(0.1f));
    EXPECT_EQ(CVariant(u"2.5e1").ToFlt64(), 25.0);
    EXPECT_EQ(CVariant(u"1e300").ToFlt32(), INFINITY);
    EXPECT_EQ(Colours(2).ToFlt64(), 2.0);
    EXPECT_EQ(CVariant(bytes, 1).ToFlt64(), 0.0);
    EXPECT_EQ(CVariant().ToFlt32(), 0.0f);
    double asDouble = CVariant(int16_t(-7));
    EXPECT_EQ(asDouble, -7.0);
}

TEST(Variant, ToStringByType) {
    unsigned char bytes[] = {0x0B, 0xC2, 0x00};
    EXPECT_EQ(Text(CVariant(true).ToString()), "true");
    EXPECT_EQ(Text(CVariant(false).ToString()), "false");
    EXPECT_EQ(Text(CVariant(int8_t(-5)).ToString()), "-5");
    EXPECT_EQ(Text(CVariant(uint8_t(200)).ToString()), "200");
    EXPECT_EQ(Text(CVariant(uint16_t(65535)).ToString()), "65535");
    EXPECT_EQ(Text(CVariant(INT32_MIN).ToString()), "-2147483648");
    EXPECT_EQ(Text(CVariant(uint32_t(4294967295u)).ToString()), "4294967295");
    EXPECT_EQ(Text(CVariant(INT64_MIN).ToString()), "-9223372036854775808");
    EXPECT_EQ(Text(CVariant(UINT64_MAX).ToString()), "18446744073709551615");
    EXPECT_EQ(Text(CVariant(0.1f).ToString()), "0.1");
    EXPECT_EQ(Text(CVariant(1e10).ToString()), "1e+010");
    EXPECT_EQ(Text(CVariant(u"as is").ToString()), "as is");
    EXPECT_EQ(Text(CVariant(bytes, 3).ToString()), "0BC200");
    EXPECT_EQ(Text(CVariant(bytes, 0).ToString()), "");
    EXPECT_EQ(Text(Colours(2).ToString()), "Green"); // the first name of the value
    EXPECT_EQ(Text(Colours(9).ToString()), "");
    EXPECT_EQ(Text(CVariant().ToString()), "");
    CString asText = CVariant(42);
    EXPECT_EQ(Text(asText), "42");
}

TEST(Variant, FromStringKeepsTheType) {
    auto from = [](CVariant::EType t, char16_t const *s) {
        CVariant v(t);
        v.FromString(s);
        EXPECT_EQ(v.getType(), t);
        return v;
    };
    EXPECT_TRUE(from(CVariant::Bool, u"Y").ToBool());
    EXPECT_TRUE(from(CVariant::Bool, u"5").ToBool());
    EXPECT_FALSE(from(CVariant::Bool, u"no").ToBool());
    EXPECT_EQ(from(CVariant::Int8, u"300").ToInt32(), 44);
    EXPECT_EQ(from(CVariant::UInt16, u"-1").ToInt32(), 65535);
    EXPECT_EQ(from(CVariant::UInt32, u"4294967295").ToUInt32(), 2147483647u); // _wtol saturates
    EXPECT_EQ(from(CVariant::Int64, u"9223372036854775808").ToInt64(), INT64_MAX);
    EXPECT_EQ(from(CVariant::UInt64, u"-1").ToUInt64(), UINT64_MAX);
    EXPECT_EQ(from(CVariant::Flt32, u"0.1").ToFlt32(), 0.1f);
    EXPECT_EQ(from(CVariant::Flt32, u"1e300").ToFlt32(), INFINITY);
    EXPECT_EQ(from(CVariant::Flt64, u"-2.5").ToFlt64(), -2.5);
    EXPECT_EQ(Text(from(CVariant::String, u"abc").ToString()), "abc");
    EXPECT_EQ(Text(from(CVariant::String, nullptr).ToString()), "");
    EXPECT_EQ(Text(from(CVariant::Blob, u"0BC2").ToString()), "0BC2");
    EXPECT_EQ(BlobBytes(from(CVariant::Blob, u"0bc2")), (std::vector<unsigned char>{0x0B, 0xC2}));
    EXPECT_EQ(BlobBytes(from(CVariant::Blob, u"0BC")), (std::vector<unsigned char>{0x0B})); // odd unit dropped
    EXPECT_EQ(BlobBytes(from(CVariant::Blob, u"zZ1x")), (std::vector<unsigned char>{0x00, 0x10}));
    EXPECT_EQ(BlobBytes(from(CVariant::Blob, u"")), (std::vector<unsigned char>{}));
    EXPECT_EQ(Text(from(CVariant::Undefined, u"5").ToString()), "");

    CVariant e = Colours(1);
    e.FromString(u"Green");
    EXPECT_EQ(e.getEnumValue(), 2);
    e.FromString(u"12"); // no such name: the number passes through
    EXPECT_EQ(e.getEnumValue(), 12);
    e.FromString(u"green"); // case matters, and "green" is no number
    EXPECT_EQ(e.getEnumValue(), 0);
    EXPECT_EQ(e.GetEnumCount(), 3);
}

TEST(Variant, SetValueConvertsToTheTarget) {
    CVariant s(u"old");
    s.setValue(CVariant(uint8_t(7)));
    EXPECT_EQ(Text(s.ToString()), "7");
    CVariant b(CVariant::Bool);
    b.setValue(CVariant(u"1"));
    EXPECT_FALSE(b.ToBool()); // ToBool of the text
    b.setValue(CVariant(u"yes"));
    EXPECT_TRUE(b.ToBool());
    CVariant u(CVariant::UInt32);
    u.setValue(CVariant(u"4294967295"));
    EXPECT_EQ(u.ToUInt32(), 2147483647u);
    CVariant i64(CVariant::Int64);
    i64.setValue(CVariant(u"4294967295"));
    EXPECT_EQ(i64.ToInt64(), 4294967295);
    CVariant f(CVariant::Flt32);
    f.setValue(CVariant(int32_t(-3)));
    EXPECT_EQ(f.ToFlt32(), -3.0f);

    unsigned char bytes[] = {0xAA, 0xBB};
    CVariant blob(CVariant::Blob);
    blob.setValue(CVariant(bytes, 2));
    EXPECT_EQ(Text(blob.ToString()), "AABB");
    blob.setValue(blob);
    EXPECT_EQ(Text(blob.ToString()), "AABB");
    blob.setValue(CVariant(u"CCDD")); // not a blob: cut to zero length
    EXPECT_EQ(Text(blob.ToString()), "");

    CVariant e = Colours(0);
    e.setValue(CVariant(u"Red"));
    EXPECT_EQ(e.getEnumValue(), 1);
    e.setValue(CVariant(2.9));
    EXPECT_EQ(e.getEnumValue(), 2);
    EXPECT_EQ(e.getType(), CVariant::Enum);

    CVariant undefined;
    undefined.setValue(CVariant(5));
    EXPECT_EQ(undefined.getType(), CVariant::Undefined);
}

TEST(Variant, EnumTable) {
    CVariant e = Colours(2);
    EXPECT_EQ(e.GetEnumCount(), 3);
    EXPECT_EQ(Text(e.GetEnumName(1)), "Green");
    EXPECT_EQ(e.GetEnumValue(2), 2);
    EXPECT_EQ(Text(e.GetEnumName(3)), ""); // past the count
    EXPECT_EQ(Text(e.GetEnumName(-1)), "");
    EXPECT_EQ(e.GetEnumValue(3), 0);
    EXPECT_EQ(Text(e.GetEnumNameFromValue(2)), "Green");
    EXPECT_EQ(Text(e.GetEnumNameFromValue(5)), "");
    EXPECT_EQ(e.GetEnumValueFromName(u"Verde"), 2);
    EXPECT_EQ(e.GetEnumValueFromName(u"red"), 0);
    EXPECT_EQ(e.GetEnumValueFromName(u"-17"), -17);
    EXPECT_EQ(e.GetEnumValueFromName(nullptr), 0);
    TArray<CString> names;
    names.Add(CString(u"stale"));
    e.GetEnumNames(names);
    ASSERT_EQ(names.nItems(), 3u);
    EXPECT_EQ(Text(names[0]), "Red");
    EXPECT_EQ(Text(names[2]), "Verde");

    CVariant v(int32_t(5));
    v.AddEnum(u"Five", 5);
    v.setEnumValue(5); // the table stays
    EXPECT_EQ(v.getType(), CVariant::Enum);
    EXPECT_EQ(Text(v.ToString()), "Five");
    EXPECT_EQ(v.ToInt64(), 5);
    e.ClearEnum();
    EXPECT_EQ(e.GetEnumCount(), 0);
    EXPECT_EQ(e.getEnumValue(), 2);
}

TEST(Variant, DestroyAndSetType) {
    CVariant v(u"text");
    v.setType(CVariant::String);
    EXPECT_EQ(v.getType(), CVariant::String);
    EXPECT_EQ(Text(v.ToString()), "");
    CVariant e = Colours(1);
    e.Destroy();
    EXPECT_EQ(e.getType(), CVariant::Undefined);
    EXPECT_EQ(e.GetEnumCount(), 0);
    unsigned char bytes[] = {1, 2, 3};
    CVariant blob(bytes, 3);
    blob.setType(CVariant::Blob);
    EXPECT_EQ(Text(blob.ToString()), "");
}

TEST(Variant, CopiesAreIndependent) {
    unsigned char bytes[] = {1, 2};
    CVariant blob(bytes, 2);
    CVariant copy(blob);
    copy.FromString(u"FF");
    EXPECT_EQ(Text(blob.ToString()), "0102");
    EXPECT_EQ(Text(copy.ToString()), "FF");
    CVariant e = Colours(1);
    CVariant eCopy(e);
    eCopy.AddEnum(u"Blue", 3);
    EXPECT_EQ(e.GetEnumCount(), 3);
    EXPECT_EQ(eCopy.GetEnumCount(), 4);
}

TEST(Variant, TypeNames) {
    char const *const names[] = {"Undefined", "Bool",   "Int8",  "UInt8", "Int16",  "UInt16", "Int32", "UInt32",
                                 "Int64",     "UInt64", "Flt32", "Flt64", "String", "Blob",   "Enum"};
    for (uint32_t t = 0; t < 15; ++t) {
        CVariant::EType type = CVariant::EType(t);
        EXPECT_EQ(Text(CVariant::TypeToString(type)), names[t]);
        EXPECT_EQ(CVariant::ParseType(CVariant::TypeToString(type)), type);
    }
    EXPECT_EQ(CVariant::ParseType(u"uint64"), CVariant::UInt64);
    EXPECT_EQ(CVariant::ParseType(u"BLOB"), CVariant::Blob);
    EXPECT_EQ(CVariant::ParseType(u"Int"), CVariant::Undefined);
    EXPECT_EQ(CVariant::ParseType(nullptr), CVariant::Undefined);
    EXPECT_EQ(Text(CVariant::TypeToString(CVariant::EType(15))), "Undefined");
}

} // namespace
} // namespace qv
