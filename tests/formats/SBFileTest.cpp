// The structured binary file: exact bytes, every value type, the cursor, and
// hostile files that must fail without crashing or allocating from counts.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "TreeTestSupport.h"
#include "qv/formats/tagged/SBFile.h"

using namespace qv;
using namespace qv::treetest;
using CElement = CSBFile::CElement;
using VARIANT = CSBFile::VARIANT;

namespace {

// Little-endian pieces of an expected file.
struct Layout {
    std::string s;
    Layout &Raw(std::string const &r) {
        s += r;
        return *this;
    }
    Layout &U8(uint8_t v) {
        s += char(v);
        return *this;
    }
    Layout &U32(uint32_t v) {
        for (int i = 0; i < 4; ++i) s += char(v >> (8 * i));
        return *this;
    }
    Layout &Str(std::string const &text) { // complemented, with the terminator
        U32(uint32_t(text.size() + 1));
        for (char c : text) s += char(~c);
        s += char(0xFF);
        return *this;
    }
};

std::string SaveBytes(CSBFile &sbf) {
    CMemFile f;
    Fill(f, "");
    EXPECT_TRUE(sbf.Save(&f));
    return Bytes(f);
}

bool LoadBytes(CSBFile &sbf, std::string const &bytes) {
    CMemFile f;
    Fill(f, bytes);
    return sbf.Load(&f);
}

// Root(A = long 5, datum "x") with one child Kid.
void MakeSmallTree(CSBFile &sbf) {
    sbf.SetAppInfo("TEST", 1, 2);
    CElement *root = CElement::New();
    root->SetName(u"Root");
    root->SetAttribute(u"A", int32_t(5));
    root->SetData(u"x");
    ASSERT_TRUE(sbf.Insert(root, false));
    CElement *kid = CElement::New();
    kid->SetName(u"Kid");
    ASSERT_TRUE(sbf.InsertChild(kid, false));
}

std::string SmallTreeBytes() {
    return Layout()
        .Raw(std::string("SBF\0TEST", 8))
        .U8(1)
        .U8(2)
        .U32(3)
        .Str("Root")
        .Str("A")
        .Str("Kid")
        .U32(1)
        .U32(0)
        .U32(1) // Root, one child
        .U32(2)
        .U32(0)
        .U32(0)
        .U8(0) // Kid: no children, no attributes, datum none
        .U32(1)
        .U32(1)
        .U8(6)
        .U32(5) // Root's attribute A, long 5
        .U8(12)
        .U32(2)
        .U8(uint8_t(~'x'))
        .U8(0xFF) // Root's datum "x"
        .s;
}

} // namespace

TEST(SBFWrite, ExactBytesChildrenBeforeAttributes) {
    CSBFile sbf;
    MakeSmallTree(sbf);
    EXPECT_EQ(SaveBytes(sbf), SmallTreeBytes());
}

TEST(SBFRead, SmallTreeReadsBackWithAllItsParts) {
    CSBFile sbf;
    sbf.SetAppInfo("TEST", 0, 0);
    ASSERT_TRUE(LoadBytes(sbf, SmallTreeBytes()));
    char id[5];
    uint8_t major = 0, minor = 0;
    sbf.GetAppInfo(id, major, minor);
    EXPECT_STREQ(id, "TEST");
    EXPECT_EQ(major, 1);
    EXPECT_EQ(minor, 2);
    EXPECT_EQ(Narrow(sbf.Curr().GetName()), "Root");
    EXPECT_EQ(int32_t(sbf.Curr().GetAttribute(u"a")), 5);
    EXPECT_EQ(Narrow(sbf.Curr().GetData()), "x");
    ASSERT_TRUE(sbf.Child(false));
    EXPECT_EQ(Narrow(sbf.Curr().GetName()), "Kid");
    EXPECT_EQ(sbf.Curr().GetData().GetType(), VARIANT::VT_NONE);
    EXPECT_EQ(SaveBytes(sbf), SmallTreeBytes());
}

TEST(SBFRead, AnotherIdentifierIsRefused) {
    CSBFile sbf;
    sbf.SetAppInfo("TAGF", 0, 0);
    EXPECT_FALSE(LoadBytes(sbf, SmallTreeBytes()));
    sbf.SetAppInfo("TE", 0, 0); // compared up to the zero byte
    EXPECT_FALSE(LoadBytes(sbf, SmallTreeBytes()));
}

