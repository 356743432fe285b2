// Untrusted input: every decoder gives its failure result on damaged files,
// and none allocates beyond what the file can carry.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "images/ImageTestSupport.h"
#include "qv/images/Images.h"
#include "qv/images/TIFF.h"

namespace qv {
namespace {

test::Bytes Saved(bool (*saver)(HBITMAP, IFile *, CPropertyArray)) {
    test::Bitmap picture = test::Smooth(32, 16);
    CMemFile file;
    EXPECT_TRUE(saver(picture.get(), &file, CPropertyArray()));
    return test::BytesOf(file);
}

// Cuts and bit flips at many places: no crash, no leak, and a cut file never
// loads as a whole picture of the wrong size.
void Damage(test::Bytes const &good) {
    CMemFile file;
    for (size_t cut = 0; cut < good.size(); cut += 7) {
        test::Fill(file, test::Bytes(good.begin(), good.begin() + long(cut)));
        DeleteBitmap(LoadHBITMAP(&file));
    }
    for (size_t at = 0; at < good.size(); at += 5) {
        test::Bytes bad = good;
        bad[at] ^= 0x5A;
        test::Fill(file, bad);
        DeleteBitmap(LoadHBITMAP(&file));
    }
}

TEST(HostileInput, DamagedFilesOfEveryFormatAreSurvived) {
    Damage(Saved(SaveBMP));
    Damage(Saved(SavePNG));
    Damage(Saved(SaveJPEG));
    Damage(Saved(SaveTIFF));
}

TEST(HostileInput, PngHeaderWithAHugeSizeIsRefused) {
    test::Bytes png = Saved(SavePNG);
    // IHDR width (big-endian) to 2^30 - 1: the CRC no longer matches, and
    // the size is beyond what the file could carry; either check refuses.
    png[16] = 0x3F;
    png[17] = png[18] = png[19] = 0xFF;
    CMemFile file;
    test::Fill(file, png);
    EXPECT_EQ(LoadPNG(&file, CPropertyArray()), nullptr);
}

// A sound header for 30000 x 30000 colour pixels over 74 bytes: its rows
// could never come out of so little data, and nothing is allocated for them.
TEST(HostileInput, PngRowsBeyondWhatTheDataCanInflateToAreRefused) {
    static unsigned char const huge[] = {
        0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A, 0x00, 0x00, 0x00, 0x0D, 0x49, 0x48, 0x44, 0x52, 0x00,
        0x00, 0x75, 0x30, 0x00, 0x00, 0x75, 0x30, 0x08, 0x02, 0x00, 0x00, 0x00, 0xE9, 0x45, 0x6F, 0xED, 0x00,
        0x00, 0x00, 0x11, 0x49, 0x44, 0x41, 0x54, 0x78, 0xDA, 0x63, 0x60, 0x18, 0x05, 0xA3, 0x60, 0x14, 0x0C,
        0x77, 0x00, 0x00, 0x03, 0xE8, 0x00, 0x01, 0xCE, 0x49, 0x4C, 0x58, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45,
        0x4E, 0x44, 0xAE, 0x42, 0x60, 0x82};
    CMemFile file;
    test::Fill(file, test::Bytes(std::begin(huge), std::end(huge)));
    EXPECT_EQ(LoadPNG(&file, CPropertyArray()), nullptr);
}

TEST(HostileInput, TiffStripsPastTheEndAreRefused) {
    std::vector<uint16_t> frame(64 * 64, 7);
    CMemFile file;
    ASSERT_TRUE(SaveTIFFRaw(&file, frame.data(), 64, 64, DT_UInt16));
    test::Bytes bytes = test::BytesOf(file);
    // Drop the pixels, keep the header and its directory (at the end).
    uint32_t directory = 0;
    std::memcpy(&directory, bytes.data() + 4, 4);
    test::Bytes cut(bytes.begin(), bytes.begin() + 8);
    test::Bytes tail(bytes.begin() + directory, bytes.end());
    uint32_t moved = 8;
    std::memcpy(cut.data() + 4, &moved, 4);
    cut.insert(cut.end(), tail.begin(), tail.end());
    test::Fill(file, cut);
    std::vector<uint16_t> back(frame.size());
    EXPECT_FALSE(LoadTIFFRaw(&file, back.data(), back.size() * 2));
    EXPECT_EQ(LoadTIFF(&file), nullptr);
}

// A 2 x 2 16-bit grey PNG: 0x0102 0x0304 / 0x0506 0xA0B0.
unsigned char const kGrey16[] = {
    0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A, 0x00, 0x00, 0x00, 0x0D, 0x49, 0x48, 0x44, 0x52, 0x00,
    0x00, 0x00, 0x02, 0x00, 0x00, 0x00, 0x02, 0x10, 0x00, 0x00, 0x00, 0x00, 0x07, 0x4D, 0x8E, 0xBB, 0x00,
    0x00, 0x00, 0x12, 0x49, 0x44, 0x41, 0x54, 0x78, 0xDA, 0x63, 0x60, 0x64, 0x62, 0x66, 0x61, 0x60, 0x65,
    0x5B, 0xB0, 0x01, 0x00, 0x02, 0x66, 0x01, 0x66, 0x51, 0x94, 0xA0, 0xDB, 0x00, 0x00, 0x00, 0x00, 0x49,
    0x45, 0x4E, 0x44, 0xAE, 0x42, 0x60, 0x82};

TEST(PNG16, ReadsSamplesAndSpreadsToFourTimesTheSize) {
    CMemFile file;
    test::Fill(file, test::Bytes(std::begin(kGrey16), std::end(kGrey16)));
    std::vector<unsigned short> same(4);
    ASSERT_TRUE(LoadPNG16(&file, same.data(), 4));
    EXPECT_EQ(same, (std::vector<unsigned short>{0x0102, 0x0304, 0x0506, 0xA0B0}));
    file.Seek(0, 1);
    std::vector<unsigned short> spread(16);
    ASSERT_TRUE(LoadPNG16(&file, spread.data(), 16));
    EXPECT_EQ(spread, (std::vector<unsigned short>{0x0102, 0x0102, 0x0304, 0x0304, 0x0102, 0x0102, 0x0304, 0x0304,
                                                   0x0506, 0x0506, 0xA0B0, 0xA0B0, 0x0506, 0x0506, 0xA0B0, 0xA0B0}));
    file.Seek(0, 1);
    EXPECT_FALSE(LoadPNG16(&file, spread.data(), 8)); // neither the picture nor four times it
}

// The same picture with a transparency chunk (grey 0x0304) after its header:
// the samples come back as they stand, one word a pixel, and no alpha word
// runs past the end of a buffer of exactly the picture's size.
TEST(HostileInput, Png16WithTransparencyKeepsOneSampleAPixel) {
    test::Bytes png(std::begin(kGrey16), std::end(kGrey16));
    unsigned char const transparency[] = {0x00, 0x00, 0x00, 0x02, 0x74, 0x52, 0x4E, 0x53,
                                          0x03, 0x04, 0x5A, 0xD3, 0x5A, 0xE2};
    png.insert(png.begin() + 33, std::begin(transparency), std::end(transparency));
    CMemFile file;
    test::Fill(file, png);
    std::vector<unsigned short> exact(4);
    ASSERT_TRUE(LoadPNG16(&file, exact.data(), 4));
    EXPECT_EQ(exact, (std::vector<unsigned short>{0x0102, 0x0304, 0x0506, 0xA0B0}));
}

TEST(HostileInput, Png16RefusesOtherDepthsAndSmallBuffers) {
    test::Bytes png = Saved(SavePNG); // 8-bit colour
    CMemFile file;
    test::Fill(file, png);
    std::vector<unsigned short> buffer(32 * 16 * 4);
    EXPECT_FALSE(LoadPNG16(&file, buffer.data(), 32 * 16));
    EXPECT_FALSE(LoadPNG16(&file, buffer.data(), 10));
    EXPECT_FALSE(LoadPNG16(nullptr, buffer.data(), 10));
}

} // namespace
} // namespace qv
