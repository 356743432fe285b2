// CModtranTape7File on real tables (checked against the independent reader
// data/read_tape7.py and its committed output), on damaged ones, and on
// synthetic runs for the interpolation.
#include <gtest/gtest.h>

#include <charconv>
#include <cstdio>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "ModtranTestSupport.h"
#include "qv/modtran/ModtranTape7File.h"

using namespace qv;
using namespace qvtest;

namespace {

using T7 = CModtranTape7File;

uint64_t Bit(std::string const &name) {
    static std::map<std::string, uint64_t> const kBits = {
        {"T7C_FREQ", T7::T7C_FREQ},
        {"T7C_TOT_TRANS", T7::T7C_TOT_TRANS},
        {"T7C_PTH_THRML", T7::T7C_PTH_THRML},
        {"T7C_THRML_SCT", T7::T7C_THRML_SCT},
        {"T7C_SURF_EMIS", T7::T7C_SURF_EMIS},
        {"T7C_SOL_SCAT", T7::T7C_SOL_SCAT},
        {"T7C_SING_SCAT", T7::T7C_SING_SCAT},
        {"T7C_GRND_RFLT", T7::T7C_GRND_RFLT},
        {"T7C_DRCT_RFLT", T7::T7C_DRCT_RFLT},
        {"T7C_TOTAL_RAD", T7::T7C_TOTAL_RAD},
        {"T7C_REF_SOL", T7::T7C_REF_SOL},
        {"T7C_SOL_OBS", T7::T7C_SOL_OBS},
        {"T7C_DEPTH", T7::T7C_DEPTH},
        {"T7C_H2O_TRANS", T7::T7C_H2O_TRANS},
        {"T7C_CO2P_TRANS", T7::T7C_CO2P_TRANS},
        {"T7C_O3_TRANS", T7::T7C_O3_TRANS},
        {"T7C_TRACE_TRANS", T7::T7C_TRACE_TRANS},
        {"T7C_N2_COUNT", T7::T7C_N2_COUNT},
        {"T7C_H2O_COUNT", T7::T7C_H2O_COUNT},
        {"T7C_MOLEC_COUNT", T7::T7C_MOLEC_COUNT},
        {"T7C_AER_TRANS", T7::T7C_AER_TRANS},
        {"T7C_HNO3_TRANS", T7::T7C_HNO3_TRANS},
        {"T7C_AERAB_TRANS", T7::T7C_AERAB_TRANS},
        {"T7C_LOG_TOTAL", T7::T7C_LOG_TOTAL},
        {"T7C_CO2_TRANS", T7::T7C_CO2_TRANS},
        {"T7C_CO_TRANS", T7::T7C_CO_TRANS},
        {"T7C_CH4_TRANS", T7::T7C_CH4_TRANS},
        {"T7C_N2O_TRANS", T7::T7C_N2O_TRANS},
        {"T7C_O2_TRANS", T7::T7C_O2_TRANS},
        {"T7C_NH3_TRANS", T7::T7C_NH3_TRANS},
        {"T7C_NO_TRANS", T7::T7C_NO_TRANS},
        {"T7C_NO2_TRANS", T7::T7C_NO2_TRANS},
        {"T7C_SO2_TRANS", T7::T7C_SO2_TRANS},
        {"T7C_SOL_TR", T7::T7C_SOL_TR},
        {"T7C_SOLAR", T7::T7C_SOLAR},
    };
    return kBits.at(name);
}

double Number(std::string const &text) {
    double v = 0;
    std::from_chars(text.data(), text.data() + text.size(), v);
    return v;
}

struct SExpected {
    int mode = -1, runs = 0, points = 0;
    std::vector<std::string> columns;
    std::vector<std::vector<double>> geometry;
    std::vector<std::vector<std::vector<double>>> rows; // by run
};

SExpected ReadExpected(std::string const &path) {
    SExpected expected;
    std::istringstream in(ReadText(path));
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream words(line);
        std::string key, word;
        words >> key;
        if (key == "mode") words >> expected.mode;
        if (key == "runs") words >> expected.runs, expected.rows.resize(size_t(expected.runs));
        if (key == "points") words >> expected.points;
        if (key == "columns")
            while (words >> word)
                expected.columns.push_back(word);
        if (key == "geometry" || key == "row") {
            int run;
            words >> run;
            std::vector<double> values;
            while (words >> word)
                values.push_back(Number(word));
            if (key == "geometry")
                expected.geometry.push_back(values);
            else
                expected.rows[size_t(run)].push_back(values);
        }
    }
    return expected;
}

// The columns Load may be asked for: the low 32 bits.
uint64_t LoadableColumns(std::vector<std::string> const &names) {
    uint64_t mask = 0;
    for (std::string const &name : names)
        mask |= Bit(name) & 0xFFFFFFFFu;
    return mask;
}

} // namespace

