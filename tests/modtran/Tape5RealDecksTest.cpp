// Real tape5 decks written by other people's tools (see data/PROVENANCE.md):
// every one reads to its designed result, and the MODTRAN 4 decks written
// back keep every card byte for byte, except where the writer normalises a
// field; each such card is listed here with the reason.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "ModtranTestSupport.h"
#include "qv/modtran/ModtranTape5File.h"

using namespace qv;
using namespace qvtest;

namespace {

std::vector<std::string> Lines(std::string const &text) {
    std::vector<std::string> lines;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        std::string line = text.substr(start, end - start);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(line);
        start = end + 1;
    }
    return lines;
}

// Card 1A of the MODTRAN 4 decks below as the writer normalises it: the
// blank vertical column fields become "0" (kind none), the blank flags "F",
// and the blank solar constant 0.000 in columns 51-60: the tool reads blank
// and 0 alike there.
constexpr char kCard1A[] = "FT  2T   5   330.000         0         0 F F F F       0.000";

// Card 2 of a deck with IVULCN blank or 0: the volcano option is read as 1
// (the tool takes 0 and 1 both as background stratospheric aerosol).
std::string VolcanoAsOne(std::string card2) {
    card2[14] = '1';
    return card2;
}

// Card 1 starts with the band model and the speed in the writer's own
// letters: "T" (MODTRAN) is written "M", "F" (LOWTRAN) "L", and a blank speed
// "S" (slow), which the tool takes for a blank.
std::string BandModelLetters(std::string card1, char const *letters) {
    card1[0] = letters[0];
    card1[1] = letters[1];
    return card1;
}

struct SDeck {
    char const *file;
    char const *bandModel; // the two letters card 1 starts with when written
    // Card index to the text written where it differs from the deck, and why.
    std::map<size_t, std::string> normalised;
};

} // namespace

TEST(Tape5RealDecks, Modtran4DecksReadAndWriteBackCardForCard) {
    std::vector<SDeck> decks = {
        // Card 4's slit "1" is written as its letter "T" (the tool takes both
        // for a triangle).
        {"NelisW__ComputationalRadiometry__DataPackages__DP01.zip__flameTo12km.ltn",
         "MS",
         {{1, kCard1A}, {4, "  1667.000  3333.000     1.000     1.000          WT     "}}},
        {"NelisW__ComputationalRadiometry__DataPackages__DP01.zip__flameToSpace.ltn",
         "MS",
         {{1, kCard1A}, {4, "  1667.000  3333.000     1.000     1.000          WT     "}}},
        // A horizontal path (LOS type 0): H2 and the angle, which the tool
        // does not use there, are cleared before card 3 is written. The user
        // atmosphere's title is written right-aligned in its 65 columns.
        {"NelisW__ComputationalRadiometry__DataPackages__DP02.zip__atmo1.ltn",
         "LS",
         {{1, kCard1A},
          {3, "    1    0    0" + std::string(64, ' ') + "*"},
          {5, "     0.000     0.000     0.000     2.000     0.000     0.000    0          0.000"},
          {6, "   826.000 25000.000     5.000    10.000          WT     "}}},
        {"NelisW__ComputationalRadiometry__DataPackages__DP02.zip__atmo2.ltn",
         "LS",
         {{1, kCard1A},
          {3, "    1    0    0" + std::string(64, ' ') + "*"},
          {5, "     0.000     0.000     0.000     2.000     0.000     0.000    0          0.000"},
          {6, "   826.000 25000.000     5.000    10.000          WT     "}}},
        {"NelisW__ComputationalRadiometry__DataPackages__DP02.zip__atmo3.ltn",
         "LS",
         {{1, kCard1A},
          {3, "    1    0    0" + std::string(64, ' ') + "*"},
          {5, "     0.000     0.000     0.000     2.000     0.000     0.000    0          0.000"},
          {6, "   826.000 25000.000     5.000    10.000          WT     "}}},
    };
    for (SDeck const &deck : decks) {
        SCOPED_TRACE(deck.file);
        std::string text = ReadText(DataPath(deck.file));
        CMemFile in, out;
        Fill(in, text);
        CModtranTape5File tape5;
        ASSERT_TRUE(tape5.Load(in)) << tape5.GetLastError();
        EXPECT_EQ(tape5.nRuns(), 1);
        ASSERT_TRUE(tape5.Save(out)) << tape5.GetLastError();
        std::vector<std::string> original = Lines(text), written = Lines(Contents(out));
        ASSERT_EQ(written.size(), original.size());
        for (size_t i = 0; i < original.size(); ++i) {
            auto found = deck.normalised.find(i);
            // Trailing blanks carry nothing on a card.
            std::string expected = found != deck.normalised.end() ? found->second : original[i];
            while (!expected.empty() && expected.back() == ' ') expected.pop_back();
            std::string got = written[i];
            while (!got.empty() && got.back() == ' ') got.pop_back();
            if (i == 0) expected = BandModelLetters(expected, deck.bandModel);
            if (i == 2) expected = VolcanoAsOne(expected);
            EXPECT_EQ(got, expected) << "card " << i;
        }
        EXPECT_NE(Contents(out).find("\r\n"), std::string::npos);
    }
}

