// CVariant's binary file form: exact bytes, round trips, hostile input.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "Utf8Text.h"
#include "qv/core/Variant.h"
#include "qv/files/MemFile.h"

namespace qv {
namespace {

using Bytes = std::vector<unsigned char>;

std::string Text(CString const &s) {
    return s.GetTChar() ? Utf8(s.GetTChar(), s.GetLength()) : "(null)";
}

Bytes Saved(CVariant const &v, bool swap = false) {
    CMemFile file;
    file.m_swap = swap;
    EXPECT_TRUE(v.Save(&file));
    return Bytes(file.GetData(), file.GetData() + file.nItems());
}

// A memory file over a copy of the bytes, at its start.
struct Input {
    explicit Input(Bytes const &bytes) {
        if (!bytes.empty()) file.Write(bytes.data(), uint32_t(bytes.size()));
        file.SeekToBegin();
    }
    CMemFile file;
};

CVariant Loaded(Bytes const &bytes, CVariant v = CVariant()) {
    Input in(bytes);
    EXPECT_TRUE(v.Load(&in.file));
    return v;
}

CVariant Enum() {
    CVariant v;
    v.setEnumValue(2);
    v.AddEnum(u"a", 1);
    v.AddEnum(u"b", 2);
    return v;
}

unsigned char const kBlobBytes[] = {0x0B, 0xC2};

struct Sample {
    CVariant v;
    Bytes bytes;
};

std::vector<Sample> Samples() {
    return {
        {CVariant(), {0, 0, 0, 0}},
        {CVariant(true), {1, 0, 0, 0, 1}},
        {CVariant(int8_t(-2)), {2, 0, 0, 0, 0xFE}},
        {CVariant(uint8_t(200)), {3, 0, 0, 0, 0xC8}},
        {CVariant(int16_t(-2)), {4, 0, 0, 0, 0xFE, 0xFF}},
        {CVariant(uint16_t(0x1234)), {5, 0, 0, 0, 0x34, 0x12}},
        {CVariant(int32_t(-2)), {6, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF}},
        {CVariant(uint32_t(0x12345678)), {7, 0, 0, 0, 0x78, 0x56, 0x34, 0x12}},
        {CVariant(int64_t(-2)), {8, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}},
        {CVariant(uint64_t(0x0102030405060708)), {9, 0, 0, 0, 8, 7, 6, 5, 4, 3, 2, 1}},
        {CVariant(1.5f), {10, 0, 0, 0, 0, 0, 0xC0, 0x3F}},
        {CVariant(1.5), {11, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xF8, 0x3F}},
        {CVariant(u"h\u00E9"), {12, 0, 0, 0, 3, 0, 0, 0, 'h', 0xC3, 0xA9}},
        {CVariant(kBlobBytes, 2), {13, 0, 0, 0, 2, 0, 0, 0, 0x0B, 0xC2}},
        {Enum(), {14, 0, 0, 0, 2,   0, 0, 0, 0, 0, 0, 0,      // value
                  2,  0, 0, 0,                                // count
                  1,  0, 0, 0, 'a', 1, 0, 0, 0, 0, 0, 0, 0,   // "a" = 1
                  1,  0, 0, 0, 'b', 2, 0, 0, 0, 0, 0, 0, 0}}, // "b" = 2
    };
}

void ExpectSame(CVariant const &a, CVariant const &b) {
    EXPECT_EQ(a.getType(), b.getType());
    EXPECT_EQ(Text(a.ToString()), Text(b.ToString()));
    EXPECT_EQ(a.ToInt64(), b.ToInt64());
    EXPECT_EQ(a.GetEnumCount(), b.GetEnumCount());
    EXPECT_EQ(Saved(a), Saved(b));
}

TEST(VariantFile, ExactBytesAndRoundTripForEveryType) {
    for (Sample const &s : Samples()) {
        SCOPED_TRACE(Text(CVariant::TypeToString(s.v.getType())));
        EXPECT_EQ(Saved(s.v), s.bytes);
        ExpectSame(Loaded(s.bytes), s.v);
    }
    CVariant flags(false);
    EXPECT_EQ(Saved(flags), (Bytes{1, 0, 0, 0, 0}));
    CVariant nan(std::nan(""));
    EXPECT_TRUE(std::isnan(Loaded(Saved(nan)).ToFlt64()));
    CVariant empty(u"");
    EXPECT_EQ(Saved(empty), (Bytes{12, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(VariantFile, SwappedFilesReverseEveryNumber) {
    EXPECT_EQ(Saved(CVariant(int32_t(-2)), true), (Bytes{0, 0, 0, 6, 0xFF, 0xFF, 0xFF, 0xFE}));
    EXPECT_EQ(Saved(CVariant(1.5), true), (Bytes{0, 0, 0, 11, 0x3F, 0xF8, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(Saved(CVariant(kBlobBytes, 2), true), (Bytes{0, 0, 0, 13, 0, 0, 0, 2, 0x0B, 0xC2}));
    for (Sample const &s : Samples()) {
        Input in(Saved(s.v, true));
        in.file.m_swap = true;
        CVariant back;
        back.Load(&in.file);
        ExpectSame(back, s.v);
    }
}

TEST(VariantFile, LoadDoesNotClearFirst) {
    CVariant v = Enum();
    v.AddEnum(u"c", 3);
    CVariant loaded = Loaded(Saved(Enum()), v);
    EXPECT_EQ(loaded.GetEnumCount(), 5); // a, b, c, then a, b from the file
    EXPECT_EQ(Text(loaded.GetEnumName(3)), "a");

    CVariant was(u"text"); // an int32 loads over a string: only the type and value change
    CVariant number = Loaded(Saved(CVariant(int32_t(9))), was);
    EXPECT_EQ(number.getType(), CVariant::Int32);
    EXPECT_EQ(number.ToInt32(), 9);

    CVariant blob(kBlobBytes, 2); // a blob is replaced, not appended to
    CVariant other = Loaded(Saved(CVariant(kBlobBytes, 1)), blob);
    EXPECT_EQ(Text(other.ToString()), "0B");
}

TEST(VariantFile, SeveralVariantsInOneFile) {
    CMemFile file;
    std::vector<Sample> samples = Samples();
    for (Sample const &s : samples)
        s.v.Save(&file);
    file.SeekToBegin();
    for (Sample const &s : samples) {
        CVariant back;
        back.Load(&file);
        ExpectSame(back, s.v);
    }
    EXPECT_EQ(file.GetRemaining(), 0);
}

TEST(VariantFile, EveryTruncationLoadsWithoutHarm) {
    for (Sample const &s : Samples())
        for (size_t n = 0; n < s.bytes.size(); ++n) {
            Bytes cut(s.bytes.begin(), s.bytes.begin() + long(n));
            Input in(cut);
            CVariant v;
            EXPECT_TRUE(v.Load(&in.file));
            EXPECT_LE(in.file.GetPosition(), int64_t(n));
        }
}

TEST(VariantFile, HostileLengthsAreRefused) {
    // A blob claiming 4 GiB with two bytes behind it: nothing is allocated.
    CVariant blob = Loaded(Bytes{13, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 1, 2});
    EXPECT_EQ(blob.getType(), CVariant::Blob);
    EXPECT_EQ(Text(blob.ToString()), "");
    // One byte short.
    EXPECT_EQ(Text(Loaded(Bytes{13, 0, 0, 0, 3, 0, 0, 0, 1, 2}).ToString()), "");
    // An enum table claiming four billion entries ends with the bytes.
    Bytes hostileEnum{14,   0, 0, 0, 1, 0,   0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF,
                      0xFF, 1, 0, 0, 0, 'x', 7, 0, 0, 0, 0, 0, 0,    0};
    CVariant e = Loaded(hostileEnum);
    EXPECT_EQ(e.getEnumValue(), 1);
    ASSERT_EQ(e.GetEnumCount(), 1);
    EXPECT_EQ(Text(e.GetEnumName(0)), "x");
    // A name claiming more bytes than there are.
    EXPECT_EQ(
        Loaded(Bytes{14, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0x7F, 'y'}).GetEnumCount(), 0);
    // A string length beyond the file.
    EXPECT_EQ(Text(Loaded(Bytes{12, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 'a'}).ToString()), "");
    // An unknown type.
    CVariant unknown = Loaded(Bytes{99, 0, 0, 0, 1, 2, 3, 4});
    EXPECT_EQ(unknown.getType(), CVariant::Undefined);
    // Nothing at all: the variant stays as it was.
    CVariant kept = Loaded(Bytes{}, CVariant(5));
    EXPECT_EQ(kept.ToInt32(), 5);
    // Save and Load of no file report true, as always.
    CVariant v;
    EXPECT_TRUE(v.Save(nullptr));
    EXPECT_TRUE(v.Load(nullptr));
}

} // namespace
} // namespace qv
