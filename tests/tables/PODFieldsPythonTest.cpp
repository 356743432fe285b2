// Fields written by qv read in Python's csv module as tab-separated values.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "qv/core/String.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/tables/PODFields.h"
#include "qv/tables/PODFile.h"

namespace {

bool HavePython() { return std::system("/usr/bin/python3 -c 'import csv' >/dev/null 2>&1") == 0; }

std::string Capture(std::string const &command) {
    std::string out;
    if (FILE *pipe = popen(command.c_str(), "r")) {
        char buf[4096];
        size_t n;
        while ((n = fread(buf, 1, sizeof buf, pipe)) > 0) out.append(buf, n);
        pclose(pipe);
    }
    return out;
}

TEST(PODFieldsPython, WrittenRowsReadInCsvWithTabDelimiter) {
    if (!HavePython()) GTEST_SKIP() << "no /usr/bin/python3 with csv";
    std::vector<std::vector<std::string>> rows{
        {"1", "", "two words", "a,b"},
        {"x|y", "semi;colon", "\xc3\xa9t\xc3\xa9", "-1.5e+3"},
        {"cr\rinside", "2", "3", "4"},
    };
    std::string text;
    std::string expected;
    for (auto const &row : rows) {
        for (size_t i = 0; i < row.size(); ++i) {
            qv::AppendPODField(text, row[i]);
            text += i + 1 < row.size() ? "\t" : "\r\n";
            expected += row[i] + (i + 1 < row.size() ? "\x1f" : "\n");
        }
    }
    std::string path = ::testing::TempDir() + "pod_fields_python.txt";
    std::ofstream(path, std::ios::binary) << text;
    std::string got = Capture("/usr/bin/python3 -c 'import csv,sys\n"
                              "for r in csv.reader(open(sys.argv[1], newline=\"\", encoding=\"utf-8\"), delimiter=\"\\t\"):\n"
                              "    sys.stdout.write(\"\\x1f\".join(r) + \"\\n\")' " + path);
    std::remove(path.c_str());
    EXPECT_EQ(got, expected);
}

} // namespace

namespace {

// A whole table saved by qv reads in Python's csv module, after the SAF
// header and the column lines, with every cell as it was put in.
TEST(PODFieldsPython, SavedTableReadsCellForCellInCsv) {
    if (!HavePython()) GTEST_SKIP() << "no /usr/bin/python3 with csv";
    std::vector<std::vector<std::string>> rows;
    for (int r = 0; r < 150; ++r) {
        rows.push_back({std::to_string(r), r % 3 ? "" : "two words", "a,b;c|d", "\xc3\xa9t\xc3\xa9 " + std::to_string(r),
                        std::to_string(r * 0.25)});
    }
    std::string path = ::testing::TempDir() + "pod_table_python.pod";
    std::u16string name(path.begin(), path.end());
    {
        qv::CPODFile pod;
        ASSERT_TRUE(pod.New());
        for (char16_t const *col : {u"Frame", u"Note", u"Marks", u"Place", u"Time"})
            ASSERT_NE(pod.AddColumn(col, u"Unclassified", u"None", u""), qv::kPODNone);
        pod.AllocRows(uint32_t(rows.size()));
        for (uint32_t r = 0; r < rows.size(); ++r)
            for (uint32_t c = 0; c < rows[r].size(); ++c)
                ASSERT_TRUE(pod.PutValue(c, r, qv::CString(rows[r][c].c_str()).GetUTF16()));
        ASSERT_TRUE(pod.Save(&qv::GetFileSystem(), name.c_str(), false, false));
    }
    std::string expected = "Frame\x1fNote\x1fMarks\x1fPlace\x1fTime\n";
    for (auto const &row : rows) {
        for (size_t i = 0; i < row.size(); ++i) expected += row[i] + (i + 1 < row.size() ? "\x1f" : "\n");
    }
    // The data follows the header's DATA line: then the name, unit and class lines, then the rows.
    std::string got = Capture("/usr/bin/python3 -c 'import csv,io,sys\n"
                              "lines = open(sys.argv[1], \"rb\").read().decode(\"utf-8\").split(\"\\r\\n\")\n"
                              "text = \"\\r\\n\".join(lines[lines.index(\"DATA\") + 1:])\n"
                              "rows = list(csv.reader(io.StringIO(text, newline=\"\"), delimiter=\"\\t\"))\n"
                              "for i, r in enumerate(rows):\n"
                              "    if i not in (1, 2): sys.stdout.write(\"\\x1f\".join(r) + \"\\n\")' " + path);
    std::remove(path.c_str());
    EXPECT_EQ(got, expected);
}

} // namespace
