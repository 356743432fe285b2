// The tape5 card writer and reader: exact bytes, round trips, the odd rules
// existing decks and callers depend on, and hostile decks.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "ModtranTestSupport.h"
#include "qv/modtran/ModtranTape5File.h"

using namespace qv;
using namespace qvtest;

namespace {

std::string Saved(CModtranTape5File &tape5) {
    CMemFile out;
    EXPECT_TRUE(tape5.Save(out)) << tape5.GetLastError();
    return Contents(out);
}

bool LoadText(CModtranTape5File &tape5, std::string const &text) {
    CMemFile in;
    Fill(in, text);
    return tape5.Load(in);
}

constexpr char kDefaultDeck[] =
    "MS  6    2    0    0    0    0    0    0    0    0    0    1    0   0.000   0.00\r\n"
    "FF  8F   0   330.000         0         0 F F F F       0.000\r\n"
    "    0    0    1    3    0    0     0.000     0.000     0.000     0.000     0.000\r\n"
    "     0.000     0.000     0.000     0.000     0.000     0.000    0          0.000\r\n"
    "  1200.000  5000.000    10.000     1.000TW        WTA    \r\n"
    "    0\r\n";

} // namespace

TEST(Tape5Cards, DefaultRunSavesSixCardsAndReadsBackEqual) {
    CModtranTape5File tape5;
    EXPECT_EQ(Saved(tape5), kDefaultDeck);
    RUN saved;
    CModtranTape5File::CopyRun(saved, *tape5.GetRun());
    CModtranTape5File again;
    ASSERT_TRUE(LoadText(again, kDefaultDeck)) << again.GetLastError();
    RUN loaded;
    CModtranTape5File::CopyRun(loaded, *again.GetRun());
    EXPECT_EQ(loaded.losType, LT_1); // worked out anew: a slant path with no range
    loaded.losType = saved.losType;
    EXPECT_EQ(std::memcmp(&loaded, &saved, sizeof loaded), 0);
}

TEST(Tape5Cards, GetCardsNamesTheCardsSaveRunWrites) {
    CModtranTape5File tape5;
    TArray<CString> names, lines;
    ASSERT_TRUE(tape5.GetCards(names, lines));
    ASSERT_EQ(names.GetSize(), 6u);
    char const *const expected[] = {"1", "1A", "2", "3", "4", "5"};
    for (uint32_t i = 0; i < 6; ++i)
        EXPECT_STREQ(names[i].GetUTF8(), expected[i]);
    EXPECT_STREQ(lines[5].GetUTF8(), "    0");
}

TEST(Tape5Cards, SaveClearsTheGeometryFieldsALineOfSightTypeDoesNotUse) {
    CModtranTape5File tape5;
    ASSERT_TRUE(tape5.SetGeometry(1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f, 7.0f, PL_LONG));
    ASSERT_TRUE(tape5.SetLOSType(LT_0));
    std::string deck = Saved(tape5);
    EXPECT_NE(deck.find("     1.000     0.000     0.000     4.000     0.000     6.000    1          0.000\r\n"),
              std::string::npos);
    float h1, h2, angle, range, beta, r0, phi;
    PATH_LENGTH length;
    ASSERT_TRUE(tape5.GetGeometry(h1, h2, angle, range, beta, r0, phi, length));
    EXPECT_EQ(h2 + phi + angle + beta, 0.0f); // cleared in the run itself
    EXPECT_EQ(h1 + range + r0, 11.0f);

    ASSERT_TRUE(tape5.SetGeometry(1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f, 7.0f, PL_LONG));
    ASSERT_TRUE(tape5.SetLOSType(LT_9));
    Saved(tape5);
    ASSERT_TRUE(tape5.GetGeometry(h1, h2, angle, range, beta, r0, phi, length));
    EXPECT_EQ(h1 + range + angle, 0.0f);
    EXPECT_EQ(h2 + beta + r0 + phi, 20.0f);
}

