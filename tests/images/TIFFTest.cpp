// TIFF raw frames, multi-page files and the content test.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "images/ImageTestSupport.h"
#include "qv/images/Images.h"
#include "qv/images/TIFF.h"

namespace qv {
namespace {

std::vector<uint16_t> Counts(uint32_t width, uint32_t height, uint16_t seed) {
    std::vector<uint16_t> v(size_t(width) * height);
    for (size_t i = 0; i < v.size(); ++i) v[i] = uint16_t(seed + i * 2654435761u);
    return v;
}

TEST(TIFF, RawFrameRoundTripsBitForBit) {
    std::vector<uint16_t> frame = Counts(37, 11, 5);
    CMemFile file;
    ASSERT_TRUE(SaveTIFFRaw(&file, frame.data(), 37, 11, DT_UInt16));
    file.Seek(0, 1);
    EXPECT_TRUE(IsTIFF(&file));
    unsigned long width = 0, height = 0, pages = 0;
    EDataType type = DT_Unknown;
    ASSERT_TRUE(GetTIFFInfo(&file, width, height, type, pages));
    EXPECT_EQ(width, 37u);
    EXPECT_EQ(height, 11u);
    EXPECT_EQ(type, DT_UInt16);
    EXPECT_EQ(pages, 1u);
    EXPECT_EQ(file.GetPosition(), 0);
    std::vector<uint16_t> back(frame.size());
    ASSERT_TRUE(LoadTIFFRaw(&file, back.data(), back.size() * 2));
    EXPECT_EQ(back, frame);
}

TEST(TIFF, EveryTypeOfTheProfileRoundTrips) {
    struct Case {
        EDataType type;
        int bytes;
    } cases[] = {{DT_UInt16, 2}, {DT_UInt32, 4}, {DT_Float, 4}, {DT_Double, 8}, {DT_Packed, 3}};
    for (Case const &c : cases) {
        SCOPED_TRACE(int(c.type));
        std::vector<uint8_t> pixels(size_t(9) * 4 * c.bytes);
        for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = uint8_t(i * 37 + 1);
        CMemFile file;
        ASSERT_TRUE(SaveTIFFRaw(&file, pixels.data(), 9, 4, c.type));
        file.Seek(0, 1);
        unsigned long width = 0, height = 0;
        EDataType type = DT_Unknown;
        ASSERT_TRUE(GetTIFFInfo(&file, width, height, type));
        EXPECT_EQ(type, c.type);
        std::vector<uint8_t> back(pixels.size());
        ASSERT_TRUE(LoadTIFFRaw(&file, back.data(), back.size()));
        EXPECT_EQ(back, pixels);
    }
}

TEST(TIFF, RefusesWhatIsNotInTheProfile) {
    std::vector<uint16_t> frame = Counts(4, 4, 1);
    CMemFile file;
    EXPECT_FALSE(SaveTIFFRaw(&file, frame.data(), 4, 4, DT_Int16));
    EXPECT_EQ(file.GetSize(), 0); // no file touched
    ASSERT_TRUE(SaveTIFFRaw(&file, frame.data(), 4, 4, DT_UInt16));
    std::vector<uint16_t> back(16, 0xABCD);
    EXPECT_FALSE(LoadTIFFRaw(&file, back.data(), 31));
    EXPECT_FALSE(LoadTIFFRaw(&file, back.data(), 33));
    EXPECT_EQ(back, std::vector<uint16_t>(16, 0xABCD));
}

TEST(TIFF, BigEndianFilesFailTheContentTest) {
    // Files of the library are little-endian; callers rely on this refusal.
    CMemFile file;
    test::Fill(file, test::Bytes{'M', 'M', 0, 42, 0, 0, 0, 8, 0, 0});
    EXPECT_FALSE(IsTIFF(&file));
    test::Fill(file, test::Bytes{'I', 'I', 42, 0, 8, 0, 0, 0}); // a header, no directory
    EXPECT_TRUE(IsTIFF(&file)); // the test reads the header only
    EXPECT_EQ(LoadTIFF(&file), nullptr);
}

TEST(MultiPageTIFF, TenPagesWrittenAreTenPagesRead) {
    CMemFile file;
    CMultiPageTIFFFile writer;
    ASSERT_TRUE(writer.Create(&file, 16, 8, DT_UInt16));
    for (uint16_t page = 0; page < 10; ++page) {
        std::vector<uint16_t> frame = Counts(16, 8, page);
        ASSERT_TRUE(writer.WriteImage(frame.data()));
    }
    EXPECT_EQ(writer.GetNumImages(), 10u);
    ASSERT_TRUE(writer.Close());
    file.Seek(0, 1);

    CMultiPageTIFFFile reader;
    ASSERT_TRUE(reader.Open(&file, false));
    EXPECT_EQ(reader.GetNumImages(), 10u);
    EXPECT_EQ(reader.GetWidth(), 16u);
    EXPECT_EQ(reader.GetHeight(), 8u);
    EXPECT_EQ(reader.GetDataType(), DT_UInt16);
    std::vector<uint16_t> back(128);
    for (uint16_t page : {9, 0, 4}) {
        ASSERT_TRUE(reader.ReadImage(page, back.data()));
        EXPECT_EQ(back, Counts(16, 8, page));
    }
    EXPECT_FALSE(reader.ReadImage(10, back.data()));
    reader.Close();
    EXPECT_FALSE(reader.IsOpen());
}

TEST(MultiPageTIFF, PackedPagesReadAsThreeBytesAPixel) {
    std::vector<uint8_t> pixels(5 * 3 * 3);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = uint8_t(i * 11);
    CMemFile file;
    CMultiPageTIFFFile writer;
    ASSERT_TRUE(writer.Create(&file, 5, 3, DT_Packed));
    ASSERT_TRUE(writer.WriteImage(pixels.data()));
    ASSERT_TRUE(writer.WriteImage(pixels.data()));
    ASSERT_TRUE(writer.Close());
    file.Seek(0, 1);
    CMultiPageTIFFFile reader;
    ASSERT_TRUE(reader.Open(&file, false));
    std::vector<uint8_t> back(pixels.size());
    ASSERT_TRUE(reader.ReadImage(1, back.data()));
    EXPECT_EQ(back, pixels);
}

// A file closed before its first page holds no TIFF a reader could open: the
// close fails, and a file created by path leaves the old one in place.
TEST(MultiPageTIFF, ClosingWithoutAPageFailsAndKeepsTheOldFile) {
    CMemFile file;
    CMultiPageTIFFFile writer;
    ASSERT_TRUE(writer.Create(&file, 4, 4, DT_UInt16));
    EXPECT_FALSE(writer.Close());
    test::ScratchDir dir;
    std::string path = dir.Path("old.tif");
    test::WriteDisk(path, test::Bytes{'o', 'l', 'd'});
    ASSERT_TRUE(writer.Create(CString(path.c_str()), 4, 4, DT_UInt16));
    EXPECT_FALSE(writer.Close());
    EXPECT_EQ(test::ReadDisk(path), (test::Bytes{'o', 'l', 'd'}));
}

TEST(MultiPageTIFF, CreateRefusesTypesOutsideTheProfile) {
    CMemFile file;
    CMultiPageTIFFFile writer;
    EXPECT_FALSE(writer.Create(&file, 4, 4, DT_Int16));
    EXPECT_FALSE(writer.Create(&file, 0, 4, DT_UInt16));
    EXPECT_FALSE(writer.IsOpen());
    EXPECT_FALSE(writer.WriteImage(&file));
}

TEST(TIFF, BitmapsSaveAsRgbAndLoadBack) {
    test::Bitmap picture = test::Pattern(13, 7);
    CMemFile file;
    ASSERT_TRUE(SaveTIFF(picture.get(), &file, CPropertyArray()));
    file.Seek(0, 1);
    unsigned long width = 0, height = 0;
    EDataType type = DT_Unknown;
    ASSERT_TRUE(GetTIFFInfo(&file, width, height, type));
    EXPECT_EQ(type, DT_Packed);
    test::Bitmap back(LoadTIFF(&file));
    ASSERT_TRUE(back);
    EXPECT_TRUE(test::SamePixels(*picture, *back));
}

} // namespace
} // namespace qv
