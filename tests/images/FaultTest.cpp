// Saving by path under failing system calls: the old file stays whole or the
// new one is complete, and every failure is reported.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "images/ImageTestSupport.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/filesystems/IFileSystem.h"
#include "qv/images/Images.h"
#include "qv/images/TIFF.h"
#include "support/FaultInjection.h"

namespace qv {
namespace {

void SaveUnderFaults(char const *name, std::function<bool(CString const &)> const &save) {
    test::ScratchDir dir;
    std::string path = dir.Path(name);
    test::Bytes before{'o', 'l', 'd'};
    test::FaultBytes after;
    qv::test::RunUnderFaults([&] { test::WriteDisk(path, before); }, [&] { return save(CString(path.c_str())); },
                             [&](qv::test::FaultRun const &run) {
                                 if (run.IsClean()) {
                                     after = qv::test::FileBytes(path);
                                     return;
                                 }
                                 // A failed close, or the directory's sync, comes after the new
                                 // file is complete and in place (CAtomicSave): the bytes judge it.
                                 if (run.fault != qv::test::Fault::kClose && !(run.fault == qv::test::Fault::kFsync && run.index == run.calls - 1))
                                     qv::test::ExpectFailureReported(run);
                                 qv::test::ExpectBeforeOrAfter(run, qv::test::FileBytes(path), before, after);
                             });
}

TEST(ImageFaults, BitmapSavesByPathLoseNothing) {
    test::Bitmap picture = test::Pattern(40, 30);
    for (char const *name : {"p.png", "p.jpg", "p.bmp", "p.tif"}) {
        SCOPED_TRACE(name);
        SaveUnderFaults(name, [&](CString const &path) { return SaveHBITMAP(picture.get(), &GetFileSystem(), path); });
    }
}

TEST(ImageFaults, TiffFramesByPathLoseNothing) {
    std::vector<uint16_t> frame(64 * 48, 0x1234);
    SaveUnderFaults("raw.tif", [&](CString const &path) { return SaveTIFFRaw(path, frame.data(), 64, 48, DT_UInt16); });
    SaveUnderFaults("pages.tif", [&](CString const &path) {
        CMultiPageTIFFFile file;
        bool ok = file.Create(path, 64, 48, DT_UInt16) && file.WriteImage(frame.data()) && file.WriteImage(frame.data());
        return file.Close() && ok;
    });
}

// Counting the pages of a multi-page file under failing reads and seeks: a
// failure in the chain of directories is no last page, so the count is the
// whole one or the call fails.
TEST(ImageFaults, TiffPageCountsUnderFailingReadsAreWholeOrFail) {
    test::ScratchDir dir;
    std::string const path = dir.Path("pages.tif");
    std::vector<uint16_t> frame(8 * 4, 0x0102);
    {
        CMultiPageTIFFFile file;
        ASSERT_TRUE(file.Create(CString(path.c_str()), 8, 4, DT_UInt16));
        for (int page = 0; page < 3; ++page) ASSERT_TRUE(file.WriteImage(frame.data()));
        ASSERT_TRUE(file.Close());
    }
    unsigned long pages = 0;
    EXPECT_EQ(qv::test::ExpectWholeLoadOrFailure(
                  [&] {
                      IFile *file = GetFileSystem().CreateFileW(CString(path.c_str()), 0x12);
                      unsigned long width = 0, height = 0;
                      EDataType type = DT_Unknown;
                      pages = 0;
                      bool ok = file && GetTIFFInfo(file, width, height, type, pages);
                      if (file) file->Close();
                      delete file;
                      return ok;
                  },
                  [&] { return pages; }),
              3u);
    CMultiPageTIFFFile reader;
    EXPECT_EQ(qv::test::ExpectWholeLoadOrFailure([&] { return reader.Open(CString(path.c_str())); },
                                                 [&] { return reader.GetNumImages(); }),
              3u);
}

// Raw frames read from disk under failing reads and seeks: every page of a
// multi-page file, and the first page alone, come back whole or fail.
TEST(ImageFaults, RawFrameReadsUnderFailingReadsAreWholeOrFail) {
    test::ScratchDir dir;
    std::string const path = dir.Path("pages.tif");
    std::vector<double> frame(300 * 500); // more than one strip a page
    for (size_t i = 0; i < frame.size(); ++i) frame[i] = double(i) / 7;
    {
        CMultiPageTIFFFile file;
        ASSERT_TRUE(file.Create(CString(path.c_str()), 300, 500, DT_Double));
        for (int page = 0; page < 2; ++page) ASSERT_TRUE(file.WriteImage(frame.data()));
        ASSERT_TRUE(file.Close());
    }
    std::vector<double> pages;
    auto const clean = qv::test::ExpectWholeLoadOrFailure(
        [&] {
            CMultiPageTIFFFile reader;
            pages.assign(frame.size() * 2, 0);
            return reader.Open(CString(path.c_str())) && reader.ReadImage(1, pages.data() + frame.size()) &&
                   reader.ReadImage(0, pages.data());
        },
        [&] { return pages; });
    EXPECT_TRUE(std::equal(frame.begin(), frame.end(), clean.begin()));
    std::vector<double> first;
    EXPECT_TRUE(qv::test::ExpectWholeLoadOrFailure(
                    [&] {
                        first.assign(frame.size(), 0);
                        IFile *file = GetFileSystem().CreateFileW(CString(path.c_str()), 0x12);
                        bool ok = file && LoadTIFFRaw(file, first.data(), first.size() * sizeof(double));
                        if (file) file->Close();
                        delete file;
                        return ok;
                    },
                    [&] { return first; }) == frame);
}

// Loads by path under failing reads and seeks: a picture comes back whole,
// as the clean load gives it, or not at all.
TEST(ImageFaults, BitmapLoadsUnderFailingReadsGiveTheWholePictureOrNone) {
    test::ScratchDir dir;
    test::Bitmap picture = test::Pattern(160, 120); // every format takes more than one read block
    for (char const *name : {"p.png", "p.jpg", "p.bmp", "p.tif"}) {
        SCOPED_TRACE(name);
        std::string const path = dir.Path(name);
        ASSERT_TRUE(SaveHBITMAP(picture.get(), &GetFileSystem(), CString(path.c_str())));
        test::Bitmap loaded;
        auto pixels = [&] {
            test::Bytes all;
            for (int32_t y = 0; y < loaded->Height; ++y)
                all.insert(all.end(), loaded->Row(y), loaded->Row(y) + size_t(loaded->Width) * 3);
            return all;
        };
        test::Bytes const clean = qv::test::ExpectWholeLoadOrFailure(
            [&] {
                loaded.reset(LoadHBITMAP(&GetFileSystem(), CString(path.c_str())));
                return loaded != nullptr;
            },
            pixels);
        EXPECT_EQ(clean.size(), 160u * 120 * 3);
    }
}

} // namespace
} // namespace qv
