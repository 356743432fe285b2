#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "qv/filesystems/FileSystem.h"
#include "qv/tables/PODFile.h"
#include "support/FaultInjection.h"

namespace {

using qv::CPODFile;

std::u16string Wide(std::string const &s) { return std::u16string(s.begin(), s.end()); }

std::string Narrow(char16_t const *s) {
    std::string out;
    for (; s && *s; ++s) out += char(*s);
    return out;
}

struct PODFileTest : ::testing::Test {
    std::filesystem::path dir;
    void SetUp() override {
        char tmpl[] = "/tmp/qvpodXXXXXX";
        dir = mkdtemp(tmpl);
    }
    void TearDown() override { std::filesystem::remove_all(dir); }
    std::u16string Path(char const *name) { return Wide((dir / name).string()); }
    static std::string Bytes(std::u16string const &p) {
        std::ifstream in(std::string(p.begin(), p.end()), std::ios::binary);
        std::stringstream s;
        s << in.rdbuf();
        return s.str();
    }
    // A table of rows x 2 columns whose cells are "rRcC", saved and reloaded.
    void MakeTable(CPODFile &pod, uint32_t rows, std::u16string const &path) {
        ASSERT_TRUE(pod.New());
        ASSERT_EQ(pod.AddColumn(u"Time", u"Unclassified", u"seconds", u""), 0u);
        ASSERT_EQ(pod.AddColumn(u"Az", u"Unclassified", u"degrees", u""), 1u);
        pod.AllocRows(rows);
        for (uint32_t r = 0; r < rows; ++r)
            for (uint32_t c = 0; c < 2; ++c)
                ASSERT_TRUE(pod.PutValue(c, r, Wide("r" + std::to_string(r) + "c" + std::to_string(c)).c_str()));
        ASSERT_TRUE(pod.Save(&qv::GetFileSystem(), path.c_str(), false, false));
    }
};

TEST_F(PODFileTest, SavedTableReadsBackWithItsColumnLinesAndQuoting) {
    CPODFile pod;
    ASSERT_TRUE(pod.New());
    EXPECT_EQ(pod.AddRow(), qv::kPODNone); // no columns, no rows
    pod.AddColumn(u"Name", u"Cls", u"m", u"");
    pod.AddColumn(u"Note", u"Cls", u"None", u"");
    pod.AllocRows(2);
    ASSERT_TRUE(pod.PutValue(0, 0, u"a"));
    ASSERT_TRUE(pod.PutValue(1, 0, u"two words"));
    ASSERT_TRUE(pod.PutValue(0, 1, u""));
    ASSERT_TRUE(pod.PutValue(1, 1, u"b"));
    auto path = Path("t.pod");
    ASSERT_TRUE(pod.Save(&qv::GetFileSystem(), path.c_str(), false, false));
    EXPECT_TRUE(pod.IsOpen());
    EXPECT_FALSE(pod.IsModified());
    std::string bytes = Bytes(path);
    EXPECT_NE(bytes.find("Name\tNote\r\nm\tNone\r\nCls\tCls\r\na\t\"two words\"\r\n\"\"\tb\r\n"), std::string::npos);
    ASSERT_EQ(pod.nDPs(), 2u);
    ASSERT_EQ(pod.nParams(), 2u);
    EXPECT_EQ(Narrow(pod.GetValue(1, 0)), "two words");
    EXPECT_EQ(Narrow(pod.GetValue(0, 1)), "");
    char16_t const *unit = nullptr;
    ASSERT_TRUE(pod.GetColumnInfo(0, nullptr, nullptr, &unit, nullptr));
    EXPECT_EQ(Narrow(unit), "m");
    uint32_t col = 0;
    EXPECT_TRUE(pod.FindColumn(u"NOTE", col));
    EXPECT_EQ(col, 1u);
}

TEST_F(PODFileTest, EditsBeyondBothCachesSurviveThroughTheDiffFileAndSave) {
    CPODFile pod;
    auto path = Path("big.pod");
    MakeTable(pod, 300, path);
    for (uint32_t r = 0; r < 300; ++r) ASSERT_TRUE(pod.PutValue(1, r, Wide("e" + std::to_string(r)).c_str()));
    for (uint32_t r = 0; r < 300; ++r) {
        ASSERT_EQ(Narrow(pod.GetValue(1, r)), "e" + std::to_string(r));
        ASSERT_EQ(Narrow(pod.GetValue(0, r)), "r" + std::to_string(r) + "c0");
    }
    char16_t const *first = pod.GetValue(0, 0);
    for (uint32_t r = 1; r <= 64; ++r) pod.GetValue(0, r);
    EXPECT_NE(Narrow(first), "r0c0"); // the row left the cache
    ASSERT_TRUE(pod.Save(&qv::GetFileSystem(), path.c_str(), false, false));
    for (uint32_t r = 0; r < 300; r += 37) EXPECT_EQ(Narrow(pod.GetValue(1, r)), "e" + std::to_string(r));
}

// A row without source cells is fetched again while one of its cells sits in
// the diff cache; a later edit must not be overwritten by the older value.
TEST_F(PODFileTest, RefetchedNewRowKeepsItsDiffSlotSoANewerEditWins) {
    CPODFile pod;
    ASSERT_TRUE(pod.New());
    pod.AddColumn(u"A", u"", u"", u"");
    pod.AllocRows(200);
    ASSERT_TRUE(pod.PutValue(0, 0, u"old"));
    for (uint32_t r = 1; r <= 64; ++r) pod.GetValue(0, r); // row 0 leaves: "old" into the diff cache
    EXPECT_EQ(Narrow(pod.GetValue(0, 0)), "old");
    ASSERT_TRUE(pod.PutValue(0, 0, u"new"));
    for (uint32_t r = 65; r < 200; ++r) ASSERT_TRUE(pod.PutValue(0, r, u"x")); // churn both caches
    EXPECT_EQ(Narrow(pod.GetValue(0, 0)), "new");
    for (uint32_t r = 65; r < 200; ++r) ASSERT_TRUE(pod.PutValue(0, r, u"y"));
    EXPECT_EQ(Narrow(pod.GetValue(0, 0)), "new");
}

TEST_F(PODFileTest, RemoveRowPurgesItsEntriesAndShiftsLaterRowsOnce) {
    CPODFile pod;
    auto path = Path("rm.pod");
    MakeTable(pod, 100, path);
    ASSERT_TRUE(pod.PutValue(0, 10, u"gone"));
    ASSERT_TRUE(pod.PutValue(1, 11, u"kept11"));
    ASSERT_TRUE(pod.PutValue(0, 12, u"kept12"));
    for (uint32_t r = 20; r < 90; ++r) pod.GetValue(0, r); // rows 10..12 into the diff cache
    ASSERT_TRUE(pod.PutValue(1, 13, u"kept13"));             // row 13 resident, two columns
    pod.RemoveRow(10);
    ASSERT_EQ(pod.nDPs(), 99u);
    EXPECT_EQ(Narrow(pod.GetValue(1, 10)), "kept11");
    EXPECT_EQ(Narrow(pod.GetValue(0, 11)), "kept12");
    EXPECT_EQ(Narrow(pod.GetValue(1, 12)), "kept13");
    EXPECT_EQ(Narrow(pod.GetValue(0, 12)), "r13c0");
    for (uint32_t r = 0; r < 99; ++r) pod.PutValue(1, r, pod.GetValue(1, r)); // churn
    ASSERT_TRUE(pod.Save(&qv::GetFileSystem(), path.c_str(), false, false));
    EXPECT_EQ(Narrow(pod.GetValue(0, 9)), "r9c0");
    EXPECT_EQ(Narrow(pod.GetValue(1, 10)), "kept11");
    EXPECT_EQ(Narrow(pod.GetValue(0, 11)), "kept12");
    EXPECT_EQ(Narrow(pod.GetValue(1, 12)), "kept13");
    EXPECT_EQ(Bytes(path).find("gone"), std::string::npos);
}

// A loaded table finds its rows from a position kept every 64 lines; rows
// removed at, before and after those lines, and rows added behind them, keep
// every other row and edit in place, with windows far smaller than the table.
TEST_F(PODFileTest, RowsRemovedAndAddedAroundIndexCheckpointsKeepTheirNeighbours) {
    constexpr uint32_t kRows = 2000;
    CPODFile pod(64);
    auto path = Path("checkpoints.pod");
    MakeTable(pod, kRows, path);
    std::vector<std::string> expected;
    for (uint32_t r = 0; r < kRows; ++r)
        expected.push_back("r" + std::to_string(r) + "c0");
    auto edit = [&](uint32_t row, std::string const &value) {
        ASSERT_TRUE(pod.PutValue(0, row, Wide(value).c_str()));
        expected[row] = value;
    };
    auto remove = [&](uint32_t row) {
        pod.RemoveRow(row);
        expected.erase(expected.begin() + row);
    };
    edit(64, "e64");
    edit(1000, "e1000");
    remove(1999);
    remove(63);
    remove(63); // the line that was 64, edited
    remove(127);
    remove(0);
    edit(126, "e126");
    remove(500);
    ASSERT_EQ(pod.AddRow(), kRows - 6);
    expected.push_back("");
    ASSERT_EQ(pod.nDPs(), expected.size());
    auto check = [&] {
        for (uint32_t r = 0; r < expected.size(); ++r)
            ASSERT_EQ(Narrow(pod.GetValue(0, r)), expected[r]) << r;
        for (uint32_t r = uint32_t(expected.size()); r-- > 0;)
            ASSERT_EQ(Narrow(pod.GetValue(0, r)), expected[r]) << r;
    };
    check();
    ASSERT_TRUE(pod.Save(&qv::GetFileSystem(), path.c_str(), false, false));
    ASSERT_EQ(pod.nDPs(), expected.size());
    check();
    EXPECT_EQ(Narrow(pod.GetValue(1, 0)), "r1c1");
}

TEST_F(PODFileTest, RemovedColumnIsGoneAfterSaveAndLoad) {
    CPODFile pod;
    auto path = Path("col.pod");
    MakeTable(pod, 3, path);
    pod.RemoveCol(0);
    uint32_t col = 0;
    EXPECT_FALSE(pod.FindColumn(u"Time", col));
    EXPECT_EQ(pod.GetValue(0, 0), nullptr);
    ASSERT_TRUE(pod.Save(&qv::GetFileSystem(), path.c_str(), false, false));
    ASSERT_EQ(pod.nParams(), 1u);
    EXPECT_EQ(Narrow(pod.GetValue(0, 2)), "r2c1");
}

TEST_F(PODFileTest, HostileFilesAreRefused) {
    CPODFile pod;
    auto path = Path("bad.pod");
    MakeTable(pod, 3, path);
    pod.Destroy();
    std::string bytes = Bytes(path);
    auto write = [&](std::string const &b) { std::ofstream(std::string(path.begin(), path.end()), std::ios::binary) << b; };
    std::string noKeyword = bytes;
    noKeyword.replace(noKeyword.find("POD"), 3, "XYZ");
    write(noKeyword);
    EXPECT_FALSE(pod.Load(&qv::GetFileSystem(), path.c_str(), true));
    // A row the line buffer cannot hold would count yet never read: the
    // table is refused, in the middle or at the end, and says why.
    auto line = [](uint32_t bytes) { // "1", then "\tz" pairs: short cells, a long line
        std::string text = "1";
        while (text.size() < bytes) text += text.size() % 2 ? '\t' : 'z';
        return text;
    };
    uint32_t const most = CPODFile::kLineSize - 1;
    write(bytes + line(most - 1) + "\n" + line(most));
    ASSERT_TRUE(pod.Load(&qv::GetFileSystem(), path.c_str(), true));
    EXPECT_EQ(Narrow(pod.GetValue(0, 3)), "1");
    EXPECT_EQ(Narrow(pod.GetValue(0, 4)), "1");
    for (std::string const &tooLong : {line(most) + "\n" + "1\t2\n", "1\t2\n" + line(most + 1)}) {
        write(bytes + tooLong);
        EXPECT_FALSE(pod.Load(&qv::GetFileSystem(), path.c_str(), true));
        EXPECT_EQ(Narrow(pod.GetError()), "A line of the table is longer than the 8,192-byte line buffer.");
    }
    write(bytes.substr(0, bytes.size() - 3)); // cut in the middle of the last row
    ASSERT_TRUE(pod.Load(&qv::GetFileSystem(), path.c_str(), true));
    EXPECT_EQ(pod.nDPs(), 3u);
}

TEST_F(PODFileTest, FailedSaveLeavesTheOldFileWholeAndKeepsTheEdits) {
    auto path = Path("fault.pod");
    std::string before, after;
    {
        CPODFile pod;
        MakeTable(pod, 80, path);
    }
    before = Bytes(path);
    CPODFile pod;
    qv::test::RunUnderFaults(
        [&] {
            std::ofstream(std::string(path.begin(), path.end()), std::ios::binary) << before;
            ASSERT_TRUE(pod.Load(&qv::GetFileSystem(), path.c_str(), true));
            ASSERT_TRUE(pod.PutValue(1, 70, u"edited"));
        },
        [&] { return pod.Save(&qv::GetFileSystem(), path.c_str(), false, false); },
        [&](qv::test::FaultRun const &run) {
            if (run.IsClean()) {
                after = Bytes(path);
                return;
            }
            // Every failed write, sync or rename reaches the caller. Reads,
            // seeks and closes also fail inside the reload after the commit and
            // in the temporary index; there only the file's bytes are judged.
            using qv::test::Fault;
            if (run.fault == Fault::kWrite || run.fault == Fault::kWriteShort || run.fault == Fault::kFsync ||
                run.fault == Fault::kRename) {
                qv::test::ExpectFailureReported(run);
            }
            auto bytes = Bytes(path);
            auto asBytes = [](std::string const &b) { return qv::test::FaultBytes(b.begin(), b.end()); };
            qv::test::ExpectBeforeOrAfter(run, asBytes(bytes), asBytes(before), asBytes(after));
            if (pod.IsOpen() && bytes == before) {
                EXPECT_EQ(Narrow(pod.GetValue(1, 70)), "edited");
            }
        });
    EXPECT_NE(after.find("edited"), std::string::npos);
}

TEST_F(PODFileTest, AnUnclosedQuoteAtALineEndSavesAndReadsBackTheSame) {
    auto path = Path("open-quote.txt");
    std::ofstream(std::string(path.begin(), path.end()), std::ios::binary)
        << "A B\r\nu u\r\nc c\r\n1 \"x y\r\n2 \"p\rq\"\r\n";
    CPODFile pod;
    ASSERT_TRUE(pod.Load(&qv::GetFileSystem(), path.c_str(), false));
    ASSERT_EQ(pod.nDPs(), 2u);
    EXPECT_EQ(Narrow(pod.GetValue(1, 0)), "x y");
    EXPECT_EQ(Narrow(pod.GetValue(1, 1)), "p\rq");
    auto saved = Path("open-quote.pod");
    ASSERT_TRUE(pod.Save(&qv::GetFileSystem(), saved.c_str(), false, false)) << Narrow(pod.GetError());
    CPODFile again;
    ASSERT_TRUE(again.Load(&qv::GetFileSystem(), saved.c_str(), true));
    ASSERT_EQ(again.nDPs(), 2u);
    EXPECT_EQ(Narrow(again.GetValue(1, 0)), "x y");
    EXPECT_EQ(Narrow(again.GetValue(1, 1)), "p\rq");
    EXPECT_EQ(Narrow(again.GetValue(0, 1)), "2");
}

TEST_F(PODFileTest, AValueTheLoadCannotReadBackIsRefusedAndTheOldFileStays) {
    auto path = Path("t.pod");
    CPODFile pod;
    MakeTable(pod, 3, path);
    std::string const before = Bytes(path);
    for (char16_t const *value : {u"a\"b", u"two\nlines", u"\"", u"a\xD800" u"b", u"\xDC00", u"z\xD83D"}) {
        ASSERT_TRUE(pod.PutValue(1, 2, value));
        EXPECT_FALSE(pod.Save(&qv::GetFileSystem(), path.c_str(), false, false));
        EXPECT_EQ(Bytes(path), before);
        EXPECT_TRUE(pod.IsOpen());
        EXPECT_EQ(std::u16string(pod.GetValue(1, 2)), value); // the edit is still there
    }
    ASSERT_TRUE(pod.UpdateColumn(0, u"Na\"me", nullptr, nullptr, nullptr));
    ASSERT_TRUE(pod.PutValue(1, 2, u"fine"));
    EXPECT_FALSE(pod.Save(&qv::GetFileSystem(), path.c_str(), false, false));
    EXPECT_EQ(Bytes(path), before);
    ASSERT_TRUE(pod.UpdateColumn(0, u"Name", nullptr, nullptr, nullptr));
    ASSERT_TRUE(pod.PutValue(1, 1, u"\xD83D\xDE00")); // a surrogate pair is one character
    EXPECT_TRUE(pod.Save(&qv::GetFileSystem(), path.c_str(), false, false));
    EXPECT_EQ(Narrow(pod.GetValue(1, 2)), "fine");
    EXPECT_EQ(std::u16string(pod.GetValue(1, 1)), u"\xD83D\xDE00");
}

TEST_F(PODFileTest, WithoutMustExistPlainTextIsATableAndAMissingFileAnEmptyOne) {
    auto path = Path("plain.txt");
    std::ofstream(std::string(path.begin(), path.end()), std::ios::binary)
        << "Time Az \"Long name\"\r\ns deg m\r\nA B C\r\n1 2 3\r\n4,5,\"six 6\"\r\n";
    CPODFile pod;
    EXPECT_FALSE(pod.Load(&qv::GetFileSystem(), path.c_str(), true));
    ASSERT_TRUE(pod.Load(&qv::GetFileSystem(), path.c_str(), false));
    EXPECT_EQ(Narrow(pod.GetHeader().GetTagValue(u"KeyWrd")), "POD");
    ASSERT_EQ(pod.nParams(), 3u);
    ASSERT_EQ(pod.nDPs(), 2u);
    char16_t const *name = nullptr, *unit = nullptr, *cls = nullptr;
    ASSERT_TRUE(pod.GetColumnInfo(2, &name, &cls, &unit, nullptr));
    EXPECT_EQ(Narrow(name), "Long name");
    EXPECT_EQ(Narrow(unit), "m");
    EXPECT_EQ(Narrow(cls), "C");
    EXPECT_EQ(Narrow(pod.GetValue(2, 1)), "six 6");
    auto saved = Path("plain.pod");
    ASSERT_TRUE(pod.Save(&qv::GetFileSystem(), saved.c_str(), false, false));
    CPODFile again;
    ASSERT_TRUE(again.Load(&qv::GetFileSystem(), saved.c_str(), true));
    EXPECT_EQ(Narrow(again.GetValue(0, 1)), "4");
    EXPECT_EQ(Bytes(saved).substr(0, 6), "HdSize");

    auto missing = Path("missing.pod");
    EXPECT_FALSE(pod.Load(&qv::GetFileSystem(), missing.c_str(), true));
    ASSERT_TRUE(pod.Load(&qv::GetFileSystem(), missing.c_str(), false));
    EXPECT_TRUE(pod.IsOpen());
    EXPECT_EQ(pod.nDPs(), 0u);
    EXPECT_EQ(pod.nParams(), 0u);
}

// A cell holds 255 characters: a longer one in the file cannot be read whole,
// so it reads as no value (with a reason) rather than as another one, and a
// save, which could only write it back changed, fails with the old file kept.
TEST_F(PODFileTest, ACellTooLongToHoldIsNoValueAndBlocksTheSave) {
    auto path = Path("longcell.txt");
    std::string const longest(255, 'a'), tooLong(256, 'b');
    std::string const text = "A B\r\nu u\r\nc c\r\n" + longest + " 1\r\n" + tooLong + " 2\r\n";
    std::ofstream(std::string(path.begin(), path.end()), std::ios::binary) << text;
    CPODFile pod;
    ASSERT_TRUE(pod.Load(&qv::GetFileSystem(), path.c_str(), false));
    ASSERT_EQ(pod.nDPs(), 2u);
    EXPECT_EQ(Narrow(pod.GetValue(0, 0)), longest);
    EXPECT_EQ(pod.GetValue(0, 1), nullptr);
    EXPECT_EQ(Narrow(pod.GetError()), "A cell of the table is longer than 255 characters.");
    EXPECT_EQ(pod.GetValue(1, 1), nullptr); // the row is read whole or not at all
    EXPECT_FALSE(pod.Save(&qv::GetFileSystem(), path.c_str(), false, false));
    EXPECT_EQ(Bytes(path), text);

    // Column names hold 127 characters: a longer one refuses the table.
    for (size_t length : {127u, 128u}) {
        std::ofstream(std::string(path.begin(), path.end()), std::ios::binary)
            << std::string(length, 'n') << " B\r\nu u\r\nc c\r\n1 2\r\n";
        EXPECT_EQ(pod.Load(&qv::GetFileSystem(), path.c_str(), false), length == 127) << length;
    }
    EXPECT_EQ(Narrow(pod.GetError()), "A column's name, unit, class or type is too long.");
}

// Bytes that are not UTF-8 read as U+FFFD: a save, even for an edit of
// another cell, would write that back in their place. So such a cell is no
// value and blocks the save, as a cell too long does; a real U+FFFD reads.
TEST_F(PODFileTest, ACellThatIsNotUtf8IsNoValueAndBlocksTheSave) {
    auto path = Path("latin1.txt");
    std::string const text = "A B\r\nu u\r\nc c\r\n1 \xef\xbf\xbd\r\n2 \xb0\x43\r\n3 \xed\xa0\x80\r\n";
    std::ofstream(std::string(path.begin(), path.end()), std::ios::binary) << text;
    CPODFile pod;
    ASSERT_TRUE(pod.Load(&qv::GetFileSystem(), path.c_str(), false));
    ASSERT_EQ(pod.nDPs(), 3u);
    ASSERT_NE(pod.GetValue(1, 0), nullptr);
    EXPECT_EQ(pod.GetValue(1, 0)[0], u'\xFFFD');
    for (uint32_t row : {1u, 2u}) {
        EXPECT_EQ(pod.GetValue(1, row), nullptr) << row;
        EXPECT_EQ(Narrow(pod.GetError()), "A cell of the table is not UTF-8 text.");
    }
    ASSERT_TRUE(pod.PutValue(0, 0, u"edited"));
    EXPECT_FALSE(pod.Save(&qv::GetFileSystem(), path.c_str(), false, false));
    EXPECT_EQ(Bytes(path), text);

    std::ofstream(std::string(path.begin(), path.end()), std::ios::binary) << "A \xb0\r\nu u\r\nc c\r\n1 2\r\n";
    EXPECT_FALSE(pod.Load(&qv::GetFileSystem(), path.c_str(), false));
    EXPECT_EQ(Narrow(pod.GetError()), "A column's name, unit, class or type is not UTF-8 text.");
}

// A row too long for the line buffer is refused on saving too: written, it
// would make a table that no longer opens, and the reopen after the save
// would drop the table from memory as well. The old file and the edits stay.
TEST_F(PODFileTest, ASaveRefusesALineTheLoadCouldNotHold) {
    auto path = Path("wide.pod");
    {
        CPODFile maker;
        MakeTable(maker, 3, path);
    }
    std::string const before = Bytes(path);
    CPODFile pod;
    ASSERT_TRUE(pod.Load(&qv::GetFileSystem(), path.c_str(), true));
    std::u16string const full(255, u'w'); // 32 such cells: 8,193 bytes with their tabs and CR LF
    for (uint32_t col = 2; col < 32; ++col) ASSERT_EQ(pod.AddColumn(u"W", u"", u"", u""), col);
    for (uint32_t col = 0; col < 32; ++col) ASSERT_TRUE(pod.PutValue(col, 1, full.c_str()));
    EXPECT_FALSE(pod.Save(&qv::GetFileSystem(), path.c_str(), false, false));
    EXPECT_EQ(Narrow(pod.GetError()), "A line of the table is longer than the 8,192-byte line buffer.");
    EXPECT_EQ(Bytes(path), before);
    ASSERT_TRUE(pod.IsOpen());
    EXPECT_EQ(Narrow(pod.GetValue(31, 1)), Narrow(full.c_str()));

    // Two bytes less (8,191, the longest line held): saved, and it opens again.
    ASSERT_TRUE(pod.PutValue(31, 1, full.substr(2).c_str()));
    ASSERT_TRUE(pod.Save(&qv::GetFileSystem(), path.c_str(), false, false));
    CPODFile again;
    ASSERT_TRUE(again.Load(&qv::GetFileSystem(), path.c_str(), true));
    EXPECT_EQ(Narrow(again.GetValue(31, 1)), Narrow(full.substr(2).c_str()));
}

// The first line of a plain text file counts its columns: one of 300 fields
// (3,300 bytes) gives all 300, and the next save writes all of them back.
TEST_F(PODFileTest, PlainTextWithALongFirstLineKeepsEveryColumn) {
    constexpr uint32_t kColumns = 300;
    std::string names, units, classes, row;
    for (uint32_t c = 0; c < kColumns; ++c) {
        std::string const sep = c ? "\t" : "";
        names += sep + "column" + std::to_string(1000 + c);
        units += sep + "u";
        classes += sep + "k";
        row += sep + std::to_string(c);
    }
    auto path = Path("wide.txt");
    std::ofstream(std::string(path.begin(), path.end()), std::ios::binary)
        << names << "\r\n" << units << "\r\n" << classes << "\r\n" << row << "\r\n";
    ASSERT_GT(names.size(), 2048u);
    CPODFile pod;
    ASSERT_TRUE(pod.Load(&qv::GetFileSystem(), path.c_str(), false));
    ASSERT_EQ(pod.nParams(), kColumns);
    ASSERT_EQ(pod.nDPs(), 1u);
    char16_t const *name = nullptr;
    ASSERT_TRUE(pod.GetColumnInfo(kColumns - 1, &name, nullptr, nullptr, nullptr));
    EXPECT_EQ(Narrow(name), "column1299");
    EXPECT_EQ(Narrow(pod.GetValue(kColumns - 1, 0)), "299");

    // A first line beyond the line buffer is refused, not cut.
    auto huge = Path("huge.txt");
    std::ofstream(std::string(huge.begin(), huge.end()), std::ios::binary)
        << std::string(CPODFile::kLineSize, 'x') << " y\r\nu\r\nk\r\n1\r\n";
    EXPECT_FALSE(pod.Load(&qv::GetFileSystem(), huge.c_str(), false));
}

// Loading under failing reads and seeks: a load either fails or gives the
// table a clean load gives. A tagged table whose header read fails must not
// come back as a plain text table of its header lines, and a header line cut
// by a failed read must not make its rest a row.
TEST_F(PODFileTest, FailingReadsNeverLoadAnotherTable) {
    auto tagged = Path("tagged.pod");
    auto plain = Path("plain.txt");
    {
        CPODFile maker;
        MakeTable(maker, 5, tagged);
    }
    std::ofstream(std::string(plain.begin(), plain.end()), std::ios::binary)
        << "Time Az\r\ns deg\r\nA B\r\n1 2\r\n3 4\r\n";
    for (auto const &path : {tagged, plain}) {
        auto describe = [](CPODFile &pod) {
            std::string out = std::to_string(pod.nParams()) + "x" + std::to_string(pod.nDPs());
            for (uint32_t c = 0; c < pod.nParams(); ++c) {
                char16_t const *name = nullptr;
                out += pod.GetColumnInfo(c, &name, nullptr, nullptr, nullptr) ? " " + Narrow(name) : " ?";
                for (uint32_t r = 0; r < pod.nDPs(); ++r) out += "," + Narrow(pod.GetValue(c, r));
            }
            return out;
        };
        CPODFile pod;
        std::string const clean = qv::test::ExpectWholeLoadOrFailure(
            [&] { return pod.Load(&qv::GetFileSystem(), path.c_str(), false); }, [&] { return describe(pod); });
        EXPECT_EQ(clean.substr(0, 3), path == tagged ? "2x5" : "2x2");
    }
}

TEST_F(PODFileTest, ASourceChangedWhileOpenGivesNoCellsButAnErrorText) {
    CPODFile pod;
    auto path = Path("moving.pod");
    MakeTable(pod, 100, path);
    EXPECT_EQ(Narrow(pod.GetValue(0, 1)), "r1c0");
    std::string bytes = Bytes(path);
    std::string changed = bytes;
    changed.replace(changed.find("r50c0"), 5, "XXXXX");
    std::ofstream(std::string(path.begin(), path.end()), std::ios::binary | std::ios::in) << changed << "tail\r\n";
    EXPECT_EQ(pod.GetValue(0, 50), nullptr);
    EXPECT_EQ(Narrow(pod.GetError()), "The table's file changed on disk while it was open.");
    ASSERT_TRUE(pod.PutValue(1, 1, u"edit")); // a resident row needs no source
    EXPECT_FALSE(pod.Save(&qv::GetFileSystem(), path.c_str(), false, false));
    EXPECT_EQ(Bytes(path), changed + "tail\r\n"); // the other writer's bytes stay
}

TEST_F(PODFileTest, AFileReplacedUnderItsNameStillReadsButIsNotSavedOver) {
    CPODFile pod;
    auto path = Path("replaced.pod");
    MakeTable(pod, 100, path);
    auto other = Path("other.pod");
    std::ofstream(std::string(other.begin(), other.end()), std::ios::binary) << "another writer's file\r\n";
    ASSERT_EQ(std::rename(std::string(other.begin(), other.end()).c_str(), std::string(path.begin(), path.end()).c_str()), 0);
    EXPECT_EQ(Narrow(pod.GetValue(0, 80)), "r80c0"); // the open handle reads the old file
    ASSERT_TRUE(pod.PutValue(1, 80, u"edit"));
    EXPECT_FALSE(pod.Save(&qv::GetFileSystem(), path.c_str(), false, false));
    EXPECT_EQ(Narrow(pod.GetError()), "The table's file changed on disk while it was open.");
    EXPECT_EQ(Bytes(path), "another writer's file\r\n");
    auto elsewhere = Path("elsewhere.pod");
    ASSERT_TRUE(pod.Save(&qv::GetFileSystem(), elsewhere.c_str(), false, false));
    EXPECT_EQ(Narrow(pod.GetValue(1, 80)), "edit");
}

// A table made in memory with 16 KiB windows: its row index moves its window
// every 77 rows and its edits spill through the diff file's 31-record window,
// so the edits and Save read both temporary files back. Every failed read, write or seek there, in the
// edits or in Save, reaches the caller, and the file is then the old one.
TEST_F(PODFileTest, TemporaryFileFaultsDuringEditsAndSaveAreReported) {
    constexpr uint32_t kColumns = 20, kRows = 120, kEdits = 100;
    auto path = Path("wide.pod");
    std::string const before = "not a table yet\n";
    std::string after;
    std::unique_ptr<CPODFile> pod;
    qv::test::RunUnderFaults(
        [&] {
            std::ofstream(std::string(path.begin(), path.end()), std::ios::binary) << before;
            pod = std::make_unique<CPODFile>(16384);
            ASSERT_TRUE(pod->New());
            for (uint32_t c = 0; c < kColumns; ++c)
                ASSERT_NE(pod->AddColumn(Wide("c" + std::to_string(c)).c_str(), u"", u"", u""), qv::kPODNone);
        },
        [&] {
            pod->AllocRows(kRows);
            if (pod->nDPs() != kRows) return false;
            for (uint32_t k = 0; k < kEdits; ++k) {
                uint32_t row = (k * 7) % kRows, col = (k * 13) % kColumns;
                if (!pod->PutValue(col, row, Wide("v" + std::to_string(k)).c_str())) return false;
            }
            return pod->Save(&qv::GetFileSystem(), path.c_str(), false, false);
        },
        [&](qv::test::FaultRun const &run) {
            auto bytes = Bytes(path);
            if (run.IsClean()) {
                after = bytes;
                return;
            }
            // Every failed write reaches the caller. A read or seek that fails
            // where the SAF header reads its lines looks like the header's
            // end; there the judge is the table itself: a success must have
            // every edit, in the file and in the table reopened from it.
            using qv::test::Fault;
            if (run.fault == Fault::kWrite || run.fault == Fault::kWriteShort) qv::test::ExpectFailureReported(run);
            if (run.succeeded) {
                ASSERT_EQ(pod->nDPs(), kRows);
                ASSERT_EQ(pod->nParams(), kColumns);
                for (uint32_t k = 0; k < kEdits; k += 7) {
                    // A later edit of the same cell wins.
                    uint32_t last = k;
                    for (uint32_t later = k + 1; later < kEdits; ++later)
                        if ((later * 7) % kRows == (k * 7) % kRows && (later * 13) % kColumns == (k * 13) % kColumns)
                            last = later;
                    EXPECT_EQ(Narrow(pod->GetValue((k * 13) % kColumns, (k * 7) % kRows)), "v" + std::to_string(last));
                }
            }
            auto asBytes = [](std::string const &b) { return qv::test::FaultBytes(b.begin(), b.end()); };
            qv::test::ExpectBeforeOrAfter(run, asBytes(bytes), asBytes(before), asBytes(after));
        },
        {qv::test::Fault::kRead, qv::test::Fault::kWrite, qv::test::Fault::kWriteShort, qv::test::Fault::kLseek});
    EXPECT_NE(after.find("v99"), std::string::npos);
}

// Reads and edits of a loaded table under failing reads, writes and seeks of
// its file and the temporary ones: each failure reaches the caller, no cell
// reads as another value, and every edit taken before the fault still reads
// back once the calls work again.
TEST_F(PODFileTest, FaultsWhileReadingAndEditingALoadedTableLoseNoEdit) {
    constexpr uint32_t kRows = 100, kEdits = 40;
    auto path = Path("faults.pod");
    {
        CPODFile maker;
        MakeTable(maker, kRows, path);
    }
    std::unique_ptr<CPODFile> pod;
    std::map<uint32_t, std::string> edited; // row -> its value in column 1
    bool wrong = false;
    auto readsRight = [&](uint32_t col, uint32_t row) { // false when the read fails
        char16_t const *value = pod->GetValue(col, row);
        std::string const want =
            col == 1 && edited.count(row) ? edited[row] : "r" + std::to_string(row) + "c" + std::to_string(col);
        wrong |= value && Narrow(value) != want;
        return value != nullptr;
    };
    int const runs = qv::test::RunUnderFaults(
        [&] {
            pod = std::make_unique<CPODFile>(2048); // windows of a few rows: many moves
            ASSERT_TRUE(pod->Load(&qv::GetFileSystem(), path.c_str(), true));
            edited.clear();
            wrong = false;
        },
        [&] {
            for (uint32_t k = 0; k < kEdits; ++k) {
                uint32_t const row = (k * 67) % kRows;
                std::string const value = "e" + std::to_string(k);
                if (!readsRight(0, row) || !pod->PutValue(1, row, Wide(value).c_str())) return false;
                edited[row] = value;
            }
            for (uint32_t row = 0; row < kRows; ++row)
                if (!readsRight(0, row) || !readsRight(1, row)) return false;
            return true;
        },
        [&](qv::test::FaultRun const &run) {
            EXPECT_FALSE(wrong) << "a cell read back with another value";
            if (!run.IsClean()) qv::test::ExpectFailureReported(run);
            for (auto const &[row, value] : edited)
                EXPECT_EQ(Narrow(pod->GetValue(1, row)), value) << row;
        },
        {qv::test::Fault::kRead, qv::test::Fault::kWrite, qv::test::Fault::kWriteShort, qv::test::Fault::kLseek});
    EXPECT_GT(runs, 20);
}

std::string RunTool(std::string const &command) {
    std::string out;
    if (FILE *p = popen(command.c_str(), "r")) {
        char buf[4096];
        for (size_t n; (n = fread(buf, 1, sizeof buf, p)) > 0;) out.append(buf, n);
        out += "exit " + std::to_string(pclose(p));
    }
    return out;
}

TEST_F(PODFileTest, ToolReadsSetsShowsAndExportsCells) {
    {
        CPODFile pod;
        MakeTable(pod, 12, Path("tool.pod"));
    }
    std::string file = (dir / "tool.pod").string();
    std::string qv = QV_TOOL;
    EXPECT_EQ(RunTool(qv + " pod get " + file + " 3 Az"), "r3c1\nexit 0");
    EXPECT_EQ(RunTool(qv + " pod set " + file + " 3 1 'a, b'"), "exit 0");
    EXPECT_EQ(RunTool(qv + " pod get " + file + " 3 1"), "a, b\nexit 0");
    EXPECT_NE(RunTool(qv + " pod get " + file + " 12 0 2>/dev/null"), "exit 0");
    std::string shown = RunTool(qv + " pod show " + file + " --rows 2:4");
    EXPECT_NE(shown.find("rows 12, columns 2\n"), std::string::npos);
    EXPECT_NE(shown.find("\n3\tr3c0\ta, b\n"), std::string::npos);
    EXPECT_EQ(shown.find("\n4\t"), std::string::npos);
    EXPECT_EQ(RunTool(qv + " pod show --json " + file + " --rows 3:5"),
              "{\"file\":\"" + file + "\",\"rows\":12,\"columns\":[{\"name\":\"Time\",\"unit\":\"seconds\","
              "\"class\":\"Unclassified\",\"type\":\"\"},{\"name\":\"Az\",\"unit\":\"degrees\",\"class\":"
              "\"Unclassified\",\"type\":\"\"}],\"firstRow\":3,\"cells\":[[\"r3c0\",\"a, b\"],[\"r4c0\",\"r4c1\"]]}\n"
              "exit 0");
    std::string csv = RunTool(qv + " pod export " + file + " --csv");
    EXPECT_EQ(csv.substr(0, 28), "Time,Az\r\nr0c0,r0c1\r\nr1c0,r1c");
    EXPECT_NE(csv.find("r3c0,\"a, b\"\r\n"), std::string::npos);
}

} // namespace
