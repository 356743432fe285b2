// CsqliteStore: the rows it makes, its designed oddities, the sqlite3 shell's
// view of the file, hostile files, a database locked for ever, and four
// processes writing at once.
#include "config/ConfigTestSupport.h"

#include <cstdio>
#include <fstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace qv::test {
namespace {

bool HaveShell() {
    return std::system("sqlite3 -version >/dev/null 2>&1") == 0;
}

// The output of the sqlite3 shell for one statement on the database.
std::string Shell(std::string const &db, std::string const &sql) {
    std::string command = "sqlite3 '" + db + "' \"" + sql + "\" 2>&1";
    std::string out;
    if (FILE *pipe = popen(command.c_str(), "r")) {
        char buffer[512];
        while (size_t got = fread(buffer, 1, sizeof buffer, pipe))
            out.append(buffer, got);
        pclose(pipe);
    }
    return out;
}

class SqliteStore : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(store.Open(dir.Text("s.db"))); }
    std::string Rows() {
        return Shell(dir.Path("s.db"), "SELECT id, name, path, parent, type, quote(value) FROM nodes ORDER BY id;");
    }

    ScratchDir dir;
    CsqliteStore store;
};

TEST_F(SqliteStore, TheShellSeesTheDesignedSchemaAndRows) {
    if (!HaveShell()) GTEST_SKIP() << "no sqlite3 shell";
    EXPECT_TRUE(store.SetString(u"/a/b/c", u"it's"));
    EXPECT_EQ(store.GetLong(u"/n", 5), 5);
    EXPECT_TRUE(store.SetDouble(u"/a/d", 0.1));
    EXPECT_TRUE(store.SetDWORD(u"/a/u", 4294967295u));
    EXPECT_EQ(Shell(dir.Path("s.db"), ".schema"),
              "CREATE TABLE nodes(id INTEGER PRIMARY KEY, name TEXT, path TEXT UNIQUE, parent INTEGER, type INTEGER, "
              "value);\n");
    EXPECT_EQ(Rows(), "1||/|0|0|NULL\n"
                      "2|a|/a|1|0|NULL\n"
                      "3|b|/a/b|2|0|NULL\n"
                      "4|c|/a/b/c|3|10|'it''s'\n"
                      "5|n|/n|1|4|5\n"
                      "6|d|/a/d|2|1|0.1\n"
                      "7|u|/a/u|2|3|4294967295\n");
    EXPECT_EQ(Shell(dir.Path("s.db"), "PRAGMA integrity_check;"), "ok\n");
}

TEST_F(SqliteStore, DesignedOddities) {
    EXPECT_TRUE(store.Lock());
    EXPECT_TRUE(store.Lock()) << "a second Lock is a no-op";
    EXPECT_TRUE(store.IsLocked());
    EXPECT_TRUE(store.Unlock());
    EXPECT_FALSE(store.IsLocked());
    EXPECT_FALSE(store.isLeaf(u"/missing")) << "unlike the memory tree";
    EXPECT_EQ(store.GetType(u"/missing"), -1);
    EXPECT_FALSE(store.unlink(u"/missing"));
    store.SetLong(u"/typed", 12);
    store.SetString(u"/typed", u"34");
    EXPECT_EQ(store.GetType(u"/typed"), CsqliteStore::Long) << "an update keeps the first type";
    CMemStore copy;
    EXPECT_TRUE(store.copyValue(copy, u"/c", u"/typed"));
    EXPECT_EQ(Utf8(copy.GetString(u"/c", u"")), "34");
    store.SetString(u"/dir/x", u"1");
    EXPECT_EQ(store.GetType(u"/dir/"), CsqliteStore::Directory) << "a trailing slash finds the row";
    TArray<CString> names;
    names.Add(CString(u"kept"));
    EXPECT_TRUE(store.list(names, u"/dir/"));
    EXPECT_EQ(NameSet(names), (std::set<std::string>{"kept", "x"}));
    EXPECT_FALSE(store.copyValue(copy, u"/d", u"/dir")) << "a directory is not a value";
    EXPECT_EQ(store.GetParent(u"/new/deep/key"), store.GetParent(u"/new/deep/other"));
    EXPECT_EQ(store.GetType(u"/new/deep"), CsqliteStore::Directory);
    EXPECT_EQ(store.GetDouble(u"/third", 1.0 / 3), 3.33333333333333e-001) << "doubles keep the %.14e digits";
}

TEST_F(SqliteStore, AClosedStoreGivesDefaults) {
    store.Close();
    store.Close();
    EXPECT_FALSE(store.IsOpen());
    EXPECT_EQ(store.GetLong(u"/x", 3), 3);
    EXPECT_FALSE(store.SetLong(u"/x", 4));
    EXPECT_FALSE(store.Lock());
    EXPECT_EQ(store.GetType(u"/"), -1);
}

