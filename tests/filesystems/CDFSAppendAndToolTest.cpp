// A CDFS riding at the end of a file of another kind, which still loads as
// itself, and the qv cdfs commands end to end.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "qv/files/File.h"
#include "qv/filesystems/CDFileSystem.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "qv/formats/tagged/SAFFile.h"
#include "tests/filesystems/FileSystemTestSupport.h"

namespace qv::test {
namespace {

std::string ReadDisk(std::string const &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST(CDFSAppended, ASAFFileWithACDFSBehindItStillLoads) {
    ScratchDir dir;
    std::string original = ReadDisk(std::string(QV_TEST_DATA_DIR) + "/sample.saf");
    ASSERT_FALSE(original.empty());
    CString path = dir.Text("sample.saf");
    ASSERT_TRUE(WriteWhole(*FileSystem, path, original));
    CSAFFile before;
    CFile file;
    ASSERT_TRUE(file.Open(path, 0x12));
    ASSERT_TRUE(before.Load(&file));
    file.Close();
    {
        CCDFileSystem cdfs;
        ASSERT_TRUE(cdfs.Create(path, true));
        ASSERT_TRUE(WriteWhole(cdfs, u"/notes/calibration.txt", "kept beside the images"));
    }
    EXPECT_TRUE(CCDFileSystem::IsCDFile(path));
    std::string bytes = ReadWhole(*FileSystem, path);
    EXPECT_TRUE(bytes.substr(0, original.size()) == original);

    CSAFFile after;
    ASSERT_TRUE(file.Open(path, 0x12));
    ASSERT_TRUE(after.Load(&file));
    EXPECT_EQ(after.nTags(), before.nTags());
    EXPECT_EQ(after.GetDataPosition(), before.GetDataPosition());
    for (uint32_t i = 0; i < before.nTags(); ++i)
        EXPECT_EQ(U16(after[i].value), U16(before[i].value)) << i;
    file.Close();

    CCDFileSystem again;
    ASSERT_TRUE(again.Open(path, true));
    EXPECT_EQ(ReadWhole(again, u"/notes/calibration.txt"), "kept beside the images");
}

#ifdef QV_TOOL
// Runs the tool through the shell; the exit status, with standard output and
// error in files of dir.
int Tool(ScratchDir const &dir, std::string const &arguments) {
    std::string command = std::string(QV_TOOL) + " " + arguments + " >" + dir.Path("out") + " 2>" + dir.Path("err");
    int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(CDFSTool, AddsListsExtractsAndChecks) {
    ScratchDir dir;
    std::string cdfs = dir.Path("c.cdfs");
    std::ofstream(dir.Path("one.txt")) << "first file";
    ASSERT_EQ(Tool(dir, "cdfs add " + cdfs + " " + dir.Path("one.txt")), 0);
    ASSERT_EQ(Tool(dir, "cdfs add " + cdfs + " - <" + dir.Path("one.txt")), 0);
    ASSERT_EQ(Tool(dir, "cdfs list " + cdfs), 0);
    std::string listing = ReadDisk(dir.Path("out"));
    EXPECT_NE(listing.find("10         8192         4096  /one.txt"), std::string::npos) << listing;
    EXPECT_NE(listing.find("/stdin"), std::string::npos) << listing;
    ASSERT_EQ(Tool(dir, "cdfs extract " + cdfs + " /one.txt " + dir.Path("back.txt")), 0);
    EXPECT_EQ(ReadDisk(dir.Path("back.txt")), "first file");
    ASSERT_EQ(Tool(dir, "cdfs extract " + cdfs + " stdin -"), 0);
    EXPECT_EQ(ReadDisk(dir.Path("out")), "first file");
    ASSERT_EQ(Tool(dir, "cdfs check " + cdfs), 0);
    EXPECT_EQ(ReadDisk(dir.Path("out")), "ok: 2 files, 20 bytes, next offset 20480\n");

    EXPECT_EQ(Tool(dir, "cdfs extract " + cdfs + " /none -"), 1);
    EXPECT_NE(ReadDisk(dir.Path("err")).find("holds no file /none"), std::string::npos);
    EXPECT_EQ(Tool(dir, "cdfs check " + dir.Path("one.txt")), 1);
    EXPECT_EQ(ReadDisk(dir.Path("err")),
              "qv: " + dir.Path("one.txt") + ": no \"CDFS\" at the start, nor a foot that points at one\n");
    // A table whose region runs past the host is named as such.
    std::string bytes = ReadDisk(cdfs);
    bytes.resize(bytes.size() - 16 - 4096); // cut into the last region, foot gone
    std::ofstream(dir.Path("cut.cdfs"), std::ios::binary) << bytes;
    EXPECT_EQ(Tool(dir, "cdfs check " + dir.Path("cut.cdfs")), 1);
    EXPECT_NE(ReadDisk(dir.Path("err")).find("outside the host"), std::string::npos) << ReadDisk(dir.Path("err"));
    EXPECT_EQ(Tool(dir, "cdfs list " + dir.Path("missing")), 1);
    EXPECT_EQ(Tool(dir, "cdfs add " + cdfs), 2);
}
#endif

} // namespace
} // namespace qv::test
