#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "qv/core/CpuPath.h"
#include "qv/core/DebugOutput.h"
#include "qv/files/CRC.h"
#include "qv/files/CRCFile.h"
#include "qv/files/MemFile.h"

namespace qv {
namespace {

uint8_t const kCheck[] = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};

// Bit-at-a-time references, independent of any table.
uint16_t BitwiseCRC16(uint8_t const *p, size_t n) {
    uint16_t crc = 0;
    for (size_t i = 0; i < n; ++i) {
        crc ^= uint16_t(p[i] << 8);
        for (int b = 0; b < 8; ++b)
            crc = (crc & 0x8000) ? uint16_t((crc << 1) ^ 0x1021) : uint16_t(crc << 1);
    }
    return crc;
}

uint32_t Reflect32(uint32_t v) {
    uint32_t r = 0;
    for (int i = 0; i < 32; ++i, v >>= 1)
        r = (r << 1) | (v & 1);
    return r;
}

uint32_t BitwiseCRC32(uint32_t polynomial, uint8_t const *p, size_t n) {
    uint32_t const reflected = Reflect32(polynomial);
    uint32_t crc = 0xFFFFFFFFu;
    for (size_t i = 0; i < n; ++i) {
        crc ^= p[i];
        for (int b = 0; b < 8; ++b)
            crc = (crc & 1) ? (crc >> 1) ^ reflected : crc >> 1;
    }
    return ~crc;
}

std::vector<uint8_t> RandomBytes(size_t n, unsigned seed) {
    std::mt19937 rng(seed);
    std::vector<uint8_t> v(n);
    for (auto &b : v)
        b = uint8_t(rng());
    return v;
}

TEST(CRCTest, CheckValuesAndEmptyInputs) {
    EXPECT_EQ(CalcBlockCRC16(kCheck, 9), 0x31C3);
    EXPECT_EQ(CalcBlockCRC32(kCheck, 9), 0xCBF43926u);
    EXPECT_EQ(InitCRC16(), 0);
    EXPECT_EQ(FiniCRC16(0x1234), 0x1234);
    EXPECT_EQ(InitCRC32(), 0xFFFFFFFFu);
    EXPECT_EQ(FiniCRC32(0x0F0F0F0Fu), 0xF0F0F0F0u);
    EXPECT_EQ(CalcBlockCRC32(kCheck, 0), 0u);
    EXPECT_EQ(CalcBlockCRC16(kCheck, 0), 0);
    EXPECT_EQ(CalcMultBlockCRC16(nullptr, 9, 0xABCD), 0xABCD);
    EXPECT_EQ(CalcMultBlockCRC32(nullptr, 9, 0x12345678u), 0x12345678u);
    EXPECT_EQ(CalcMultBlockCRC32(kCheck, 0, 0x12345678u), 0x12345678u);
}

TEST(CRCTest, KernelsMatchBitwiseReferenceAtEveryLengthAndAlignment) {
    std::vector<uint8_t> data = RandomBytes(1008, 7);
    for (uint32_t polynomial : {0x04C11DB7u, 0x1EDC6F41u, 0x814141ABu}) {
        InitCRC32Table(polynomial);
        for (size_t offset = 0; offset < 8; ++offset)
            for (size_t n = 0; n <= 1000; n += (offset == 0 ? 1 : 37)) {
                uint8_t const *p = data.data() + offset;
                uint32_t expected = n ? BitwiseCRC32(polynomial, p, n) : 0;
                ASSERT_EQ(CalcBlockCRC32(p, uint32_t(n)), expected) << polynomial << " " << offset << " " << n;
                ASSERT_EQ(CalcBlockCRC16(p, uint32_t(n)), BitwiseCRC16(p, n)) << offset << " " << n;
            }
    }
    // Castagnoli's check value confirms the table recipe for a foreign polynomial.
    InitCRC32Table(0x1EDC6F41u);
    EXPECT_EQ(CalcBlockCRC32(kCheck, 9), 0xE3069283u);
    InitCRC32Table(0x04C11DB7u);
    EXPECT_EQ(CalcBlockCRC32(kCheck, 9), 0xCBF43926u);
}

// Folding with carry-less multiplies (each path the machine has), zlib (the
// portable path) and the tables all give the bit-at-a-time values: around
// every lane and register width, at every alignment, from split points.
TEST(CRCTest, EveryCpuPathMatchesTheBitwiseReference) {
    std::vector<uint8_t> data = RandomBytes(5000, 11);
    InitCRC32Table(0x04C11DB7u);
    for (int path = cpu::BestCpuPath(); path >= 0; --path) {
        cpu::LimitCpuPath(cpu::ECpuPath(path));
        for (size_t offset : {0, 1, 7, 13})
            for (size_t n : {0, 1, 15, 16, 17, 63, 64, 65, 79, 80, 127, 128, 255, 256, 257, 319, 320, 511, 512, 513,
                             1000, 1024, 4093, 4960}) {
                uint8_t const *p = data.data() + offset;
                ASSERT_EQ(CalcBlockCRC32(p, uint32_t(n)), n ? BitwiseCRC32(0x04C11DB7u, p, n) : 0)
                    << "path " << path << " offset " << offset << " n " << n;
                ASSERT_EQ(CalcBlockCRC16(p, uint32_t(n)), BitwiseCRC16(p, n)) << path << " " << offset << " " << n;
                size_t const split = n / 3;
                uint32_t c = CalcMultBlockCRC32(p, uint32_t(split), InitCRC32());
                c = FiniCRC32(CalcMultBlockCRC32(p + split, uint32_t(n - split), c));
                ASSERT_EQ(c, BitwiseCRC32(0x04C11DB7u, p, n)) << "path " << path << " split " << split << " n " << n;
            }
        EXPECT_EQ(CalcBlockCRC32(kCheck, 9), 0xCBF43926u);
    }
    cpu::LimitCpuPath(cpu::BestCpuPath());
}

TEST(CRCTest, BlocksContinueAcrossSplits) {
    std::vector<uint8_t> data = RandomBytes(777, 3);
    for (uint32_t split : {0u, 1u, 5u, 8u, 400u, 777u}) {
        uint16_t c16 = CalcMultBlockCRC16(data.data(), split, InitCRC16());
        c16 = FiniCRC16(CalcMultBlockCRC16(data.data() + split, 777 - split, c16));
        EXPECT_EQ(c16, CalcBlockCRC16(data.data(), 777));
        uint32_t c32 = CalcMultBlockCRC32(data.data(), split, InitCRC32());
        c32 = FiniCRC32(CalcMultBlockCRC32(data.data() + split, 777 - split, c32));
        EXPECT_EQ(c32, CalcBlockCRC32(data.data(), 777));
    }
}

TEST(CRCTest, FileFormsRunFromThePositionToTheEnd) {
    std::vector<uint8_t> data = RandomBytes(0x80000 + 1234, 11); // more than one block
    CMemFile f;
    f.Write(data.data(), uint32_t(data.size()));
    f.Seek(1000, 1);
    uint16_t c16 = 1;
    EXPECT_TRUE(CalcCRC16(c16, &f));
    EXPECT_EQ(c16, CalcBlockCRC16(data.data() + 1000, uint32_t(data.size() - 1000)));
    // The file form goes back to the standard polynomial first.
    InitCRC32Table(0x1EDC6F41u);
    f.Seek(0, 1);
    uint32_t c32 = 1;
    EXPECT_TRUE(CalcCRC32(c32, &f));
    EXPECT_EQ(c32, CalcBlockCRC32(data.data(), uint32_t(data.size())));
    EXPECT_FALSE(CalcCRC16(c16, nullptr));
    EXPECT_EQ(c16, 0);
    EXPECT_FALSE(CalcCRC32(c32, nullptr));
    EXPECT_EQ(c32, 0u);
}

std::string gDebugText;
void CollectDebugText(char const *utf8, void *) {
    gDebugText += utf8;
}

TEST(CRCTest, SinksChecksumWhatIsWritten) {
    std::vector<uint8_t> data = RandomBytes(5000, 5);
    CCalcCRC16File s16;
    CCalcCRC32File s32;
    for (IFile *sink : {static_cast<IFile *>(&s16), static_cast<IFile *>(&s32)}) {
        EXPECT_EQ(sink->Write(data.data(), 17), 17u);
        EXPECT_EQ(sink->Write(data.data() + 17, 4983), 4983u);
        EXPECT_EQ(sink->GetSize(), 5000);
        EXPECT_EQ(sink->GetPosition(), 5000);
        char16_t name[8];
        EXPECT_EQ(std::u16string(sink->GetFilename(name, 8)), u"none");
    }
    EXPECT_EQ(s16.GetCRC(), CalcBlockCRC16(data.data(), 5000));
    EXPECT_EQ(s32.GetCRC(), CalcBlockCRC32(data.data(), 5000));
    s16.Reset();
    s32.Reset();
    EXPECT_EQ(s16.GetSize(), 0);
    EXPECT_EQ(s16.GetCRC(), 0);
    EXPECT_EQ(s32.GetCRC(), 0u);
    EXPECT_TRUE(s32.PutUInt32(0xDEADBEEF)); // the typed layer writes through a sink
    EXPECT_EQ(s32.GetCRC(), CalcBlockCRC32(reinterpret_cast<uint8_t const *>("\xEF\xBE\xAD\xDE"), 4));
}

TEST(CRCTest, SinksRefuseReadSeekAndSetSizeWithDebugText) {
    DebugTextHook previous = SetDebugTextHook(CollectDebugText, nullptr);
    gDebugText.clear();
    CCalcCRC16File s16;
    CCalcCRC32File s32;
    s16.Write("abc", 3);
    char buf[4];
    EXPECT_EQ(s16.Read(buf, 4), 0u);
    EXPECT_EQ(s16.Seek(0, 1), 3);
    EXPECT_FALSE(s16.SetSize(0));
    EXPECT_EQ(s32.Read(buf, 4), 0u);
    EXPECT_EQ(s32.Seek(10, 1), 0);
    EXPECT_FALSE(s32.SetSize(10));
    SetDebugTextHook(previous, nullptr);
    EXPECT_EQ(gDebugText, "CCalcCRC16File::Read: Not Implemented.\n"
                          "CCalcCRC16File::Seek: Not Implemented.\n"
                          "CCalcCRC16File::SetSize: Not Implemented.\n"
                          "CCalcCRC32File::Read: Not Implemented.\n"
                          "CCalcCRC32File::Seek: Not Implemented.\n"
                          "CCalcCRC32File::SetSize: Not Implemented.\n");
}

} // namespace
} // namespace qv