TEST(SBFValues, EveryTypeRoundTripsAndConverts) {
    CSBFile sbf;
    sbf.SetAppInfo("VALS", 0, 1);
    CElement *e = CElement::New();
    e->SetName(u"v");
    e->SetAttribute(u"bool", true);
    e->SetAttribute(u"char", char(-3));
    e->SetAttribute(u"uchar", static_cast<unsigned char>(200));
    e->SetAttribute(u"short", int16_t(-300));
    e->SetAttribute(u"ushort", uint16_t(60000));
    e->SetAttribute(u"long", int32_t(-70000));
    e->SetAttribute(u"ulong", uint32_t(4000000000u));
    e->SetAttribute(u"int64", int64_t(-5000000000LL));
    e->SetAttribute(u"uint64", uint64_t(10000000000ULL));
    e->SetAttribute(u"float", 1.5f);
    e->SetAttribute(u"double", -2.25);
    e->SetAttribute(u"string", u"Yes");
    e->SetAttribute(u"null", static_cast<char16_t const *>(nullptr));
    e->SetAttribute(u"empty", u"");
    uint8_t blob[3] = {0, 1, 0xFF};
    e->SetData(blob, 3);
    sbf.Insert(e, false);
    CSBFile back;
    back.SetAppInfo("VALS", 0, 0);
    ASSERT_TRUE(LoadBytes(back, SaveBytes(sbf)));
    CElement &v = back.Curr();
    EXPECT_EQ(Narrow(v.GetAttribute(u"bool")), "true");
    EXPECT_EQ(Narrow(v.GetAttribute(u"char")), "-3");
    EXPECT_EQ(Narrow(v.GetAttribute(u"uchar")), "200");
    EXPECT_EQ(Narrow(v.GetAttribute(u"short")), "-300");
    EXPECT_EQ(Narrow(v.GetAttribute(u"ushort")), "60000");
    EXPECT_EQ(Narrow(v.GetAttribute(u"long")), "-70000");
    EXPECT_EQ(Narrow(v.GetAttribute(u"ulong")), "4000000000");
    EXPECT_EQ(Narrow(v.GetAttribute(u"int64")), "-5000000000");
    EXPECT_EQ(Narrow(v.GetAttribute(u"uint64")), "10000000000");
    EXPECT_EQ(Narrow(v.GetAttribute(u"float")), "1.500000e+000");
    EXPECT_EQ(Narrow(v.GetAttribute(u"double")), "-2.250000e+000");
    EXPECT_EQ(double(v.GetAttribute(u"double")), -2.25);
    EXPECT_EQ(int32_t(v.GetAttribute(u"double")), -2);
    EXPECT_TRUE(bool(v.GetAttribute(u"string")));
    EXPECT_EQ(v.GetAttribute(u"null").GetType(), VARIANT::VT_STRING);
    EXPECT_FALSE(bool(v.GetAttribute(u"null")));
    EXPECT_EQ(Narrow(v.GetAttribute(u"null")), "");
    EXPECT_EQ(Narrow(v.GetAttribute(u"empty")), "");
    ASSERT_EQ(v.GetData().GetBinarySize(), 3u);
    EXPECT_EQ(std::memcmp(v.GetData().GetBinary(), blob, 3), 0);
    EXPECT_EQ(v.GetAttribute(u"absent").GetType(), VARIANT::VT_NONE);
    EXPECT_EQ(int32_t(v.GetAttribute(u"absent", int32_t(7))), 7);
    EXPECT_EQ(Narrow(v.GetAttribute(u"absent", u"dflt")), "dflt");
    EXPECT_TRUE(v.RemoveAttribute(u"BOOL"));
    EXPECT_FALSE(v.AttributeExists(u"bool"));
}

TEST(SBFValues, StringsAreComplementedInTheFile) {
    CSBFile sbf;
    sbf.SetAppInfo("TEST", 0, 0);
    CElement *e = CElement::New();
    e->SetName(u"PlainName");
    e->SetData(u"secret text");
    sbf.Insert(e, false);
    std::string bytes = SaveBytes(sbf);
    EXPECT_EQ(bytes.find("PlainName"), std::string::npos);
    EXPECT_EQ(bytes.find("secret"), std::string::npos);
}

TEST(SBFStrings, TableLookupIgnoresCaseAndIndexPastEndIsEmpty) {
    CSBFile sbf;
    EXPECT_EQ(sbf.GetString(u"Name"), 0u);
    EXPECT_EQ(sbf.GetString(u"NAME"), 0u);
    EXPECT_EQ(sbf.GetString(u"other"), 1u);
    EXPECT_EQ(Narrow(sbf.GetString(7u)), "");
    // A name index past the table gives the empty name.
    std::string bytes = Layout()
                            .Raw(std::string("SBF\0TEST", 8))
                            .U8(0)
                            .U8(0)
                            .U32(1)
                            .U32(0) // one string of length 0
                            .U32(1)
                            .U32(9)
                            .U32(0)
                            .U32(0)
                            .U8(0)
                            .s;
    sbf.SetAppInfo("TEST", 0, 0);
    ASSERT_TRUE(LoadBytes(sbf, bytes));
    EXPECT_EQ(Narrow(sbf.Curr().GetName()), "");
    uint32_t first = 0;
    EXPECT_EQ(Narrow(sbf.GetString(first)), "");
}

