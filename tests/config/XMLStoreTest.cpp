// CXMLStore: the elements it writes (checked by xmllint), what it reads,
// hostile files and saves that fail half-way.
#include "config/ConfigTestSupport.h"

#include <fstream>

#include "qv/filesystems/DiskFileSystem.h"
#include "qv/filesystems/MemFileSystem.h"
#include "support/FaultInjection.h"

namespace qv::test {
namespace {

bool LoadText(CXMLStore &store, std::string const &text) {
    CMemFileSystem fs;
    fs.AddFile(u"/s.xml", text.data(), uint32_t(text.size()));
    return store.Load(&fs, u"/s.xml");
}

TEST(XMLStore, SaveWritesNestedEntries) {
    ScratchDir dir;
    CXMLStore store;
    store.SetString(u"/Camera/Lens/focus", u"12");
    store.SetString(u"/Camera/name", u"a<b & \"c\"");
    store.SetString(u"/top", u"t");
    ASSERT_TRUE(store.Save(dir.Text("s.xml")));
    EXPECT_EQ(ReadWhole(*FileSystem, dir.Text("s.xml")),
              "<store>\r\n"
              "\t<entry name=\"Camera\">\r\n"
              "\t\t<entry name=\"Lens\">\r\n"
              "\t\t\t<entry name=\"focus\">12</entry>\r\n"
              "\t\t</entry>\r\n"
              "\t\t<entry name=\"name\">a&lt;b &amp; &quot;c&quot;</entry>\r\n"
              "\t</entry>\r\n"
              "\t<entry name=\"top\">t</entry>\r\n"
              "</store>\r\n");
    if (std::system("xmllint --version >/dev/null 2>&1") == 0) {
        std::string command = "xmllint --noout '" + dir.Path("s.xml") + "'";
        EXPECT_EQ(std::system(command.c_str()), 0) << "xmllint refuses the file";
    }
    CXMLStore again;
    ASSERT_TRUE(again.Load(dir.Text("s.xml")));
    EXPECT_EQ(Utf8(again.GetString(u"/camera/NAME", u"")), "a<b & \"c\"");
}

TEST(XMLStore, ReadsWhatOthersWrite) {
    CXMLStore store;
    ASSERT_TRUE(LoadText(store, "<?xml version=\"1.0\"?>\n<!-- settings -->\n<store>\n"
                                "  <entry name='a'><entry name=\"b\">1</entry><!-- c --></entry>\n"
                                "  <entry>nameless</entry>\n  <item name=\"any\">2</item>\n</store>\n"));
    EXPECT_EQ(Utf8(store.GetString(u"/a/b", u"")), "1");
    EXPECT_EQ(Utf8(store.GetString(u"/any", u"")), "2") << "any element name is a key";
    TArray<CString> names;
    store.list(names, u"/a");
    EXPECT_EQ(NameSet(names), std::set<std::string>{"b"});
}

TEST(XMLStore, FailuresLeaveAnEmptyStore) {
    for (std::string text : {"<other><entry name=\"x\">1</entry></other>", "<store><entry name=\"x\">1</store>", "",
                             "\xFF\xFE<\0s\0", "<store><![CDATA[x]]></store>"}) {
        SCOPED_TRACE(text);
        CXMLStore store;
        store.SetString(u"/old", u"1");
        EXPECT_FALSE(LoadText(store, text));
        TArray<CString> names;
        store.list(names, u"/");
        EXPECT_EQ(names.GetSize(), 0u);
    }
    CXMLStore store;
    EXPECT_FALSE(store.Load(u"/no/such/file.xml"));
}

TEST(XMLStore, NestedAHundredThousandDeepLoads) {
    std::string text = "<store>";
    constexpr int kDepth = 100000;
    for (int i = 0; i < kDepth; ++i)
        text += "<entry name=\"d\">";
    text += "bottom";
    for (int i = 0; i < kDepth; ++i)
        text += "</entry>";
    text += "<entry name=\"after\">x</entry></store>";
    CXMLStore store;
    ASSERT_TRUE(LoadText(store, text));
    EXPECT_EQ(Utf8(store.GetString(u"/after", u"")), "x");
    std::u16string deepest;
    while (deepest.size() + 2 < IConfigStore::PathSize)
        deepest += u"/d";
    EXPECT_EQ(Utf8(store.GetString(deepest.c_str(), u"")), "bottom") << "the path is cut as every store path is";
}

TEST(XMLStore, ASaveThatFailsHalfWayLeavesThePreviousFile) {
    ScratchDir dir;
    std::string target = dir.Path("faults.xml");
    CXMLStore store;
    for (int i = 0; i < 30; ++i)
        store.SetLong(CString::FromFormat(u"/group%d/key", i), i);
    FaultBytes before, after;
    int runs = RunUnderFaults(
        [&] {
            std::ofstream(target, std::ios::binary | std::ios::trunc) << "<store><entry name=\"old\">1</entry></store>";
            before = FileBytes(target);
        },
        [&] { return store.Save(CString(target.c_str())); },
        [&](FaultRun const &run) {
            FaultBytes now = FileBytes(target);
            if (run.IsClean()) {
                after = now;
                return;
            }
            if (now != after) ExpectFailureReported(run); // see the INI case
            ExpectBeforeOrAfter(run, now, before, after);
        });
    EXPECT_GT(runs, 4);
}

} // namespace
} // namespace qv::test
