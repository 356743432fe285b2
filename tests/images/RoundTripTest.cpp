// Round trips at the edges of the sizes: one row, one column, odd widths,
// palette pictures, and raw frames of every pixel type in strips of their
// own and across several strips.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "images/ImageTestSupport.h"
#include "qv/images/Images.h"
#include "qv/images/TIFF.h"

namespace qv {
namespace {

struct SSize {
    int32_t width, height;
};

constexpr SSize kEdgeSizes[] = {{1, 1}, {1, 9}, {9, 1}, {3, 2}, {5, 7}, {70, 3}};

using Saver = bool (*)(HBITMAP, IFile *, CPropertyArray);

test::Bitmap SaveAndLoad(Saver save, CBitmap &picture) {
    CMemFile file;
    EXPECT_TRUE(save(&picture, &file, CPropertyArray()));
    file.Seek(0, 1);
    return test::Bitmap(LoadHBITMAP(&file));
}

TEST(RoundTrip, LosslessFormatsKeepEveryPixelAtEverySize) {
    for (SSize size : kEdgeSizes) {
        test::Bitmap picture = test::Pattern(size.width, size.height);
        for (Saver save : {SaveBMP, SavePNG, SaveTIFF}) {
            SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
            test::Bitmap back = SaveAndLoad(save, *picture);
            ASSERT_TRUE(back);
            EXPECT_TRUE(test::SamePixels(*picture, *back));
        }
    }
}

TEST(RoundTrip, JpegKeepsTheSizeAndTheColourOfAFlatPicture) {
    for (SSize size : kEdgeSizes) {
        SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
        test::Bitmap picture(CreateBitmap(size.width, size.height, 24));
        for (int32_t y = 0; y < size.height; ++y)
            for (int32_t x = 0; x < size.width; ++x) std::memcpy(picture->Row(y) + 3 * x, "\x40\x80\xC0", 3);
        test::Bitmap back = SaveAndLoad(SaveJPEG, *picture);
        ASSERT_TRUE(back);
        EXPECT_EQ(back->Width, size.width);
        EXPECT_EQ(back->Height, size.height);
        EXPECT_LE(test::MaxDifference(*picture, *back), 3);
    }
}

// A 4-bit palette picture saves through its palette, an index past the
// palette as black.
TEST(RoundTrip, PalettePicturesSaveTheirColours) {
    test::Bitmap picture(CreateBitmap(3, 2, 4));
    picture->Palette = {0x00102030, 0x00405060};
    picture->Row(0)[0] = 0x01; // pixels 0, 1: entries 0 and 1
    picture->Row(0)[1] = 0x70; // pixel 2: entry 7, past the palette
    picture->Row(1)[0] = 0x10;
    for (Saver save : {SaveBMP, SavePNG, SaveTIFF}) {
        test::Bitmap back = SaveAndLoad(save, *picture);
        ASSERT_TRUE(back);
        EXPECT_EQ(0, std::memcmp(back->Row(0), "\x30\x20\x10\x60\x50\x40\x00\x00\x00", 9));
        EXPECT_EQ(0, std::memcmp(back->Row(1), "\x60\x50\x40\x30\x20\x10\x30\x20\x10", 9));
    }
}

struct SType {
    EDataType type;
    size_t bytes;
};

constexpr SType kTypes[] = {{DT_UInt16, 2}, {DT_UInt32, 4}, {DT_Float, 4}, {DT_Double, 8}, {DT_Packed, 3}};

std::vector<uint8_t> Frame(uint32_t width, uint32_t height, size_t bytes, uint8_t seed) {
    std::vector<uint8_t> v(size_t(width) * height * bytes);
    for (size_t i = 0; i < v.size(); ++i) v[i] = uint8_t(seed + i * 131 + (i >> 8));
    return v;
}

// 1100 x 300 doubles take three strips of 1 MiB or less, the last one short;
// a packed row of 30000 pixels is longer than 65535 bytes.
constexpr SSize kFrameSizes[] = {{1, 1}, {1, 7}, {7, 1}, {3, 5}, {1100, 300}, {30000, 2}};

TEST(RoundTrip, RawFramesOfEveryTypeAndSizeComeBackBitForBit) {
    for (SType t : kTypes)
        for (SSize size : kFrameSizes) {
            SCOPED_TRACE(testing::Message() << int(t.type) << ": " << size.width << " x " << size.height);
            std::vector<uint8_t> frame = Frame(uint32_t(size.width), uint32_t(size.height), t.bytes, 3);
            CMemFile file;
            ASSERT_TRUE(SaveTIFFRaw(&file, frame.data(), size.width, size.height, t.type));
            file.Seek(0, 1);
            std::vector<uint8_t> back(frame.size());
            ASSERT_TRUE(LoadTIFFRaw(&file, back.data(), back.size()));
            EXPECT_TRUE(back == frame);
        }
}

TEST(RoundTrip, MultiPageFramesOfEveryTypeComeBackBitForBit) {
    for (SType t : kTypes)
        for (SSize size : {SSize{1, 1}, SSize{1, 7}, SSize{7, 1}, SSize{1100, 300}}) {
            SCOPED_TRACE(testing::Message() << int(t.type) << ": " << size.width << " x " << size.height);
            CMemFile file;
            CMultiPageTIFFFile writer;
            ASSERT_TRUE(writer.Create(&file, size.width, size.height, t.type));
            auto frame = [&](uint8_t page) {
                return Frame(uint32_t(size.width), uint32_t(size.height), t.bytes, page);
            };
            for (uint8_t page = 0; page < 3; ++page) ASSERT_TRUE(writer.WriteImage(frame(page).data()));
            ASSERT_TRUE(writer.Close());
            file.Seek(0, 1);
            CMultiPageTIFFFile reader;
            ASSERT_TRUE(reader.Open(&file, false));
            EXPECT_EQ(reader.GetNumImages(), 3u);
            EXPECT_EQ(reader.GetDataType(), t.type);
            std::vector<uint8_t> back(size_t(size.width) * size.height * t.bytes);
            for (uint8_t page : {2, 0, 1}) {
                ASSERT_TRUE(reader.ReadImage(page, back.data()));
                EXPECT_TRUE(back == frame(page));
            }
        }
}

} // namespace
} // namespace qv
