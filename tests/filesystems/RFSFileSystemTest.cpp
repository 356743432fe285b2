// The resource file system over this program's own resource table
// (tests/filesystems/resources.qvrc) and libqv's.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "qv/core/ModuleResources.h"
#include "qv/filesystems/RFSFileSystem.h"
#include "tests/filesystems/FileSystemTestSupport.h"

namespace qv::test {
namespace {

TEST(RFSFileSystem, NamesResourcesByTypeAndName) {
    char16_t out[512];
    EXPECT_EQ(U16(CRFSFileSystem::ResourceName(out, MakeIntResource(10), MakeIntResource(7))), u"/RCDATA/#7");
    EXPECT_EQ(U16(CRFSFileSystem::ResourceName(out, u"#24", u"app")), u"/MANIFEST/app");
    EXPECT_EQ(U16(CRFSFileSystem::ResourceName(out, MakeIntResource(300), u"x")), u"/#300/x");
    EXPECT_EQ(U16(CRFSFileSystem::ResourceName(out, u"Custom", u"y")), u"/Custom/y");
}

TEST(RFSFileSystem, ListsAndReadsTheProgramsResources) {
    CRFSFileSystem fs;
    EXPECT_EQ(fs.GetCapabilities(), 0u);
    EXPECT_TRUE(fs.IsDirectory(u"/RCDATA"));
    EXPECT_TRUE(fs.IsFile(u"/RCDATA/#7"));
    EXPECT_EQ(fs.GetDirectoryListing(u"/RCDATA", nullptr).GetSize(), 2u); // one entry for both languages
    IFileSystem::CDirectoryEntry seven = fs.GetFileInfo(u"/rcdata/#7");
    EXPECT_EQ(U16(seven.properties.GetValue(u"ResourceType")), u"#10");
    EXPECT_EQ(U16(seven.properties.GetValue(u"ResourceName")), u"#7");
    EXPECT_EQ(static_cast<void *>(seven.properties[u"Module"]),
              const_cast<void *>(static_cast<void const *>(GetProgramModule())));
    EXPECT_EQ(int(seven.properties[u"GZFilter"]), 0);
    std::string text = ReadWhole(fs, u"/RCDATA/#7");
    EXPECT_TRUE(text == "seven" || text == "sieben") << text;

    // A packed resource shows without ".gz", reads unpacked, reports its stored size.
    EXPECT_FALSE(fs.FileExists(u"/RCDATA/DATA.GZ"));
    IFileSystem::CDirectoryEntry data = fs.GetFileInfo(u"/RCDATA/DATA");
    EXPECT_EQ(int(data.properties[u"GZFilter"]), 1);
    std::string unpacked;
    for (int i = 0; i < 20; ++i)
        unpacked += "packed text, read back unpacked. ";
    EXPECT_EQ(ReadWhole(fs, u"/RCDATA/DATA"), unpacked);
    EXPECT_NE(data.size, int64_t(unpacked.size()));

    EXPECT_EQ(fs.CreateFileW(u"/RCDATA", 0x12), nullptr);
    EXPECT_EQ(fs.CreateFileW(u"/RCDATA/none", 0x12), nullptr);
    EXPECT_FALSE(fs.DeleteFileW(u"/RCDATA/#7"));
    EXPECT_FALSE(fs.CreateDirectoryW(u"/x", false));
    EXPECT_FALSE(fs.RemoveDirectoryW(u"/RCDATA", true));
    EXPECT_FALSE(fs.RenameFileW(u"/RCDATA/#7", u"/RCDATA/#8"));
}

TEST(RFSFileSystem, AModuleAddedTwiceGivesTwoEntriesAndTheFirstIsFound) {
    CRFSFileSystem fs(GetProgramModule());
    size_t before = fs.GetDirectoryListing(u"/RCDATA", nullptr).GetSize();
    fs.AddModule(GetProgramModule());
    EXPECT_EQ(fs.GetDirectoryListing(u"/RCDATA", nullptr).GetSize(), before); // one row per name
    EXPECT_TRUE(fs.IsFile(u"/RCDATA/#7"));
}

TEST(RFSFileSystem, ExeResourcesHoldTheProgramAndTheLibrary) {
    EXPECT_TRUE(ExeResources->IsFile(u"/CONTRACT/t/a.txt"));
    HINSTANCE library = GetLibraryModule();
    if (!library || GetResourceCount(library) == 0) GTEST_SKIP() << "libqv carries no resources";
    CRFSFileSystem own(library);
    IFileSystem::CDirectoryListing types = own.GetDirectoryListing(u"/", nullptr);
    ASSERT_GT(types.GetSize(), 0u);
    EXPECT_TRUE(ExeResources->IsDirectory(types[0].path));
}

} // namespace
} // namespace qv::test
