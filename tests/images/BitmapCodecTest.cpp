// BMP, PNG and JPEG through IFile: exact BMP bytes, round trips, the format
// chosen by content and by name, and the properties.
#include <gtest/gtest.h>

#include <cstring>

#include "images/ImageTestSupport.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/filesystems/IFileSystem.h"
#include "qv/images/Images.h"

namespace qv {
namespace {

using test::Bitmap;

TEST(BMP, SavesTheDibHeaderAndRowsBottomUp) {
    Bitmap picture = test::Pattern(2, 2); // rows of 6 bytes padded to 8
    CMemFile file;
    ASSERT_TRUE(SaveBMP(picture.get(), &file, CPropertyArray()));
    test::Bytes bytes = test::BytesOf(file);
    ASSERT_EQ(bytes.size(), 0x36u + 16);
    test::Bytes header{'B', 'M', 0x46, 0, 0, 0, 0, 0, 0, 0, 0x36, 0, 0, 0, 0x28, 0, 0, 0, 2, 0, 0, 0, 2, 0, 0, 0,
                       1, 0, 24, 0, 0, 0, 0, 0, 16, 0, 0, 0};
    EXPECT_TRUE(std::equal(header.begin(), header.end(), bytes.begin()));
    EXPECT_TRUE(std::all_of(bytes.begin() + 38, bytes.begin() + 54, [](uint8_t b) { return b == 0; }));
    EXPECT_EQ(0, std::memcmp(bytes.data() + 54, picture->Bits(), 16));
    file.Seek(0, 1);
    Bitmap back(LoadBMP(&file));
    ASSERT_TRUE(back);
    EXPECT_TRUE(test::SamePixels(*picture, *back));
}

test::Bytes BmpHeader(int32_t width, int32_t height, uint16_t bits, uint32_t compression, uint32_t imageSize) {
    test::Bytes h(54, 0);
    h[0] = 'B';
    h[1] = 'M';
    auto put32 = [&](size_t at, uint32_t v) { std::memcpy(h.data() + at, &v, 4); };
    put32(18, uint32_t(width));
    put32(22, uint32_t(height));
    h[26] = 1;
    h[28] = uint8_t(bits);
    put32(30, compression);
    put32(34, imageSize);
    return h;
}

TEST(BMP, RefusesWhatItDoesNotWrite) {
    CMemFile file;
    auto loads = [&](test::Bytes bytes, size_t pixelBytes) {
        bytes.resize(bytes.size() + pixelBytes, 0x55);
        test::Fill(file, bytes);
        Bitmap b(LoadBMP(&file));
        return b != nullptr;
    };
    EXPECT_TRUE(loads(BmpHeader(2, 2, 24, 0, 16), 16));
    EXPECT_TRUE(loads(BmpHeader(2, 2, 24, 0, 0), 16)); // an unfilled size: the rows' own
    EXPECT_FALSE(loads(BmpHeader(2, 2, 8, 0, 4), 4 + 1024));
    EXPECT_FALSE(loads(BmpHeader(2, 2, 24, 1, 16), 16));
    EXPECT_FALSE(loads(BmpHeader(2, -2, 24, 0, 16), 16));
    EXPECT_FALSE(loads(BmpHeader(-2, 2, 24, 0, 16), 16));
    EXPECT_FALSE(loads(BmpHeader(2, 2, 24, 0, 16), 15));            // pixels past the end
    EXPECT_FALSE(loads(BmpHeader(2, 2, 24, 0, 17), 17));            // more than the rows hold
    EXPECT_FALSE(loads(BmpHeader(0x7FFFFFFF, 0x7FFFFFFF, 24, 0, 16), 16)); // huge: no allocation
    EXPECT_FALSE(loads(BmpHeader(60000, 60000, 24, 0, 0), 16));
    EXPECT_FALSE(loads(test::Bytes{'B', 'M', 1, 2}, 0));
    EXPECT_FALSE(loads(test::Bytes{'X', 'M'}, 100));
}

// A size field smaller than the rows (here the 18 bytes of 3 x 2 pixels
// without the rows' padding) reads all 24 bytes of the rows, and a file that
// holds only the 18 is cut, not a picture with a blank end.
TEST(BMP, ASizeFieldBelowTheRowsNeitherCutsNorPassesACutFile) {
    CMemFile file;
    test::Bytes whole = BmpHeader(3, 2, 24, 0, 18);
    whole.resize(54 + 24, 0x55);
    test::Fill(file, whole);
    Bitmap b(LoadBMP(&file));
    ASSERT_TRUE(b);
    for (int32_t y = 0; y < 2; ++y)
        EXPECT_TRUE(std::all_of(b->Row(y), b->Row(y) + 9, [](uint8_t v) { return v == 0x55; })) << "row " << y;
    test::Bytes cut(whole.begin(), whole.begin() + 54 + 18);
    test::Fill(file, cut);
    EXPECT_EQ(LoadBMP(&file), nullptr);
}

TEST(PNG, RoundTripsPixelsExactly) {
    Bitmap picture = test::Pattern(33, 17);
    CMemFile file;
    ASSERT_TRUE(SavePNG(picture.get(), &file, CPropertyArray()));
    EXPECT_TRUE(IsPNG(&file));
    EXPECT_FALSE(IsBMP(&file));
    EXPECT_EQ(file.GetPosition(), 0);
    Bitmap back(LoadPNG(&file, CPropertyArray()));
    ASSERT_TRUE(back);
    EXPECT_TRUE(test::SamePixels(*picture, *back));
}

// A flat picture compresses to less than a thousandth of its rows: what
// SavePNG writes loads back, however well it packed.
TEST(PNG, AFlatPictureThatPacksTightlyLoadsBack) {
    Bitmap picture(CreateBitmap(16000, 100, 24));
    std::fill(picture->Bits(), picture->Bits() + picture->ImageSize(), uint8_t(0x80));
    CMemFile file;
    ASSERT_TRUE(SavePNG(picture.get(), &file, CPropertyArray()));
    ASSERT_LT(uint64_t(file.GetSize()) * 1100 + 65536, uint64_t(16000) * 100 * 4); // the old bound refused it
    file.Seek(0, 1);
    Bitmap back(LoadPNG(&file, CPropertyArray()));
    ASSERT_TRUE(back);
    EXPECT_TRUE(test::SamePixels(*picture, *back));
}

// A 5 x 3 colour picture stored in seven interlaced passes, made by zlib and
// CRC by hand: top row y, pixel x has red 40x, green 70y, blue 30 (x ^ y).
TEST(PNG, InterlacedPicturesLoadEveryPixel) {
    static unsigned char const adam7[] = {
        0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A, 0x00, 0x00, 0x00, 0x0D, 0x49, 0x48, 0x44, 0x52, 0x00,
        0x00, 0x00, 0x05, 0x00, 0x00, 0x00, 0x03, 0x08, 0x02, 0x00, 0x00, 0x01, 0xA3, 0x53, 0x62, 0x39, 0x00,
        0x00, 0x00, 0x36, 0x49, 0x44, 0x41, 0x54, 0x78, 0xDA, 0x0D, 0xC1, 0x21, 0x01, 0xC0, 0x00, 0x08, 0x45,
        0xC1, 0x97, 0x04, 0x4D, 0x08, 0xF4, 0xD7, 0x68, 0x92, 0x10, 0xE2, 0xEB, 0x69, 0x42, 0x2C, 0xE0, 0x76,
        0x07, 0xBF, 0x63, 0x69, 0x0A, 0x5C, 0x6D, 0xCE, 0x2F, 0x49, 0x2C, 0x43, 0x7A, 0xD6, 0x01, 0x8A, 0x14,
        0xAD, 0x59, 0xD5, 0xE9, 0xF9, 0x00, 0x22, 0x61, 0x0C, 0xA9, 0xB5, 0x32, 0xDA, 0xD2, 0x00, 0x00, 0x00,
        0x00, 0x49, 0x45, 0x4E, 0x44, 0xAE, 0x42, 0x60, 0x82};
    CMemFile file;
    test::Fill(file, test::Bytes(std::begin(adam7), std::end(adam7)));
    Bitmap back(LoadPNG(&file, CPropertyArray()));
    ASSERT_TRUE(back);
    ASSERT_EQ(back->Width, 5);
    ASSERT_EQ(back->Height, 3);
    ASSERT_EQ(back->BitCount, 24);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x) {
            uint8_t const *p = back->Row(2 - y) + 3 * x;
            EXPECT_EQ(p[0], (x ^ y) * 30) << x << ", " << y;
            EXPECT_EQ(p[1], y * 70) << x << ", " << y;
            EXPECT_EQ(p[2], x * 40) << x << ", " << y;
        }
}

TEST(JPEG, RoundTripsWithinTheLossOfTheCodec) {
    Bitmap picture = test::Smooth(64, 48);
    CMemFile file;
    CPropertyArray best;
    best[u"quality"] = 100;
    ASSERT_TRUE(SaveJPEG(picture.get(), &file, best));
    EXPECT_TRUE(IsJPEG(&file));
    Bitmap back(LoadJPEG(&file, nullptr));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->Width, 64);
    EXPECT_EQ(back->Height, 48);
    EXPECT_LE(test::MaxDifference(*picture, *back), 6);
}