TEST(SBFCursor, ChildAllowEmptyThenInsertMakesTheFirstChild) {
    CSBFile sbf;
    EXPECT_EQ(Narrow(sbf.Curr().GetName()), ""); // an empty element, no failure
    EXPECT_FALSE(sbf.IsValid());
    CElement *a = CElement::New();
    a->SetName(u"a");
    sbf.Insert(a, false);
    EXPECT_FALSE(sbf.Child(false));
    ASSERT_TRUE(sbf.Child(true));
    CElement *b = CElement::New();
    b->SetName(u"b");
    ASSERT_TRUE(sbf.Insert(b, false));
    EXPECT_EQ(sbf.GetCurr()->parent, a);
    EXPECT_EQ(a->NumChildren(), 1u);
    CElement *c = CElement::New();
    c->SetName(u"c");
    ASSERT_TRUE(sbf.Insert(c, true));
    EXPECT_EQ(a->firstChild, c);
    EXPECT_TRUE(sbf.Root());
    EXPECT_TRUE(sbf.FindFirstChild(u"B"));
    EXPECT_TRUE(sbf.Remove()); // the last of two: the parent's links stay right
    EXPECT_EQ(a->lastChild, c);
    EXPECT_EQ(sbf.GetCurr(), c);
    EXPECT_TRUE(sbf.Remove());
    EXPECT_EQ(sbf.GetCurr(), a);
    EXPECT_EQ(a->firstChild, nullptr);
}

TEST(SBFHostile, TruncationsAndHugeCountsFail) {
    std::string good = SmallTreeBytes();
    for (size_t n = 0; n < good.size(); ++n) {
        CSBFile sbf;
        sbf.SetAppInfo("TEST", 0, 0);
        EXPECT_FALSE(LoadBytes(sbf, good.substr(0, n))) << n;
    }
    std::string header = std::string("SBF\0TEST", 8) + "\1\2";
    char const *hostile[] = {
        "\xFF\xFF\xFF\xFF",                 // string count
        "\0\0\0\0\xFF\xFF\xFF\xFF",         // top-level count
        "\1\0\0\0\xF0\xFF\xFF\xFF",         // string length
        "\0\0\0\0\1\0\0\0\0\0\0\0\xFF\xFF\xFF\xFF", // child count
    };
    size_t lengths[] = {4, 8, 8, 16};
    for (size_t i = 0; i < 4; ++i) {
        CSBFile sbf;
        sbf.SetAppInfo("TEST", 0, 0);
        EXPECT_FALSE(LoadBytes(sbf, header + std::string(hostile[i], lengths[i]))) << i;
    }
    // A bad type byte.
    std::string bad = good;
    bad[bad.size() - 7] = 14; // the datum's type
    CSBFile sbf;
    sbf.SetAppInfo("TEST", 0, 0);
    EXPECT_FALSE(LoadBytes(sbf, bad));
}

TEST(SBFHostile, HundredThousandDeepLoadsAndSavesWithoutRecursion) {
    int const depth = 100000;
    Layout b;
    b.Raw(std::string("SBF\0DEEP", 8)).U8(0).U8(0).U32(1).Str("n").U32(1);
    for (int i = 0; i < depth; ++i) b.U32(0).U32(i + 1 < depth ? 1 : 0);
    for (int i = 0; i < depth; ++i) b.U32(0).U8(0);
    CSBFile sbf;
    sbf.SetAppInfo("DEEP", 0, 0);
    ASSERT_TRUE(LoadBytes(sbf, b.s));
    EXPECT_EQ(SaveBytes(sbf), b.s);
}

TEST(SBFByPath, SavesWholeAndLoads) {
    saftest::ScratchDir dir;
    std::string path = dir.Path("t.sbf");
    WriteAll(path, "previous");
    CSBFile sbf;
    MakeSmallTree(sbf);
    ASSERT_TRUE(sbf.Save(Wide(path).c_str()));
    EXPECT_EQ(ReadAll(path), SmallTreeBytes());
    CSBFile back;
    back.SetAppInfo("TEST", 0, 0);
    EXPECT_TRUE(back.Load(Wide(path).c_str()));
    EXPECT_FALSE(back.Load(Wide(dir.Path("none")).c_str()));
}
