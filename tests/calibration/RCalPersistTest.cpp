// RCAL files: round trips of every field, files of every older revision built
// byte by byte, hostile and truncated files, and saves under failing calls.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "CalTestSupport.h"
#include "RCalTestFiles.h"
#include "qv/calibration/RCalFile.h"
#include "qv/files/MemFile.h"
#include "qv/numerics/Curve.h"
#include "support/FaultInjection.h"

namespace {

using caltest::BuildOldRCal;
using caltest::OldFileValues;
using caltest::SyntheticCamera;
using qv::CMemFile;
using qv::CRCalFile;
using qv::CString;
using qv::TArray;
using Bytes = std::vector<uint8_t>;

// Two pages over a top hat with every kind of field set: a disabled point,
// reflected terms, overrides, tags, a background image, FOV and range.
void BuildCalibration(CRCalFile &cal) {
    cal.SetSpectralResponseTophat(3.0, 5.0, 0.01);
    SyntheticCamera camera;
    caltest::AddCameraPage(cal, camera, {10, 30, 50, 70, 90});
    caltest::AddCameraPage(cal, camera, {0, 40, 80, 120});
    cal.Pages[0].Points.Add(45, 0.95, 5000, false);
    cal.CalPages[1].Points[1].ReflectedType = qv::RRT_Temperature;
    cal.CalPages[1].Points[1].ReflectedTemperature = 22;
    cal.CalPages[1].Points[1].ReflectedEmissivity = 0.9;
    cal.CalPages[0].Points[2].AuxA = 1.5;
    cal.CalPages[0].ParamA = -3;
    cal.CalPages[1].ParamE = 2.25;
    double used[] = {1, 2, 3};
    cal.SetUsedTempCoefficients(1, 2, used, true);
    cal.SetTPFact(0, 0.75, true);
    cal.SetBackgroundType(1, qv::BG_Fixed);
    cal.SetBackgroundValue(1, 12.5);
    double image[] = {1, 2, 3, 4, 5, 6};
    cal.AddBackgroundFile(0, 3, 2, image);
    cal.SetFOV(16, 12, true);
    cal.SetRange(300, true);
    cal.SetUsedBandpass(3.1, 4.9, true);
    cal.SetTag(CString(u"Camera"), CString(u"SC-1 \u00b5"));
    cal.SetTag(1, CString(u"Lens"), CString(u"25 mm"));
    cal.UpdateCalPageLookup(-1);
}

Bytes SaveBytes(CRCalFile &cal, uint32_t flags = 0) {
    CMemFile f;
    EXPECT_TRUE(cal.Save(&f, flags));
    return Bytes(f.GetData(), f.GetData() + f.GetSize());
}

bool LoadBytes(CRCalFile &cal, Bytes const &bytes, uint32_t flags = 0) {
    CMemFile f;
    if (!bytes.empty()) f.Write(bytes.data(), uint32_t(bytes.size()));
    f.SeekToBegin();
    return cal.Load(&f, flags);
}

void ExpectDefaults(CRCalFile &cal) {
    EXPECT_EQ(cal.CalPages.GetSize(), 0u);
    EXPECT_EQ(cal.AdditionalResponse.GetSize(), 0u);
    EXPECT_EQ(cal.Tags.GetSize(), 0u);
    EXPECT_EQ(cal.RawResponse.X.GetSize(), 0u);
    EXPECT_EQ(cal.FileRevision, 0);
}

std::vector<double> Converted(CRCalFile &cal, int page, std::vector<double> const &counts) {
    TArray<double> c, t;
    cal.GetCoefficients(page, c);
    cal.GetTempCoefficients(page, t);
    std::vector<double> out;
    for (double n : counts) {
        double radiance = qv::PolyValue(n, c);
        out.push_back(radiance);
        out.push_back(qv::PolyValue(radiance, t));
    }
    return out;
}

TEST(RCalFile, SaveLoadKeepsEveryFieldAndSavesTheSameBytesAgain) {
    CRCalFile cal;
    BuildCalibration(cal);
    Bytes first = SaveBytes(cal);
    CRCalFile loaded;
    ASSERT_TRUE(LoadBytes(loaded, first));
    EXPECT_EQ(loaded.FileRevision, 7);
    // Everything Save writes comes back: a second save is the same file.
    EXPECT_EQ(SaveBytes(loaded), first);

    ASSERT_EQ(loaded.CalPages.GetSize(), 2u);
    EXPECT_EQ(loaded.CalPages[0].Points.GetSize(), 6u) << "the disabled point is kept";
    EXPECT_FALSE(loaded.CalPages[0].Points[2].Enabled) << "sorted back among the others by temperature";
    EXPECT_EQ(loaded.CalPages[0].Points[2].Temperature, 45);
    EXPECT_EQ(loaded.CalPages[1].Points[1].ReflectedType, qv::RRT_Temperature);
    EXPECT_EQ(loaded.CalPages[0].ParamA, -3);
    bool overridden = false;
    loaded.GetTempCoeffsOverridden(1, overridden);
    EXPECT_TRUE(overridden);
    double factor = 0;
    bool set = false;
    loaded.GetTPFact(0, factor, set);
    EXPECT_TRUE(set);
    EXPECT_EQ(factor, 0.75);
    EXPECT_TRUE(loaded.HasBackgroundFile(0, 3, 2));
    CString value;
    EXPECT_TRUE(loaded.GetTag(CString(u"Camera"), value));
    EXPECT_EQ(std::u16string(value.GetTChar()), u"SC-1 \u00b5");
    EXPECT_TRUE(loaded.GetTag(1, CString(u"Lens"), value));
    EXPECT_EQ(loaded.ResponseStatus, qv::RS_OK);
}

TEST(RCalFile, ALoadedCalibrationConvertsToTheLastBit) {
    CRCalFile cal;
    BuildCalibration(cal);
    CRCalFile loaded;
    ASSERT_TRUE(LoadBytes(loaded, SaveBytes(cal)));
    std::vector<double> counts = {1500, 3200.5, 4000, 9999.25, 20000};
    for (int page = 0; page < 2; ++page) {
        std::vector<double> a = Converted(cal, page, counts), b = Converted(loaded, page, counts);
        ASSERT_EQ(a.size(), b.size());
        for (size_t i = 0; i < a.size(); ++i)
            EXPECT_EQ(std::memcmp(&a[i], &b[i], 8), 0) << "page " << page << " value " << i;
    }
    for (double t : {-20.0, 25.0, 150.0})
        EXPECT_EQ(cal.CalcRadiance(t, 0.9), loaded.CalcRadiance(t, 0.9));
}

TEST(RCalFile, SavingWithoutBackgroundsAndLoadingPastThem) {
    CRCalFile cal;
    BuildCalibration(cal);
    CRCalFile loaded;
    ASSERT_TRUE(LoadBytes(loaded, SaveBytes(cal, CRCalFile::kSaveWithoutBackgrounds)));
    EXPECT_FALSE(loaded.HasBackgroundFile(0, 3, 2));
    ASSERT_TRUE(LoadBytes(loaded, SaveBytes(cal), CRCalFile::kLoadSkipBackgrounds));
    EXPECT_FALSE(loaded.HasBackgroundFile(0, 3, 2));
    EXPECT_EQ(loaded.FileRevision, 7) << "the sections behind the images are still read";
}

// ---- Files of older revisions, built from the layout ----

TEST(RCalFile, EveryOlderRevisionLoadsToTheValuesItHolds) {
    OldFileValues v;
    for (int revision = 0; revision <= 7; ++revision) {
        SCOPED_TRACE(revision);
        CRCalFile cal;
        ASSERT_TRUE(LoadBytes(cal, BuildOldRCal(revision)));
        EXPECT_EQ(cal.FileRevision, revision);
        ASSERT_EQ(cal.CalPages.GetSize(), 1u);
        auto &page = cal.CalPages[0];
        EXPECT_EQ(page.ParamA, 11);
        EXPECT_EQ(page.ParamE, 16);
        EXPECT_TRUE(cal.UseTophat);
        EXPECT_EQ(cal.TophatDelta, v.tophatDelta);
        ASSERT_EQ(cal.AdditionalResponse.GetSize(), 1u);
        EXPECT_EQ(std::u16string(cal.AdditionalResponse[0].File.GetTChar()), u"filter.xy");
        ASSERT_EQ(page.Points.GetSize(), revision >= 2 ? 4u : 3u);
        for (uint32_t i = 0; i < page.Points.GetSize(); ++i)
            EXPECT_TRUE(page.Points[i].AuxFlag) << "a stored false comes back true";
        EXPECT_EQ(page.Points[0].AuxA, 0.25);
        if (revision >= 2) {
            EXPECT_EQ(page.Points[1].Temperature, v.disabledTemp) << "sorted in by temperature";
            EXPECT_FALSE(page.Points[1].Enabled);
            EXPECT_EQ(page.Points[1].ReflectedType, qv::RRT_Radiance);
        }
        if (revision < 3) {
            // The curves were not in the file: the top hat is regenerated and
            // the radiances and fits are computed.
            EXPECT_EQ(cal.BandpassLow, v.tophatStart);
            EXPECT_EQ(page.Points[0].Radiance, cal.CalcRadiance(v.temps[0], 1.0));
            CRCalFile fresh;
            fresh.SetSpectralResponseTophat(v.tophatStart, v.tophatEnd, v.tophatDelta);
            int p = fresh.Pages.Add();
            for (size_t i = 0; i < v.temps.size(); ++i)
                fresh.Pages[p].Points.Add(v.temps[i], 1.0, v.counts[i], true);
            EXPECT_EQ(page.Coefficients.GetSize(), 2u);
            EXPECT_NEAR(page.Coefficients[1], fresh.CalPages[0].Coefficients[1],
                        1e-9 * std::fabs(fresh.CalPages[0].Coefficients[1]));
        } else {
            EXPECT_EQ(cal.RawResponse.X.GetSize(), v.responseX.size());
            EXPECT_EQ(cal.BandpassLow, 3.5);
            EXPECT_EQ(page.Coefficients[1], v.coefficients[1]) << "the stored fit stands";
            EXPECT_EQ(page.TempCoefficients[4], v.tempCoefficients[4]);
            if (revision <= 5)
                EXPECT_EQ(page.Points[0].Radiance, cal.CalcRadiance(v.temps[0], 1.0)) << "radiances recomputed";
            else
                EXPECT_EQ(page.Points[0].Radiance, 0.001) << "stored radiances stand";
        }
        if (revision >= 4) {
            EXPECT_EQ(cal.HFOV, v.hfov);
            EXPECT_TRUE(cal.RangeSet);
            EXPECT_TRUE(page.TempCoeffsOverridden);
            EXPECT_EQ(page.UsedTempCoefficients[2], 3);
            EXPECT_EQ(page.BackgroundType, qv::BG_Fixed);
            EXPECT_EQ(page.BackgroundValue, v.background);
            EXPECT_TRUE(cal.HasBackgroundFile(0, 2, 1));
        }
        CString value;
        EXPECT_EQ(cal.GetTag(CString(u"Camera"), value), revision >= 5);
        EXPECT_EQ(cal.GetTag(0, CString(u"Lens"), value), revision >= 5);
        if (revision == 7) {
            EXPECT_FALSE(page.RangeAuto);
            EXPECT_EQ(page.MaxCounts, v.maxCounts);
            EXPECT_EQ(page.MaxTemperature, 100);
        } else {
            // Computed from the lowest and highest enabled point.
            EXPECT_EQ(page.MinCounts, v.counts.front());
            EXPECT_EQ(page.MaxCounts, v.counts.back());
            EXPECT_EQ(page.MaxTemperature, v.temps.back());
        }
    }
}

TEST(RCalFile, OnlyTheLastFourBytesOfTheMagicCount) {
    Bytes file = BuildOldRCal(7);
    std::memcpy(file.data(), "abcd", 4);
    CRCalFile cal;
    EXPECT_TRUE(LoadBytes(cal, file));
    EXPECT_EQ(cal.FileRevision, 7);
}

// ---- Hostile files: false, defaults, and the object still usable ----

void ExpectRefused(Bytes const &file, char const *what) {
    SCOPED_TRACE(what);
    CRCalFile cal;
    BuildCalibration(cal);
    EXPECT_FALSE(LoadBytes(cal, file));
    ExpectDefaults(cal);
    ASSERT_TRUE(LoadBytes(cal, BuildOldRCal(7))) << "usable afterwards";
    EXPECT_EQ(cal.CalPages.GetSize(), 1u);
}

// Offsets into the revision-7 file of the test builder.
constexpr size_t kPageCount = 8 + 2 + 1 + 4 + 1 + 4 + 4 + 4 + 1 + 9 + 4;
constexpr size_t kPointCount = kPageCount + 4 + 1 + 4 + 4 + 4 + 24;
constexpr size_t kPolyOrder = kPointCount + 4 + 3 * 41 + 16;
constexpr size_t kLookupCount = kPolyOrder + 4 + 32 + 16 + 4;
constexpr size_t kSection3 = kLookupCount + 4 + 3 * 28 + 4 + 41 + 28;

void PutU32(Bytes &file, size_t at, uint32_t v) {
    std::memcpy(file.data() + at, &v, 4);
}

TEST(RCalFile, TheBuilderOffsetsPointAtTheirFields) {
    Bytes file = BuildOldRCal(7);
    uint32_t v = 0;
    std::memcpy(&v, file.data() + kPageCount, 4);
    EXPECT_EQ(v, 1u);
    std::memcpy(&v, file.data() + kPointCount, 4);
    EXPECT_EQ(v, 3u);
    std::memcpy(&v, file.data() + kPolyOrder, 4);
    EXPECT_EQ(v, 1u);
    std::memcpy(&v, file.data() + kSection3, 4);
    EXPECT_EQ(v, 5u) << "the response's sample count";
}

// The writer against the layout: a file of the current revision loads and
// saves to the same bytes, but for the AuxFlag bytes, which come back set.
TEST(RCalFile, SaveWritesTheLayoutByteForByte) {
    Bytes file = BuildOldRCal(7);
    CRCalFile cal;
    ASSERT_TRUE(LoadBytes(cal, file));
    for (size_t i = 0; i < 3; ++i)
        file[kPointCount + 4 + 40 + i * 41] = 1;
    EXPECT_EQ(SaveBytes(cal), file);
}

// A byte-reversed file reverses every typed field but leaves the raw arrays
// (the curves) as they are, and loads back with m_swap set.
TEST(RCalFile, ByteReversedFilesReverseTheTypedFieldsOnly) {
    CRCalFile cal;
    ASSERT_TRUE(LoadBytes(cal, BuildOldRCal(7)));
    Bytes plain = SaveBytes(cal);
    CMemFile swapped;
    swapped.m_swap = true;
    ASSERT_TRUE(cal.Save(&swapped, 0));
    Bytes reversed(swapped.GetData(), swapped.GetData() + swapped.GetSize());
    ASSERT_EQ(reversed.size(), plain.size());
    EXPECT_EQ(Bytes(reversed.begin() + kPageCount, reversed.begin() + kPageCount + 4), (Bytes{0, 0, 0, 1}));
    EXPECT_EQ(Bytes(reversed.begin() + kSection3, reversed.begin() + kSection3 + 4), (Bytes{0, 0, 0, 5}));
    EXPECT_EQ(Bytes(reversed.begin() + kSection3 + 4, reversed.begin() + kSection3 + 84),
              Bytes(plain.begin() + kSection3 + 4, plain.begin() + kSection3 + 84))
        << "the response's samples";
    swapped.SeekToBegin();
    CRCalFile back;
    ASSERT_TRUE(back.Load(&swapped, 0));
    EXPECT_EQ(SaveBytes(back), plain);
}

// The reader takes the file a block at a time, and curves larger than a block
// straight into their arrays; bytes behind the last section stay unread.
TEST(RCalFile, ALoadStopsBehindTheLastSection) {
    CRCalFile cal;
    BuildCalibration(cal);
    cal.SetSpectralResponseTophat(3.0, 5.0, 0.001);
    Bytes saved = SaveBytes(cal);
    CMemFile file;
    file.Write(saved.data(), uint32_t(saved.size()));
    file.Write("tail", 4);
    file.SeekToBegin();
    CRCalFile loaded;
    ASSERT_TRUE(loaded.Load(&file, 0));
    EXPECT_EQ(file.GetPosition(), int64_t(saved.size()));
    EXPECT_GT(loaded.RawResponse.X.GetSize(), 512u) << "more than a block of doubles";
    EXPECT_EQ(SaveBytes(loaded), saved);
}

TEST(RCalFile, HostileFilesAreRefused) {
    Bytes good = BuildOldRCal(7);
    Bytes file = good;
    file[5] = 'X';
    ExpectRefused(file, "wrong magic");
    file = good;
    file[8] = 1;
    ExpectRefused(file, "unknown format version");
    ExpectRefused(Bytes(), "empty");
    for (uint32_t huge : {0xFFFFFFFFu, 0x10000000u, 1000u}) {
        file = good;
        PutU32(file, kPageCount, huge);
        ExpectRefused(file, "page count");
        file = good;
        PutU32(file, kPointCount, huge);
        ExpectRefused(file, "point count");
        file = good;
        PutU32(file, kLookupCount, huge);
        ExpectRefused(file, "lookup count");
        file = good;
        PutU32(file, kSection3, huge);
        ExpectRefused(file, "curve sample count");
    }
    file = good;
    PutU32(file, kPolyOrder, 100000);
    ExpectRefused(file, "fit order");
}

TEST(RCalFile, NonFiniteCoefficientsAndCurvesAreRefused) {
    OldFileValues v;
    double const bad[] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()};
    for (double x : bad) {
        OldFileValues w = v;
        w.coefficients[0] = x;
        ExpectRefused(BuildOldRCal(7, w), "coefficient");
        w = v;
        w.tempCoefficients[3] = x;
        ExpectRefused(BuildOldRCal(3, w), "temperature coefficient");
        w = v;
        w.usedTemp[1] = x;
        ExpectRefused(BuildOldRCal(4, w), "used coefficient");
        w = v;
        w.responseY[2] = x;
        ExpectRefused(BuildOldRCal(7, w), "response sample");
    }
    // An older file whose fits are rebuilt over a top hat from 0 microns:
    // Planck's law gives NaN there, and so would every conversion.
    OldFileValues w = v;
    w.tophatStart = 4.3e-311;
    ExpectRefused(BuildOldRCal(1, w), "fits rebuilt as NaN");
}

