// The tag dictionary: the binary form byte for byte, its version rules and
// its odd required cases, the SBF and XML forms and round trips between all
// three, name patterns and the order of numbered tags, hostile files.
#include <gtest/gtest.h>

#include <string>

#include "TreeTestSupport.h"
#include "support/FaultInjection.h"
#include "qv/formats/tagged/SBFile.h"
#include "qv/formats/tagged/TagFile.h"
#include "qv/formats/tagged/XMLFile.h"

using namespace qv;
using namespace qv::treetest;

namespace {

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
    Layout &U16(uint16_t v) {
        s += char(v);
        s += char(v >> 8);
        return *this;
    }
    Layout &U32(uint32_t v) {
        for (int i = 0; i < 4; ++i) s += char(v >> (8 * i));
        return *this;
    }
    Layout &U64(uint64_t v) {
        for (int i = 0; i < 8; ++i) s += char(v >> (8 * i));
        return *this;
    }
    Layout &Str(std::string const &text) {
        U32(uint32_t(text.size()));
        s += text;
        return *this;
    }
};

CTagEntry Entry(char16_t const *name, CTagEntry::DATA_TYPE type = CTagEntry::DT_TEXT) {
    CTagEntry e;
    e.SetName(name);
    e.SetDataType(type);
    return e;
}

std::string Saved(CTagFile &tags, bool (CTagFile::*save)(IFile *)) {
    CMemFile f;
    Fill(f, "");
    EXPECT_TRUE((tags.*save)(&f));
    return Bytes(f);
}

bool Loaded(CTagFile &tags, std::string const &bytes) {
    CMemFile f;
    Fill(f, bytes);
    return tags.Load(&f);
}

// Every field of every entry, as text.
std::string Describe(CTagFile &tags) {
    std::string out;
    for (uint32_t i = 0; i < tags.nTagEntries(); ++i) {
        CTagEntry &e = tags[i];
        bool use = false;
        double low = 0, high = 0;
        e.GetNumericBounds(use, low, high);
        out += Narrow(e.GetName()) + "|" + Narrow(e.GetDescription()) + "|" + std::to_string(e.GetDataType()) + "|" +
               std::to_string(use) + "|" + std::to_string(low) + "|" + std::to_string(high) + "|" +
               std::to_string(e.GetTextValuesMode()) + "|" + std::to_string(e.GetCategory()) + "|" +
               std::to_string(e.GetWriteMode()) + "|" + std::to_string(e.GetUnits()) + "|" +
               std::to_string(e.GetLocation());
        for (uint32_t t = 0; t < e.nTextValues(); ++t) out += "|" + Narrow(e.GetTextValue(t));
        out += "\n";
    }
    return out;
}

// A dictionary that uses every field, in a form all three stores keep.
void MakeDictionary(CTagFile &tags) {
    CTagEntry width = Entry(u"xPixls", CTagEntry::DT_INT32);
    width.SetDescription(u"Width in pixels, caf\u00e9");
    width.SetNumericBounds(true, 1, 65535);
    width.SetCategory(CTagEntry::CATEGORY(6));
    width.SetUnits(CTagEntry::UNITS(0));
    width.SetWriteMode(CTagEntry::WM_READ_ONLY);
    tags.AddTagEntry(width);
    CTagEntry order = Entry(u"BytOrd");
    order.SetTextValuesMode(CTagEntry::TVM_USE_AS_BOUNDS);
    order.AddTextValue(u"LH");
    order.AddTextValue(u"HL");
    order.SetCategory(CTagEntry::CATEGORY(13));
    order.SetLocation(CTagEntry::LOC_INCLUDE);
    tags.AddTagEntry(order);
    CTagEntry lens = Entry(u"Lens%2%Focal", CTagEntry::DT_FLT64);
    lens.SetNumericBounds(true, 0.1, 1234567.875);
    lens.SetUnits(CTagEntry::UNITS(13));
    lens.SetCategory(CTagEntry::CATEGORY(8));
    tags.AddTagEntry(lens);
    CTagEntry comment = Entry(u"Comment");
    comment.SetCategory(CTagEntry::CAT_COMMENT);
    comment.SetWriteMode(CTagEntry::WM_ALL);
    tags.AddTagEntry(comment);
}

} // namespace