TEST(Tape5Cards, AerosolRegionOfCountOneWrites47SpectraInSixteenLines) {
    CModtranTape5File tape5;
    ASSERT_TRUE(tape5.SetAerosolInfo(false, false, AA_USER, AP_DEFAULT, VI_BACKGROUND, 0));
    ASSERT_TRUE(tape5.SetAerosolRegion(0, 1, 2.5f, "region one"));
    for (int k = 0; k < 47; ++k)
        ASSERT_TRUE(tape5.SetAerosolRegionSpectra(0, k, 0.25f * float(k), 0.5f, 0.25f, 0.125f));
    TArray<CString> names, lines;
    ASSERT_TRUE(tape5.GetCards(names, lines));
    int spectraLines = 0;
    CString last;
    for (uint32_t i = 0; i < names.GetSize(); ++i)
        if (std::strcmp(names[i].GetUTF8(), "2D2") == 0) {
            ++spectraLines;
            last = lines[i];
        }
    EXPECT_EQ(spectraLines, 16);
    EXPECT_STREQ(last.GetUTF8(), " 11.25 0.5000 0.2500 0.125 11.50 0.5000 0.2500 0.125");
    EXPECT_NE(Saved(tape5).find("    1    0    0    0\r\n 2.500E+00region one"), std::string::npos);

    CModtranTape5File back;
    ASSERT_TRUE(LoadText(back, Saved(tape5))) << back.GetLastError();
    EXPECT_FLOAT_EQ(back.GetRun()->regions[0].spectra[46][0], 11.5f);
    EXPECT_STREQ(back.GetRun()->regions[0].title, "region one");

    ASSERT_TRUE(tape5.SetAerosolRegion(1, 5, 0.0f, "no USS"));
    CMemFile out;
    EXPECT_FALSE(tape5.Save(out));
    EXPECT_STREQ(tape5.GetLastError(),
                 "The number of spectra for an aresol region is specified but user supplied spectra is not set.");
}

TEST(Tape5Cards, ZeroInAScientificFieldIsWrittenWithAllItsDigits) {
    CModtranTape5File tape5;
    ATMOSPHERE_MODEL models[6] = {};
    ASSERT_TRUE(tape5.SetAtmosphereModel(AM_USER_DEFINED));
    ASSERT_TRUE(tape5.SetUserDefinedModel(models, 0));
    ASSERT_TRUE(tape5.SetUserDefinedModel(1, false, AMT_NONE, "level"));
    float values[5] = {0.0f, -1013.25f, 1.0e-30f, 12345.0f, 0.5f};
    AB_UNITS units[15] = {ABU_A, ABU_H, AB_UNITS(6)};
    ASSERT_TRUE(tape5.SetUserDefinedModel(0, 1.5f, values, units));
    std::string deck = Saved(tape5);
    EXPECT_NE(deck.find("     1.500 0.000E+00-1.013E+03 1.000E-30 1.234E+04 5.000E-01AH6             \r\n"),
              std::string::npos)
        << deck;
}

TEST(Tape5Cards, SaveOfThreeRunsWritesRepeatFlagsOneOneZero) {
    CModtranTape5File tape5;
    tape5.AddRun(-1);
    tape5.AddRun(-1);
    std::string deck = Saved(tape5);
    EXPECT_EQ(tape5.CurrentRun(), 2);
    size_t first = deck.find("\r\n    1\r\n"), second = deck.find("\r\n    1\r\n", first + 1);
    EXPECT_NE(first, std::string::npos);
    EXPECT_NE(second, std::string::npos);
    EXPECT_EQ(deck.substr(deck.size() - 7), "    0\r\n");
    CModtranTape5File back;
    ASSERT_TRUE(LoadText(back, deck));
    EXPECT_EQ(back.nRuns(), 3);
}

TEST(Tape5Cards, ReaderMessagesKeepTheirSpelling) {
    std::string deck = kDefaultDeck;
    CModtranTape5File tape5;
    std::string heavy = deck;
    heavy.replace(50, 5, "    3");
    EXPECT_FALSE(LoadText(tape5, heavy));
    EXPECT_STREQ(tape5.GetLastError(), "Unrecognized Heavy Spiecies option 3.");
    std::string slit = deck;
    slit.replace(slit.find("WTA") + 1, 1, "X");
    EXPECT_FALSE(LoadText(tape5, slit));
    EXPECT_STREQ(tape5.GetLastError(), "Urecognized slit function X.");
    std::string scattering = deck;
    scattering.replace(scattering.find("    1    0   0.000"), 5, "    3");
    EXPECT_FALSE(LoadText(tape5, scattering));
    EXPECT_STREQ(tape5.GetLastError(), "Unrecognized Atmosphere Cache option 3.");
    std::string multiple = deck;
    multiple.replace(15, 5, "    7");
    EXPECT_FALSE(LoadText(tape5, multiple));
    EXPECT_STREQ(tape5.GetLastError(), "Unrecognized Multiple Scattering option 7,");
    std::string repeat = deck;
    repeat.replace(repeat.size() - 7, 5, "    9");
    EXPECT_FALSE(LoadText(tape5, repeat));
    EXPECT_STREQ(tape5.GetLastError(), "Unknown repeat flag option 9.");
}

