// The include file: its exact SAF text, which rows each writer sets, and the
// pair it is written with.
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "CalTestSupport.h"
#include "qv/calibration/RCalFile.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/formats/tagged/SAFFile.h"
#include "support/FaultInjection.h"

namespace {

using qv::CRCalFile;
using qv::CString;

std::string FileText(CString const &path) {
    std::ifstream in(path.GetUTF8(), std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// One page with fixed polynomials (overrides, so the text does not hang on a
// fit), a second page too small for its fit, tags on both.
void BuildCalibration(CRCalFile &cal) {
    cal.SetSpectralResponseTophat(3.0, 5.0, 0.01);
    int page = cal.Pages.Add();
    cal.Pages[page].Points.Add(20, 1.0, 4000, true);
    cal.Pages[page].Points.Add(80, 1.0, 9000, true);
    double counts[] = {-0.25, 1.5e-5};
    cal.SetUsedCoefficients(0, 1, counts, true);
    double temps[] = {-40, 2500, -1000};
    cal.SetUsedTempCoefficients(0, 2, temps, true);
    cal.SetBackgroundType(0, qv::BG_Fixed);
    cal.SetBackgroundValue(0, 0.5);
    page = cal.Pages.Add();
    cal.Pages[page].Points.Add(30, 1.0, 5000, true);
    cal.SetTag(CString(u"Camera"), CString(u"SC-1"));
    cal.SetTag(1, CString(u"Lens"), CString(u"25mm"));
}

TEST(RCalInclude, ExportWritesTheIncludeTextAndTheRCalFile) {
    caltest::ScratchDir dir;
    qv::IFileSystem *fs = &qv::GetFileSystem();
    CRCalFile cal;
    BuildCalibration(cal);
    ASSERT_TRUE(cal.Export(fs, dir.Path("cams_camera.any"), false));
    // SortByGroups orders the header by the shared dictionary; with none
    // loaded every tag falls in one "Misc Tags" group, in name order.
    std::string const expected = "HdSize auto\r\n"
                                 "Group Misc Tags\r\n"
                                 "BgFile_0 \r\n"
                                 "BgType_0 fix\r\n"
                                 "BgValu_0 5.000000e-001\r\n"
                                 "CAFile cams_camera.cal\r\n"
                                 "Camera SC-1\r\n"
                                 "Coeff0 -2.500000e-001\r\n"
                                 "Coeff0_0 -2.500000e-001\r\n"
                                 "Coeff1 1.500000e-005\r\n"
                                 "Coeff1_0 1.500000e-005\r\n"
                                 "DaUnit_0 W/(sr-cm^2)\r\n"
                                 "EuRaw_0 Raw\r\n"
                                 "IHFOV 0\r\n"
                                 "IVFOV 0\r\n"
                                 "Lens_1 25mm\r\n"
                                 "PolyOrder_0 1\r\n"
                                 "SBPLo 3.000000e+000\r\n"
                                 "SBPUp 5.000000e+000\r\n"
                                 "SltRng 1.0\r\n"
                                 "StdUnt_0 17\r\n"
                                 "TempCoeff0 -4.000000e+001\r\n"
                                 "TempCoeff0_0 -4.000000e+001\r\n"
                                 "TempCoeff1 2.500000e+003\r\n"
                                 "TempCoeff1_0 2.500000e+003\r\n"
                                 "TempCoeff2 -1.000000e+003\r\n"
                                 "TempCoeff2_0 -1.000000e+003\r\n"
                                 "TempPolyOrder_0 2\r\n"
                                 "TPFact 1.0\r\n"
                                 "TPFact_0 1.0\r\n"
                                 "DATA\r\n";
    EXPECT_EQ(FileText(dir.Path("cams_camera.inc")), expected);
    CRCalFile loaded;
    ASSERT_TRUE(loaded.Load(fs, dir.Path("cams_camera.cal"), 0));
    EXPECT_EQ(loaded.CalPages.GetSize(), 2u);
}

TEST(RCalInclude, ExportMergesIntoAnExistingIncludeFile) {
    caltest::ScratchDir dir;
    qv::IFileSystem *fs = &qv::GetFileSystem();
    CRCalFile cal;
    BuildCalibration(cal);
    qv::CSAFFile saf;
    saf.New(false);
    saf.AddTag(u"Operator", u"night");
    saf.AddTag(u"SBPLo", u"9");
    ASSERT_TRUE(saf.Save(fs, dir.Path("camera.inc"), false));
    ASSERT_TRUE(cal.Export(fs, dir.Path("camera.cal"), true));
    qv::CSAFFile merged;
    ASSERT_TRUE(merged.Load(fs, dir.Path("camera.inc")));
    EXPECT_EQ(std::u16string(merged.GetTagValue(u"Operator")), u"night") << "other tags stay";
    EXPECT_EQ(std::u16string(merged.GetTagValue(u"SBPLo")), u"3.000000e+000") << "ours replace";
}

TEST(RCalInclude, UpdateIncludeSetsOnlyWhatTheObjectHolds) {
    caltest::ScratchDir dir;
    qv::IFileSystem *fs = &qv::GetFileSystem();
    CRCalFile cal;
    BuildCalibration(cal);
    qv::CSAFFile saf;
    saf.New(false);
    saf.AddTag(u"SltRng", u"400");
    saf.AddTag(u"IHFOV", u"20");
    ASSERT_TRUE(saf.Save(fs, dir.Path("camera.inc"), false));
    ASSERT_TRUE(cal.UpdateInclude(fs, dir.Path("camera.inc"), dir.Path("elsewhere_other.cal")));
    qv::CSAFFile updated;
    ASSERT_TRUE(updated.Load(fs, dir.Path("camera.inc")));
    EXPECT_EQ(std::u16string(updated.GetTagValue(u"SltRng")), u"400");
    EXPECT_EQ(std::u16string(updated.GetTagValue(u"IHFOV")), u"20");
    EXPECT_EQ(std::u16string(updated.GetTagValue(u"CAFile")), u"elsewhere_other.cal");
    EXPECT_EQ(updated.GetTagValue(u"TPFact"), nullptr);
    EXPECT_EQ(std::u16string(updated.GetTagValue(u"PolyOrder_0")), u"1");
    EXPECT_FALSE(fs->FileExists(dir.Path("elsewhere_other.cal"))) << "no RCAL file is written";
}

TEST(RCalInclude, ImportTakesOverWhatTheIncludeChanged) {
    caltest::ScratchDir dir;
    qv::IFileSystem *fs = &qv::GetFileSystem();
    CRCalFile cal;
    BuildCalibration(cal);
    cal.CalPages[0].CoeffsOverridden = false; // the fitted polynomial, printed to 7 digits
    ASSERT_TRUE(cal.Export(fs, dir.Path("camera.inc"), false));
    CRCalFile same;
    ASSERT_TRUE(same.Import(fs, dir.Path("camera.inc")));
    bool overridden = true;
    same.GetCoeffsOverridden(0, overridden);
    EXPECT_FALSE(overridden) << "the printed coefficients equal the fitted ones at their precision";
    same.GetBandpassOverridden(overridden);
    EXPECT_FALSE(overridden);

    qv::CSAFFile saf;
    ASSERT_TRUE(saf.Load(fs, dir.Path("camera.inc")));
    saf.SetTagValue(u"SltRng", u"500");
    saf.SetTagValue(u"Coeff1_0", u"2.0e-005");
    saf.SetTagValue(u"BgType_0", u"none");
    saf.SetTagValue(u"SBPLo", u"3.00");
    ASSERT_TRUE(saf.Save(fs, dir.Path("camera.inc"), false));
    CRCalFile changed;
    ASSERT_TRUE(changed.Import(fs, dir.Path("camera.inc")));
    double range = 0;
    bool set = false;
    changed.GetRange(range, set);
    EXPECT_TRUE(set);
    EXPECT_EQ(range, 500);
    changed.GetCoeffsOverridden(0, overridden);
    EXPECT_TRUE(overridden);
    qv::TArray<double> values;
    changed.GetCoefficients(0, values);
    ASSERT_EQ(values.GetSize(), 2u);
    EXPECT_EQ(values[1], 2.0e-5);
    qv::BACKGROUND_TYPE type = qv::BG_Unset;
    changed.GetBackgroundType(0, type);
    EXPECT_EQ(type, qv::BG_None);
    changed.GetBandpassOverridden(overridden);
    EXPECT_FALSE(overridden) << "3.00 is 3.0 at two decimals";
}

TEST(RCalInclude, ImportRefusesAnIncludeWithoutItsRCalFile) {
    caltest::ScratchDir dir;
    qv::IFileSystem *fs = &qv::GetFileSystem();
    qv::CSAFFile saf;
    saf.New(false);
    saf.AddTag(u"SltRng", u"500");
    ASSERT_TRUE(saf.Save(fs, dir.Path("lonely.inc"), false));
    CRCalFile cal;
    EXPECT_FALSE(cal.Import(fs, dir.Path("lonely.inc"))) << "no CAFile";
    saf.AddTag(u"CAFile", u"gone.cal");
    ASSERT_TRUE(saf.Save(fs, dir.Path("lonely.inc"), false));
    EXPECT_FALSE(cal.Import(fs, dir.Path("lonely.inc"))) << "the named file is missing";
    EXPECT_FALSE(cal.Import(fs, dir.Path("missing.inc")));
}

// Each file of the pair is replaced whole or left as it was, whatever call
// fails; a failure is reported.
TEST(RCalInclude, AnExportThatFailsHalfWayLeavesEachFileWhole) {
    caltest::ScratchDir dir;
    CString const inc = dir.Path("camera.inc"), calPath = dir.Path("camera.cal");
    std::string const incFile(inc.GetUTF8()), calFile(calPath.GetUTF8());
    CRCalFile cal;
    BuildCalibration(cal);
    qv::test::FaultBytes incBefore, calBefore, incAfter, calAfter;
    int runs = qv::test::RunUnderFaults(
        [&] {
            std::ofstream(incFile, std::ios::binary | std::ios::trunc) << "HdSize auto\r\nOld tag\r\nDATA\r\n";
            std::ofstream(calFile, std::ios::binary | std::ios::trunc) << "____RCAL old bytes";
            incBefore = qv::test::FileBytes(incFile);
            calBefore = qv::test::FileBytes(calFile);
        },
        [&] { return cal.Export(nullptr, inc, false); },
        [&](qv::test::FaultRun const &run) {
            qv::test::FaultBytes incNow = qv::test::FileBytes(incFile), calNow = qv::test::FileBytes(calFile);
            if (run.IsClean()) {
                incAfter = incNow;
                calAfter = calNow;
                return;
            }
            if (incNow != incAfter || calNow != calAfter) qv::test::ExpectFailureReported(run);
            qv::test::ExpectBeforeOrAfter(run, incNow, incBefore, incAfter);
            qv::test::ExpectBeforeOrAfter(run, calNow, calBefore, calAfter);
        });
    EXPECT_GT(runs, 10);
}

} // namespace