TEST(TagEntryTexts, EnumerationsAsFilesSpellThem) {
    EXPECT_EQ(Narrow(CTagEntry::UnitsToStr(13)), "Milimeters");
    EXPECT_EQ(Narrow(CTagEntry::UnitsToStr(17)), "Milibar");
    EXPECT_EQ(Narrow(CTagEntry::UnitsToStr(99)), "None");
    EXPECT_EQ(Narrow(CTagEntry::CategoryToStr(17)), "Comment Tags");
    EXPECT_EQ(CTagEntry::StrToCategory(u"impact/launch INFO"), 10);
    CTagEntry::WRITE_MODE mode = CTagEntry::WM_ALL;
    EXPECT_FALSE(CTagEntry::StrToWriteMode(u"nope", mode));
    EXPECT_EQ(mode, 0);
    EXPECT_EQ(CTagEntry::StrToTextValuesMode(u"use as suggestions"), 2);
}

TEST(TagFileBinary, ExactBytes) {
    CTagFile tags;
    CTagEntry e = Entry(u"Gain", CTagEntry::DT_INT16);
    e.SetDescription(u"\u00e9"); // code page 1252: one byte
    e.SetNumericBounds(true, -1.5, 300.9);
    e.SetTextValuesMode(CTagEntry::TVM_USE_AS_SUGGESTIONS);
    e.AddTextValue(u"1");
    e.SetCategory(CTagEntry::CATEGORY(6));
    e.SetUnits(CTagEntry::UNITS(3));
    e.SetWriteMode(CTagEntry::WM_ALL);
    e.SetLocation(CTagEntry::LOC_DEFAULT);
    tags.AddTagEntry(e);
    std::string expected = Layout()
                               .Raw("TAGF")
                               .U8(3)
                               .U32(1)
                               .Str("Gain")
                               .U16(0x2000 | 0x4000 | 0x0002 | 0x0001)
                               .Str("\xE9")
                               .U8(6)
                               .U8(3)
                               .U8(2)
                               .U8(2)
                               .U64(uint64_t(-1))
                               .U64(300) // truncated
                               .U32(1)
                               .Str("1")
                               .s;
    EXPECT_EQ(Saved(tags, &CTagFile::SaveBinary), expected);
    CTagFile back;
    ASSERT_TRUE(Loaded(back, expected));
    bool use = false;
    double low = 0, high = 0;
    back[0].GetNumericBounds(use, low, high);
    EXPECT_TRUE(use);
    EXPECT_EQ(low, -1.0);
    EXPECT_EQ(high, 300.0);
    EXPECT_EQ(back[0].GetDataType(), CTagEntry::DT_INT16);
    EXPECT_EQ(back[0].GetTextValuesMode(), CTagEntry::TVM_USE_AS_SUGGESTIONS);
    EXPECT_EQ(Narrow(back[0].GetDescription()), "\xC3\xA9");
}

TEST(TagFileBinary, Flt32HasNoBoundsAndModeZeroLosesTextValues) {
    CTagFile tags;
    CTagEntry f32 = Entry(u"A", CTagEntry::DT_FLT32);
    f32.SetNumericBounds(true, 1, 2);
    f32.AddTextValue(u"kept only in memory");
    tags.AddTagEntry(f32);
    std::string bytes = Saved(tags, &CTagFile::SaveBinary);
    EXPECT_EQ(bytes, Layout().Raw("TAGF").U8(3).U32(1).Str("A").U16(0x2008).Str("").U32(0).s);
    CTagFile back;
    ASSERT_TRUE(Loaded(back, bytes));
    bool use = false;
    double low = 9, high = 9;
    back[0].GetNumericBounds(use, low, high);
    EXPECT_TRUE(use);
    EXPECT_EQ(low, 0.0);
    EXPECT_EQ(back[0].nTextValues(), 0u);
}