TEST(Tape5RealDecks, Modtran4DecksReadToTheirFields) {
    CModtranTape5File tape5;
    ASSERT_TRUE(tape5.Load(Wide(DataPath("NelisW__ComputationalRadiometry__DataPackages__DP01.zip__flameTo12km.ltn"))
                               .c_str()))
        << tape5.GetLastError();
    RUN const &run = *tape5.GetRun();
    EXPECT_EQ(run.bandModel, MM_MODTRAN);
    EXPECT_EQ(run.atmosphereModel, AM_TROPICAL);
    EXPECT_EQ(run.losPath, LP_SLANT);
    EXPECT_EQ(run.executionMode, EM_THERMAL_RADIANCE);
    EXPECT_EQ(run.streams, 2);
    EXPECT_TRUE(run.solarIrradianceFile);
    EXPECT_EQ(run.solarIndex, 5);
    EXPECT_FLOAT_EQ(run.co2MixingRatio, 330.0f);
    EXPECT_EQ(run.aerosolAttenuation, AA_RURAL);
    EXPECT_FLOAT_EQ(run.angle, 88.0f);
    EXPECT_FLOAT_EQ(run.range, 12.0f);
    EXPECT_EQ(run.losType, LT_2); // slant path with a range and an angle
    EXPECT_FLOAT_EQ(run.start, 1667.0f);
    EXPECT_FLOAT_EQ(run.end, 3333.0f);
    EXPECT_EQ(run.inputXUnit, IXU_WAVENUMBER);
    EXPECT_EQ(run.slit, SF_TRIANGLE); // "1"
    EXPECT_EQ(run.outputYUnit, ' ');
    EXPECT_EQ(run.repeat, 0);

    ASSERT_TRUE(tape5.Load(Wide(DataPath("NelisW__ComputationalRadiometry__DataPackages__DP02.zip__atmo3.ltn"))
                               .c_str()));
    RUN const &user = *tape5.GetRun();
    EXPECT_EQ(user.bandModel, MM_LOWTRAN);
    EXPECT_EQ(user.atmosphereModel, AM_USER_HORIZONTAL);
    EXPECT_EQ(user.nLevels, 1);
    EXPECT_STREQ(user.userTitle, "*");
    EXPECT_FLOAT_EQ(user.levels[0].values[0], 1013.0f);
    EXPECT_FLOAT_EQ(user.levels[0].values[1], 35.0f);
    EXPECT_FLOAT_EQ(user.levels[0].values[2], 100.0f);
    EXPECT_EQ(user.levels[0].units[0], ABU_A);
    EXPECT_EQ(user.levels[0].units[1], ABU_A + 1);
    EXPECT_EQ(user.levels[0].units[2], ABU_H);
    EXPECT_EQ(user.levels[0].units[3], ABU_BLANK);
    EXPECT_EQ(user.losType, LT_0);
}

// MODTRAN 5 decks put other fields in columns 3-10 of card 1A (DISALB, NSTR
// and SFWHM where MODTRAN 4 has NSTR, LSUN and ISUN). The reader reads the
// MODTRAN 4 layout, so column 6 of these decks ("2", where a T or F flag
// belongs) stops it with its designed message, and the deck whose card 1
// holds 4 in the line-of-sight column stops there; fields read so far stay.
TEST(Tape5RealDecks, Modtran5DecksStopWithTheDesignedMessage) {
    struct {
        char const *deck, *message;
    } const decks[] = {
        {"NelisW__ComputationalRadiometry__DataPackages__DP03.zip__tape5",
         "Unrecognized bSolarIrradianceFile option 2."},
        {"NelisW__ComputationalRadiometry__atmo-colour__Tropical_Desert_Aerosol__45__tape5",
         "Unrecognized LOS Type 4."},
        {"NelisW__pyradi__pyradi__examples__tape5.LWIR", "Unrecognized bSolarIrradianceFile option 2."},
        {"NelisW__pyradi__pyradi__examples__SunLWIR__targetinimageSunLWIR.ltn",
         "Unrecognized bSolarIrradianceFile option 2."},
    };
    for (auto const &deck : decks) {
        SCOPED_TRACE(deck.deck);
        CModtranTape5File tape5;
        EXPECT_FALSE(tape5.Load(Wide(DataPath(deck.deck)).c_str()));
        EXPECT_STREQ(tape5.GetLastError(), deck.message);
        EXPECT_EQ(tape5.GetRun()->bandModel, MM_MODTRAN);
    }
}