// A file cut anywhere loads only where a section ends; elsewhere it is
// refused and leaves defaults.
TEST(RCalFile, TruncationAtEveryOffset) {
    std::vector<size_t> ends;
    for (int revision = 0; revision <= 7; ++revision)
        ends.push_back(BuildOldRCal(revision).size());
    Bytes full = BuildOldRCal(7);
    int loaded = 0;
    for (size_t n = 0; n <= full.size(); ++n) {
        CRCalFile cal;
        bool ok = LoadBytes(cal, Bytes(full.begin(), full.begin() + long(n)));
        auto at = std::find(ends.begin(), ends.end(), n);
        ASSERT_EQ(ok, at != ends.end()) << "cut at " << n;
        if (ok) {
            EXPECT_EQ(cal.FileRevision, int(at - ends.begin()));
            ++loaded;
        } else {
            ExpectDefaults(cal);
        }
    }
    EXPECT_EQ(loaded, 8);

    // The same for a file of the writer's, with two pages and backgrounds.
    CRCalFile source;
    BuildCalibration(source);
    Bytes saved = SaveBytes(source);
    CRCalFile cal;
    for (size_t n = 0; n < saved.size(); ++n) {
        bool ok = LoadBytes(cal, Bytes(saved.begin(), saved.begin() + long(n)));
        if (ok) {
            EXPECT_LT(cal.FileRevision, 7) << "cut at " << n;
        } else {
            ExpectDefaults(cal);
        }
    }
}