// A tree form may hold any number as a data type; the binary form writes
// one it does not know as text rather than read outside its flag table.
TEST(TagFileBinary, UnknownDataTypeIsWrittenAsText) {
    for (int type : {-254, 5, 1 << 30}) {
        CTagFile tags;
        CTagEntry e = Entry(u"A", CTagEntry::DT_TEXT);
        e.SetDataType(CTagEntry::DATA_TYPE(type));
        tags.AddTagEntry(e);
        EXPECT_EQ(Saved(tags, &CTagFile::SaveBinary),
                  Layout().Raw("TAGF").U8(3).U32(1).Str("A").U16(0x0001).Str("").U32(0).s);
    }
}

TEST(TagFileBinary, VersionsDecideTheBytesRead) {
    // Version 0: no category, units, write mode or location; location 1.
    std::string v0 = Layout().Raw("TAGF").U8(0).U32(1).Str("A").U16(1).Str("d").s;
    CTagFile tags;
    ASSERT_TRUE(Loaded(tags, v0));
    EXPECT_EQ(tags[0].GetLocation(), CTagEntry::LOC_INCLUDE);
    // Version 1: category and write mode; location 0.
    std::string v1 = Layout().Raw("TAGF").U8(1).U32(1).Str("A").U16(1).Str("d").U8(5).U8(3).s;
    ASSERT_TRUE(Loaded(tags, v1));
    EXPECT_EQ(tags[0].GetCategory(), 5);
    EXPECT_EQ(tags[0].GetWriteMode(), 3);
    EXPECT_EQ(tags[0].GetLocation(), CTagEntry::LOC_HEADER);
    // Version 2 adds units between them.
    std::string v2 = Layout().Raw("TAGF").U8(2).U32(1).Str("A").U16(1).Str("d").U8(5).U8(9).U8(3).s;
    ASSERT_TRUE(Loaded(tags, v2));
    EXPECT_EQ(tags[0].GetUnits(), 9);
    EXPECT_EQ(tags[0].GetWriteMode(), 3);
    std::string v4 = Layout().Raw("TAGF").U8(4).U32(0).s;
    EXPECT_FALSE(Loaded(tags, v4));
}

TEST(TagFileBinary, HostileFilesFailAndKeepWhatWasRead) {
    CTagFile tags;
    EXPECT_FALSE(Loaded(tags, Layout().Raw("TAGF").U8(3).U32(0xFFFFFFFF).s));
    EXPECT_FALSE(Loaded(tags, Layout().Raw("TAGF").U8(3).U32(1).U32(0x7FFFFFF0).s));
    std::string two = Layout().Raw("TAGF").U8(3).U32(3).Str("Z").U16(1).Str("").U8(0).U8(0).U8(0).U8(0).s;
    two += Layout().Str("B").U16(1).Str("").U8(0).U8(0).U8(0).U8(0).s;
    two += Layout().Str("C").U16(0x8001).Str("").U8(0).U8(0).U8(0).U8(0).U32(0xFFFFFFFF).s;
    ASSERT_FALSE(Loaded(tags, two));
    ASSERT_EQ(tags.nTagEntries(), 2u); // unsorted: as read
    EXPECT_EQ(Narrow(tags[0].GetName()), "Z");
    std::string whole = Saved(tags, &CTagFile::SaveBinary);
    for (size_t n = 0; n + 1 < whole.size(); ++n) EXPECT_FALSE(Loaded(tags, whole.substr(0, n))) << n;
}

TEST(TagFilePatterns, WidthsAndRuns) {
    EXPECT_TRUE(CTagFile::MatchesPattern(u"lens07focal", u"Lens%2%Focal"));
    EXPECT_FALSE(CTagFile::MatchesPattern(u"Lens7Focal", u"Lens%2%Focal"));
    EXPECT_FALSE(CTagFile::MatchesPattern(u"Lens107Focal", u"Lens%2%Focal"));
    EXPECT_TRUE(CTagFile::MatchesPattern(u"Lens107Focal", u"Lens%%Focal"));
    EXPECT_TRUE(CTagFile::MatchesPattern(u"T1x22", u"T%n%x%%"));
    EXPECT_FALSE(CTagFile::MatchesPattern(u"LensFocal", u"Lens%%Focal"));
    EXPECT_FALSE(CTagFile::MatchesPattern(u"Lens1", u"Lens%"));
}

