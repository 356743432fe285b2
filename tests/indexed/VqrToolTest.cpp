// qv vqr / xdn list / extract / put end to end, through a shell.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sys/wait.h>

#include "files/FileTestSupport.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/images/Bitmap.h"
#include "qv/images/Images.h"

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

// A small JPEG picture written by the library.
void WritePicture(std::string const &path) {
    HBITMAP picture = CreateBitmap(16, 8, 24);
    ASSERT_NE(picture, nullptr);
    EXPECT_TRUE(SaveHBITMAP(picture, &GetFileSystem(), CString(path.c_str())));
    DeleteBitmap(picture);
}

TEST(RjpegTool, PutListExtractAndRefusals) {
    ScratchDir dir;
    std::string vqr = dir.Path("c.vqr"), in = dir.Path("in.bin"), jpeg = dir.Path("p.jpg"), out = dir.Path("r.jpg");
    std::ofstream(in, std::ios::binary) << std::string(5000, 'x');
    ASSERT_EQ(RunTool(dir, "vqr put " + vqr + " 7 2 5 " + in).status, 0);
    WritePicture(jpeg);
    ASSERT_EQ(RunTool(dir, "rjpeg put " + jpeg + " " + vqr + " " + out).status, 0);

    SToolRun list = RunTool(dir, "rjpeg list " + out);
    EXPECT_EQ(list.status, 0);
    EXPECT_EQ(list.out, RunTool(dir, "vqr list " + vqr).out);
    EXPECT_EQ(list.out, "    7     2          0          5        192       5000\n");
    EXPECT_EQ(RunTool(dir, "rjpeg list - <" + out).out, list.out);
    EXPECT_NE(RunTool(dir, "rjpeg list --json " + out).out.find("\"size\":5000"), std::string::npos);
    EXPECT_EQ(RunTool(dir, "rjpeg extract " + out + " -").out, FileText(vqr));
    std::string back = dir.Path("back.vqr");
    ASSERT_EQ(RunTool(dir, "rjpeg extract " + out + " " + back).status, 0);
    EXPECT_EQ(FileText(back), FileText(vqr));
    // A second put replaces the container, from standard input.
    std::ofstream(in, std::ios::binary) << std::string(6000, 'y');
    ASSERT_EQ(RunTool(dir, "vqr put " + vqr + " 7 2 5 " + in).status, 0);
    ASSERT_EQ(RunTool(dir, "rjpeg put " + out + " - " + out + " <" + vqr).status, 0);
    EXPECT_EQ(RunTool(dir, "rjpeg extract " + out + " -").out, FileText(vqr));

    SToolRun plain = RunTool(dir, "rjpeg list " + jpeg);
    EXPECT_EQ(plain.status, 1);
    EXPECT_EQ(plain.err, "qv: " + jpeg + " holds no radiometric data (0 bytes in its VORK segments; more than 3864 count)\n");
    SToolRun notJpeg = RunTool(dir, "rjpeg extract " + in + " -");
    EXPECT_EQ(notJpeg.status, 1);
    EXPECT_EQ(notJpeg.err, "qv: " + in + " is not a JPEG picture\n");
    std::string before = FileText(out);
    SToolRun notVqr = RunTool(dir, "rjpeg put " + jpeg + " " + in + " " + out);
    EXPECT_EQ(notVqr.status, 1);
    EXPECT_EQ(notVqr.err, "qv: " + in + " is not a sound VQR container\n");
    std::string cut = dir.Path("cut.jpg");
    std::ofstream(cut, std::ios::binary) << FileText(jpeg).substr(0, FileText(jpeg).size() - 2);
    SToolRun noEnd = RunTool(dir, "rjpeg put " + cut + " " + vqr + " " + out);
    EXPECT_EQ(noEnd.status, 1);
    EXPECT_NE(noEnd.err.find("cannot carry radiometric data"), std::string::npos) << noEnd.err;
    EXPECT_EQ(RunTool(dir, "rjpeg put " + jpeg + " " + vqr + " " + dir.Path("no/such/dir.jpg")).status, 1);
    EXPECT_EQ(FileText(out), before); // the refusals left the file alone
}

#endif

} // namespace
} // namespace qv::test
