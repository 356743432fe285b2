#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "FileTestSupport.h"
#include "qv/files/GZFile.h"

namespace qv {
namespace {

using test::Bytes;

// A 16-bit image with a gradient and some noise: compressible, not trivial.
Bytes ImageBytes(size_t pixels) {
    Bytes b(pixels * 2);
    uint32_t noise = 12345;
    for (size_t i = 0; i < pixels; ++i) {
        noise = noise * 1103515245u + 12345u;
        uint16_t v = uint16_t(2000 + (i % 640) * 3 + (i / 640) + ((noise >> 16) & 0x1F));
        b[2 * i] = uint8_t(v);
        b[2 * i + 1] = uint8_t(v >> 8);
    }
    return b;
}

void Compress(IFile &target, Bytes const &data) {
    CGZFile gz(&target, 0x20, false);
    // Odd pieces, so buffer boundaries fall everywhere.
    for (size_t at = 0; at < data.size();) {
        uint32_t piece = uint32_t(std::min<size_t>(data.size() - at, 7777));
        ASSERT_EQ(gz.Write(data.data() + at, piece), piece);
        at += piece;
    }
    EXPECT_EQ(gz.GetSize(), int64_t(data.size()));
    gz.Close();
}

Bytes ReadAll(IFile &f, uint32_t piece) {
    Bytes out;
    Bytes buf(piece);
    while (uint32_t got = f.Read(buf.data(), piece))
        out.insert(out.end(), buf.begin(), buf.begin() + got);
    return out;
}

Bytes Compressed(Bytes const &data) {
    CMemFile mem;
    Compress(mem, data);
    return test::AllBytes(mem);
}

TEST(GZFileTest, ExactFramingOfASmallStream) {
    CMemFile mem;
    CGZFile gz(&mem, 0x20, false);
    EXPECT_EQ(gz.Write("hello", 5), 5u);
    // The size field stays 0 until Close.
    EXPECT_EQ(test::AllBytes(mem), Bytes({'T', 'G', 'Z', 'F', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    gz.Close();
    gz.Close(); // twice does nothing
    Bytes expected = {'T',  'G',  'Z',  'F',  0,    0,    5,    0,    0,    0,    0,    0,    0,   0,
                      0x78, 0x9C, 0xCB, 0x48, 0xCD, 0xC9, 0xC9, 0x07, 0x00, 0x06, 0x2C, 0x02, 0x15};
    EXPECT_EQ(test::AllBytes(mem), expected);

    // The size field follows the inner file's byte order.
    CMemFile big;
    big.m_swap = true;
    {
        CGZFile swapped(&big, 0x20, false);
        swapped.Write("hello", 5);
    }
    Bytes head = test::AllBytes(big);
    EXPECT_EQ(Bytes(head.begin() + 6, head.begin() + 14), Bytes({0, 0, 0, 0, 0, 0, 0, 5}));
    big.SeekToBegin();
    CGZFile back(&big, 0x10, false);
    EXPECT_EQ(back.GetSize(), 5);
    EXPECT_EQ(ReadAll(back, 3), test::Text("hello"));
}

// Reads back what Compress wrote and seeks all over it.
void CheckReading(IFile &file, Bytes const &data) {
    ASSERT_GT(file.GetSize(), 14);
    ASSERT_LT(file.GetSize(), int64_t(data.size()));
    CGZFile gz(&file, 0x10, false);
    EXPECT_EQ(gz.GetSize(), int64_t(data.size()));
    EXPECT_EQ(ReadAll(gz, 1000), data);
    EXPECT_EQ(gz.GetPosition(), int64_t(data.size()));

    auto expectAt = [&](int64_t pos) {
        uint8_t b[3];
        ASSERT_EQ(gz.Read(b, 3), 3u);
        EXPECT_EQ(Bytes(b, b + 3), Bytes(data.begin() + pos, data.begin() + pos + 3)) << pos;
    };
    EXPECT_EQ(gz.Seek(150001, 1), 150001); // backward, into a later block
    expectAt(150001);
    EXPECT_EQ(gz.Seek(17, 1), 17); // backward to the first block
    expectAt(17);
    EXPECT_EQ(gz.Seek(70000, 2), 70020); // forward across blocks
    expectAt(70020);
    EXPECT_EQ(gz.Seek(-3, 3), int64_t(data.size()) - 3);
    expectAt(int64_t(data.size()) - 3);
    EXPECT_EQ(gz.Seek(-5, 1), 0);
    expectAt(0);
    EXPECT_EQ(gz.Seek(INT64_MAX, 2), int64_t(data.size()));
    EXPECT_EQ(gz.Seek(INT64_MIN, 2), 0);
    EXPECT_EQ(gz.Seek(9, 7), 0); // an unknown origin leaves the position
    EXPECT_EQ(gz.Write("x", 1), 0u);
    EXPECT_FALSE(gz.SetSize(0));

    // A copy opens the stream again and stands where the original stood.
    gz.Seek(1234, 1);
    CGZFile copy(gz);
    EXPECT_EQ(copy.GetPosition(), 1234);
    expectAt(1234);
    uint8_t b[3];
    ASSERT_EQ(copy.Read(b, 3), 3u);
    EXPECT_EQ(Bytes(b, b + 3), Bytes(data.begin() + 1234, data.begin() + 1237));
    CMemFile other;
    CGZFile assigned(&other, 0x20, false);
    assigned.Write("abc", 3);
    assigned = copy;
    EXPECT_EQ(assigned.GetPosition(), 1237);
    ASSERT_EQ(assigned.Read(b, 3), 3u);
    EXPECT_EQ(Bytes(b, b + 3), Bytes(data.begin() + 1237, data.begin() + 1240));
    CGZFile closedFirst(&other, 0x10, false); // the writer it was finished its stream
    EXPECT_EQ(ReadAll(closedFirst, 10), test::Text("abc"));
}

TEST(GZFileTest, RoundTripOverMemoryAndDisk) {
    Bytes data = ImageBytes(640 * 200); // many 16 KiB buffers either way
    CMemFile mem;
    mem.SetGrowthRate(4096);
    Compress(mem, data);
    CheckReading(mem, data);

    test::ScratchDir dir;
    std::u16string path = test::Wide(dir.Path("image.gz"));
    CFile writer;
    ASSERT_TRUE(writer.Open(path.c_str(), 0x08 | 0x20));
    Compress(writer, data);
    EXPECT_EQ(writer.GetHandle(), kInvalidFileHandle); // closing the stream closes its file
    CFile reader;
    ASSERT_TRUE(reader.Open(path.c_str(), 0x02 | 0x10));
    CheckReading(reader, data);
}

TEST(GZFileTest, WriterRefusesReadsAndSeeks) {
    CMemFile mem;
    CGZFile gz(&mem, 0x20 | 0x100, false); // other bits do not count
    EXPECT_EQ(gz.Write("abcdef", 6), 6u);
    char c;
    EXPECT_EQ(gz.Read(&c, 1), 0u);
    EXPECT_EQ(gz.Seek(0, 1), 6);
    EXPECT_EQ(gz.GetPosition(), 6);
    CGZFile copy(gz); // two writers cannot share a stream
    EXPECT_EQ(copy.Write("x", 1), 0u);
    EXPECT_EQ(copy.GetSize(), 0);
}

TEST(GZFileTest, PlainFilesPassThrough) {
    CMemFile mem;
    test::SetBytes(mem, test::Text("plain bytes"));
    CGZFile gz(&mem, 0x10, false);
    EXPECT_EQ(gz.GetSize(), 11);
    EXPECT_EQ(gz.GetPosition(), 4); // left behind the four bytes it looked at
    EXPECT_EQ(ReadAll(gz, 4), test::Text("n bytes"));
    EXPECT_EQ(gz.Seek(0, 1), 0);
    EXPECT_EQ(ReadAll(gz, 100), test::Text("plain bytes"));
    CGZFile copy(gz);
    EXPECT_EQ(copy.Seek(-5, 3), 6);
    EXPECT_EQ(ReadAll(copy, 100), test::Text("bytes"));
    CMemFile tiny;
    test::SetBytes(tiny, test::Text("TG"));
    CGZFile shortFile(&tiny, 0x10, false);
    EXPECT_EQ(shortFile.GetSize(), 2);
}

TEST(GZFileTest, BadConstructionIsUnusable) {
    CMemFile full;
    test::SetBytes(full, test::Text("data"));
    CMemFile empty;
    CGZFile bothFlags(&empty, 0x30, false);
    CGZFile noFlags(&empty, 0, false);
    CGZFile writeNonEmpty(&full, 0x20, false);
    CGZFile readEmpty(&empty, 0x10, false);
    CGZFile noFile(nullptr, 0x10, false);
    CGZFile ownedRefused(new CMemFile, 0x10, true); // deleted at once (the leak checker would see it)
    for (CGZFile *gz : {&bothFlags, &noFlags, &writeNonEmpty, &readEmpty, &noFile, &ownedRefused}) {
        char buf[4];
        EXPECT_EQ(gz->GetSize(), 0);
        EXPECT_EQ(gz->Read(buf, 4), 0u);
        EXPECT_EQ(gz->Write("x", 1), 0u);
        EXPECT_EQ(gz->Seek(2, 1), 0);
        gz->Flush();
        gz->Close();
        char16_t name[4] = {u'x'};
        EXPECT_EQ(std::u16string(gz->GetFilename(name, 4)), u"");
    }
    EXPECT_EQ(test::AllBytes(full), test::Text("data"));
    EXPECT_EQ(empty.GetSize(), 0);
}

TEST(GZFileTest, OwnedFileGoesWithTheWrapper) {
    auto *mem = new CMemFile;
    {
        CGZFile gz(mem, 0x20, true);
        gz.Write("owned", 5);
    } // the leak checker sees a file that was not deleted
    SUCCEED();
}

TEST(GZFileTest, DamagedAndTruncatedStreamsEndWithWhatCame) {
    Bytes data = ImageBytes(640 * 100);
    Bytes good = Compressed(data);

    // Truncated: a prefix of the data, then nothing; a seek stops where the stream ends.
    for (size_t keep : {size_t(14), size_t(20), good.size() / 2, good.size() - 1}) {
        CMemFile mem;
        test::SetBytes(mem, Bytes(good.begin(), good.begin() + keep));
        CGZFile gz(&mem, 0x10, false);
        EXPECT_EQ(gz.GetSize(), int64_t(data.size()));
        Bytes got = ReadAll(gz, 4096);
        ASSERT_LE(got.size(), data.size());
        EXPECT_EQ(got, Bytes(data.begin(), data.begin() + got.size()));
        if (keep < good.size() - 8) {
            EXPECT_LT(got.size(), data.size()) << keep;
        }
        EXPECT_EQ(gz.Seek(0, 3), int64_t(got.size()));
        // The target lies past where the stream ends: the seek stops there.
        EXPECT_EQ(gz.Seek(-1, 3), std::min<int64_t>(int64_t(data.size()) - 1, int64_t(got.size())));
    }

    // Damaged: garbage in the middle ends reads early; nothing spins.
    Bytes bad = good;
    for (size_t i = bad.size() / 3; i < bad.size() / 3 + 64; ++i)
        bad[i] = uint8_t(i * 37);
    CMemFile mem;
    test::SetBytes(mem, bad);
    CGZFile gz(&mem, 0x10, false);
    Bytes got = ReadAll(gz, 5000);
    EXPECT_LT(got.size(), data.size());
    EXPECT_LE(gz.Seek(0, 3), int64_t(data.size()));

    // A size field that lies: too large reads the real data and stops; too small cuts.
    for (int64_t claimed : {INT64_MAX, int64_t(data.size()) * 1000, int64_t(10), int64_t(-7)}) {
        Bytes lying = good;
        for (int i = 0; i < 8; ++i)
            lying[6 + i] = uint8_t(uint64_t(claimed) >> (8 * i));
        CMemFile lie;
        test::SetBytes(lie, lying);
        CGZFile liar(&lie, 0x10, false);
        int64_t expectSize = claimed < 0 ? 0 : std::min<int64_t>(claimed, int64_t(data.size()));
        EXPECT_EQ(liar.GetSize(), claimed < 0 ? 0 : claimed);
        EXPECT_EQ(ReadAll(liar, 65536), Bytes(data.begin(), data.begin() + expectSize));
        EXPECT_EQ(liar.Seek(0, 3), expectSize);
    }

    // A head cut short reads as empty.
    CMemFile cut;
    test::SetBytes(cut, Bytes({'T', 'G', 'Z', 'F', 0, 0, 1}));
    CGZFile shortHead(&cut, 0x10, false);
    EXPECT_EQ(shortHead.GetSize(), 0);
    char c;
    EXPECT_EQ(shortHead.Read(&c, 1), 0u);
}

} // namespace
} // namespace qv
