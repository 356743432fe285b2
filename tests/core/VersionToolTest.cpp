// qv version show and set, judged from outside: the executables come from
// tools/make_pe_version.py, whose own reader (no code shared with qv) reads
// the stamped values back, and binutils' objdump must still read the file as
// a PE with its resource tree. Each check is skipped where its program is
// missing.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "ProcessRun.h"
#include "files/FileTestSupport.h"

namespace qv::test {
namespace {

std::string const kSource = std::string(QV_TEST_DATA_DIR) + "/..";
std::string const kGenerator = kSource + "/tools/make_pe_version.py";
char const kPython[] = "/usr/bin/python3";
char const kObjdump[] = "/usr/bin/objdump";

bool Contains(std::string const &text, std::string const &part) {
    return text.find(part) != std::string::npos;
}

class VersionTool : public testing::TestWithParam<int> {
protected:
    ScratchDir dir;
    std::string exe = dir.Path("app.exe");
    std::string committed = kSource + "/tests/core/data/version_pe" + std::to_string(GetParam()) + ".exe";

    void SetUp() override { WriteDiskBytes(exe, ReadDiskBytes(committed)); }
    SProcessRun Run(std::string const &program, std::vector<std::string> const &args) {
        SProcessRun run = RunProcess(program, args, dir.path);
        EXPECT_NE(run.status, -1) << "cannot run " << program;
        EXPECT_FALSE(Contains(run.err, "Sanitizer") || Contains(run.err, "runtime error")) << run.err;
        return run;
    }
#ifdef QV_TOOL
    SProcessRun Qv(std::vector<std::string> const &args) { return Run(QV_TOOL, args); }
#endif
};

INSTANTIATE_TEST_SUITE_P(BothKinds, VersionTool, testing::Values(32, 64));

TEST_P(VersionTool, TheGeneratorMadeTheCommittedFiles) {
    if (!HasProgram(kPython)) GTEST_SKIP() << "no " << kPython;
    std::string const made = dir.Path("made.exe");
    SProcessRun run = Run(kPython, {kGenerator, "make", std::to_string(GetParam()), made});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(ReadDiskBytes(made), ReadDiskBytes(committed));
}

#ifdef QV_TOOL

TEST_P(VersionTool, ShowPrintsTheResource) {
    SProcessRun run = Qv({"version", "show", exe});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "file version: 1.0.0.0\n"
                       "product version: 1.0.0.0\n"
                       "prerelease: no\n"
                       "string table 040904b0:\n"
                       "  CompanyName = qv test data\n"
                       "  FileDescription = A minimal executable with a version resource\n"
                       "  FileVersion = 1, 0, 0, 0\n"
                       "  InternalName = minimal\n"
                       "  LegalCopyright = none\n"
                       "  OriginalFilename = minimal.exe\n"
                       "  ProductName = qv\n"
                       "  ProductVersion = 1, 0, 0, 0\n"
                       "Translation: 0409 04b0\n");
}

TEST_P(VersionTool, SetValuesReadBackByAnIndependentReader) {
    for (auto const &[name, value] : std::vector<std::pair<std::string, std::string>>{
             {"Version", "4.3.2.1"}, {"Beta", "yes"}, {"Comments", "stamped on Linux"}, {"CompanyName", "Ünïcode Ltd"}}) {
        SProcessRun run = Qv({"version", "set", exe, name, value});
        EXPECT_EQ(run.status, 0) << name << ": " << run.err;
    }
    if (!HasProgram(kPython)) GTEST_SKIP() << "no " << kPython;
    SProcessRun read = Run(kPython, {kGenerator, "read", exe});
    ASSERT_EQ(read.status, 0) << read.err;
    EXPECT_EQ(read.out, "FileVersion(fixed)=4.3.2.1\n"
                        "ProductVersion(fixed)=4.3.2.1\n"
                        "Prerelease=1\n"
                        "CompanyName=Ünïcode Ltd\n"
                        "FileDescription=A minimal executable with a version resource\n"
                        "FileVersion=4, 3, 2, 1\n"
                        "InternalName=minimal\n"
                        "LegalCopyright=none\n"
                        "OriginalFilename=minimal.exe\n"
                        "ProductName=qv\n"
                        "ProductVersion=4, 3, 2, 1\n"
                        "Comments=stamped on Linux\n");
}

TEST_P(VersionTool, ObjdumpStillReadsTheStampedFile) {
    if (!HasProgram(kObjdump)) GTEST_SKIP() << "no " << kObjdump;
    ASSERT_EQ(Qv({"version", "set", exe, "Comments", "a longer block than the generator's"}).status, 0);
    SProcessRun dump = Run(kObjdump, {"-p", exe});
    ASSERT_EQ(dump.status, 0) << dump.err;
    EXPECT_TRUE(Contains(dump.out, GetParam() == 32 ? "file format pei-i386" : "file format pei-x86-64"));
    EXPECT_TRUE(Contains(dump.out, "Entry: ID: 0x000010")) << dump.out;
    // The version's leaf now tells the longer block's size.
    std::string const leaf = "Leaf: Addr: 0x002128, Size: 0x";
    size_t const at = dump.out.find(leaf);
    ASSERT_NE(at, std::string::npos) << dump.out;
    EXPECT_GT(std::stoul(dump.out.substr(at + leaf.size(), 6), nullptr, 16), 0x2D8u);
    EXPECT_TRUE(Contains(dump.out, "Leaf: Addr: 0x0020a0, Size: 0x000085")) << "the manifest stays";
}

TEST_P(VersionTool, FailuresAreOneSentenceAndLeaveTheFile) {
    Bytes const before = ReadDiskBytes(exe);
    SProcessRun run = Qv({"version", "set", exe, "Comments", std::string(3000, 'x')});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(Contains(run.err, "cannot stamp")) << run.err;
    EXPECT_EQ(run.out, "");
    run = Qv({"version", "set", exe, "Version", "1.2.x"});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(Contains(run.err, "is no version")) << run.err;
    run = Qv({"version", "set", exe, "Beta", "maybe"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(ReadDiskBytes(exe), before);

    run = Qv({"version", "show", committed + ".missing"});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(Contains(run.err, ".missing: No such file or directory")) << run.err;
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1);
    run = Qv({"version", "show"});
    EXPECT_EQ(run.status, 2);
}

#endif

} // namespace
} // namespace qv::test