TEST_F(SqliteStore, ReopeningKeepsEverything) {
    store.Lock();
    for (int i = 0; i < 100; ++i)
        store.SetLong(CString::FromFormat(u"/batch/k%d", i), i);
    store.Close(); // commits
    CsqliteStore again;
    ASSERT_TRUE(again.Open(dir.Text("s.db")));
    EXPECT_EQ(again.GetLong(u"/batch/k99", -1), 99);
}

// Texts over the length limit cannot be bound: every operation on them fails
// whole, and none of them runs with NULL in place of the text.
TEST_F(SqliteStore, TextsOverTheLengthLimitFailWhole) {
    ASSERT_TRUE(store.SetString(u"/kept", u"old"));
    store.SetLengthLimit(256);
    CString longValue(std::u16string(300, u'v').c_str());
    CString longKey((u"/" + std::u16string(300, u'k')).c_str());
    CString longDirectoryKey((u"/" + std::u16string(300, u'd') + u"/leaf").c_str());
    EXPECT_FALSE(store.SetString(u"/kept", longValue));
    EXPECT_EQ(Utf8(store.GetString(u"/kept", u"dflt")), "old") << "the stored value stays";
    EXPECT_FALSE(store.SetString(u"/fresh/new", longValue));
    EXPECT_EQ(store.GetType(u"/fresh/new"), CsqliteStore::None);
    EXPECT_EQ(store.GetType(u"/fresh"), CsqliteStore::None) << "no directory row either";
    EXPECT_EQ(Utf8(store.GetString(longKey, u"dflt")), "dflt");
    EXPECT_EQ(store.GetLong(longKey, 3), 3);
    EXPECT_FALSE(store.SetLong(longKey, 4));
    EXPECT_EQ(store.GetType(longKey), CsqliteStore::None);
    EXPECT_FALSE(store.isLeaf(longKey));
    EXPECT_FALSE(store.isEntry(longKey));
    EXPECT_EQ(Utf8(store.GetString(longDirectoryKey, u"dflt")), "dflt");
    EXPECT_FALSE(store.SetDouble(longDirectoryKey, 1.5));
    EXPECT_EQ(store.GetParent(longDirectoryKey), 0);
    TArray<CString> names;
    EXPECT_FALSE(store.list(names, longKey));
    EXPECT_EQ(names.GetSize(), 0u);
    // Inside a Lock the failures leave the transaction usable.
    ASSERT_TRUE(store.Lock());
    EXPECT_FALSE(store.SetString(u"/kept", longValue));
    EXPECT_EQ(Utf8(store.GetString(longDirectoryKey, u"dflt")), "dflt");
    EXPECT_TRUE(store.SetString(u"/locked", u"in the lock"));
    EXPECT_TRUE(store.Unlock());
    EXPECT_TRUE(store.SetString(u"/after", u"fine"));
    EXPECT_EQ(Utf8(store.GetString(u"/after", u"dflt")), "fine");
    EXPECT_EQ(Utf8(store.GetString(u"/locked", u"dflt")), "in the lock");
    EXPECT_EQ(Utf8(store.GetString(u"/kept", u"dflt")), "old");
    if (!HaveShell()) GTEST_SKIP() << "no sqlite3 shell";
    EXPECT_EQ(Shell(dir.Path("s.db"), "SELECT count(*) FROM nodes WHERE name IS NULL OR path IS NULL OR "
                                      "(type != 0 AND value IS NULL);"),
              "0\n");
    EXPECT_EQ(Rows(), "1||/|0|0|NULL\n"
                      "2|kept|/kept|1|10|'old'\n"
                      "3|locked|/locked|1|10|'in the lock'\n"
                      "4|after|/after|1|10|'fine'\n");
}

TEST_F(SqliteStore, TheLengthLimitOutlivesReopeningAndCanBeRaised) {
    CString longValue(std::u16string(300, u'v').c_str());
    store.SetLengthLimit(64);
    EXPECT_FALSE(store.Open(dir.Text("s.db"))) << "the table's own schema row is longer";
    store.SetLengthLimit(256);
    ASSERT_TRUE(store.Open(dir.Text("s.db")));
    EXPECT_FALSE(store.SetString(u"/long", longValue));
    store.SetLengthLimit(UINT32_MAX);
    EXPECT_TRUE(store.SetString(u"/long", longValue));
    EXPECT_EQ(Utf8(store.GetString(u"/long", u"")), Utf8(longValue));
    store.SetLengthLimit(256);
    EXPECT_EQ(Utf8(store.GetString(u"/long", u"dflt")), "dflt") << "a stored text over the limit is not read";
}