// ---- By path ----

TEST(RCalFile, SaveAndLoadByPath) {
    caltest::ScratchDir dir;
    CRCalFile cal;
    BuildCalibration(cal);
    ASSERT_TRUE(cal.Save(nullptr, dir.Path("camera.cal"), 0));
    CRCalFile loaded;
    ASSERT_TRUE(loaded.Load(nullptr, dir.Path("camera.cal"), 0));
    EXPECT_EQ(SaveBytes(loaded), SaveBytes(cal));
    EXPECT_FALSE(loaded.Load(nullptr, dir.Path("missing.cal"), 0));
    ExpectDefaults(loaded);
    EXPECT_FALSE(cal.Save(nullptr, dir.Path("no/such/dir/camera.cal"), 0));
}

TEST(RCalFile, ASaveThatFailsHalfWayLeavesThePreviousFile) {
    caltest::ScratchDir dir;
    CString target = dir.Path("camera.cal");
    std::string path(target.GetUTF8());
    CRCalFile cal;
    BuildCalibration(cal);
    Bytes old = BuildOldRCal(2);
    qv::test::FaultBytes before, after;
    int runs = qv::test::RunUnderFaults(
        [&] {
            std::ofstream(path, std::ios::binary | std::ios::trunc)
                .write(reinterpret_cast<char const *>(old.data()), long(old.size()));
            before = qv::test::FileBytes(path);
        },
        [&] { return cal.Save(nullptr, target, 0); },
        [&](qv::test::FaultRun const &run) {
            qv::test::FaultBytes now = qv::test::FileBytes(path);
            if (run.IsClean()) {
                after = now;
                return;
            }
            if (now != after) qv::test::ExpectFailureReported(run);
            qv::test::ExpectBeforeOrAfter(run, now, before, after);
        });
    EXPECT_GT(runs, 10);
    CRCalFile loaded;
    EXPECT_TRUE(loaded.Load(nullptr, target, 0));
}

// Loads from disk under failing reads and seeks, with and without the
// background images (skipped by a seek): each load fails, at the defaults, or
// gives what the clean load gives.
TEST(RCalFile, LoadsUnderFailingReadsAndSeeksGiveTheWholeFileOrFail) {
    caltest::ScratchDir dir;
    CString target = dir.Path("camera.cal");
    CRCalFile cal;
    BuildCalibration(cal);
    std::vector<double> image(100 * 100, 7.0); // more than one read-ahead: a skip seeks
    cal.AddBackgroundFile(1, 100, 100, image.data());
    ASSERT_TRUE(cal.Save(nullptr, target, 0));
    for (uint32_t flags : {0u, uint32_t(CRCalFile::kLoadSkipBackgrounds)}) {
        SCOPED_TRACE(flags);
        CRCalFile loaded;
        Bytes const clean = qv::test::ExpectWholeLoadOrFailure([&] { return loaded.Load(nullptr, target, flags); },
                                                               [&] { return SaveBytes(loaded); });
        EXPECT_EQ(clean, SaveBytes(cal, flags ? uint32_t(CRCalFile::kSaveWithoutBackgrounds) : 0u));
    }
}

} // namespace
