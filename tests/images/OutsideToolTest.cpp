// The outside world's verdict: pngcheck, djpeg, tiffinfo and tiffdump read
// what qv writes, python3 reads the same pixels, and what cjpeg and tiffcp
// write loads here.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "images/ImageTestSupport.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/filesystems/IFileSystem.h"
#include "qv/images/Images.h"
#include "qv/images/TIFF.h"

namespace qv {
namespace {

class OutsideTools : public testing::Test {
protected:
    std::string Save(HBITMAP bitmap, char const *name) {
        std::string path = dir.Path(name);
        EXPECT_TRUE(SaveHBITMAP(bitmap, &GetFileSystem(), CString(path.c_str())));
        return path;
    }
    test::Bitmap Load(std::string const &path) { return test::Bitmap(LoadHBITMAP(&GetFileSystem(), CString(path.c_str()))); }
    // cjpeg's file (named name, made with options) of picture, which must
    // load here to the pixels djpeg decodes it to.
    std::string CjpegAsDjpegSees(HBITMAP picture, std::string const &options, char const *name) {
        std::string bmp = Save(picture, "in.bmp");
        std::string jpeg = dir.Path(name), decoded = dir.Path("out.bmp");
        EXPECT_EQ(test::Run("cjpeg " + options + " -outfile " + jpeg + " " + bmp), 0);
        EXPECT_EQ(test::Run("djpeg -bmp -outfile " + decoded + " " + jpeg), 0);
        test::Bitmap mine = Load(jpeg), theirs = Load(decoded);
        EXPECT_TRUE(mine && theirs && test::SamePixels(*mine, *theirs));
        return jpeg;
    }
    test::ScratchDir dir;
};

TEST_F(OutsideTools, PngcheckAcceptsOurPng) {
    if (!test::HaveTool("pngcheck")) GTEST_SKIP() << "pngcheck is not installed";
    test::Bitmap picture = test::Pattern(31, 9);
    EXPECT_EQ(test::Run("pngcheck -q " + Save(picture.get(), "p.png")), 0);
}

TEST_F(OutsideTools, DjpegDecodesOurJpegToOurPixels) {
    if (!test::HaveTool("djpeg")) GTEST_SKIP() << "djpeg is not installed";
    test::Bitmap picture = test::Smooth(40, 24);
    std::string jpeg = Save(picture.get(), "p.jpg");
    std::string bmp = dir.Path("djpeg.bmp");
    ASSERT_EQ(test::Run("djpeg -bmp -outfile " + bmp + " " + jpeg), 0);
    test::Bitmap theirs = Load(bmp);
    test::Bitmap mine = Load(jpeg);
    ASSERT_TRUE(theirs);
    ASSERT_TRUE(mine);
    EXPECT_TRUE(test::SamePixels(*theirs, *mine)); // one decoder, one answer
    EXPECT_LE(test::MaxDifference(*picture, *mine), 12);
}

TEST_F(OutsideTools, CjpegOutputLoadsToDjpegPixels) {
    if (!test::HaveTool("cjpeg") || !test::HaveTool("djpeg")) GTEST_SKIP() << "cjpeg/djpeg are not installed";
    test::Bitmap picture = test::Smooth(24, 16);
    CjpegAsDjpegSees(picture.get(), "-quality 90", "cjpeg.jpg");
}

// A progressive file cut between two scans decodes without a warning, to a
// coarser picture than the whole file's: no picture. Whole, it loads as djpeg
// decodes it.
TEST_F(OutsideTools, ProgressiveJpegCutBetweenScansGivesNoPicture) {
    if (!test::HaveTool("cjpeg") || !test::HaveTool("djpeg")) GTEST_SKIP() << "cjpeg/djpeg are not installed";
    test::Bitmap picture = test::Pattern(64, 48);
    test::Bytes bytes = test::ReadDisk(CjpegAsDjpegSees(picture.get(), "-progressive", "progressive.jpg"));
    std::vector<size_t> scans;
    for (size_t i = 0; i + 1 < bytes.size(); ++i)
        if (bytes[i] == 0xFF && bytes[i + 1] == 0xDA) scans.push_back(i);
    ASSERT_GE(scans.size(), 3u);
    CMemFile file;
    test::Fill(file, test::Bytes(bytes.begin(), bytes.begin() + long(scans[2])));
    EXPECT_EQ(LoadJPEG(&file, nullptr), nullptr);
}

TEST_F(OutsideTools, TiffinfoAndTiffdumpReadOurFrames) {
    if (!test::HaveTool("tiffinfo") || !test::HaveTool("tiffdump")) GTEST_SKIP() << "libtiff-tools are not installed";
    std::vector<uint16_t> frame(64 * 32);
    for (size_t i = 0; i < frame.size(); ++i) frame[i] = uint16_t(i * 13);
    std::string path = dir.Path("f.tif");
    ASSERT_TRUE(SaveTIFFRaw(CString(path.c_str()), frame.data(), 64, 32, DT_UInt16));
    EXPECT_EQ(test::Run("tiffinfo -D " + path), 0);
    EXPECT_EQ(test::Run("tiffdump " + path), 0);
    EXPECT_EQ(test::Run("tiffinfo " + path + " | grep -q 'Bits/Sample: 16'"), 0);
    EXPECT_EQ(test::Run("tiffinfo " + path + " | grep -q 'Software: Ostrivex'"), 0);
    test::Bitmap picture = test::Pattern(9, 5);
    EXPECT_EQ(test::Run("tiffinfo -D " + Save(picture.get(), "rgb.tif")), 0);
}

TEST_F(OutsideTools, TiffcpOutputLoadsToTheSamePixels) {
    if (!test::HaveTool("tiffcp")) GTEST_SKIP() << "tiffcp is not installed";
    std::vector<uint16_t> frame(50 * 20);
    for (size_t i = 0; i < frame.size(); ++i) frame[i] = uint16_t(i * 7919);
    std::string path = dir.Path("in.tif"), lzw = dir.Path("lzw.tif");
    ASSERT_TRUE(SaveTIFFRaw(CString(path.c_str()), frame.data(), 50, 20, DT_UInt16));
    ASSERT_EQ(test::Run("tiffcp -c lzw -r 3 " + path + " " + lzw), 0);
    IFile *file = GetFileSystem().CreateFileW(CString(lzw.c_str()), 0x12);
    ASSERT_NE(file, nullptr);
    std::vector<uint16_t> back(frame.size());
    EXPECT_TRUE(LoadTIFFRaw(file, back.data(), back.size() * 2));
    delete file;
    EXPECT_EQ(back, frame);
}

// Multi-page files of every pixel type: tiffinfo reads each page, and the
// pages tiffcp turns into LZW strips of 3 rows read back bit for bit.
TEST_F(OutsideTools, MultiPageFilesOfEveryTypeReadBothWays) {
    if (!test::HaveTool("tiffinfo") || !test::HaveTool("tiffcp")) GTEST_SKIP() << "libtiff-tools are not installed";
    struct Case {
        EDataType type;
        size_t bytes;
        char const *name;
    } cases[] = {{DT_UInt16, 2, "u16"}, {DT_UInt32, 4, "u32"}, {DT_Float, 4, "f32"}, {DT_Double, 8, "f64"},
                 {DT_Packed, 3, "rgb"}};
    auto frame = [](size_t bytes, uint8_t page) {
        std::vector<uint8_t> v(size_t(13) * 7 * bytes);
        for (size_t i = 0; i < v.size(); ++i) v[i] = uint8_t(i * 29 + page * 101);
        return v;
    };
    for (Case const &c : cases) {
        SCOPED_TRACE(c.name);
        std::string path = dir.Path((std::string(c.name) + ".tif").c_str());
        std::string lzw = dir.Path((std::string(c.name) + "_lzw.tif").c_str());
        CMultiPageTIFFFile writer;
        ASSERT_TRUE(writer.Create(CString(path.c_str()), 13, 7, c.type));
        for (uint8_t page = 0; page < 3; ++page) ASSERT_TRUE(writer.WriteImage(frame(c.bytes, page).data()));
        ASSERT_TRUE(writer.Close());
        EXPECT_EQ(test::Run("tiffinfo -D " + path), 0);
        EXPECT_EQ(test::Run("test $(tiffinfo " + path + " | grep -c 'TIFF Directory') = 3"), 0);
        ASSERT_EQ(test::Run("tiffcp -c lzw -r 3 " + path + " " + lzw), 0);
        CMultiPageTIFFFile reader;
        ASSERT_TRUE(reader.Open(CString(lzw.c_str())));
        ASSERT_EQ(reader.GetNumImages(), 3u);
        std::vector<uint8_t> back(frame(c.bytes, 0).size());
        for (uint8_t page = 0; page < 3; ++page) {
            ASSERT_TRUE(reader.ReadImage(page, back.data()));
            EXPECT_TRUE(back == frame(c.bytes, page)) << int(page);
        }
    }
}

TEST_F(OutsideTools, PythonReadsTheSamePixels) {
    if (!test::HaveTool("python3")) GTEST_SKIP() << "python3 is not installed";
    // Python over the BMP's bytes: rows bottom-up, blue-green-red, padded to 4.
    test::Bitmap picture = test::Pattern(5, 3);
    std::string bmp = Save(picture.get(), "p.bmp");
    std::string script = "b=open('" + bmp +
                         "','rb').read(); r=[b[54+16*y:70+16*y] for y in range(3)];"
                         "assert all(r[y][3*x]==x*7 and r[y][3*x+1]==y*5 and r[y][3*x+2]==(x^y)*3"
                         " for y in range(3) for x in range(5))";
    EXPECT_EQ(test::Run("python3 -c \"" + script + "\""), 0);
}

} // namespace
} // namespace qv