TEST(SqliteStoreHostile, AFileThatIsNotADatabaseDoesNotOpen) {
    ScratchDir dir;
    std::ofstream(dir.Path("junk.db"), std::ios::binary) << std::string(4096, '\x5A');
    CsqliteStore store;
    EXPECT_FALSE(store.Open(dir.Text("junk.db")));
    EXPECT_FALSE(store.IsOpen());
    EXPECT_FALSE(store.Open(dir.Text("no/such/dir/x.db")));
    EXPECT_FALSE(store.Open(nullptr));
}

TEST(SqliteStoreHostile, ADatabaseLockedForEverGivesUpAtTheBusyLimit) {
    if (!HaveShell()) GTEST_SKIP() << "no sqlite3 shell";
    ScratchDir dir;
    {
        CsqliteStore store;
        ASSERT_TRUE(store.Open(dir.Text("l.db")));
        store.SetString(u"/present", u"here");
    }
    // The shell takes an exclusive lock and holds it until its input ends.
    std::string marker = dir.Path("locked");
    std::string command = "sqlite3 '" + dir.Path("l.db") + "' >/dev/null 2>&1";
    FILE *holder = popen(command.c_str(), "w");
    ASSERT_NE(holder, nullptr);
    fprintf(holder, "BEGIN EXCLUSIVE;\nINSERT INTO nodes VALUES(NULL, 'h', '/h', 1, 10, 'x');\n.shell touch '%s'\n",
            marker.c_str());
    fflush(holder);
    while (access(marker.c_str(), F_OK) != 0)
        std::this_thread::yield();
    CsqliteStore store;
    store.SetBusyLimit(300);
    EXPECT_FALSE(store.Open(dir.Text("l.db"))) << "cannot even read: Open gives up";
    pclose(holder); // the shell ends and rolls back
    ASSERT_TRUE(store.Open(dir.Text("l.db")));
    CsqliteStore writer;
    ASSERT_TRUE(writer.Open(dir.Text("l.db")));
    ASSERT_TRUE(writer.Lock());
    EXPECT_EQ(Utf8(store.GetString(u"/present", u"")), "here") << "reads pass a writer's lock";
    EXPECT_FALSE(store.SetString(u"/present", u"changed")) << "writes give up at the limit";
    EXPECT_EQ(Utf8(store.GetString(u"/absent", u"dflt")), "dflt");
    EXPECT_FALSE(store.Lock());
    writer.Unlock();
    EXPECT_TRUE(store.SetString(u"/present", u"changed"));
    EXPECT_EQ(store.GetType(u"/h"), -1) << "the shell's insert was rolled back";
}

TEST(SqliteStoreProcesses, FourWritersLoseNothing) {
    constexpr int kProcesses = 4, kWrites = 1000;
    MemoryScratchDir dir;
    {
        CsqliteStore make;
        ASSERT_TRUE(make.Open(dir.Text("shared.db")));
    }
    std::vector<pid_t> children;
    for (int p = 0; p < kProcesses; ++p) {
        pid_t pid = fork();
        if (pid == 0) {
            CsqliteStore store;
            bool ok = store.Open(dir.Text("shared.db"));
            for (int i = 0; i < kWrites && ok; ++i)
                ok = store.SetLong(CString::FromFormat(u"/shared/g%d/p%d_%d", i % 10, p, i), p * 10000 + i);
            _exit(ok ? 0 : 1);
        }
        children.push_back(pid);
    }
    for (pid_t pid : children) {
        int status = 0;
        waitpid(pid, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    CsqliteStore store;
    ASSERT_TRUE(store.Open(dir.Text("shared.db")));
    int found = 0;
    for (int p = 0; p < kProcesses; ++p)
        for (int i = 0; i < kWrites; ++i)
            found += store.GetType(CString::FromFormat(u"/shared/g%d/p%d_%d", i % 10, p, i)) == CsqliteStore::Long &&
                     store.GetLong(CString::FromFormat(u"/shared/g%d/p%d_%d", i % 10, p, i), -1) == p * 10000 + i;
    EXPECT_EQ(found, kProcesses * kWrites);
    TArray<CString> groups;
    store.list(groups, u"/shared");
    EXPECT_EQ(groups.GetSize(), 10u) << "each directory row made once";
    TArray<CString> members;
    store.list(members, u"/shared/g3");
    EXPECT_EQ(members.GetSize(), uint32_t(kProcesses * kWrites / 10));
}

} // namespace
} // namespace qv::test
