// CPropertyArray and its CEntry handles.
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "Utf8Text.h"
#include "qv/core/PropertyArray.h"

namespace qv {
namespace {

std::string Text(char16_t const *s) {
    return Utf8(s, wcslen(s));
}

TEST(PropertyArray, NamesIgnoreCase) {
    CPropertyArray p;
    p[u"a"] = 1;
    p[u"A"] = 2;
    ASSERT_EQ(p.nValues(), 1);
    EXPECT_EQ(Text(p.GetValue(u"a")), "2");
    EXPECT_EQ(Text(p.ConstGetItem(0).name), "a"); // the first spelling stays
    p.SetValue(u"Name", u"x");
    p.SetValue(u"other", nullptr);
    EXPECT_EQ(p.FindValue(u"NAME"), 1);
    EXPECT_EQ(p.FindValue(u"missing"), -1);
    EXPECT_EQ(Text(p.GetValue(u"missing")), "");
    EXPECT_EQ(Text(p.GetValue(u"OTHER")), "");
    EXPECT_EQ(p.nValues(), 3);
    p.Clear();
    EXPECT_EQ(p.nValues(), 0);
}

TEST(PropertyArray, EntriesReadAndWriteText) {
    CPropertyArray p;
    CPropertyArray::CEntry absent = p[u"none"];
    EXPECT_FALSE(absent.Exists());
    EXPECT_EQ(Text(absent), "");
    EXPECT_EQ(int(absent), 0);
    EXPECT_EQ(double(absent), 0.0);
    EXPECT_EQ(int64_t(absent), 0);
    EXPECT_EQ(static_cast<void *>(absent), nullptr);
    EXPECT_EQ(p.nValues(), 0); // reading creates nothing

    p[u"int"] = -42;
    p[u"big"] = int64_t(-9000000000);
    p[u"real"] = 1.5;
    p[u"text"] = u"hello";
    EXPECT_EQ(Text(p.GetValue(u"int")), "-42");
    EXPECT_EQ(Text(p.GetValue(u"big")), "-9000000000");
    EXPECT_EQ(Text(p.GetValue(u"real")), "1.500000");
    EXPECT_EQ(int(p[u"INT"]), -42);
    EXPECT_EQ(int64_t(p[u"big"]), -9000000000);
    EXPECT_EQ(double(p[u"real"]), 1.5);
    EXPECT_EQ(Text(p[u"text"]), "hello");
    EXPECT_TRUE(p[u"Text"].Exists());
    p[u"huge"] = u"99999999999";
    EXPECT_EQ(int(p[u"huge"]), INT_MAX); // _wtol saturates
    p[u"copy"] = p[u"text"];             // writes the value, not the handle
    EXPECT_EQ(Text(p.GetValue(u"copy")), "hello");
    p[u"text"] = p[u"TEXT"];
    EXPECT_EQ(Text(p.GetValue(u"text")), "hello");
}

TEST(PropertyArray, PointersKeepTheirFullWidth) {
    CPropertyArray p;
    void *high = reinterpret_cast<void *>(uintptr_t(0x00007F12345678ABu));
    p[u"Data"] = high;
    EXPECT_EQ(Text(p.GetValue(u"Data")), "0x00007F12345678AB");
    EXPECT_EQ(static_cast<void *>(p[u"data"]), high);
    p[u"Data"] = static_cast<void *>(nullptr);
    EXPECT_EQ(Text(p.GetValue(u"Data")), "0x0000000000000000");
    EXPECT_EQ(static_cast<void *>(p[u"Data"]), nullptr);
    p[u"Data"] = u"0xabc";
    EXPECT_EQ(static_cast<void *>(p[u"Data"]), reinterpret_cast<void *>(uintptr_t(0xABC)));
    p[u"Data"] = u"12345"; // no "0x": not a pointer
    EXPECT_EQ(static_cast<void *>(p[u"Data"]), nullptr);
}

TEST(PropertyArray, IndexedEntriesAndCopies) {
    CPropertyArray p;
    p[u"first"] = u"1";
    p[u"second"] = u"2";
    EXPECT_EQ(Text(p[1]), "2");
    EXPECT_TRUE(p[0].Exists());
    CPropertyArray::CEntry past = p[2]; // an empty name
    EXPECT_FALSE(past.Exists());
    EXPECT_EQ(Text(p[-1]), "");
    past = u"made"; // writing creates the entry under the empty name
    EXPECT_EQ(p.nValues(), 3);
    EXPECT_EQ(Text(p.GetValue(u"")), "made");

    CPropertyArray copy(p);
    copy[u"first"] = u"changed";
    EXPECT_EQ(Text(p.GetValue(u"first")), "1");
    CPropertyArray assigned;
    assigned = copy;
    EXPECT_EQ(Text(assigned.GetValue(u"first")), "changed");
    EXPECT_EQ(assigned.nValues(), 3);
}

} // namespace
} // namespace qv