TEST(TagFileLookup, FindCompareAndVariables) {
    CTagFile tags;
    tags.AddTagEntry(Entry(u"Alpha"));
    tags.AddTagEntry(Entry(u"Frame%%Row%%"));
    tags.AddTagEntry(Entry(u"Zulu"));
    EXPECT_FALSE(tags.AddTagEntry(Entry(u"ALPHA"))); // only case differs
    tags.Sort();
    uint32_t index = 99;
    ASSERT_TRUE(tags.FindTag(u"frame3row12", index));
    EXPECT_EQ(Narrow(tags[index].GetName()), "Frame%%Row%%");
    TArray<int> vars;
    ASSERT_TRUE(tags.GetVars(u"Frame3Row12", index, vars));
    ASSERT_EQ(vars.nItems(), 2u);
    EXPECT_EQ(vars[0], 3);
    EXPECT_EQ(vars[1], 12);
    EXPECT_LT(tags.CompareTags(u"Frame1Row9", u"Frame1Row10"), 0); // numbers, not text
    EXPECT_LT(tags.CompareTags(u"Frame9Row1", u"Frame1Row2"), 0);  // the last variable counts most
    EXPECT_EQ(tags.CompareTags(u"Frame2Row2", u"frame2row2"), 0);
    EXPECT_GT(tags.CompareTags(u"Zulu", u"Alpha"), 0);
    EXPECT_FALSE(tags.FindTag(u"Beta", index));
    EXPECT_FALSE(tags.IsComment(u"Alpha"));
    EXPECT_TRUE(tags.RemoveTagEntry(77));
    EXPECT_EQ(Narrow(tags.GetTagEntry(77).GetName()), "");
}

TEST(TagFileSort, FoldsToLowerCaseAsTheTextRuntime) {
    CTagFile tags;
    tags.AddTagEntry(Entry(u"aB"));
    tags.AddTagEntry(Entry(u"a_b"));
    tags.Sort();
    // '_' (0x5F) sorts before 'b' (0x62) once folded to lower case.
    EXPECT_EQ(Narrow(tags[0].GetName()), "a_b");
    EXPECT_EQ(Narrow(tags[1].GetName()), "aB");
}

TEST(TagFileForms, RoundTripsBetweenAllThree) {
    CTagFile original;
    MakeDictionary(original);
    original.Sort();
    std::string expected = Describe(original);
    bool (CTagFile::*saves[])(IFile *) = {&CTagFile::SaveBinary, &CTagFile::SaveSBF, &CTagFile::SaveXML};
    for (auto first : saves) {
        for (auto second : saves) {
            CTagFile a, b;
            ASSERT_TRUE(Loaded(a, Saved(original, first)));
            ASSERT_TRUE(Loaded(b, Saved(a, second)));
            EXPECT_EQ(Describe(b), expected);
        }
    }
}

TEST(TagFileForms, SbfAndXmlShapes) {
    CTagFile tags;
    MakeDictionary(tags);
    CSBFile sbf;
    sbf.SetAppInfo("TAGF", 0, 0);
    CMemFile f;
    Fill(f, Saved(tags, &CTagFile::SaveSBF));
    ASSERT_TRUE(sbf.Load(&f));
    char id[5];
    uint8_t major = 9, minor = 9;
    sbf.GetAppInfo(id, major, minor);
    EXPECT_EQ(major, 0);
    EXPECT_EQ(minor, 1);
    EXPECT_EQ(sbf.NumPeers(), 4u);
    EXPECT_EQ(Narrow(sbf.Curr().GetName()), "TagEntry");
    EXPECT_EQ(Narrow(sbf.Curr().GetAttribute(u"Name")), "BytOrd");
    EXPECT_EQ(sbf.Curr().GetAttribute(u"Location").GetType(), CSBFile::VARIANT::VT_LONG);
    EXPECT_EQ(sbf.Curr().GetAttribute(u"UseNumericBounds").GetType(), CSBFile::VARIANT::VT_BOOL);
    ASSERT_TRUE(sbf.FindFirstChild(u"TextValue"));
    EXPECT_EQ(Narrow(sbf.Curr().GetAttribute(u"Value")), "LH");

    std::string xml = Saved(tags, &CTagFile::SaveXML);
    EXPECT_EQ(xml.substr(0, 51), "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r\n<TagFile>\r");
    EXPECT_NE(xml.find("\t<TagEntry Name=\"BytOrd\" Description=\"\" DataType=\"Text\" UseNumericBounds=\"False\" "
                       "LowBound=\"0\" HighBound=\"0\" TextValuesMode=\"Use As Bounds\" Category=\"Data Tags\" "
                       "WriteMode=\"Prompt For Update\" Units=\"None\" Location=\"Include\">\r\n"
                       "\t\t<TextValue>LH</TextValue>\r\n"),
              std::string::npos)
        << xml;
    EXPECT_NE(xml.find("HighBound=\"1234567.875\""), std::string::npos); // exact, not %g's 1.23457e+006
}