TEST(Tape7, RealTablesReadToTheValuesOfTheIndependentReader) {
    char const *const files[] = {
        "NelisW__ComputationalRadiometry__DataPackages__DP01.zip__flameTo12km.tp7", // radiance, narrow
        "NelisW__pyradi__pyradi__data__tape7-01",                                  // transmittance
        "NelisW__pyradi__pyradi__data__tape7-02",                                  // radiance, wide
        "NelisW__pyradi__pyradi__data__tape7-04",                                  // direct sun
        "NelisW__pyradi__pyradi__examples__SunLWIR__tape7.LWIRSun",                // radiance with sun
    };
    for (char const *file : files) {
        SCOPED_TRACE(file);
        SExpected expected = ReadExpected(DataPath(std::string(file) + ".expected"));
        ASSERT_GT(expected.points, 0);
        CModtranTape7File tape7;
        uint64_t columns = LoadableColumns(expected.columns);
        ASSERT_TRUE(tape7.Load(Wide(DataPath(file)).c_str(), columns));
        EXPECT_EQ(tape7.GetMode(), expected.mode);
        EXPECT_EQ(tape7.nRuns(), expected.runs);
        EXPECT_EQ(tape7.nPoints(), expected.points);
        std::vector<double> values(size_t(tape7.nPoints()));
        for (int run = 0; run < expected.runs; ++run) {
            double geometry[3];
            ASSERT_TRUE(tape7.GetGeometry(run, geometry));
            for (int k = 0; k < 3; ++k)
                EXPECT_EQ(geometry[k], expected.geometry[size_t(run)][size_t(k)]);
            for (size_t c = 0; c < expected.columns.size(); ++c) {
                uint64_t bit = Bit(expected.columns[c]);
                if (!(bit & columns)) continue;
                ASSERT_TRUE(tape7.GetData(values.data(), run, bit));
                for (size_t i = 0; i < values.size(); ++i)
                    ASSERT_EQ(values[i], expected.rows[size_t(run)][i][c]) << expected.columns[c] << " row " << i;
            }
        }
    }
}

// The author of atmo1.tp7 put "%" in front of every line but the rows: its
// first line has no mode digit at byte 14, so the load fails.
TEST(Tape7, DamagedTableWithCommentMarksFailsToLoad) {
    CModtranTape7File tape7;
    EXPECT_FALSE(
        tape7.Load(Wide(DataPath("NelisW__ComputationalRadiometry__DataPackages__DP02.zip__atmo1.tp7")).c_str(),
                   T7::T7C_FREQ));
    EXPECT_EQ(tape7.nRuns(), 0);
    EXPECT_EQ(tape7.nPoints(), 0);
    double freq[1];
    EXPECT_FALSE(tape7.GetFreq(freq));
}

namespace {

// A mode 1 block with a wide heading; rows of frequency f, transmission t
// and path radiance r.
std::string RadianceRun(double h2, double range, std::vector<std::vector<double>> const &rows) {
    char text[256];
    std::string block = "T   6    2    1    0    0    0    0    0    0    0    0    0    0   0.000   0.00\r\n";
    for (int i = 1; i < 5; ++i)
        block += "header\r\n";
    std::snprintf(text, sizeof text, "%10.5f%10.5f%10.5f%10.5f\r\n", 0.0, h2, 30.0, range);
    block += text;
    for (int i = 6; i < 10; ++i)
        block += "header\r\n";
    block += "    FREQ  TOT_TRANS  PTH_THRML\r\n";
    for (auto const &row : rows) {
        std::snprintf(text, sizeof text, "%8.2f%11.8f%11.4E\r\n", row[0], row[1], row[2]);
        block += text;
    }
    return block + " -9999.\r\n";
}

bool LoadText(CModtranTape7File &tape7, std::string const &text, uint64_t columns) {
    CMemFile file;
    Fill(file, text);
    return tape7.Load(file, columns);
}

} // namespace

TEST(Tape7, EdgeCasesOfTheLayout) {
    CModtranTape7File tape7;
    std::string empty = RadianceRun(1, 1, {});
    ASSERT_TRUE(LoadText(tape7, empty, T7::T7C_TOT_TRANS));
    EXPECT_EQ(tape7.nPoints(), 0);
    EXPECT_EQ(tape7.nRuns(), 1);

    std::string one = RadianceRun(1, 1, {{1000, 0.5, 2e-6}});
    EXPECT_FALSE(LoadText(tape7, one, T7::T7C_H2O_TRANS)); // a column of the transmittance table
    EXPECT_FALSE(LoadText(tape7, one, T7::T7C_SOL_TR));    // high half
    ASSERT_TRUE(LoadText(tape7, one, T7::T7C_TOT_TRANS | T7::T7C_PTH_THRML));
    EXPECT_EQ(tape7.GetColumns() & T7::T7C_DEPTH, T7::T7C_DEPTH);
    double value;
    ASSERT_TRUE(tape7.GetData(&value, -5, T7::T7C_PTH_THRML)); // a negative run is run 0
    EXPECT_EQ(value, 2e-6);
    EXPECT_FALSE(tape7.GetData(&value, 1, T7::T7C_PTH_THRML));
    EXPECT_FALSE(tape7.GetData(&value, 0, 0x3));
    ASSERT_TRUE(tape7.GetFreq(&value));
    EXPECT_EQ(value, 1000.0);

    // "  FREQ" (narrow heading): frequency 7 wide, so this wide row misreads
    // by design: the layout follows the heading, and the transmission field
    // now starts "0 0.5", which atof reads as 0.
    std::string narrow = one;
    narrow.replace(narrow.find("    FREQ"), 8, "  FREQ  ");
    ASSERT_TRUE(LoadText(tape7, narrow, T7::T7C_TOT_TRANS));
    ASSERT_TRUE(tape7.GetData(&value, 0, T7::T7C_FREQ));
    EXPECT_EQ(value, 1000.0);
    ASSERT_TRUE(tape7.GetData(&value, 0, T7::T7C_TOT_TRANS));
    EXPECT_EQ(value, 0.0);
}

