// Edits through the row cache, the diff cache and their temporary files
// under every system-call fault: an edit reported done is never lost, one
// reported failed changes nothing, and a Save either writes exactly the
// table the reported edits make or leaves the old file whole.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "qv/filesystems/FileSystem.h"
#include "qv/tables/PODFile.h"
#include "support/FaultInjection.h"

namespace {

using qv::CPODFile;
using Model = std::vector<std::vector<std::string>>;

std::u16string Wide(std::string const &s) { return std::u16string(s.begin(), s.end()); }

std::string Narrow(char16_t const *s) {
    std::string out;
    for (; s && *s; ++s) out += char(*s);
    return out;
}

std::string ReadBytes(std::string const &path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

// The table the file holds, or why it does not match model.
std::string Mismatch(std::u16string const &path, Model const &model) {
    CPODFile pod;
    if (!pod.Load(&qv::GetFileSystem(), path.c_str(), true)) return "does not load";
    if (pod.nDPs() != model.size()) return std::to_string(pod.nDPs()) + " rows";
    for (uint32_t row = 0; row < model.size(); ++row)
        for (uint32_t col = 0; col < model[row].size(); ++col)
            if (char16_t const *v = pod.GetValue(col, row); !v || Narrow(v) != model[row][col])
                return "cell " + std::to_string(col) + "," + std::to_string(row) + " is " + Narrow(v);
    return "";
}

// 100 rows of two columns, edited in a spread that pushes rows out of the
// 64-row cache and cells out of the 32-cell diff cache, with rows removed
// while some are half-way out, and saved.
TEST(PODEditFaults, ReportedEditsAreSavedExactlyOrTheOldFileStays) {
    char tmpl[] = "/tmp/qvpodfXXXXXX";
    std::filesystem::path const dir = mkdtemp(tmpl);
    std::string const path = (dir / "t.pod").string();
    std::u16string const wide = Wide(path);
    Model start;
    {
        CPODFile pod;
        ASSERT_TRUE(pod.New());
        ASSERT_EQ(pod.AddColumn(u"A", u"Cls", u"None", u""), 0u);
        ASSERT_EQ(pod.AddColumn(u"B", u"Cls", u"None", u""), 1u);
        pod.AllocRows(100);
        for (uint32_t r = 0; r < 100; ++r) {
            start.push_back({"a" + std::to_string(r), "b" + std::to_string(r)});
            for (uint32_t c = 0; c < 2; ++c) ASSERT_TRUE(pod.PutValue(c, r, Wide(start[r][c]).c_str()));
        }
        ASSERT_TRUE(pod.Save(&qv::GetFileSystem(), wide.c_str(), false, false));
    }
    std::string const before = ReadBytes(path);
    CPODFile pod(256); // small windows: the cell records and the diff file reach the disk at once
    Model model;
    auto put = [&](uint32_t col, uint32_t row, std::string const &value) {
        if (pod.PutValue(col, row, Wide(value).c_str())) model[row][col] = value;
    };
    auto remove = [&](uint32_t row) {
        uint32_t const rows = pod.nDPs();
        pod.RemoveRow(row);
        if (pod.nDPs() != rows) model.erase(model.begin() + row);
    };
    qv::test::RunUnderFaults(
        [&] {
            std::ofstream(path, std::ios::binary) << before;
            model = start;
            ASSERT_TRUE(pod.Load(&qv::GetFileSystem(), wide.c_str(), true));
        },
        [&] {
            for (uint32_t r = 0; r < 100; ++r) put(r % 2, r, "e" + std::to_string(r));
            remove(3);
            remove(40);
            for (uint32_t r = 0; r < 98; r += 7) put(1, r, "f" + std::to_string(r));
            remove(0);
            for (uint32_t r = 90; r-- > 0;) put(0, r, "g" + std::to_string(r));
            return pod.Save(&qv::GetFileSystem(), wide.c_str(), false, false);
        },
        [&](qv::test::FaultRun const &run) {
            std::string const bytes = ReadBytes(path);
            if (!run.succeeded && bytes == before) return;
            EXPECT_EQ(Mismatch(wide, model), "") << (run.succeeded ? "saved" : "reported failed, file replaced");
        });
    std::filesystem::remove_all(dir);
}

} // namespace
