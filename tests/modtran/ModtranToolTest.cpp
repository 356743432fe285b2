// The qv modtran commands end to end: the tool runs as its own process on
// the real decks and tables; python3's json and csv modules judge its
// --json and --csv output where python3 is installed.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "ModtranTestSupport.h"
#include "qv/modtran/ModtranTape5File.h"

using namespace qvtest;

#ifdef QV_TOOL

namespace {

std::string const kFlame = "NelisW__ComputationalRadiometry__DataPackages__DP01.zip__flameTo12km";

class ModtranTool : public testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/qv_modtran_tool_XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir = pattern;
    }
    void TearDown() override { std::system(("rm -rf " + dir).c_str()); }

    // Runs the tool with arguments (a shell word list); the exit status.
    int Qv(std::string const &arguments) {
        std::string command = std::string(QV_TOOL) + " " + arguments + " > " + dir + "/out 2> " + dir + "/err";
        int status = std::system(command.c_str());
        out = ReadText(dir + "/out");
        err = ReadText(dir + "/err");
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    static bool HavePython() { return std::system("python3 -c 'import csv, json' 2>/dev/null") == 0; }

    std::string dir, out, err;
};

} // namespace

TEST_F(ModtranTool, ShowNamesEveryCardAndItsJsonParses) {
    ASSERT_EQ(Qv("modtran show " + DataPath(kFlame + ".ltn")), 0) << err;
    EXPECT_NE(out.find("run 0\n  band_model = M\n"), std::string::npos);
    EXPECT_NE(out.find("  card 3    |     0.000     0.000    88.000    12.000"), std::string::npos);
    EXPECT_NE(out.find("  card 5    |    0|\n"), std::string::npos);
    ASSERT_EQ(Qv("modtran show " + DataPath(kFlame + ".ltn") + " --json"), 0) << err;
    if (!HavePython()) GTEST_SKIP() << "python3 is not installed";
    std::string check = "python3 -c 'import json,sys; d=json.load(open(sys.argv[1])); "
                        "assert d[\"runs\"][0][\"range\"] == 12 and len(d[\"runs\"][0][\"cards\"]) == 6' " +
                        dir + "/out";
    EXPECT_EQ(std::system(check.c_str()), 0);
}

TEST_F(ModtranTool, WriteGivesTheLibrarysCardsAndReadsStandardInput) {
    ASSERT_EQ(Qv("modtran write " + DataPath(kFlame + ".ltn") + " " + dir + "/deck"), 0) << err;
    qv::CModtranTape5File tape5;
    ASSERT_TRUE(tape5.Load(Wide(DataPath(kFlame + ".ltn")).c_str()));
    qv::CMemFile saved;
    ASSERT_TRUE(tape5.Save(saved));
    EXPECT_EQ(ReadText(dir + "/deck"), Contents(saved));
    ASSERT_EQ(Qv("modtran write - - < " + dir + "/deck"), 0) << err;
    EXPECT_EQ(out, Contents(saved));
}

TEST_F(ModtranTool, TableCsvHoldsEveryRowOfTheTable) {
    ASSERT_EQ(Qv("modtran table " + DataPath("NelisW__pyradi__pyradi__data__tape7-02") + " --csv"), 0) << err;
    EXPECT_EQ(out.substr(0, 24), "FREQ,TOT_TRANS,PTH_THRML");
    EXPECT_NE(out.find("\n2050,0.91000313,2.0416e-08,0,0,0,0,0,0,2.0416e-08,0,0,0.094\n"), std::string::npos);
    if (!HavePython()) GTEST_SKIP() << "python3 is not installed";
    std::string check = "python3 -c 'import csv,sys; r=list(csv.DictReader(open(sys.argv[1]))); "
                        "assert len(r) == 51 and float(r[-1][\"FREQ\"]) == 2100 and len(r[0]) == 13' " +
                        dir + "/out";
    EXPECT_EQ(std::system(check.c_str()), 0);
}

TEST_F(ModtranTool, RunPrintsTheTableTheToolWrote) {
    std::string tool = dir + "/tool.sh";
    WriteText(tool, "#!/bin/sh\n[ -f tape5 ] && cp " + DataPath(kFlame + ".tp7") + " tape7\n");
    chmod(tool.c_str(), 0755);
    ASSERT_EQ(Qv("modtran run " + DataPath(kFlame + ".ltn") + " --tool " + tool), 0) << err;
    EXPECT_NE(out.find("FREQ    TOT_TRANS"), std::string::npos);
    EXPECT_NE(out.find("\n        1665            0   1.8569e-06"), std::string::npos);
    EXPECT_EQ(Qv("modtran run " + DataPath(kFlame + ".ltn") + " --tool " + dir + "/absent"), 1);
    EXPECT_EQ(err, "qv: no tool at " + dir + "/absent\n");
}

TEST_F(ModtranTool, FailuresAreOneSentenceWithAnExitStatus) {
    EXPECT_EQ(Qv("modtran table " + DataPath("NelisW__ComputationalRadiometry__DataPackages__DP02.zip__atmo1.tp7")),
              1);
    EXPECT_EQ(out, "");
    EXPECT_NE(err.find("is no tape7 table qv can read\n"), std::string::npos);
    EXPECT_EQ(Qv("modtran show " + DataPath("NelisW__pyradi__pyradi__examples__tape5.LWIR")), 1);
    EXPECT_NE(err.find(": Unrecognized bSolarIrradianceFile option 2.\n"), std::string::npos);
    EXPECT_EQ(Qv("modtran table"), 2);
    EXPECT_EQ(Qv("modtran table a --csv b"), 2);
    // An option the command does not take is a wrong command line.
    EXPECT_EQ(Qv("modtran table " + DataPath("NelisW__pyradi__pyradi__data__tape7-02") + " --tsv"), 2);
    EXPECT_NE(err.find("unknown option '--tsv'"), std::string::npos);
}

#endif
