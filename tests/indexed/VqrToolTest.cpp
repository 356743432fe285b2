// qv vqr / xdn list / extract / put end to end, through a shell.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sys/wait.h>

#include "files/FileTestSupport.h"

namespace qv::test {
namespace {

#ifdef QV_TOOL

struct SToolRun {
    int status;
    std::string out, err;
};

std::string FileText(std::string const &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

SToolRun RunTool(ScratchDir const &dir, std::string const &args) {
    std::string out = dir.Path("out.txt"), err = dir.Path("err.txt");
    int status = std::system((std::string(QV_TOOL) + " " + args + " >" + out + " 2>" + err).c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, FileText(out), FileText(err)};
}

TEST(VqrTool, PutListExtractAndRefusals) {
    ScratchDir dir;
    std::string vqr = dir.Path("c.vqr"), in = dir.Path("in.bin"), back = dir.Path("back.bin");
    std::ofstream(in, std::ios::binary) << "hello block";
    ASSERT_EQ(RunTool(dir, "vqr put " + vqr + " 7 2 5 " + in).status, 0);
    std::ofstream(in, std::ios::binary) << "second";
    ASSERT_EQ(RunTool(dir, "vqr put " + vqr + " 8 0 6 " + in).status, 0);
    std::ofstream(in, std::ios::binary) << "hello, a longer block";
    ASSERT_EQ(RunTool(dir, "vqr put " + vqr + " 7 2 5 " + in).status, 0); // grows the first

    SToolRun list = RunTool(dir, "vqr list " + vqr);
    EXPECT_EQ(list.status, 0);
    EXPECT_EQ(list.out, "    7     2          0          5        192         21\n"
                        "    8     0          0          6        213          6\n");
    SToolRun json = RunTool(dir, "vqr list --json " + vqr);
    EXPECT_NE(json.out.find("\"blocks\""), std::string::npos) << json.out;
    EXPECT_NE(json.out.find("\"offset\":213"), std::string::npos) << json.out;

    ASSERT_EQ(RunTool(dir, "vqr extract " + vqr + " 8 0 6 " + back).status, 0);
    EXPECT_EQ(FileText(back), "second");
    EXPECT_EQ(RunTool(dir, "vqr extract " + vqr + " 7 2 5 -").out, "hello, a longer block");

    SToolRun missing = RunTool(dir, "vqr extract " + vqr + " 9 0 1 " + back);
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.err.find("holds no block 9 0 1"), std::string::npos) << missing.err;
    EXPECT_EQ(RunTool(dir, "vqr extract " + vqr + " 0 0 1 " + back).status, 2);
    EXPECT_EQ(RunTool(dir, "vqr put " + vqr + " 1 70000 1 " + in).status, 2);
    std::ofstream(in, std::ios::binary) << "not a container at all";
    SToolRun junk = RunTool(dir, "vqr list " + in);
    EXPECT_EQ(junk.status, 1);
    EXPECT_NE(junk.err.find("is not a sound VQR container"), std::string::npos) << junk.err;
    EXPECT_EQ(RunTool(dir, "vqr list " + dir.Path("none.vqr")).status, 1);
}

TEST(XdnTool, PutListExtractAndRefusals) {
    ScratchDir dir;
    std::string xdn = dir.Path("c.xdn"), in = dir.Path("in.bin");
    std::ofstream(in, std::ios::binary) << "hello block";
    ASSERT_EQ(RunTool(dir, "xdn put " + xdn + " 7 2 5 " + in).status, 0);
    std::ofstream(in, std::ios::binary) << "second";
    ASSERT_EQ(RunTool(dir, "xdn put " + xdn + " 8 0 6 " + in).status, 0);
    std::ofstream(in, std::ios::binary) << "hello, a longer block";
    ASSERT_EQ(RunTool(dir, "xdn put " + xdn + " 7 2 5 " + in).status, 0); // grows the first

    SToolRun list = RunTool(dir, "xdn list " + xdn);
    EXPECT_EQ(list.status, 0);
    EXPECT_EQ(list.out, "    7     2          0          5        192         21\n"
                        "    8     0          0          6        213          6\n");
    EXPECT_NE(RunTool(dir, "xdn list --json " + xdn).out.find("\"offset\":213"), std::string::npos);
    EXPECT_EQ(RunTool(dir, "xdn extract " + xdn + " 8 0 6 -").out, "second");
    EXPECT_EQ(FileText(xdn).substr(0, 4), std::string("XDN\0", 4));
    SToolRun vqr = RunTool(dir, "vqr list " + xdn);
    EXPECT_EQ(vqr.status, 1);
    EXPECT_NE(vqr.err.find("is not a sound VQR container"), std::string::npos) << vqr.err;
    EXPECT_EQ(RunTool(dir, "xdn extract " + xdn + " 9 0 1 -").status, 1);
}

#endif

} // namespace
} // namespace qv::test