TEST(TagFileForms, XmllintAcceptsTheXmlForm) {
    if (!HaveTool("xmllint")) GTEST_SKIP() << "xmllint is not installed";
    saftest::ScratchDir dir;
    CTagFile tags;
    MakeDictionary(tags);
    std::string path = dir.Path("tags.xml");
    ASSERT_TRUE(tags.SaveXML(Wide(path).c_str()));
    EXPECT_EQ(std::system(("xmllint --noout " + path).c_str()), 0);
    CTagFile back;
    ASSERT_TRUE(back.Load(Wide(path).c_str()));
    EXPECT_EQ(Describe(back), Describe(tags));
}

TEST(TagFileShared, OneDictionaryForTheProcess) {
    EXPECT_EQ(&GetTagFile(), &GetTagFile());
}

TEST(TagArray, NamesWithoutCase) {
    CTagArray tags;
    tags[u"Width"] = 320;
    tags[u"gain"] = 1.5;
    tags.Set(u"WIDTH", u"640");
    EXPECT_EQ(tags.nItems(), 2u);
    EXPECT_EQ(Narrow(tags.Get(u"width")), "640");
    EXPECT_EQ(Narrow(tags[u"GAIN"]), "1.5");
    EXPECT_EQ(tags.Get(u"none"), nullptr);
    EXPECT_EQ(tags.FindTag(u"none"), UINT32_MAX);
    CTagArray::TAG &dummy = tags[-1];
    EXPECT_EQ(&dummy, &tags[5]);
    tags[2] = u"third"; // the count itself adds one
    EXPECT_EQ(tags.nItems(), 3u);
    tags.Remove(u"Width");
    EXPECT_FALSE(tags.Exists(u"width"));
    EXPECT_EQ(tags.nItems(), 2u);
}

// Saves by path (all three forms go through the same temporary file and
// rename): under every fault the old dictionary stays whole or the new one
// is complete, and a failure that reaches the data is reported. A close or
// directory sync after the synced rename loses nothing and may pass.
TEST(TagFileFaults, SaveByPathKeepsTheOldFileWhole) {
    saftest::ScratchDir dir;
    std::string path = dir.Path("tags.xml");
    CTagFile tags;
    MakeDictionary(tags);
    using SaveByPath = bool (CTagFile::*)(IFileSystem *, char16_t const *);
    for (SaveByPath save : {SaveByPath(&CTagFile::SaveXML), SaveByPath(&CTagFile::SaveSBF),
                            SaveByPath(&CTagFile::SaveBinary)}) {
        qv::test::FaultBytes before, after;
        qv::test::RunUnderFaults(
            [&] {
                WriteAll(path, "<TagFile/>");
                before = qv::test::FileBytes(path);
            },
            [&] { return (tags.*save)(nullptr, Wide(path).c_str()); },
            [&](qv::test::FaultRun const &run) {
                qv::test::FaultBytes now = qv::test::FileBytes(path);
                if (run.IsClean()) {
                    after = now;
                    return;
                }
                if (run.fault != qv::test::Fault::kClose && run.fault != qv::test::Fault::kFsync)
                    qv::test::ExpectFailureReported(run);
                qv::test::ExpectBeforeOrAfter(run, now, before, after);
            });
    }
}
