// The curve loaders by path open through the file system they are given,
// never the disk behind its back.
#include <gtest/gtest.h>

#include <string>

#include "filesystems/FileSystemTestSupport.h"
#include "qv/files/MemFile.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/numerics/CurveFiles.h"

namespace qv::test {
namespace {

// Serves every path from memory and counts the opens; nothing is on the disk.
class MemoryServedFileSystem : public ForwardingFileSystem {
public:
    explicit MemoryServedFileSystem(std::string text) : ForwardingFileSystem(GetFileSystem()), text(std::move(text)) {}
    IFile *CreateFileW(char16_t const *, uint32_t) override {
        ++opens;
        auto *file = new CMemFile;
        file->Write(text.data(), uint32_t(text.size()));
        file->SeekToBegin();
        return file;
    }
    std::string text;
    int opens = 0;
};

TEST(CurveLoadersByPath, OpenThroughTheirFileSystem) {
    char16_t const *nowhere = u"/no/such/dir/curve.txt";
    MemoryServedFileSystem xy("1.0 0.5\n2.0 0.75\n");
    TArray<double> x, y, y2;
    ASSERT_TRUE(ReadXYFile(x, y, &xy, nowhere));
    EXPECT_EQ(xy.opens, 1);
    ASSERT_EQ(x.GetSize(), 2u);
    EXPECT_DOUBLE_EQ(y[1u], 0.75);

    MemoryServedFileSystem modtran("FREQ TRANS RAD\n2000 0.8 2e-6\n2500 0.9 1e-6\n-9999.\n");
    ASSERT_TRUE(ReadModtranFile(x, y, y2, &modtran, nowhere));
    EXPECT_EQ(modtran.opens, 1);
    ASSERT_EQ(x.GetSize(), 2u);
    EXPECT_DOUBLE_EQ(x[0u], 4.0); // 10000 / 2500, rising wavelength
    EXPECT_DOUBLE_EQ(y[0u], 0.9);

    // The disk, by null or by name, finds nothing there.
    EXPECT_FALSE(ReadXYFile(x, y, nullptr, nowhere));
    EXPECT_FALSE(ReadModtranFile(x, y, y2, &GetFileSystem(), nowhere));
}

} // namespace
} // namespace qv::test
