// The radiometric JPEG: chunks in "VORK" segments, read after the picture
// decodes and joined in file order; writing them copies the picture's bytes.
#include <gtest/gtest.h>

#include <string>

#include "images/ImageTestSupport.h"
#include "qv/files/File.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/filesystems/IFileSystem.h"
#include "qv/formats/indexed/VQRFile.h"
#include "qv/images/Images.h"
#include "qv/images/RadiometricJPEG.h"
#include "support/FaultInjection.h"

namespace qv {
namespace {

using test::Bytes;

Bytes Concat(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (Bytes const &part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

Bytes Slice(Bytes const &b, size_t from, size_t to) { return Bytes(b.begin() + long(from), b.begin() + long(to)); }

// A segment as it stands in the file: marker, length (counting itself), data.
Bytes Segment(uint8_t marker, Bytes const &data) {
    size_t length = data.size() + 2;
    return Concat({{0xFF, marker, uint8_t(length >> 8), uint8_t(length)}, data});
}

Bytes Chunk(Bytes const &header, Bytes const &chunk) { return Segment(0xE1, Concat({{'V', 'O', 'R', 'K'}, header, chunk})); }

Bytes Filled(size_t n, uint8_t seed) {
    Bytes b(n);
    for (size_t i = 0; i < n; ++i) b[i] = uint8_t(i * 31 + seed);
    return b;
}

// A small JPEG from libjpeg: SOI, the 16-byte JFIF APP0, tables, scan, EOI.
Bytes PlainJPEG() {
    test::Bitmap picture = test::Smooth(32, 16);
    CMemFile file;
    EXPECT_TRUE(SaveJPEG(picture.get(), &file, CPropertyArray()));
    Bytes bytes = test::BytesOf(file);
    EXPECT_EQ(bytes[2], 0xFF);
    EXPECT_EQ(bytes[3], 0xE0);
    EXPECT_EQ(bytes[5], 16);
    return bytes;
}

constexpr size_t kAfterAPP0 = 20;

// The JPEG with segments put after its APP0.
Bytes WithSegments(std::initializer_list<Bytes> segments) {
    Bytes plain = PlainJPEG();
    Bytes all = Slice(plain, 0, kAfterAPP0);
    for (Bytes const &s : segments) all.insert(all.end(), s.begin(), s.end());
    all.insert(all.end(), plain.begin() + long(kAfterAPP0), plain.end());
    return all;
}

struct SExtract {
    bool radiometric = false;
    Bytes payload;
};

SExtract Extract(Bytes const &jpeg) {
    CMemFile file, payload;
    test::Fill(file, jpeg);
    SExtract result;
    result.radiometric = RadiometricJPEG(&file, &payload);
    EXPECT_EQ(payload.GetPosition(), 0);
    result.payload = test::BytesOf(payload);
    return result;
}

Bytes Written(Bytes const &jpeg, Bytes const &payload, bool expectOk = true) {
    CMemFile in, data, out;
    test::Fill(in, jpeg);
    test::Fill(data, payload);
    EXPECT_EQ(WriteRadiometricJPEG(&in, &data, &out), expectOk);
    return test::BytesOf(out);
}

TEST(RadiometricJPEG, ChunksJoinInFileOrderWithoutTheirHeaders) {
    Bytes first = Filled(3000, 1), second = Filled(2000, 2);
    SExtract got = Extract(WithSegments({Chunk({0, 2, 0, 2}, second), Segment(0xE1, {'E', 'x', 'i', 'f', 0, 0, 9, 9}),
                                         Segment(0xE2, Concat({{'V', 'O', 'R', 'K', 0, 0, 0, 0}, Filled(10, 3)})),
                                         Chunk({0, 1, 0, 2}, first)}));
    EXPECT_TRUE(got.radiometric);
    EXPECT_EQ(got.payload, Concat({second, first})); // the chunk numbers are never looked at
}

TEST(RadiometricJPEG, AChunkBetweenTheScanAndTheEndMarkerCounts) {
    Bytes plain = PlainJPEG();
    Bytes chunk = Filled(4000, 3);
    Bytes late = Concat({Slice(plain, 0, plain.size() - 2), Chunk({0, 0, 0, 0}, chunk), {0xFF, 0xD9}});
    SExtract got = Extract(late);
    EXPECT_TRUE(got.radiometric);
    EXPECT_EQ(got.payload, chunk);
    // Written again, the chunk moves to the front and the picture's bytes stay.
    EXPECT_EQ(Written(late, {'z'}), Written(plain, {'z'}));
}

TEST(RadiometricJPEG, OnlyMoreThan3864BytesCount) {
    SExtract exact = Extract(WithSegments({Chunk({0, 0, 0, 0}, Filled(3864, 4))}));
    EXPECT_FALSE(exact.radiometric);
    EXPECT_EQ(exact.payload, Filled(3864, 4)); // the payload stays all the same
    SExtract more = Extract(WithSegments({Chunk({0, 0, 0, 0}, Filled(3865, 4))}));
    EXPECT_TRUE(more.radiometric);
    EXPECT_EQ(more.payload.size(), 3865u);
}

TEST(RadiometricJPEG, PlainPicturesAndOtherFilesGiveNothing) {
    SExtract plain = Extract(PlainJPEG());
    EXPECT_FALSE(plain.radiometric);
    EXPECT_TRUE(plain.payload.empty());

    CMemFile notJpeg, payload;
    test::Fill(notJpeg, Bytes{'B', 'M', 1, 2, 3});
    test::Fill(payload, Bytes{'k', 'e', 'e', 'p'});
    payload.SeekToEnd();
    EXPECT_FALSE(RadiometricJPEG(&notJpeg, &payload));
    EXPECT_EQ(test::BytesOf(payload), (Bytes{'k', 'e', 'e', 'p'}));
    EXPECT_EQ(payload.GetPosition(), 4);

    EXPECT_FALSE(RadiometricJPEG(&GetFileSystem(), u"/nonexistent/qv/x.jpg", &payload));
    EXPECT_FALSE(RadiometricJPEG(nullptr, &payload));
    EXPECT_FALSE(RadiometricJPEG(&notJpeg, nullptr));
}

TEST(RadiometricJPEG, ChunksShorterThanTheirHeaderAddNothing) {
    Bytes tail = Filled(3900, 5);
    for (size_t extra = 0; extra <= 4; ++extra) {
        SCOPED_TRACE(extra);
        Bytes header = Slice(Bytes{1, 2, 3, 4}, 0, extra);
        SExtract got = Extract(WithSegments({Segment(0xE1, Concat({{'V', 'O', 'R', 'K'}, header})),
                                             Chunk({0, 0, 0, 0}, tail)}));
        EXPECT_TRUE(got.radiometric);
        EXPECT_EQ(got.payload, tail);
    }
}

TEST(RadiometricJPEG, ALengthPastTheEndGivesNoPayload) {
    Bytes plain = PlainJPEG();
    Bytes chunk = Chunk({0, 0, 0, 0}, Filled(5000, 6));
    for (uint16_t length : {uint16_t(0xFFFF), uint16_t(0x2000)}) {
        SCOPED_TRACE(length);
        // The picture's bytes come first, then a chunk whose length runs off the end.
        Bytes lying = Concat({Slice(plain, 0, plain.size() - 2), Slice(chunk, 0, 2000)});
        lying[plain.size() - 2 + 2] = uint8_t(length >> 8);
        lying[plain.size() - 2 + 3] = uint8_t(length);
        SExtract got = Extract(lying);
        EXPECT_FALSE(got.radiometric);
        EXPECT_TRUE(got.payload.empty());
        Bytes front = Concat({Slice(plain, 0, kAfterAPP0), Slice(chunk, 0, 2000)});
        front[kAfterAPP0 + 2] = uint8_t(length >> 8);
        front[kAfterAPP0 + 3] = uint8_t(length);
        got = Extract(Concat({front, Slice(plain, kAfterAPP0, plain.size())}));
        EXPECT_FALSE(got.radiometric);
        Written(Concat({front, Slice(plain, kAfterAPP0, plain.size())}), {1}, false);
    }
}

TEST(RadiometricJPEG, EveryCutFileGivesNoPayload) {
    Bytes whole = WithSegments({Chunk({0, 1, 0, 2}, Filled(2500, 7)), Chunk({0, 2, 0, 2}, Filled(2500, 8))});
    ASSERT_TRUE(Extract(whole).radiometric);
    for (size_t cut = 0; cut < whole.size(); ++cut) {
        SExtract got = Extract(Slice(whole, 0, cut));
        ASSERT_FALSE(got.radiometric) << cut;
        ASSERT_TRUE(got.payload.empty()) << cut;
        CMemFile in, payload, out;
        test::Fill(in, Slice(whole, 0, cut));
        ASSERT_FALSE(WriteRadiometricJPEG(&in, &payload, &out)) << cut;
    }
}

TEST(RadiometricJPEG, WritingPutsOneSegmentAfterTheApplicationSegments) {
    Bytes plain = PlainJPEG();
    Bytes payload = {'p', 'a', 'y'};
    Bytes expected = Concat({Slice(plain, 0, kAfterAPP0),
                             {0xFF, 0xE1, 0x00, 0x0D, 'V', 'O', 'R', 'K', 0x00, 0x01, 0x00, 0x01, 'p', 'a', 'y'},
                             Slice(plain, kAfterAPP0, plain.size())});
    EXPECT_EQ(Written(plain, payload), expected);
    EXPECT_EQ(Extract(expected).payload, payload);
}

TEST(RadiometricJPEG, WritingSplitsALargePayloadIntoNumberedChunks) {
    Bytes plain = PlainJPEG();
    size_t chunk = kMaxRadiometricChunk;
    ASSERT_EQ(chunk, 65525u);
    Bytes payload = Filled(2 * chunk + 5, 9);
    Bytes written = Written(plain, payload);
    Bytes expected = Concat({Slice(plain, 0, kAfterAPP0), Chunk({0, 1, 0, 3}, Slice(payload, 0, chunk)),
                             Chunk({0, 2, 0, 3}, Slice(payload, chunk, 2 * chunk)),
                             Chunk({0, 3, 0, 3}, Slice(payload, 2 * chunk, payload.size())),
                             Slice(plain, kAfterAPP0, plain.size())});
    EXPECT_EQ(written.size(), expected.size());
    EXPECT_TRUE(written == expected);
    EXPECT_EQ(written[kAfterAPP0 + 2], 0xFF); // a full segment: 65535 bytes
    EXPECT_EQ(written[kAfterAPP0 + 3], 0xFF);
    SExtract got = Extract(written);
    EXPECT_TRUE(got.radiometric);
    EXPECT_TRUE(got.payload == payload);
}

TEST(RadiometricJPEG, WritingReplacesTheOldChunksWhereTheFirstStood) {
    Bytes exif = Segment(0xE1, {'E', 'x', 'i', 'f', 0, 0});
    Bytes comment = Segment(0xFE, {'h', 'i'});
    Bytes old = WithSegments({exif, Chunk({0, 1, 0, 2}, Filled(100, 1)), comment, Chunk({0, 2, 0, 2}, Filled(100, 2))});
    Bytes plain = PlainJPEG();
    Bytes expected = Concat({Slice(plain, 0, kAfterAPP0), exif, Chunk({0, 1, 0, 1}, {'n', 'e', 'w'}), comment,
                             Slice(plain, kAfterAPP0, plain.size())});
    EXPECT_EQ(Written(old, {'n', 'e', 'w'}), expected);
    // An empty payload takes the chunks out.
    EXPECT_EQ(Written(old, {}), Concat({Slice(plain, 0, kAfterAPP0), exif, comment, Slice(plain, kAfterAPP0, plain.size())}));
}

TEST(RadiometricJPEG, WritingKeepsWhatFollowsTheEndMarkerAndRefusesBrokenFiles) {
    Bytes plain = PlainJPEG();
    Bytes trailer = {'t', 'a', 'i', 'l', 0xFF};
    Bytes written = Written(Concat({plain, trailer}), {'x'});
    EXPECT_EQ(Slice(written, written.size() - trailer.size() - 2, written.size()), Concat({{0xFF, 0xD9}, trailer}));

    Written({'n', 'o', 't'}, {'x'}, false);
    Bytes noEnd = Slice(plain, 0, plain.size() - 2);
    Written(noEnd, {'x'}, false);
    Bytes secondStart = Concat({Slice(plain, 0, kAfterAPP0), {0xFF, 0xD8}, Slice(plain, kAfterAPP0, plain.size())});
    Written(secondStart, {'x'}, false);
    CMemFile in, payload;
    test::Fill(in, plain);
    EXPECT_FALSE(WriteRadiometricJPEG(&in, &payload, nullptr));
    EXPECT_FALSE(WriteRadiometricJPEG(&in, nullptr, &payload));
    EXPECT_FALSE(WriteRadiometricJPEG(nullptr, &payload, &payload));
}

TEST(RadiometricJPEG, APayloadOpensAsAVQRContainer) {
    CMemFile host;
    {
        CVQRFile vqr;
        ASSERT_TRUE(vqr.Create(&host));
        CVQRFile::CIndex *index = vqr.GetIndexAt(vqr.CreateIndex(7, 1, 2, 42));
        ASSERT_NE(index, nullptr);
        Bytes block = Filled(5000, 11);
        ASSERT_TRUE(index->m_file.SetSize(int64_t(block.size())));
        ASSERT_EQ(index->m_file.Write(block.data(), uint32_t(block.size())), block.size());
        vqr.Close();
    }
    Bytes written = Written(PlainJPEG(), test::BytesOf(host));
    CMemFile file, payload;
    test::Fill(file, written);
    ASSERT_TRUE(RadiometricJPEG(&file, &payload));
    CVQRFile vqr;
    ASSERT_TRUE(vqr.Open(&payload, true));
    CVQRFile::CIndex *index = vqr.GetIndex(7, 1, 0, 0xFFFFFFFF, 0);
    ASSERT_NE(index, nullptr);
    EXPECT_EQ(index->m_id, 42u);
    Bytes block(size_t(index->m_size));
    index->m_file.Seek(0, 1);
    ASSERT_EQ(index->m_file.Read(block.data(), uint32_t(block.size())), block.size());
    EXPECT_EQ(block, Filled(5000, 11));
}

TEST(RadiometricJPEG, TheWrittenPictureDecodesToTheSamePixels) {
    Bytes plain = PlainJPEG();
    CMemFile before, after;
    test::Fill(before, plain);
    test::Fill(after, Written(plain, Filled(70000, 12)));
    test::Bitmap a(LoadJPEG(&before, nullptr)), b(LoadJPEG(&after, nullptr));
    ASSERT_TRUE(a && b);
    EXPECT_TRUE(test::SamePixels(*a, *b));
}

TEST(RadiometricJPEG, DjpegDecodesTheWrittenFileAsTheOriginal) {
    if (!test::HaveTool("djpeg") || !test::HaveTool("cjpeg")) GTEST_SKIP() << "djpeg/cjpeg are not installed";
    test::ScratchDir dir;
    test::Bitmap picture = test::Smooth(48, 40);
    std::string bmp = dir.Path("in.bmp");
    ASSERT_TRUE(SaveHBITMAP(picture.get(), &GetFileSystem(), CString(bmp.c_str())));
    // Progressive scans with restart markers: markers inside and between scans.
    for (char const *options : {"", "-progressive -restart 1"}) {
        SCOPED_TRACE(options);
        std::string original = dir.Path("orig.jpg"), radiometric = dir.Path("r.jpg");
        ASSERT_EQ(test::Run(std::string("cjpeg ") + options + " -outfile " + original + " " + bmp), 0);
        CMemFile in, payload;
        test::Fill(in, test::ReadDisk(original));
        test::Fill(payload, Filled(80000, 13));
        ASSERT_TRUE(SaveRadiometricJPEG(&GetFileSystem(), CString(radiometric.c_str()), &in, &payload));
        std::string a = dir.Path("a.ppm"), b = dir.Path("b.ppm");
        ASSERT_EQ(test::Run("djpeg -pnm -outfile " + a + " " + original), 0);
        ASSERT_EQ(test::Run("djpeg -pnm -outfile " + b + " " + radiometric), 0);
        EXPECT_EQ(test::ReadDisk(a), test::ReadDisk(b));
        CMemFile back;
        EXPECT_TRUE(RadiometricJPEG(&GetFileSystem(), CString(radiometric.c_str()), &back));
        EXPECT_TRUE(test::BytesOf(back) == Filled(80000, 13));
    }
}

TEST(RadiometricJPEG, SavingByPathLosesNothing) {
    test::ScratchDir dir;
    std::string path = dir.Path("r.jpg");
    test::Bytes before = WithSegments({Chunk({0, 1, 0, 1}, Filled(4000, 14))});
    CMemFile jpeg, payload;
    test::Fill(jpeg, PlainJPEG());
    test::Fill(payload, Filled(5000, 15));
    test::FaultBytes after;
    test::RunUnderFaults(
        [&] { test::WriteDisk(path, before); },
        [&] { return SaveRadiometricJPEG(&GetFileSystem(), CString(path.c_str()), &jpeg, &payload); },
        [&](test::FaultRun const &run) {
            if (run.IsClean()) {
                after = test::FileBytes(path);
                return;
            }
            // A failed close, or the directory's sync, comes after the new
            // file is complete and in place: the bytes judge it.
            if (run.fault != test::Fault::kClose && !(run.fault == test::Fault::kFsync && run.index == run.calls - 1))
                test::ExpectFailureReported(run);
            test::ExpectBeforeOrAfter(run, test::FileBytes(path), before, after);
        });
    EXPECT_EQ(Extract(after).payload, Filled(5000, 15));
}

// The source picture read from disk under failing reads: bytes behind its
// end marker are copied to the source's real end, or the save fails and the
// old file stays; a failed read never passes for that end.
TEST(RadiometricJPEG, AFailedReadOfTheSourceNeverCutsTheCopy) {
    test::ScratchDir dir;
    std::string const source = dir.Path("source.jpg"), path = dir.Path("r.jpg");
    test::Bytes picture = PlainJPEG();
    test::Bytes const trailer = Filled(300000, 16); // read after the end marker, in more than one block
    picture.insert(picture.end(), trailer.begin(), trailer.end());
    test::WriteDisk(source, picture);
    test::Bytes const before = WithSegments({Chunk({0, 1, 0, 1}, Filled(4000, 14))});
    CFile jpeg;
    ASSERT_TRUE(jpeg.Open(CString(source.c_str()), 0x12));
    CMemFile payload;
    test::Fill(payload, Filled(5000, 15));
    test::FaultBytes after;
    test::RunUnderFaults(
        [&] {
            test::WriteDisk(path, before);
            jpeg.SeekToBegin();
        },
        [&] { return SaveRadiometricJPEG(&GetFileSystem(), CString(path.c_str()), &jpeg, &payload); },
        [&](test::FaultRun const &run) {
            if (run.IsClean()) {
                after = test::FileBytes(path);
                return;
            }
            test::FaultBytes const now = test::FileBytes(path);
            if (run.succeeded) {
                EXPECT_TRUE(now == after) << run.Describe();
            } else {
                EXPECT_TRUE(now == test::FaultBytes(before.begin(), before.end())) << run.Describe();
            }
        },
        {test::Fault::kRead});
    ASSERT_GT(after.size(), trailer.size());
    EXPECT_TRUE(std::equal(trailer.begin(), trailer.end(), after.end() - std::ptrdiff_t(trailer.size())));
}

// Taking the payload from a file on disk under failing reads and seeks: the
// whole payload, as the clean read gives it, or a failure.
TEST(RadiometricJPEG, ExtractionUnderFailingReadsGivesTheWholePayloadOrFails) {
    test::ScratchDir dir;
    std::string const path = dir.Path("r.jpg");
    test::WriteDisk(path,
                    WithSegments({Chunk({0, 1, 0, 2}, Filled(60000, 17)), Chunk({0, 2, 0, 2}, Filled(9000, 18))}));
    CMemFile payload;
    Bytes const clean = test::ExpectWholeLoadOrFailure(
        [&] {
            payload.Reset();
            return RadiometricJPEG(&GetFileSystem(), CString(path.c_str()), &payload);
        },
        [&] { return test::BytesOf(payload); });
    EXPECT_TRUE(clean == Concat({Filled(60000, 17), Filled(9000, 18)}));
}

} // namespace
} // namespace qv