// A file cut inside its scan leaves rows the decoder would have to make up:
// no picture. One that lacks only its end marker holds every row and loads
// as the whole file does.
TEST(JPEG, ACutScanGivesNoPictureButAMissingEndMarkerDoes) {
    Bitmap picture = test::Pattern(64, 48);
    CMemFile file;
    ASSERT_TRUE(SaveJPEG(picture.get(), &file, CPropertyArray()));
    test::Bytes whole = test::BytesOf(file);
    ASSERT_EQ(whole[whole.size() - 1], 0xD9);
    file.Seek(0, 1);
    Bitmap full(LoadJPEG(&file, nullptr));
    ASSERT_TRUE(full);
    test::Fill(file, test::Bytes(whole.begin(), whole.end() - 2));
    Bitmap noEnd(LoadJPEG(&file, nullptr));
    ASSERT_TRUE(noEnd);
    EXPECT_TRUE(test::SamePixels(*full, *noEnd));
    for (size_t cut : {whole.size() / 2, whole.size() - 40}) {
        test::Fill(file, test::Bytes(whole.begin(), whole.begin() + long(cut)));
        EXPECT_EQ(LoadJPEG(&file, nullptr), nullptr) << cut;
        EXPECT_EQ(LoadHBITMAP(&file), nullptr) << cut;
    }
}