TEST(Tape5Cards, ReaderTakesTheOtherSpellingsOfLettersAndFlags) {
    std::string deck = kDefaultDeck;
    deck[0] = 'k';     // correlated-k
    deck[1] = 'm';     // medium speed
    deck[82] = 't';    // DISORT
    deck.replace(deck.find("WTA"), 3, "m5r");
    CModtranTape5File tape5;
    ASSERT_TRUE(LoadText(tape5, deck)) << tape5.GetLastError();
    RUN const &run = *tape5.GetRun();
    EXPECT_EQ(run.bandModel, MM_CORRELATED_K);
    EXPECT_EQ(run.speed, CKS_MEDIUM);
    EXPECT_EQ(run.scatteringAlgo, SA_DISORT);
    EXPECT_EQ(run.inputXUnit, IXU_MICRONS);
    EXPECT_EQ(run.slit, SF_SINC2); // the digit 5
    EXPECT_EQ(run.fwhmType, FT_RELATIVE);
}

// Phi and the solar constant are written where the tool reads them (columns
// 71-80 and 51-60) and read there or five (two) columns to the left, where
// older writers put them.
TEST(Tape5Cards, PhiAndSolarConstantReadFromEitherPlace) {
    std::string deck = kDefaultDeck;
    std::string tool = deck, older = deck;
    tool.replace(tool.find("    0          0.000"), 20, "    0        123.250");
    older.replace(older.find("    0          0.000"), 20, "    0   123.250     ");
    older.replace(older.find("F F F F       0.000"), 19, "F F F F  1361.000  ");
    for (std::string const &text : {tool, older}) {
        CModtranTape5File tape5;
        ASSERT_TRUE(LoadText(tape5, text)) << tape5.GetLastError();
        EXPECT_FLOAT_EQ(tape5.GetRun()->phi, 123.25f);
        EXPECT_EQ(tape5.GetRun()->losType, LT_5);
    }
    CModtranTape5File tape5;
    ASSERT_TRUE(LoadText(tape5, older));
    EXPECT_FLOAT_EQ(tape5.GetRun()->solarConstant, 1361.0f);
    EXPECT_NE(Saved(tape5).find("F F F F    1361.000\r\n"), std::string::npos);
}

TEST(Tape5Cards, VerticalColumnFieldsKeepTheirKindAndValue) {
    std::string deck = kDefaultDeck;
    deck.replace(deck.find("         0         0"), 20, "       0.5g    2.500 ");
    CModtranTape5File tape5;
    ASSERT_TRUE(LoadText(tape5, deck)) << tape5.GetLastError();
    RUN const &run = *tape5.GetRun();
    EXPECT_EQ(run.columnType[0], VCT_VALUE); // "0.5" is a scale, not "none"
    EXPECT_FLOAT_EQ(run.columnValue[0], 0.5f);
    EXPECT_EQ(run.columnType[1], VCT_GRAMS);
    EXPECT_FLOAT_EQ(run.columnValue[1], 2.5f);
    EXPECT_NE(Saved(tape5).find("   0.50000g    2.500"), std::string::npos);
    EXPECT_STREQ(CModtranTape5File::FormatVerticalColumnType(VCT_ATM_CM, 1.5f), "a    1.500");
    EXPECT_STREQ(CModtranTape5File::FormatSurfaceReflectance(SR_BRDF, 0.0f), "   BRDF");
    EXPECT_STREQ(CModtranTape5File::FormatSurfaceReflectance(SR_LAMBER, 0.0f), " LAMBER");
    EXPECT_STREQ(CModtranTape5File::FormatSurfaceReflectance(SR_VALUE, 0.25f), "   0.25");
    EXPECT_STREQ(CModtranTape5File::FormatSurfaceReflectance(SURFACE_REFLECTANCE(-21), 0.0f), "    -21");
}

