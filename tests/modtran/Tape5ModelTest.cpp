// The run model of CModtranTape5File: runs, defaults, accessors and the
// last-error text.
#include <gtest/gtest.h>

#include <cstring>

#include "qv/modtran/ModtranTape5File.h"

using namespace qv;

TEST(Tape5Model, NewObjectHoldsOneDefaultRunAndNoError) {
    CModtranTape5File tape5;
    EXPECT_EQ(tape5.nRuns(), 1);
    EXPECT_EQ(tape5.CurrentRun(), 0);
    EXPECT_STREQ(tape5.GetLastError(), "No Error");
    RUN const &run = *tape5.GetRun();
    EXPECT_EQ(run.bandModel, MM_MODTRAN);
    EXPECT_EQ(run.speed, CKS_SLOW);
    EXPECT_EQ(run.atmosphereModel, AM_US_STANDARD);
    EXPECT_EQ(run.losPath, LP_SLANT);
    EXPECT_EQ(run.atmosphereCache, 1);
    EXPECT_EQ(run.scatteringAlgo, SA_ISAACS);
    EXPECT_EQ(run.streams, 8);
    EXPECT_FLOAT_EQ(run.co2MixingRatio, 330.0f);
    EXPECT_EQ(run.volcano, VI_BACKGROUND);
    EXPECT_EQ(run.coastal, 3);
    EXPECT_FLOAT_EQ(run.clouds[0], -9.0f);
    EXPECT_FLOAT_EQ(run.cloudExtra[0], 0.0f);
    EXPECT_FLOAT_EQ(run.cloudExtra[1], -9.0f);
    EXPECT_FLOAT_EQ(run.cloudExtra[3], 100.0f);
    EXPECT_EQ(run.levels[66].attenuation, AA_RURAL);
    EXPECT_EQ(run.losType, LT_3);
    EXPECT_FLOAT_EQ(run.start, 1200.0f);
    EXPECT_FLOAT_EQ(run.end, 5000.0f);
    EXPECT_FLOAT_EQ(run.step, 10.0f);
    EXPECT_EQ(run.outputYUnit, 'T');
    EXPECT_EQ(run.slit, SF_TRIANGLE);
    EXPECT_EQ(run.fwhmType, FT_ABSOLUTE);
    EXPECT_EQ(run.surfaces[0].function, BF_WALTHALL);
    EXPECT_EQ(run.repeat, 0);
}

TEST(Tape5Model, AddRunAppendsDefaultsOrCopiesAndKeepsTheCurrentRun) {
    CModtranTape5File tape5;
    EXPECT_EQ(tape5.AddRun(-1), 1);
    EXPECT_EQ(tape5.AddRun(-1), 2);
    EXPECT_EQ(tape5.CurrentRun(), 0);

    ASSERT_TRUE(tape5.SetGeometry(1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f, 7.0f, PL_LONG));
    ASSERT_TRUE(tape5.SetUserDefinedModel(66, 1.0f, 2.0f, 3.0f, 4.0f, 5.0f));
    EXPECT_EQ(tape5.AddRun(0), 3);
    RUN copy, original;
    CModtranTape5File::CopyRun(original, *tape5.GetRun());
    ASSERT_TRUE(tape5.UseRun(3));
    CModtranTape5File::CopyRun(copy, *tape5.GetRun());
    EXPECT_EQ(std::memcmp(&copy, &original, sizeof copy), 0);

    EXPECT_EQ(tape5.AddRun(4), -1);
    EXPECT_STREQ(tape5.GetLastError(), "Run 4 does not exist.");
    EXPECT_FALSE(tape5.UseRun(-1));
    EXPECT_STREQ(tape5.GetLastError(), "Run -1 does not exist.");
}

TEST(Tape5Model, RemoveRunSelectsRunZeroAndNeverEmptiesTheList) {
    CModtranTape5File tape5;
    EXPECT_FALSE(tape5.RemoveRun(0));
    EXPECT_STREQ(tape5.GetLastError(), "Can't remove last run; use ResetRun instead.");
    tape5.AddRun(-1);
    tape5.AddRun(-1);
    ASSERT_TRUE(tape5.UseRun(2));
    ASSERT_TRUE(tape5.SetExecutionMode(EM_DIRECT_SUN));
    ASSERT_TRUE(tape5.RemoveRun(1));
    EXPECT_EQ(tape5.nRuns(), 2);
    EXPECT_EQ(tape5.CurrentRun(), 0);
    ASSERT_TRUE(tape5.UseRun(1));
    EXPECT_EQ(tape5.GetRun()->executionMode, EM_DIRECT_SUN);
    EXPECT_FALSE(tape5.RemoveRun(5));
    EXPECT_STREQ(tape5.GetLastError(), "Run 5 does not exist.");
}

TEST(Tape5Model, ResetRunResetsTheCurrentRunWhateverItsArgument) {
    CModtranTape5File tape5;
    tape5.AddRun(-1);
    ASSERT_TRUE(tape5.SetTempAtFirstBoundary(300.0f));
    ASSERT_TRUE(tape5.UseRun(1));
    ASSERT_TRUE(tape5.SetTempAtFirstBoundary(250.0f));
    ASSERT_TRUE(tape5.ResetRun(0));
    float t;
    ASSERT_TRUE(tape5.GetTempAtFirstBoundary(t));
    EXPECT_EQ(t, 0.0f);
    ASSERT_TRUE(tape5.UseRun(0));
    ASSERT_TRUE(tape5.GetTempAtFirstBoundary(t));
    EXPECT_EQ(t, 300.0f);
}