TEST(JPEG, QualityAboveOneHundredIsIgnored) {
    Bitmap picture = test::Pattern(64, 64);
    auto sizeWith = [&](char16_t const *quality) {
        CPropertyArray properties;
        if (quality) properties[u"quality"] = quality;
        CMemFile file;
        EXPECT_TRUE(SaveJPEG(picture.get(), &file, properties));
        return file.GetSize();
    };
    EXPECT_EQ(sizeWith(u"101"), sizeWith(nullptr));
    EXPECT_GT(sizeWith(u"100"), sizeWith(nullptr));
    EXPECT_LT(sizeWith(u"10"), sizeWith(nullptr));
}

TEST(PNG, AlphaGivesThirtyTwoBitsUnlessABackgroundIsGiven) {
    // One red pixel, fully transparent (colour type 6), made by zlib and CRC by hand.
    static unsigned char const rgba[] = {
        0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A, 0x00, 0x00, 0x00, 0x0D, 0x49, 0x48, 0x44, 0x52, 0x00, 0x00,
        0x00, 0x01, 0x00, 0x00, 0x00, 0x01, 0x08, 0x06, 0x00, 0x00, 0x00, 0x1F, 0x15, 0xC4, 0x89, 0x00, 0x00, 0x00,
        0x0D, 0x49, 0x44, 0x41, 0x54, 0x78, 0xDA, 0x63, 0xF8, 0xCF, 0xC0, 0xC0, 0x00, 0x00, 0x04, 0x01, 0x01, 0x00,
        0x98, 0x58, 0xD8, 0xCE, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45, 0x4E, 0x44, 0xAE, 0x42, 0x60, 0x82};
    CMemFile file;
    test::Fill(file, test::Bytes(std::begin(rgba), std::end(rgba)));
    Bitmap plain(LoadPNG(&file, CPropertyArray()));
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain->BitCount, 32);
    EXPECT_EQ(plain->Row(0)[2], 0xFF); // red, stored blue-green-red-alpha
    EXPECT_EQ(plain->Row(0)[3], 0x00); // fully transparent
    file.Seek(0, 1);
    CPropertyArray background;
    background[u"BackgroundColor"] = 0x00FF00; // green
    Bitmap blended(LoadPNG(&file, background));
    ASSERT_TRUE(blended);
    EXPECT_EQ(blended->BitCount, 24);
    EXPECT_EQ(blended->Row(0)[0], 0x00);
    EXPECT_EQ(blended->Row(0)[1], 0xFF);
    EXPECT_EQ(blended->Row(0)[2], 0x00);
}