// A run that reaches every optional card writes, reads and writes again to
// the same bytes.
TEST(Tape5Cards, EveryOptionalCardRoundTrips) {
    CModtranTape5File tape5;
    ATMOSPHERE_MODEL models[6] = {AM_TROPICAL, AM_TROPICAL, AM_TROPICAL, AM_TROPICAL, AM_TROPICAL, AM_TROPICAL};
    ASSERT_TRUE(tape5.SetAtmosphereModel(AM_USER_DEFINED));
    ASSERT_TRUE(tape5.SetUserDefinedModel(models, 2));
    ASSERT_TRUE(tape5.SetExecutionMode(EM_RADIANCE_WITH_SUN));
    ASSERT_TRUE(tape5.SetSurfaceReflectance(SR_BRDF, 0.0f));
    ASSERT_TRUE(tape5.SetSolarIrradiance(true, true, "sun.dat", 2));
    ASSERT_TRUE(tape5.SetBandModelFile(true, "bands.bin"));
    ASSERT_TRUE(tape5.SetInstrumentFilterFile(true, "filter.flt"));
    ASSERT_TRUE(tape5.SetAerosolInfo(true, true, AA_USER, AP_SPRING_SUMMER, VOLCANO_INFO(3), 2));
    float a[4] = {1, 2, 3, 4}, b[4] = {5, 6, 7, 8}, c[4] = {9, 10, 11, 12};
    ASSERT_TRUE(tape5.SetAerosolAdjustments(a, b, c));
    ASSERT_TRUE(tape5.SetClouds(CLOUD_RAIN_MODEL(5), 1.5f, 2.5f, 3.5f));
    ASSERT_TRUE(tape5.SetClouds(0.5f, -9.0f, -9.0f, 100.0f, -9.0f, -9.0f));
    ASSERT_TRUE(tape5.SetLayerBoundary(3));
    ASSERT_TRUE(tape5.SetCloudProfile(2));
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(tape5.SetLayerBoundary(i, float(i), 0.5f, 0.25f, 1.0f));
    for (int i = 0; i < 2; ++i)
        ASSERT_TRUE(tape5.SetCloudProfile(i, float(i), 1, 2, 3, 4, 5, 6));
    ASSERT_TRUE(tape5.SetAVSA(true, 1.0f, 2.0f, 3.0f));
    ASSERT_TRUE(tape5.SetUserDefinedModel(2, true, AMT_PER_LEVEL, "two levels"));
    float values[5] = {1013.0f, 288.0f, 1.0f, 2.0f, 3.0f}, extended[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9},
          heavy[13] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13};
    AB_UNITS units[15] = {ABU_A, ABU_A, AB_UNITS(6)};
    for (int level = 0; level < 2; ++level) {
        ASSERT_TRUE(tape5.SetUserDefinedModel(level, float(level), values, units));
        ASSERT_TRUE(tape5.SetUserDefinedModel(level, extended));
        ASSERT_TRUE(tape5.SetUserDefinedModelHeavy(level, heavy));
        ASSERT_TRUE(tape5.SetUserDefinedModel(level, 0.5f, 0.25f, 0.125f, AA_DESERT, CLOUD_RAIN_MODEL(3),
                                              VOLCANO_INFO(2), AP_FALL_WINTER, true));
    }
    ASSERT_TRUE(tape5.SetAerosolRegion(0, 2, 1.0f, "two spectra"));
    ASSERT_TRUE(tape5.SetAerosolRegionSpectra(0, 1, 1.25f, 0.5f, 0.25f, 0.125f));
    float parameters[7] = {1, 2, 3, 4, 5, 6, 7};
    ASSERT_TRUE(tape5.SetSolarLunarGeometry(PFT_USER, 93, SLS_MOON, parameters, 0.0f));
    ASSERT_TRUE(tape5.SetPhaseFunction(3, 2));
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(tape5.SetPhaseFunctionAngle(i, float(10 * i)));
        for (int w = 0; w < 2; ++w)
            ASSERT_TRUE(tape5.SetPhaseFunction(i, w, float(i), float(w), 1.5f, 2.5f));
    }
    ASSERT_TRUE(tape5.SetPhaseFunctionWavelength(1, 4.0f));
    ASSERT_TRUE(tape5.SetSurfaceReflectance(2, 300.0f));
    ASSERT_TRUE(tape5.SetSurfaceReflectance(0, BF_ROSS_LI, 2, 30.0f, 45.0f));
    ASSERT_TRUE(tape5.SetSurfaceReflectance(0, 1, 1, 2, 3, 4, 5, 6));
    ASSERT_TRUE(tape5.SetSurfaceReflectance(1, BF_RAHMAN, 0, 0.0f, 0.0f));

    std::string first = Saved(tape5);
    CModtranTape5File back;
    ASSERT_TRUE(LoadText(back, first)) << back.GetLastError();
    EXPECT_EQ(Saved(back), first);
    RUN const &run = *back.GetRun();
    EXPECT_STREQ(run.instrumentFilterFileName, "filter.flt");
    EXPECT_FLOAT_EQ(run.adjustments[2][3], 12.0f);
    EXPECT_FLOAT_EQ(run.levels[1].heavy[12], 13.0f);
    EXPECT_EQ(run.levels[1].attenuation, AA_DESERT);
    EXPECT_FLOAT_EQ(run.phaseTable[2][1][3], 2.5f);
    EXPECT_FLOAT_EQ(run.surfaces[0].rows[1][5], 6.0f);
    EXPECT_EQ(run.surfaces[1].function, BF_RAHMAN);
    EXPECT_FLOAT_EQ(run.cloudProfile[1][6], 6.0f);
    EXPECT_EQ(run.solarDay, 93);

    ASSERT_TRUE(tape5.SetSurfaceReflectance(SR_LAMBER, 0.0f));
    ASSERT_TRUE(tape5.SetSurfaceReflectance(0, "a.dat", "b.dat"));
    ASSERT_TRUE(tape5.SetSurfaceReflectance(1, "c.dat", "d.dat"));
    ASSERT_TRUE(tape5.SetPhaseFunction(2, 0));
    ASSERT_TRUE(tape5.SetPhaseFunction(1, 1.0f, 2.0f, 3.0f, 4.0f, 5.0f));
    first = Saved(tape5);
    ASSERT_TRUE(LoadText(back, first)) << back.GetLastError();
    EXPECT_EQ(Saved(back), first);
    EXPECT_STREQ(back.GetRun()->surfaces[1].files[1], "d.dat");
    EXPECT_FLOAT_EQ(back.GetRun()->phaseRows[1][4], 5.0f);
}

