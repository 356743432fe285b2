// CINIStore: the line grammar, the exact bytes it writes, Python's
// configparser on both sides, hostile lines and saves that fail half-way.
#include "config/ConfigTestSupport.h"

#include <cstdio>
#include <fstream>

#include "qv/files/MemFile.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "qv/filesystems/MemFileSystem.h"
#include "support/FaultInjection.h"

namespace qv::test {
namespace {

CINIStore LoadText(std::string const &text) {
    CMemFileSystem fs;
    fs.AddFile(u"/s.ini", text.data(), uint32_t(text.size()));
    CINIStore store;
    EXPECT_TRUE(store.Load(&fs, u"/s.ini"));
    return store;
}

std::string SavedText(CINIStore &store) {
    ScratchDir dir;
    EXPECT_TRUE(store.Save(dir.Text("out.ini")));
    return ReadWhole(*FileSystem, dir.Text("out.ini"));
}

TEST(INIStore, SectionsAndKeysMakePaths) {
    CINIStore store = LoadText("top=1\r\n[a/b]\r\nc=1\r\n[x\\y]\r\nz=2\r\n[open\nk=v\n");
    EXPECT_EQ(Utf8(store.GetString(u"/top", u"")), "1");
    EXPECT_EQ(Utf8(store.GetString(u"/a/b/c", u"")), "1");
    EXPECT_EQ(Utf8(store.GetString(u"/x/y/z", u"")), "2") << "a backslash in a section is a separator";
    EXPECT_EQ(Utf8(store.GetString(u"/open/k", u"")), "v") << "a section without ']' runs to the line's end";
}

TEST(INIStore, TheLineGrammar) {
    CINIStore store = LoadText("bare\na=b=c\nspaced key = spaced value\ntab\tvalue\n==lead\n\n\t=\r\n[s]]x]\nk=1\n");
    EXPECT_TRUE(store.isLeaf(u"/bare"));
    EXPECT_EQ(Utf8(store.GetString(u"/bare", u"x")), "") << "no value: an empty one";
    EXPECT_EQ(Utf8(store.GetString(u"/a", u"")), "b") << "the scan stops at the next delimiter";
    EXPECT_EQ(Utf8(store.GetString(u"/spaced key ", u"")), " spaced value") << "a space does not separate";
    EXPECT_EQ(Utf8(store.GetString(u"/tab", u"")), "value") << "a tab does";
    EXPECT_EQ(Utf8(store.GetString(u"/lead", u"x")), "") << "leading delimiters are skipped";
    EXPECT_EQ(Utf8(store.GetString(u"/s]]x/k", u"")), "1") << "cut at the last ']'";
    EXPECT_EQ(Utf8(store.GetCurrentPath()), "/");
}

TEST(INIStore, LoadReplacesTheContent) {
    CINIStore store = LoadText("old=1\n");
    store.cd(u"/somewhere");
    CMemFileSystem fs;
    std::string text = "new=2\n";
    fs.AddFile(u"/n.ini", text.data(), uint32_t(text.size()));
    EXPECT_TRUE(store.Load(&fs, u"/n.ini"));
    TArray<CString> names;
    store.list(names, u"/");
    EXPECT_EQ(NameSet(names), std::set<std::string>{"new"}) << "nothing but what the file said";
    EXPECT_EQ(Utf8(store.GetCurrentPath()), "/");
    EXPECT_FALSE(store.Load(&fs, u"/missing.ini"));
    EXPECT_FALSE(store.Load(u"/no/such/file.ini"));
}

TEST(INIStore, SaveWritesTheDesignedBytes) {
    CINIStore store;
    store.SetString(u"/root", u"r");
    store.SetString(u"/a/one", u"1");
    store.SetString(u"/a/b/two", u"2");
    store.SetString(u"/a/three", u"3");
    store.SetString(u"/c/d", u"ü");
    // Section paths start with the separator, as existing files have them.
    EXPECT_EQ(SavedText(store), "root=r\r\n[/a]\r\none=1\r\nthree=3\r\n[/a/b]\r\ntwo=2\r\n[/c]\r\nd=\xC3\xBC\r\n");
}

TEST(INIStore, AKeyMadeAfterASubsectionComesBackWhereItWas) {
    CINIStore store;
    store.SetString(u"/a/b/two", u"2");
    store.SetString(u"/a/three", u"3");
    store.SetString(u"/top", u"t");
    std::string text = SavedText(store);
    EXPECT_EQ(text, "top=t\r\n[/a]\r\nthree=3\r\n[/a/b]\r\ntwo=2\r\n");
    CINIStore again = LoadText(text);
    EXPECT_EQ(Utf8(again.GetString(u"/a/three", u"lost")), "3");
    EXPECT_EQ(Utf8(again.GetString(u"/top", u"lost")), "t");
}

TEST(INIStore, HostileLinesNeverStopTheLoad) {
    std::string huge(100 * 1024, 'k');
    std::string text = "[big]\n" + huge + "=v\nafter=1\n[" + huge +
                       "]\nx=2\n[enc]\nbad=\xFF\xFE\xC3(\n[p]\nslash/key=3\nback\\key=4\n";
    CINIStore store = LoadText(text);
    EXPECT_EQ(Utf8(store.GetString(u"/big/after", u"")), "1") << "the over-long line is cut and the load goes on";
    EXPECT_EQ(Utf8(store.GetString((u"/" + std::u16string(1022, u'k') + u"/x").c_str(), u"")), "2")
        << "the load and the lookup cut a path that long alike";
    EXPECT_EQ(U16(store.GetString(u"/enc/bad", u"")), u"\uFFFD\uFFFD\uFFFD(") << "bad UTF-8 reads as U+FFFD";
    EXPECT_EQ(Utf8(store.GetString(u"/p/slash/key", u"")), "3");
    EXPECT_EQ(Utf8(store.GetString(u"/p/back/key", u"")), "4");
    TArray<CString> names;
    store.list(names, u"/big");
    ASSERT_GE(names.GetSize(), 2u);
    EXPECT_LE(names[0].GetLength(), 1023);
}

// Lines are read up to 1,023 bytes: a longer one would come back cut, so the
// save refuses it and the old file stays.
TEST(INIStore, ASaveRefusesALineTheLoadWouldCut) {
    ScratchDir dir;
    std::string const target = dir.Path("long.ini");
    std::ofstream(target, std::ios::binary) << "[old]\r\nkept=1\r\n";
    FaultBytes const before = FileBytes(target);
    CINIStore store;
    std::string const longest(1021, 'v'); // "k=" and these: 1,023 bytes
    store.SetString(u"/k", CString(longest.c_str()));
    store.SetString(u"/s/k", CString((longest + "v").c_str()));
    EXPECT_FALSE(store.Save(CString(target.c_str())));
    EXPECT_EQ(FileBytes(target), before);
    store.SetString(u"/s/k", CString(longest.c_str()));
    ASSERT_TRUE(store.Save(CString(target.c_str())));
    CINIStore again;
    ASSERT_TRUE(again.Load(CString(target.c_str())));
    EXPECT_EQ(Utf8(again.GetString(u"/k", u"")), longest);
    EXPECT_EQ(Utf8(again.GetString(u"/s/k", u"")), longest);
}

// A name or value the load would split, or read as a section or a path,
// would come back as something else: the save refuses it, the old file stays,
// and the same store saves once the value is plain again.
TEST(INIStore, ASaveRefusesWhatTheLoadWouldReadAsSomethingElse) {
    ScratchDir dir;
    std::string const target = dir.Path("split.ini");
    std::ofstream(target, std::ios::binary) << "[old]\r\nkept=1\r\n";
    FaultBytes const before = FileBytes(target);
    struct SCase {
        char16_t const *path;
        char16_t const *value;
    };
    SCase const refused[] = {{u"/s/k", u"a=b"},  {u"/s/k", u"a\tb"}, {u"/s/k", u"a\r\nz=1"}, {u"/s/[k", u"v"},
                             {u"/s/k\tx", u"v"}, {u"/s/k=x", u"v"}, {u"/s\nt/k", u"v"}};
    for (SCase const &c : refused) {
        CINIStore store;
        store.SetString(u"/plain", u"1");
        store.SetString(c.path, c.value);
        EXPECT_FALSE(store.Save(CString(target.c_str()))) << Utf8(c.path) << " = " << Utf8(c.value);
        EXPECT_EQ(FileBytes(target), before);
        store.SetString(c.path, u"v");
        if (std::u16string(c.path) == u"/s/k") {
            ASSERT_TRUE(store.Save(CString(target.c_str())));
            CINIStore again;
            ASSERT_TRUE(again.Load(CString(target.c_str())));
            EXPECT_EQ(Utf8(again.GetString(u"/s/k", u"")), "v");
            std::ofstream(target, std::ios::binary) << "[old]\r\nkept=1\r\n";
        }
    }
}

TEST(INIStore, ASaveThatFailsHalfWayLeavesThePreviousFile) {
    ScratchDir dir;
    std::string target = dir.Path("faults.ini");
    CINIStore store;
    for (int i = 0; i < 50; ++i)
        store.SetLong(CString::FromFormat(u"/section%d/key", i), i);
    FaultBytes before, after;
    int runs = RunUnderFaults(
        [&] {
            std::ofstream(target, std::ios::binary | std::ios::trunc) << "[old]\r\nkept=1\r\n";
            before = FileBytes(target);
        },
        [&] { return store.Save(CString(target.c_str())); },
        [&](FaultRun const &run) {
            if (run.IsClean()) {
                after = FileBytes(target);
                return;
            }
            // A fault after the rename (syncing the directory, closing a
            // descriptor that was synced) leaves the complete new file, which
            // the disk layer rightly calls a success.
            FaultBytes now = FileBytes(target);
            if (now != after) ExpectFailureReported(run);
            ExpectBeforeOrAfter(run, now, before, after);
        });
    EXPECT_GT(runs, 4);
}

// ---- Python's configparser, where Debian's interpreter has it ----

bool HavePython() {
    return std::system("/usr/bin/python3 -c 'import configparser' >/dev/null 2>&1") == 0;
}

std::string RunPython(std::string const &script) {
    std::string command = "/usr/bin/python3 -c '" + script + "' 2>&1";
    std::string out;
    if (FILE *pipe = popen(command.c_str(), "r")) {
        char buffer[512];
        while (size_t got = fread(buffer, 1, sizeof buffer, pipe))
            out.append(buffer, got);
        pclose(pipe);
    }
    return out;
}

TEST(INIStoreOutside, ConfigparserReadsWhatQvWrote) {
    if (!HavePython()) GTEST_SKIP() << "no /usr/bin/python3 with configparser";
    ScratchDir dir;
    CINIStore store;
    store.SetString(u"/General/name", u"Ünïcode value with spaces");
    store.SetDouble(u"/General/scale", 0.125);
    store.SetLong(u"/Camera/Lens/focus", -3);
    store.SetString(u"/Camera/Lens/path", u"c:\\data\\x.saf");
    ASSERT_TRUE(store.Save(dir.Text("qv.ini")));
    std::string out = RunPython("import configparser\n"
                                "c = configparser.ConfigParser(interpolation=None)\n"
                                "c.read(\"" +
                                dir.Path("qv.ini") +
                                "\", encoding=\"utf-8\")\n"
                                "for s in c.sections():\n"
                                "    for k, v in c.items(s):\n"
                                "        print(s + \"|\" + k + \"|\" + v)\n");
    EXPECT_EQ(out, "/General|name|Ünïcode value with spaces\n"
                   "/General|scale|1.25000000000000e-001\n"
                   "/Camera/Lens|focus|-3\n"
                   "/Camera/Lens|path|c:\\data\\x.saf\n");
}

TEST(INIStoreOutside, QvReadsWhatConfigparserWrote) {
    if (!HavePython()) GTEST_SKIP() << "no /usr/bin/python3 with configparser";
    ScratchDir dir;
    // configparser writes "key = value" unless told otherwise; a space does
    // not separate in this format, so the file is written without them.
    RunPython("import configparser\n"
              "c = configparser.ConfigParser(interpolation=None)\n"
              "c[\"Display\"] = {\"palette\": \"iron bow\", \"max\": \"42.5\", \"unit\": \"°C\"}\n"
              "c[\"Display/Overlay\"] = {\"enabled\": \"1\"}\n"
              "f = open(\"" +
              dir.Path("py.ini") +
              "\", \"w\", encoding=\"utf-8\")\n"
              "c.write(f, space_around_delimiters=False)\n"
              "f.close()\n");
    CINIStore store;
    ASSERT_TRUE(store.Load(dir.Text("py.ini")));
    EXPECT_EQ(Utf8(store.GetString(u"/Display/palette", u"")), "iron bow");
    EXPECT_EQ(store.GetDouble(u"/Display/max", 0), 42.5);
    EXPECT_EQ(Utf8(store.GetString(u"/Display/unit", u"")), "°C");
    EXPECT_TRUE(store.GetBool(u"/Display/Overlay/enabled", false));
}

} // namespace
} // namespace qv::test
