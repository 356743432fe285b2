// IFile::GetLine on a disk file whose reads and seeks fail: every line comes
// whole and in order, or the failure is told apart from the end of the file.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "FileTestSupport.h"
#include "qv/files/File.h"
#include "qv/files/OpenFlags.h"
#include "support/FaultInjection.h"

using namespace qv;
using namespace qv::test;
using qv::test::Fault;
using qv::test::FaultRun;

namespace {

// Lines of rising length, so that each Read takes more than one line and
// ends inside a line; the last line has no line end.
std::string LinesText(std::vector<std::string> &lines) {
    std::string text;
    for (int i = 0; i < 40; ++i) {
        lines.push_back("line " + std::to_string(i) + " " + std::string(size_t(i * 3), 'x'));
        text += lines.back() + (i % 2 ? "\r\n" : "\n");
    }
    lines.push_back("tail");
    return text + "tail";
}

} // namespace

TEST(GetLineFaults, AFailedReadIsNeverTheEnd) {
    ScratchDir dir;
    std::string path = dir.Path("lines.txt");
    std::vector<std::string> expected;
    std::string text = LinesText(expected);
    WriteDiskBytes(path, Bytes(text.begin(), text.end()));

    std::vector<std::string> got;
    IFile::LineOutcome last = IFile::LineOutcome::Line;
    int failures = 0;
    int runs = qv::test::RunUnderFaults(
        [&] { got.clear(); },
        [&] {
            CFile f;
            if (!f.Open(Wide(path).c_str(), kOpenExisting | kOpenRead)) return false;
            char buf[256];
            while (f.GetLine(buf, sizeof buf, last))
                got.push_back(buf);
            return last == IFile::LineOutcome::End;
        },
        [&](FaultRun const &run) {
            if (!run.succeeded) {
                EXPECT_EQ(last, IFile::LineOutcome::Failed);
                ++failures;
                // What came before the failure came whole and in order.
                ASSERT_LE(got.size(), expected.size());
                for (size_t i = 0; i < got.size(); ++i)
                    EXPECT_EQ(got[i], expected[i]) << "line " << i;
                return;
            }
            EXPECT_EQ(got, expected);
        },
        {Fault::kRead, Fault::kLseek});
    EXPECT_GT(runs, 0);
    EXPECT_GT(failures, 0);
}