TEST(Tape5Cards, HostileDecksGiveTheirMessageAndNeverOverrun) {
    std::string deck = kDefaultDeck;
    CModtranTape5File tape5;
    EXPECT_FALSE(LoadText(tape5, "MS  6    2\r\n"));
    EXPECT_STREQ(tape5.GetLastError(), "Unexpected end of file at card 1A.");
    EXPECT_FALSE(LoadText(tape5, ""));
    EXPECT_STREQ(tape5.GetLastError(), "Unexpected end of file at card 1.");

    std::string letters = deck;
    letters.replace(5, 5, "   xy");
    EXPECT_FALSE(LoadText(tape5, letters));
    EXPECT_STREQ(tape5.GetLastError(), "Unrecognized LOS Type 0.");

    std::string chained = deck;
    chained.replace(chained.size() - 7, 5, "    1");
    EXPECT_FALSE(LoadText(tape5, chained));
    EXPECT_STREQ(tape5.GetLastError(), "Unexpected end of file at card 1.");
    EXPECT_EQ(tape5.nRuns(), 2);

    std::string endless;
    for (int i = 0; i <= kModtranMaxRuns; ++i)
        endless += chained;
    EXPECT_FALSE(LoadText(tape5, endless));
    EXPECT_STREQ(tape5.GetLastError(), "More than 100 runs in the file.");

    std::string levels = deck;
    levels.replace(2, 1, "7");
    levels.insert(levels.find("\r\n    0    0    1") + 2 + 82, " 9999    0    0title\r\n");
    EXPECT_FALSE(LoadText(tape5, levels));
    EXPECT_STREQ(tape5.GetLastError(), "Level count 9999 is out of range.");

    std::string cloud = deck;
    cloud.replace(cloud.find("    3    0    0     0.000"), 10, "    3    5");
    cloud.insert(cloud.find("     0.000     0.000     0.000     0.000     0.000     0.000    0"),
                 "   1.000   1.000   1.000 999   0\r\n");
    EXPECT_FALSE(LoadText(tape5, cloud));
    EXPECT_STREQ(tape5.GetLastError(), "Layer boundary count 999 is out of range.");

    std::string longLine = deck;
    longLine.insert(longLine.find("\r\n"), std::string(100000, '7'));
    EXPECT_TRUE(LoadText(tape5, longLine)) << tape5.GetLastError();
    EXPECT_FLOAT_EQ(tape5.GetRun()->surfaceValue, 0.0f); // the card is cut at 127 bytes

    std::string lf = deck;
    for (size_t at; (at = lf.find('\r')) != std::string::npos;)
        lf.erase(at, 1);
    EXPECT_TRUE(LoadText(tape5, lf)) << tape5.GetLastError();
    EXPECT_EQ(Saved(tape5), deck);
}

