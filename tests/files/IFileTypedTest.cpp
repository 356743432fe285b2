// The binary forms of typed values, over every IFile kind.
#include <cstring>

#include "FileTestSupport.h"

namespace qv::test {
namespace {

template <class F> class IFileTyped : public testing::Test {
protected:
    std::unique_ptr<F> file = MakeEmptyFile<F>();
};
using FileKinds = testing::Types<CMemFile, CFile>;
TYPED_TEST_SUITE(IFileTyped, FileKinds);

// Every scalar once, with the bytes each gives little-endian.
void PutAll(IFile &f) {
    f.PutChar('A');
    f.PutInt8(-2);
    f.PutBYTE(0xFE);
    f.PutUInt8(0x7F);
    f.PutShort(0x0102);
    f.PutInt16(-2);
    f.PutWORD(0xA1B2);
    f.PutUInt16(0x0304);
    f.PutLong(0x01020304);
    f.PutInt32(-2);
    f.PutDWORD(0xA1B2C3D4);
    f.PutUInt32(5);
    f.PutFloat(1.0f);
    f.PutFlt32(-2.0f);
    f.PutDouble(1.0);
    f.PutFlt64(-2.0);
    f.PutInt64(0x0102030405060708);
    f.PutQWORD(0xA1A2A3A4A5A6A7A8);
    f.PutUInt64(9);
    f.PutBool(true);
    f.PutBool(false);
    f.PutBOOL(0x01020304);
}

Bytes Reversed(Bytes const &little, std::initializer_list<size_t> widths) {
    Bytes out;
    size_t at = 0;
    for (size_t w : widths) {
        out.insert(out.end(), little.rbegin() + std::ptrdiff_t(little.size() - at - w),
                   little.rbegin() + std::ptrdiff_t(little.size() - at));
        at += w;
    }
    return out;
}

Bytes const kLittle = {
    'A',  0xFE, 0xFE, 0x7F,                                                    // 1-byte values
    0x02, 0x01, 0xFE, 0xFF, 0xB2, 0xA1, 0x04, 0x03,                            // 2-byte values
    0x04, 0x03, 0x02, 0x01, 0xFE, 0xFF, 0xFF, 0xFF,                            // Long, Int32
    0xD4, 0xC3, 0xB2, 0xA1, 0x05, 0x00, 0x00, 0x00,                            // DWORD, UInt32
    0x00, 0x00, 0x80, 0x3F, 0x00, 0x00, 0x00, 0xC0,                            // Float, Flt32
    0,    0,    0,    0,    0,    0,    0xF0, 0x3F, 0, 0, 0, 0, 0, 0, 0, 0xC0, // Double, Flt64
    8,    7,    6,    5,    4,    3,    2,    1,                               // Int64
    0xA8, 0xA7, 0xA6, 0xA5, 0xA4, 0xA3, 0xA2, 0xA1,                            // QWORD
    9,    0,    0,    0,    0,    0,    0,    0,                               // UInt64
    1,    0,                                                                   // Bool
    0x04, 0x03, 0x02, 0x01,                                                    // BOOL
};

TYPED_TEST(IFileTyped, ScalarsHaveTheirBytesInBothOrders) {
    IFile &f = *this->file;
    PutAll(f);
    EXPECT_EQ(AllBytes(f), kLittle);

    SetBytes(f, {});
    f.m_swap = true;
    PutAll(f);
    EXPECT_EQ(AllBytes(f), Reversed(kLittle, {1, 1, 1, 1, 2, 2, 2, 2, 4, 4, 4, 4, 4, 4, 8, 8, 8, 8, 8, 1, 1, 4}));

    // Read back with both Get forms, still swapped.
    f.SeekToBegin();
    EXPECT_EQ(f.GetChar(), 'A');
    int8_t i8;
    EXPECT_TRUE(f.GetInt8(i8));
    EXPECT_EQ(i8, -2);
    EXPECT_EQ(f.GetBYTE(), 0xFE);
    EXPECT_EQ(f.GetUInt8(), 0x7F);
    EXPECT_EQ(f.GetShort(), 0x0102);
    EXPECT_EQ(f.GetInt16(), -2);
    uint16_t w;
    EXPECT_TRUE(f.GetWORD(w));
    EXPECT_EQ(w, 0xA1B2);
    EXPECT_EQ(f.GetUInt16(), 0x0304);
    EXPECT_EQ(f.GetLong(), 0x01020304);
    EXPECT_EQ(f.GetInt32(), -2);
    EXPECT_EQ(f.GetDWORD(), 0xA1B2C3D4u);
    EXPECT_EQ(f.GetUInt32(), 5u);
    EXPECT_EQ(f.GetFloat(), 1.0f);
    float f32;
    EXPECT_TRUE(f.GetFlt32(f32));
    EXPECT_EQ(f32, -2.0f);
    EXPECT_EQ(f.GetDouble(), 1.0);
    EXPECT_EQ(f.GetFlt64(), -2.0);
    EXPECT_EQ(f.GetInt64(), 0x0102030405060708);
    EXPECT_EQ(f.GetQWORD(), 0xA1A2A3A4A5A6A7A8u);
    uint64_t u64;
    EXPECT_TRUE(f.GetUInt64(u64));
    EXPECT_EQ(u64, 9u);
    EXPECT_TRUE(f.GetBool());
    EXPECT_FALSE(f.GetBool());
    EXPECT_EQ(f.GetBOOL(), 0x01020304);
    EXPECT_EQ(f.GetRemaining(), 0);
}

TYPED_TEST(IFileTyped, Int32SwapExampleAndBoolBytes) {
    IFile &f = *this->file;
    f.m_swap = true;
    f.PutInt32(0x01020304);
    f.m_swap = false;
    f.PutInt32(0x01020304);
    EXPECT_EQ(AllBytes(f), (Bytes{1, 2, 3, 4, 4, 3, 2, 1}));

    SetBytes(f, {2, 0xFF, 1});
    bool b = true;
    EXPECT_TRUE(f.GetBool(b));
    EXPECT_FALSE(b); // only the byte 1 is true
    EXPECT_FALSE(f.GetBool());
    EXPECT_TRUE(f.GetBool());
}

TYPED_TEST(IFileTyped, ShortReadsFailAndLeaveTargets) {
    IFile &f = *this->file;
    SetBytes(f, {1, 2, 3});
    int32_t v = 77;
    EXPECT_FALSE(f.GetInt32(v));
    EXPECT_EQ(v, 77);
    f.SeekToBegin();
    EXPECT_EQ(f.GetDWORD(), 0u);
    f.SeekToBegin();
    int32_t flag = 5;
    EXPECT_TRUE(f.GetBOOL(flag)); // true whatever the read did
    f.SeekToEnd();
    bool b = true;
    f >> b;
    EXPECT_TRUE(b);
    EXPECT_FALSE(f.ReadBytes(&v, 1));
    EXPECT_TRUE(f.ReadBytes(&v, 0));
    EXPECT_TRUE(f.WriteBytes(&v, 0));
}

TYPED_TEST(IFileTyped, GuidBytesAndFailureValue) {
    IFile &f = *this->file;
    GUID g{0x01020304, 0x0506, 0x0708, {9, 10, 11, 12, 13, 14, 15, 16}};
    f.PutGUID(g);
    f.m_swap = true;
    f.PutGUID(g);
    EXPECT_EQ(AllBytes(f), (Bytes{4, 3, 2, 1, 6, 5, 8, 7, 9, 10, 11, 12, 13, 14, 15, 16,
                                  1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}));
    f.SeekToBegin();
    f.m_swap = false;
    EXPECT_EQ(f.GetGUID(), g);
    f.m_swap = true;
    GUID h{};
    EXPECT_TRUE(f.GetGUID(h));
    EXPECT_EQ(h, g);

    GUID failed = f.GetGUID(); // at the end
    EXPECT_EQ(failed, (GUID{0, 0, 4, {0, 0, 0, 0, 0, 0, 0, 0}}));
    GUID kept = g;
    EXPECT_FALSE(f.GetGUID(kept));
    EXPECT_EQ(kept, g);
}

TYPED_TEST(IFileTyped, StreamingOperatorsUseTheBinaryForms) {
    IFile &f = *this->file;
    f.m_swap = true;
    f << 'A' << (unsigned char)0xFE << int16_t(0x0102) << uint16_t(0x0304) << int32_t(0x05060708)
      << uint32_t(0x090A0B0C) << 1.0f << 1.0 << int64_t(-2) << uint64_t(3) << true;
    Bytes expected = {'A',  0xFE, 1,    2,    3,    4, 5, 6, 7, 8, 9, 10,   11,   12,   0x3F,
                      0x80, 0,    0,    0x3F, 0xF0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF,
                      0xFF, 0xFF, 0xFF, 0xFE, 0,    0, 0, 0, 0, 0, 0, 3,    1};
    EXPECT_EQ(AllBytes(f), expected);
    f.SeekToBegin();
    char c;
    unsigned char uc;
    int16_t s;
    uint16_t us;
    int32_t l;
    uint32_t ul;
    float fl;
    double d;
    int64_t ll;
    uint64_t ull;
    bool b = false;
    f >> c >> uc >> s >> us >> l >> ul >> fl >> d >> ll >> ull >> b;
    EXPECT_EQ(c, 'A');
    EXPECT_EQ(uc, 0xFE);
    EXPECT_EQ(s, 0x0102);
    EXPECT_EQ(us, 0x0304);
    EXPECT_EQ(l, 0x05060708);
    EXPECT_EQ(ul, 0x090A0B0Cu);
    EXPECT_EQ(fl, 1.0f);
    EXPECT_EQ(d, 1.0);
    EXPECT_EQ(ll, -2);
    EXPECT_EQ(ull, 3u);
    EXPECT_TRUE(b);
}

TYPED_TEST(IFileTyped, ArraysSwapPerItemAndWriteArrayReportsFalseWhenSwapping) {
    IFile &f = *this->file;
    uint16_t words[3] = {0x0102, 0x0304, 0x0506};
    EXPECT_TRUE(f.WriteArray(words, 3, 2));
    f.m_swap = true;
    EXPECT_FALSE(f.WriteArray(words, 3, 2)); // false, yet written
    uint8_t triple[6] = {1, 2, 3, 4, 5, 6};
    EXPECT_FALSE(f.WriteArray(triple, 2, 3));
    EXPECT_EQ(words[0], 0x0102); // the caller's data is untouched
    EXPECT_EQ(AllBytes(f), (Bytes{2, 1, 4, 3, 6, 5, 1, 2, 3, 4, 5, 6, 3, 2, 1, 6, 5, 4}));

    f.SeekToBegin();
    f.m_swap = false;
    uint16_t back[3];
    EXPECT_TRUE(f.ReadArray(back, 3, 2));
    EXPECT_EQ(back[2], 0x0506);
    f.m_swap = true;
    EXPECT_TRUE(f.ReadArray(back, 3, 2));
    EXPECT_EQ(back[1], 0x0304);
    EXPECT_TRUE(f.ReadArray(triple, 2, 3));
    EXPECT_EQ(triple[0], 1);
    EXPECT_EQ(triple[5], 6);
    EXPECT_TRUE(f.ReadArray(back, 0, 2));
    EXPECT_FALSE(f.ReadArray(back, 1, 2));             // at the end
    EXPECT_FALSE(f.ReadArray(back, 0x10000, 0x10000)); // more than 32 bits of bytes

    // Large arrays go through the bounded swap block in several writes.
    std::vector<uint32_t> many(70000);
    for (uint32_t i = 0; i < many.size(); ++i)
        many[i] = i;
    SetBytes(f, {});
    EXPECT_FALSE(f.WriteArray(many.data(), uint32_t(many.size()), 4));
    std::vector<uint32_t> read(many.size());
    f.SeekToBegin();
    EXPECT_TRUE(f.ReadArray(read.data(), uint32_t(read.size()), 4));
    EXPECT_EQ(read, many);
}

TYPED_TEST(IFileTyped, Utf8CharactersInTheClassicSixForms) {
    IFile &f = *this->file;
    int32_t const values[] = {0x41, 0xE9, 0x20AC, 0x10FFFF, 0x3FFFFFF, 0x7FFFFFFF};
    for (int32_t v : values)
        EXPECT_TRUE(f.PutUTF8Character(v));
    Bytes expected = {0x41, 0xC3, 0xA9, 0xE2, 0x82, 0xAC, 0xF4, 0x8F, 0xBF, 0xBF, 0xFB,
                      0xBF, 0xBF, 0xBF, 0xBF, 0xFD, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF};
    EXPECT_EQ(AllBytes(f), expected);

    // Values whose bit 6k+7 is set behind every continuation byte decode to
    // themselves, Latin-1 among them; 0x10FFFF has bit 19 clear, and in the
    // six-byte form the first continuation byte's top bit lands on bit 31.
    f.SeekToBegin();
    int32_t const decoded[] = {0x41, 0xE9, 0x20AC, 0x18FFFF, 0x3FFFFFF, -1};
    for (int32_t v : decoded)
        EXPECT_EQ(f.GetUTF8Character(), v);
    SetBytes(f, {});
    for (int32_t v = 0; v < 0x100; ++v)
        f.PutUTF8Character(v);
    f.SeekToBegin();
    for (int32_t v = 0; v < 0x100; ++v)
        ASSERT_EQ(f.GetUTF8Character(), v);

    // ...but continuation bytes are not masked: U+0100 (C4 80) reads as 0x180.
    SetBytes(f, {0xC4, 0x80, 0xE0, 0x80, 0x80});
    int32_t v = 0;
    EXPECT_TRUE(f.GetUTF8Character(v));
    EXPECT_EQ(v, 0x180);
    EXPECT_TRUE(f.GetUTF8Character(v));
    EXPECT_EQ(v, 0x2080); // ((0 << 6 | 0x80) << 6) | 0x80

    // A bad lead or a short sequence fails.
    for (Bytes bad : {Bytes{0x80}, Bytes{0xBF}, Bytes{0xFE}, Bytes{0xFF}, Bytes{0xE2, 0x82}, Bytes{}}) {
        SetBytes(f, bad);
        v = 7;
        EXPECT_FALSE(f.GetUTF8Character(v));
        EXPECT_EQ(v, 7);
    }
}

} // namespace
} // namespace qv::test