TEST(Tape7, BrokenTablesFailAndNeverOverrun) {
    CModtranTape7File tape7;
    std::string good = RadianceRun(1, 1, {{1000, 0.5, 2e-6}, {1001, 0.25, 3e-6}});
    std::string cut = good.substr(0, good.find(" -9999.") - 7);
    EXPECT_FALSE(LoadText(tape7, cut, T7::T7C_TOT_TRANS)); // cut mid-line: no "-9999."
    EXPECT_FALSE(LoadText(tape7, good.substr(0, 40), T7::T7C_TOT_TRANS));
    EXPECT_FALSE(LoadText(tape7, good + good.substr(0, 200), T7::T7C_TOT_TRANS)); // second header cut
    EXPECT_TRUE(LoadText(tape7, good + "\r\n  \r\n" + good + "\n", T7::T7C_TOT_TRANS));
    EXPECT_EQ(tape7.nRuns(), 2);
    EXPECT_FALSE(LoadText(tape7, "", T7::T7C_TOT_TRANS));
    EXPECT_FALSE(LoadText(tape7, good + RadianceRun(2, 2, {{1000, 0.5, 2e-6}}), T7::T7C_TOT_TRANS)); // lengths
    std::string mode3 = good;
    mode3[14] = '3';
    EXPECT_FALSE(LoadText(tape7, good + mode3, T7::T7C_TOT_TRANS)); // modes differ
    std::string mode9 = good;
    mode9[14] = '9';
    EXPECT_FALSE(LoadText(tape7, mode9, T7::T7C_TOT_TRANS));

    std::string longLines = good;
    longLines.insert(longLines.find("\r\n", longLines.find("1000.00")), std::string(100000, '9'));
    ASSERT_TRUE(LoadText(tape7, longLines, T7::T7C_PTH_THRML));
    double values[2];
    ASSERT_TRUE(tape7.GetData(values, 0, T7::T7C_PTH_THRML));
    EXPECT_EQ(values[1], 3e-6);
    EXPECT_FALSE(tape7.Load(u"/nonexistent/tape7", T7::T7C_FREQ));
}

// Four runs: two H2 groups (1 and 3) of two ranges (10 and 20).
TEST(Tape7, InterpolatesBetweenGroupsAndRuns) {
    std::string text;
    double const h2s[2] = {1, 3}, ranges[2] = {10, 20};
    for (double h2 : h2s)
        for (double range : ranges)
            text += RadianceRun(h2, range, {{1000 + range, h2 * range / 100, h2 + range}});
    CModtranTape7File tape7;
    ASSERT_TRUE(LoadText(tape7, text, T7::T7C_TOT_TRANS | T7::T7C_PTH_THRML));
    double freq, value;
    ASSERT_TRUE(tape7.GetData(&freq, &value, 2.0, 15.0, T7::T7C_PTH_THRML));
    EXPECT_DOUBLE_EQ(value, 17.0); // halfway each way between 11, 21, 13 and 23
    EXPECT_EQ(freq, 1010.0);       // the frequency of the lowest run
    ASSERT_TRUE(tape7.GetData(&freq, &value, 1.0, 10.0, T7::T7C_TOT_TRANS));
    EXPECT_DOUBLE_EQ(value, 0.1);
    ASSERT_TRUE(tape7.GetData(&freq, &value, 5.0, 50.0, T7::T7C_PTH_THRML)); // above the top: the top run
    EXPECT_DOUBLE_EQ(value, 23.0);
    EXPECT_FALSE(tape7.GetData(&freq, &value, 0.5, 15.0, T7::T7C_PTH_THRML)); // below the table
    EXPECT_FALSE(tape7.GetData(&freq, &value, 2.0, 5.0, T7::T7C_PTH_THRML));
    EXPECT_FALSE(tape7.GetData(&freq, &value, 2.0, 15.0, 0));

    CModtranTape7File single;
    ASSERT_TRUE(LoadText(single, RadianceRun(1, 1, {{1000, 0.5, 2e-6}}), T7::T7C_TOT_TRANS));
    ASSERT_TRUE(single.GetData(&freq, &value, -100.0, -100.0, T7::T7C_TOT_TRANS)); // one run: that run
    EXPECT_EQ(value, 0.5);
}