TEST(Tape5Cards, LoadRunLeavesTheFileBehindItsLastCard) {
    std::string deck = kDefaultDeck;
    std::string two = deck + "trailing text\r\n";
    CMemFile in;
    Fill(in, two);
    CModtranTape5File tape5;
    ASSERT_TRUE(tape5.LoadRun(in, 0));
    EXPECT_EQ(in.GetPosition(), int64_t(deck.size()));
}

TEST(Tape5Cards, SaveAndLoadThroughAPath) {
    std::string path = testing::TempDir() + "qv_modtran_tape5";
    CModtranTape5File tape5;
    ASSERT_TRUE(tape5.SetTempAtFirstBoundary(290.5f));
    ASSERT_TRUE(tape5.Save(Wide(path).c_str()));
    EXPECT_EQ(ReadText(path).substr(65, 8), " 290.500");
    CModtranTape5File back;
    ASSERT_TRUE(back.Load(Wide(path).c_str()));
    EXPECT_FLOAT_EQ(back.GetRun()->tempAtFirstBoundary, 290.5f);
    std::remove(path.c_str());
    EXPECT_FALSE(back.Load(Wide(path).c_str()));
    EXPECT_NE(std::strstr(back.GetLastError(), "could not be opened"), nullptr);
    EXPECT_FALSE(back.Save(u"/nonexistent-dir/tape5"));
}

// The writer refuses a value that would shift every later column of its card
// (the tool would read other numbers than the run holds).
TEST(Tape5Cards, AValueWiderThanItsFieldIsRefused) {
    CModtranTape5File tape5;
    ASSERT_TRUE(tape5.SetGeometry(1.0e12f, 0.0f, 0.0f));
    CMemFile out;
    EXPECT_FALSE(tape5.Save(out));
    EXPECT_STREQ(tape5.GetLastError(), "A value of card 3 does not fit its columns.");
    ASSERT_TRUE(tape5.SetGeometry(-99999.5f, 0.0f, 0.0f)); // "-99999.500" fills its ten columns
    EXPECT_TRUE(tape5.Save(out));
    ASSERT_TRUE(tape5.SetSurfaceReflectance(SR_VALUE, 12345.0f));
    EXPECT_FALSE(tape5.Save(out));
    EXPECT_STREQ(tape5.GetLastError(), "A value of card 1 does not fit its columns.");
    ASSERT_TRUE(tape5.SetSurfaceReflectance(SR_VALUE, 1.0e30f)); // 33 characters, more than any field
    EXPECT_FALSE(tape5.Save(out));
    ASSERT_TRUE(tape5.SetSurfaceReflectance(SR_VALUE, 0.5f));
    tape5.GetRun()->columnType[1] = VCT_GRAMS;
    tape5.GetRun()->columnValue[1] = -3.0e38f;
    EXPECT_FALSE(tape5.Save(out));
    EXPECT_STREQ(tape5.GetLastError(), "A value of card 1A does not fit its columns.");
    tape5.GetRun()->columnType[1] = VCT_NONE;
    ASSERT_TRUE(tape5.SetAerosolInfo(false, true, AA_USER, AP_DEFAULT, VI_BACKGROUND, 0));
    ASSERT_TRUE(tape5.SetAerosolRegion(0, 2, 1.0f, ""));
    ASSERT_TRUE(tape5.SetAerosolRegionSpectra(0, 1, 1000.0f, 0.0f, 0.0f, 0.0f));
    EXPECT_FALSE(tape5.Save(out));
    EXPECT_STREQ(tape5.GetLastError(), "A value of card 2D2 does not fit its columns.");
}