TEST(Tape5Model, AccessorsAfterDestroyFailWithoutACurrentRun) {
    CModtranTape5File tape5;
    tape5.Destroy();
    EXPECT_EQ(tape5.nRuns(), 0);
    EXPECT_EQ(tape5.CurrentRun(), -1);
    EXPECT_STREQ(tape5.GetLastError(), "No Error");
    MODTRAN_MODEL model;
    EXPECT_FALSE(tape5.GetBandModel(model));
    EXPECT_STREQ(tape5.GetLastError(), "Current run not selected.");
    EXPECT_FALSE(tape5.RunExists());
    EXPECT_FALSE(tape5.SetOutputInfo(1, 2, 3, IXU_MICRONS, SF_GAUSSIAN, 4, FT_RELATIVE));
    EXPECT_TRUE(tape5.Validate()); // no runs, nothing to refuse
    tape5.New();
    EXPECT_TRUE(tape5.RunExists());
    EXPECT_TRUE(tape5.ValidateRun(0));
}

TEST(Tape5Model, AccessorsStoreAndFetchTheirFields) {
    CModtranTape5File tape5;
    ASSERT_TRUE(tape5.SetMultipleScattering(MS_ON, SA_DISORT, true, 16));
    MULTIPLE_SCATTERING ms;
    SCATTERING_ALGO algo;
    bool azimuth;
    int streams;
    ASSERT_TRUE(tape5.GetMultipleScattering(ms, algo, azimuth, streams));
    EXPECT_EQ(ms, MS_ON);
    EXPECT_EQ(algo, SA_DISORT);
    EXPECT_TRUE(azimuth);
    EXPECT_EQ(streams, 16);

    ASSERT_TRUE(tape5.SetGeometry(1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f, 7.0f, PL_LONG));
    ASSERT_TRUE(tape5.SetGeometry(10.0f, 20.0f, 30.0f)); // clears the others
    float h1, h2, angle, range, beta, r0, phi;
    PATH_LENGTH length;
    ASSERT_TRUE(tape5.GetGeometry(h1, h2, angle, range, beta, r0, phi, length));
    EXPECT_EQ(h1, 10.0f);
    EXPECT_EQ(h2, 20.0f);
    EXPECT_EQ(angle, 30.0f);
    EXPECT_EQ(range + beta + r0 + phi, 0.0f);
    EXPECT_EQ(length, PL_SHORT);

    ASSERT_TRUE(tape5.SetSolarIrradiance(true, true, "sun.dat", 3));
    bool file, user;
    char name[81];
    int index;
    ASSERT_TRUE(tape5.GetSolarIrradiance(file, user, name, index));
    EXPECT_TRUE(file && user);
    EXPECT_STREQ(name, "sun.dat");
    EXPECT_EQ(index, 3);

    EXPECT_FALSE(tape5.SetLayerBoundary(kModtranMaxCloudRows, 1, 2, 3, 4));
    EXPECT_STREQ(tape5.GetLastError(), "Row 64 does not exist.");
    EXPECT_FALSE(tape5.SetUserDefinedModel(kModtranMaxLevels + 1, false, AMT_NONE, ""));
    ASSERT_TRUE(tape5.SetAerosolRegionSpectra(3, 46, 1, 2, 3, 4));
    float a, b, c, d;
    ASSERT_TRUE(tape5.GetAerosolRegionSpectra(3, 46, a, b, c, d));
    EXPECT_EQ(a + b + c + d, 10.0f);
}

TEST(Tape5Model, EnumerationHelpersMapCardNumbersAndLetters) {
    ATMOSPHERE_MODEL model;
    EXPECT_TRUE(GetAtmosphereModel(7, model));
    EXPECT_FALSE(GetAtmosphereModel(8, model));
    VOLCANO_INFO volcano;
    ASSERT_TRUE(GetVolcanoInfo(0, volcano));
    EXPECT_EQ(volcano, VI_BACKGROUND); // 0 is read as 1
    EXPECT_FALSE(GetVolcanoInfo(9, volcano));
    CLOUD_RAIN_MODEL cloud;
    EXPECT_TRUE(GetCloudRainModel(19, cloud));
    EXPECT_FALSE(GetCloudRainModel(12, cloud));
    AEROSOL_ATTENUATION attenuation;
    EXPECT_TRUE(GetAerosolAttenuation(-1, attenuation));
    EXPECT_FALSE(GetAerosolAttenuation(11, attenuation));
    AB_UNITS units;
    ASSERT_TRUE(GetABUnits('c', units));
    EXPECT_EQ(units, ABU_A + 2);
    EXPECT_EQ(ABUnits2char(units), 'C');
    EXPECT_FALSE(GetABUnits('I', units));
    EXPECT_EQ(ABUnits2char(AB_UNITS(9)), 0);
    BRDF_FUNCTION function;
    ASSERT_TRUE(GetBRDFFunction("Ross-Li", function));
    EXPECT_EQ(function, BF_ROSS_LI);
    ASSERT_TRUE(GetBRDFFunction("52", function));
    EXPECT_EQ(function, BF_SINE_WALTHALL_A);
    EXPECT_FALSE(GetBRDFFunction("lambert", function));
}