TEST(Images, LoadChoosesByContentAndSaveByName) {
    Bitmap picture = test::Pattern(8, 8);
    IFileSystem &fs = GetFileSystem();
    test::ScratchDir dir;
    struct Case {
        char const *name;
        bool (*is)(IFile *);
    } cases[] = {{"a.png", IsPNG}, {"b.JPEG", IsJPEG}, {"c.jpg", IsJPEG}, {"d.TIF", IsTIFF},
                 {"e.tiff", IsTIFF}, {"f.dat", IsBMP}, {"g", IsBMP}};
    for (Case const &c : cases) {
        SCOPED_TRACE(c.name);
        CString path(dir.Path(c.name).c_str());
        ASSERT_TRUE(SaveHBITMAP(picture.get(), &fs, path));
        IFile *file = fs.CreateFileW(path, 0x12);
        ASSERT_NE(file, nullptr);
        EXPECT_TRUE(c.is(file));
        EXPECT_TRUE(IsImageFile(file));
        delete file;
        EXPECT_TRUE(IsImageFile(&fs, path));
        Bitmap back(LoadHBITMAP(&fs, path));
        ASSERT_TRUE(back);
        EXPECT_EQ(back->Width, 8);
        if (c.is != IsJPEG) {
            EXPECT_TRUE(test::SamePixels(*picture, *back));
        }
    }
    CMemFile unnamed; // no name: a BMP
    ASSERT_TRUE(SaveHBITMAP(picture.get(), &unnamed));
    EXPECT_TRUE(IsBMP(&unnamed));
    CMemFile text;
    test::Fill(text, test::Bytes{'h', 'e', 'l', 'l', 'o'});
    EXPECT_FALSE(IsImageFile(&text));
    EXPECT_EQ(LoadHBITMAP(&text), nullptr);
    EXPECT_EQ(LoadHBITMAP(&fs, CString(dir.Path("missing.png").c_str())), nullptr);
}

TEST(Images, ThirtyTwoBitBitmapsSaveAsTwentyFourBits) {
    Bitmap wide(CreateBitmap(3, 2, 32));
    for (int32_t y = 0; y < 2; ++y)
        for (int i = 0; i < 12; ++i) wide->Row(y)[i] = uint8_t(y * 12 + i);
    CMemFile file;
    ASSERT_TRUE(SavePNG(wide.get(), &file, CPropertyArray()));
    file.Seek(0, 1);
    Bitmap back(LoadPNG(&file, CPropertyArray()));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->BitCount, 24);
    for (int32_t y = 0; y < 2; ++y)
        for (int x = 0; x < 3; ++x) EXPECT_EQ(0, std::memcmp(back->Row(y) + 3 * x, wide->Row(y) + 4 * x, 3));
    EXPECT_FALSE(SavePNG(nullptr, &file, CPropertyArray()));
    EXPECT_FALSE(SaveBMP(wide.get(), nullptr, CPropertyArray()));
}

} // namespace
} // namespace qv
