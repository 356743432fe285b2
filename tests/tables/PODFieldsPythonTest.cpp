// Fields written by qv read in Python's csv module as tab-separated values.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "qv/tables/PODFields.h"

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
