// The operations every POD table has through IPODFile: merging a column by
// key, duplicating, the column and cell proxies, units of dictionary tags.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qv/formats/tagged/SAFFile.h"
#include "qv/formats/tagged/TagFile.h"
#include "qv/tables/PODFile.h"

namespace {

using qv::CPODFile;

std::u16string Wide(std::string const &s) { return std::u16string(s.begin(), s.end()); }

std::string Narrow(char16_t const *s) {
    if (!s) return "(null)";
    std::string out;
    for (; *s; ++s) out += char(*s);
    return out;
}

// A new table with the given columns (name and unit) and rows of cells.
void Build(CPODFile &pod, std::vector<std::pair<std::string, std::string>> const &columns,
           std::vector<std::vector<std::string>> const &rows) {
    ASSERT_TRUE(pod.New());
    for (auto const &[name, unit] : columns)
        ASSERT_NE(pod.AddColumn(Wide(name).c_str(), u"Cls", Wide(unit).c_str(), u"T"), qv::kPODNone);
    pod.AllocRows(uint32_t(rows.size()));
    for (uint32_t r = 0; r < rows.size(); ++r)
        for (uint32_t c = 0; c < rows[r].size(); ++c) ASSERT_TRUE(pod.PutValue(c, r, Wide(rows[r][c]).c_str()));
}

std::vector<std::string> Column(CPODFile &pod, char16_t const *name) {
    uint32_t col = 0;
    std::vector<std::string> out;
    if (!pod.FindColumn(name, col)) return out;
    for (uint32_t r = 0; r < pod.nDPs(); ++r) out.push_back(Narrow(pod.GetValue(col, r)));
    return out;
}

// Dictionary entries for one test, gone after it.
struct ScopedTags {
    std::vector<std::u16string> names;
    void Add(char16_t const *name, int units) {
        qv::CTagEntry entry;
        entry.SetName(name);
        entry.SetUnits(qv::CTagEntry::UNITS(units));
        ASSERT_TRUE(qv::GetTagFile().AddTagEntry(entry));
        qv::GetTagFile().Sort();
        names.emplace_back(name);
    }
    ~ScopedTags() {
        for (auto const &name : names) {
            uint32_t i = 0;
            if (qv::GetTagFile().FindTag(name.c_str(), i)) qv::GetTagFile().RemoveTagEntry(i);
        }
    }
};

TEST(PODMerge, TextIsCopiedFromTheNearerAddRowAndTheOtherColumnIsTaken) {
    CPODFile pod, add;
    Build(pod, {{"Time", "seconds"}}, {{"0"}, {"10"}, {"15"}, {"20"}, {"26"}, {"40"}});
    Build(add, {{"Time", "seconds"}, {"Label", "None"}}, {{"10", "a"}, {"20", "b"}, {"30", "c"}});
    ASSERT_TRUE(pod.MergeWith(add, u"time", u"%f(1)", nullptr, nullptr, false, false));
    EXPECT_EQ(Narrow(pod.GetError()), "No Error.");
    // 0 lies before the first key, 40 after the last: left empty; 15 is
    // halfway and takes the earlier row.
    EXPECT_EQ(Column(pod, u"Label"), (std::vector<std::string>{"", "a", "a", "b", "c", ""}));
    char16_t const *unit = nullptr;
    uint32_t col = 0;
    ASSERT_TRUE(pod.FindColumn(u"Label", col));
    ASSERT_TRUE(pod.GetColumnInfo(col, nullptr, nullptr, &unit, nullptr));
    EXPECT_EQ(Narrow(unit), "None");

    for (uint32_t r = 0; r < pod.nDPs(); ++r) ASSERT_TRUE(pod.PutValue(col, r, u"old"));
    ASSERT_TRUE(pod.MergeWith(add, u"Time", u"%f(1)", u"Label", nullptr, true, false));
    EXPECT_EQ(Column(pod, u"Label"), (std::vector<std::string>{"old", "a", "a", "b", "c", "old"}));
}

TEST(PODMerge, FailuresLeaveTheirTextAndNothingChanged) {
    CPODFile pod, add, three;
    Build(pod, {{"Time", "seconds"}}, {{"1s"}, {"2x"}});
    Build(add, {{"Time", "seconds"}, {"V", "None"}}, {{"1s", "a"}});
    Build(three, {{"Time", "seconds"}, {"V", "None"}, {"W", "None"}}, {{"1", "a", "b"}});
    EXPECT_FALSE(pod.MergeWith(add, u"Frame", u"%f(1)", u"V", nullptr, false, false));
    EXPECT_EQ(Narrow(pod.GetError()), "Key column does not exist in pod file or add file.");
    EXPECT_FALSE(pod.MergeWith(three, u"Time", u"%f(1)", nullptr, nullptr, false, false));
    EXPECT_EQ(Narrow(pod.GetError()), "Key column does not exist in pod file or add file.");
    EXPECT_FALSE(pod.MergeWith(add, u"Time", u"%f(1)", u"Nope", nullptr, false, false));
    EXPECT_EQ(Narrow(pod.GetError()), "Add column does not exists in add file.");
    EXPECT_EQ(pod.nParams(), 1u);
    EXPECT_FALSE(pod.MergeWith(add, u"Time", u"%f(1)s", u"V", nullptr, false, false));
    EXPECT_EQ(Narrow(pod.GetError()), "Could not get value from data \"2x\" with format \"%f(1)s\".");
    EXPECT_EQ(pod.nParams(), 1u);
}

TEST(PODMerge, ValuesInterpolateAndADegreeColumnUnwrapsAndWrapsBack) {
    CPODFile pod, add;
    Build(pod, {{"Time", "seconds"}}, {{"0"}, {"1"}, {"3"}, {"4"}});
    Build(add, {{"Time", "seconds"}, {"Az", "degrees"}}, {{"0", "359"}, {"4", "1"}});
    ASSERT_TRUE(pod.MergeWith(add, u"Time", u"%f(1)", u"Az", u"%f(1)", false, false));
    // 359 and 1 read as 359 and 361; 360.5 is written as 0.5.
    EXPECT_EQ(Column(pod, u"Az"), (std::vector<std::string>{"359", "359.5", "0.5", "1"}));
}

TEST(PODMerge, IrigKeysRollOverMidnightOnlyWhenAsked) {
    CPODFile pod, add;
    Build(pod, {{"Stamp", "IRIG"}}, {{"86399"}, {"1"}});
    Build(add, {{"Stamp", "IRIG"}, {"V", "None"}}, {{"86398", "0"}, {"86402", "4"}});
    ASSERT_TRUE(pod.MergeWith(add, u"Stamp", u"%f(1)", u"V", u"%f(1)", false, true));
    EXPECT_EQ(Column(pod, u"V"), (std::vector<std::string>{"1", "3"}));
    ASSERT_TRUE(pod.MergeWith(add, u"Stamp", u"%f(1)", u"V", u"%f(1)", false, false));
    EXPECT_EQ(Column(pod, u"V"), (std::vector<std::string>{"1", ""}));
}

TEST(PODMerge, DictionaryUnitConvertsTheValuesAndNamesTheNewColumn) {
    ScopedTags tags;
    tags.Add(u"MergeAltitude", 19); // Kilometers
    tags.Add(u"MergeOdd", 19);
    CPODFile pod, add, odd;
    Build(pod, {{"Time", "seconds"}}, {{"0"}, {"2"}});
    Build(add, {{"Time", "seconds"}, {"MergeAltitude", "m"}}, {{"0", "1000"}, {"2", "3000"}});
    ASSERT_TRUE(pod.MergeWith(add, u"Time", u"%f(1)", nullptr, u"%f(1)", false, false));
    EXPECT_EQ(Column(pod, u"MergeAltitude"), (std::vector<std::string>{"1", "3"}));
    uint32_t col = 0;
    char16_t const *unit = nullptr;
    ASSERT_TRUE(pod.FindColumn(u"MergeAltitude", col));
    ASSERT_TRUE(pod.GetColumnInfo(col, nullptr, nullptr, &unit, nullptr));
    EXPECT_EQ(Narrow(unit), "Kilometers");
    EXPECT_TRUE(pod.IsCorrectUnit(u"MergeAltitude", u"KILOMETERS"));
    EXPECT_FALSE(pod.IsCorrectUnit(u"MergeAltitude", u"m"));
    EXPECT_TRUE(pod.IsCorrectUnit(u"NoSuchTag", u"m"));
    EXPECT_EQ(pod.GetUnitConversionIndex(u"MergeAltitude"), 2);
    EXPECT_EQ(pod.GetUnitConversionIndex(u"NoSuchTag"), -1);

    Build(odd, {{"Time", "seconds"}, {"MergeOdd", "parsecs"}}, {{"0", "1"}});
    EXPECT_FALSE(pod.MergeWith(odd, u"Time", u"%f(1)", nullptr, u"%f(1)", false, false));
    EXPECT_EQ(Narrow(pod.GetError()), "No appropriate conversion available.");
}

TEST(PODContract, DuplicateCopiesHeaderEveryLiveColumnAndEveryCell) {
    CPODFile pod, copy;
    Build(pod, {{"A", "m"}, {"B", "s"}, {"C", "deg"}}, {{"a0", "b0", "c0"}, {"a1", "b1", "c1"}});
    ASSERT_TRUE(pod.GetHeader().AddTag(u"Camera", u"One"));
    pod.RemoveCol(1); // a removed column below the top costs no live one
    ASSERT_TRUE(pod.MakeDuplicate(copy));
    ASSERT_EQ(copy.nParams(), 2u);
    ASSERT_EQ(copy.nDPs(), 2u);
    EXPECT_EQ(Narrow(copy.GetHeader().GetTagValue(u"Camera")), "One");
    EXPECT_EQ(Column(copy, u"C"), (std::vector<std::string>{"c0", "c1"}));
    EXPECT_EQ(Column(copy, u"A"), (std::vector<std::string>{"a0", "a1"}));
    uint32_t col = 0;
    EXPECT_FALSE(copy.FindColumn(u"B", col));
    EXPECT_FALSE(pod.MakeDuplicate(pod));
}

TEST(PODContract, ProxiesReadAndWriteColumnsAndCells) {
    CPODFile pod;
    Build(pod, {{"A", "m"}}, {{"7"}, {"x"}});
    qv::IPODFile &table = pod;
    EXPECT_EQ(Narrow(table[0].unit), "m");
    table[0].name = u"Alpha";
    EXPECT_EQ(Narrow(table[0u].name), "Alpha");
    EXPECT_EQ(Narrow(table[0].cls), "Cls"); // only the one property changed
    EXPECT_EQ(int(table[0][0]), 7);
    EXPECT_EQ(int(table[0][1]), 0);
    table[0][1] = -42;
    EXPECT_EQ(Narrow(table[0][1]), "-42");
    // Naming a column that does not exist creates it.
    auto added = table[u"Beta"];
    EXPECT_EQ(added.GetIndex(), 1u);
    EXPECT_EQ(Narrow(added.cls), "Unclassified");
    EXPECT_EQ(Narrow(added.unit), "None");
    EXPECT_EQ(Narrow(added.type), "");
    EXPECT_EQ(table[u"alpha"].GetIndex(), 0u);
    table[u"Beta"][0] = table[0][1];
    EXPECT_EQ(Narrow(pod.GetValue(1, 0)), "-42");
    table[1][1] = u"text";
    EXPECT_EQ(Narrow(table[u"Beta"][1]), "text");
    EXPECT_EQ(static_cast<char16_t const *>(table[5].name), nullptr);
}

} // namespace
