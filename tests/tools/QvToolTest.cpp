// The qv command-line tool end to end: each sub-command is run as its own
// process on the sample data, and its output, messages and exit status read
// back. The sample files are only read; files the tool changes are copies.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "qv/calibration/FrameTemperatures.h"
#include "qv/calibration/RCalFile.h"
#include "qv/core/String.h"
#include "qv/core/Version.h"
#include "qv/files/File.h"
#include "qv/formats/tagged/SAFFrames.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/images/TIFF.h"
#include "qv/tables/PODFile.h"

extern char **environ;

namespace {

#ifdef QV_TOOL

std::string const kData = QV_TEST_DATA_DIR;
std::string const kPoints = kData + "/cal_points.csv";
std::string const kResponse = kData + "/NelisW__pyradi__pyradi__data__MWIRsensor.txt";
std::string const kAtmosphere = kData + "/NelisW__pyradi__pyradi__data__tape7-02.table";
std::string const kCounts = kData + "/cal_counts.csv";
std::string const kSaf = kData + "/sample.saf";
std::string const kCsvHeading = "page,counts,radiance,celsius,in_range,truth,error\n";

std::string ReadFile(std::string const &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

bool Contains(std::string const &text, std::string const &part) {
    return text.find(part) != std::string::npos;
}

// A number printed by the tool (always in the C form, whatever the locale).
double Number(std::string const &text) {
    double value = NAN;
    std::from_chars(text.data() + (!text.empty() && text[0] == '+'), text.data() + text.size(), value);
    return value;
}

struct SRun {
    int status; // the exit code, or 128 + the signal that ended it
    std::string out, err;
};

class QvTool : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = testing::TempDir() + "qv_tool_XXXXXX";
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        dir = pattern;
    }
    void TearDown() override { std::filesystem::remove_all(dir); }

    std::string Path(char const *name) const { return dir + "/" + name; }

    // Runs the tool with the arguments, its standard output and error going
    // to files (no pipe to fill up), standard input from a file (/dev/null
    // unless given). A sanitizer report fails the test whatever the exit
    // status. Output sent elsewhere (/dev/full) reads back empty.
    SRun Run(std::vector<std::string> const &args, std::string const &in = "/dev/null",
             std::string const &sendOutTo = "") const {
        std::string const out = sendOutTo.empty() ? Path("stdout") : sendOutTo, err = Path("stderr");
        std::remove(Path("stdout").c_str());
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 0, in.c_str(), O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        std::vector<char *> argv{const_cast<char *>(QV_TOOL)};
        for (std::string const &arg : args)
            argv.push_back(const_cast<char *>(arg.c_str()));
        argv.push_back(nullptr);
        pid_t pid = 0;
        int spawned = posix_spawn(&pid, QV_TOOL, &actions, nullptr, argv.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        SRun run{-1, "", ""};
        int status = 0;
        if (spawned != 0 || waitpid(pid, &status, 0) != pid) {
            ADD_FAILURE() << "cannot run " << QV_TOOL;
            return run;
        }
        run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        run.out = ReadFile(Path("stdout"));
        run.err = ReadFile(err);
        EXPECT_FALSE(Contains(run.err, "Sanitizer") || Contains(run.err, "runtime error")) << run.err;
        return run;
    }

    // A failure the tool reports itself: its exit code and one message line,
    // nothing on standard output but (for qv cal) the CSV heading.
    void ExpectRefused(std::vector<std::string> const &args, int code, std::string const &message,
                       std::string const &in = "/dev/null") const {
        SRun run = Run(args, in);
        EXPECT_EQ(run.status, code) << args[0] << " " << args.back() << "\n" << run.err;
        EXPECT_TRUE(Contains(run.err, message)) << "wanted: " << message << "\ngot: " << run.err;
        EXPECT_TRUE(run.out == "" || run.out == kCsvHeading) << run.out;
    }

    // Writes a file in the test's directory and gives its path.
    std::string Write(char const *name, std::string const &content) const {
        std::ofstream(Path(name), std::ios::binary) << content;
        return Path(name);
    }

    std::string dir;
};

// What qv cal prints: per page, the fit error line; then the conversions.
struct SCalOutput {
    std::map<int, double> fitError; // page -> the printed temperature fit error
    std::vector<std::vector<std::string>> rows;
};

std::vector<std::string> SplitCsv(std::string const &line) {
    std::vector<std::string> fields;
    std::stringstream in(line);
    for (std::string field; std::getline(in, field, ',');)
        fields.push_back(field);
    if (!line.empty() && line.back() == ',') fields.push_back("");
    return fields;
}

// The prose on standard error, the CSV (heading first) on standard output.
SCalOutput ParseCal(SRun const &run) {
    SCalOutput parsed;
    std::stringstream csv(run.out);
    std::string line;
    std::getline(csv, line);
    EXPECT_EQ(line + "\n", kCsvHeading);
    while (std::getline(csv, line))
        parsed.rows.push_back(SplitCsv(line));
    std::stringstream in(run.err);
    int page = -1;
    std::string const fitLine = "  temperature fit error over the lookup: at most ";
    while (std::getline(in, line)) {
        if (line.rfind("page ", 0) == 0) {
            page = std::atoi(line.c_str() + 5);
        } else if (line.rfind(fitLine, 0) == 0) {
            parsed.fitError[page] =
                Number(line.substr(fitLine.size(), line.find(' ', fitLine.size()) - fitLine.size()));
        }
    }
    return parsed;
}

TEST_F(QvTool, CalConvertsTheSampleCountsWithinTheFitError) {
    SRun run = Run({"cal", kPoints, kResponse, kAtmosphere, kCounts});
    ASSERT_EQ(run.status, 0) << run.err;
    // The prose goes to standard error, only the CSV to standard output.
    EXPECT_TRUE(Contains(run.err, "response: file (band ")) << run.err;
    EXPECT_TRUE(Contains(run.err, "atmosphere: transmission and path radiance\n"));
    EXPECT_TRUE(Contains(run.err, "page 0: 9 points, 8 enabled\n")) << run.err;
    EXPECT_TRUE(Contains(run.err, "page 1: 9 points, 8 enabled\n")) << run.err;

    SCalOutput cal = ParseCal(run);
    ASSERT_EQ(cal.fitError.size(), 2u) << run.err;
    for (auto const &[page, error] : cal.fitError) {
        EXPECT_GE(error, 0.0) << page;
        EXPECT_LT(error, 1.0) << page; // a sixth-order fit over the lookup is far better than a degree
    }
    ASSERT_EQ(cal.rows.size(), 10u) << run.out; // five known blackbodies per page
    int perPage[2] = {0, 0};
    for (auto const &row : cal.rows) {
        ASSERT_EQ(row.size(), 7u) << run.out;
        int page = std::atoi(row[0].c_str());
        ASSERT_TRUE(page == 0 || page == 1) << row[0];
        ++perPage[page];
        double celsius = Number(row[3]), truth = Number(row[5]), error = Number(row[6]);
        EXPECT_EQ(row[4], "yes") << row[1];
        EXPECT_NEAR(error, celsius - truth, 0.0015) << row[1];
        // Rounding of the printed figures allows a thousandth more.
        EXPECT_LE(std::fabs(celsius - truth), cal.fitError[page] + 0.001) << "page " << page << " counts " << row[1];
    }
    EXPECT_EQ(perPage[0], 5);
    EXPECT_EQ(perPage[1], 5);
    EXPECT_TRUE(Contains(run.out, "0,3183.00,2.777914e-06,-5.349,yes,-5.000,-0.349\n")) << run.out;

    // --csv: the same CSV and no prose.
    SRun csv = Run({"cal", "--csv", kPoints, kResponse, kAtmosphere, kCounts});
    ASSERT_EQ(csv.status, 0) << csv.err;
    EXPECT_EQ(csv.out, run.out);
    EXPECT_EQ(csv.err, "");
}

TEST_F(QvTool, CalConvertsAListOfCountsThroughEveryPage) {
    SRun run = Run({"cal", kPoints, kResponse, "none", "3000,9000"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(Contains(run.err, "atmosphere: none\n"));
    SCalOutput cal = ParseCal(run);
    ASSERT_EQ(cal.rows.size(), 4u) << run.out; // two counts, each through both pages
    for (auto const &row : cal.rows) {
        ASSERT_EQ(row.size(), 7u) << run.out;
        EXPECT_EQ(row[5], ""); // no truth given
        EXPECT_EQ(row[6], "");
        EXPECT_TRUE(std::isfinite(Number(row[3]))) << row[3];
    }
    EXPECT_EQ(cal.rows[0][0] + "," + cal.rows[0][1], "0,3000.00");
    EXPECT_EQ(cal.rows[1][0] + "," + cal.rows[1][1], "1,3000.00");
    EXPECT_EQ(cal.rows[3][0] + "," + cal.rows[3][1], "1,9000.00");
}

TEST_F(QvTool, CalReadsAnyOneInputFromStandardInput) {
    SRun files = Run({"cal", kPoints, kResponse, kAtmosphere, kCounts});
    ASSERT_EQ(files.status, 0) << files.err;
    for (int which : {1, 2, 3, 4}) {
        std::vector<std::string> args{"cal", kPoints, kResponse, kAtmosphere, kCounts};
        std::string in = args[size_t(which)];
        args[size_t(which)] = "-";
        SRun piped = Run(args, in);
        EXPECT_EQ(piped.status, 0) << which << piped.err;
        EXPECT_EQ(piped.out, files.out) << which;
    }
    ExpectRefused({"cal", "-", kResponse, kAtmosphere, "-"}, 1, "only one input can be standard input");
}

TEST_F(QvTool, CalWithATopHatResponse) {
    SRun run = Run({"cal", kPoints, "tophat:3.5:4.9:0.01", "none", kCounts});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(Contains(run.err, "response: top hat (band 3.5 to 4.9 um, 141 points on the final axis)\n")) << run.err;
    EXPECT_TRUE(Contains(run.err, "temperature -10 to 60 C\n")) << run.err;
    EXPECT_TRUE(Contains(run.err, "temperature 40 to 150 C\n")) << run.err;
    SCalOutput cal = ParseCal(run);
    EXPECT_EQ(cal.fitError.size(), 2u) << run.err;
    ASSERT_EQ(cal.rows.size(), 10u) << run.out;
    // Another band than the camera's misses the truth by degrees, but more
    // counts still read warmer on each page.
    for (size_t i = 1; i < cal.rows.size(); ++i) {
        ASSERT_EQ(cal.rows[i].size(), 7u) << run.out;
        if (cal.rows[i][0] == cal.rows[i - 1][0]) {
            EXPECT_GT(Number(cal.rows[i][3]), Number(cal.rows[i - 1][3])) << cal.rows[i][1];
        }
    }

    for (char const *bad : {"tophat:", "tophat:3:5", "tophat:5:3:0", "tophat:3:5:x", "tophat:3:5:0.01:9",
                            "tophat:-5:5:0.1", "tophat:3:5:1e-9", "tophat:5:3:0.01", "tophat:3:nan:0.1"})
        ExpectRefused({"cal", kPoints, bad, "none", kCounts}, 1, "bad top hat");
}

TEST_F(QvTool, CalRefusesMissingFilesWithTheSystemsReason) {
    std::string const missing = Path("missing.csv");
    std::string const reason = ": No such file or directory";
    ExpectRefused({"cal", missing, kResponse, kAtmosphere, kCounts}, 1, "cannot open " + missing + reason);
    ExpectRefused({"cal", kPoints, missing, kAtmosphere, kCounts}, 1, "cannot open " + missing + reason);
    ExpectRefused({"cal", kPoints, kResponse, missing, kCounts}, 1, "cannot open " + missing + reason);
    ExpectRefused({"cal", kPoints, kResponse, kAtmosphere, missing}, 1, "cannot open " + missing + reason);
    ExpectRefused({"cal", dir, kResponse, kAtmosphere, kCounts}, 1, "cannot read " + dir + ": Is a directory");
    ExpectRefused({"cal", kPoints, kResponse, kAtmosphere, dir}, 1, "cannot read " + dir + ": Is a directory");
    ExpectRefused({"cal", kPoints, kResponse, kAtmosphere}, 2,
                  "usage: qv cal [--csv] [--save PATH] [--inc PATH] POINTS RESPONSE ATMOSPHERE COUNTS");
    ExpectRefused({"cal", kPoints, kResponse, kAtmosphere, kCounts, "extra"}, 2, "usage: qv cal");
}

// Points files whose fit would be nonsense, and values no source can have.
TEST_F(QvTool, CalRefusesPointsThatFitNothing) {
    std::string const head = "page,temperature,emissivity,counts,reflected,reflected_temperature,"
                             "reflected_emissivity,reflected_radiance,enabled\n";
    std::string const good = "0,10,1,3000,none,0,1,0,1\n0,40,1,9000,none,0,1,0,1\n";
    auto refused = [&](std::string const &points, std::string const &message) {
        ExpectRefused({"cal", Write("points.csv", points), kResponse, "none", kCounts}, 1, message);
    };
    refused(head + "0,10,1,3000,none,0,1,0,1\n", "page 0 needs enabled points at 2 or more different temperatures");
    refused(head + "0,10,1,3000,none,0,1,0,0\n0,40,1,9000,none,0,1,0,0\n", "it has 0");
    refused(head + "0,10,1,3000,none,0,1,0,1\n0,40,1,3000,none,0,1,0,1\n",
            "needs 2 enabled points with different counts");
    refused(head + "0,10,1,nan,none,0,1,0,1\n0,40,1,9000,none,0,1,0,1\n", ":2: the counts must be a finite number");
    refused(head, "holds no points");
    refused(head + "1,10,1,3000,none,0,1,0,1\n1,40,1,9000,none,0,1,0,1\n", "page 0 has no points");
    refused(good + "order,1,1\n", "page 1 has no points");
    refused(head + "0,-400,1,3000,none,0,1,0,1\n", ":2: the temperature must be a number from -273.15");
    refused(head + "0,10,-5,3000,none,0,1,0,1\n", ":2: the emissivity must be a number from 0 to 1");
    refused(head + "0,10,1,3000,none,-300,1,0,1\n", ":2: the reflected temperature must be");
    refused(head + "0,10,1,3000,none,0,2,0,1\n", ":2: the reflected emissivity must be");
    refused(head + "0,10,1,3000,none,0,1,-1,1\n", ":2: the reflected radiance must be");
    refused(head + "0,10,1,3000,mirror,0,1,0,1\n", ":2: reflected must be none, radiance or temperature");
    refused(head + "0,10,1,3000,none,0,1,0,2\n", ":2: enabled must be 0 or 1");
    refused(head + "5,10,1,3000,none,0,1,0,1\n", ":2: the page must be 0 to 3");
    refused(head + "0,10,1,3000,none,0,1,0\n", ":2: a point has 9 fields, this line 8");
    refused("0,20,1,abc,none,0,0,0,1\n", ":1: the counts must be a finite number");
}

TEST_F(QvTool, CalRefusesSettingsItWouldChange) {
    std::string const points = ReadFile(kPoints);
    auto refused = [&](std::string const &setting, std::string const &message) {
        ExpectRefused({"cal", Write("points.csv", points + setting), kResponse, "none", kCounts}, 1, message);
    };
    refused("temporder,0,-1\n", "temporder must be a whole number from 1 to 6");
    refused("temporder,0,100\n", "temporder must be a whole number from 1 to 6");
    refused("order,0,20\n", "a fit of order 20 needs 21 enabled points with different counts; page 0 has 8");
    refused("order,0,0\n", "the order must be a whole number of 1 or more");
    refused("order,0,zero\n", "the order must be a whole number");
    refused("lookup,0,0,1e6,0.001\n", "the lookup STEP must be above 0 and make at most 100000 entries");
    refused("lookup,0,70,-20,0.5\n", "the lookup needs START below END");
    refused("lookup,0,-400,20,0.5\n", "the lookup needs START below END, both from -273.15");
    refused("lookup,0,0,20\n", "lookup takes PAGE,START,END,STEP");
    // A misspelt setting is an error, not a header skipped in silence.
    refused("Temporder,0,6\n", ":28: unknown setting 'Temporder' (the settings are order, temporder and lookup)");
    refused("page,temperature\n", "unknown setting 'page'"); // a header only comes first
    // The largest order the points carry is taken as it is.
    SRun seventh = Run({"cal", Write("points.csv", points + "order,0,7\n"), kResponse, "none", kCounts});
    EXPECT_EQ(seventh.status, 0) << seventh.err;
    EXPECT_TRUE(Contains(seventh.err, "counts to radiance (order 7, ")) << seventh.err;
}

// Response and atmosphere tables the library's readers would take in part,
// or whose values make the radiances meaningless.
TEST_F(QvTool, CalRefusesBrokenCurveTables) {
    std::string const response = ReadFile(kResponse), table = ReadFile(kAtmosphere);
    auto refusedResponse = [&](std::string const &text, std::string const &message) {
        ExpectRefused({"cal", kPoints, Write("response.txt", text), "none", kCounts}, 1, message);
    };
    auto refusedTable = [&](std::string const &text, std::string const &message) {
        ExpectRefused({"cal", kPoints, kResponse, Write("table.txt", text), kCounts}, 1, message);
    };
    refusedResponse("wavelength,response\n" + response, ":1: expected two numbers (wavelength in microns, response)");
    refusedResponse(response + "junk\n4.9 0.5\n", ":61: expected two numbers");
    refusedResponse("4.7 0\n   \n4.8 1\n", ":2: expected two numbers"); // a blank line would end the reading
    refusedResponse(ReadFile(kSaf), "is not a text file (it holds a NUL byte)");
    refusedResponse("4.7 0\n4.8 1\n4.75 0.5\n",
                    "is not a usable response: wavelengths must be above 0 and rise or fall");
    refusedResponse("4.7 0\n4.8 0\n4.9 0\n", "responses must be 0 or more with a peak above 0");
    refusedResponse("4.7 -1\n4.8 -2\n", "is not a usable response");
    refusedResponse("4.7 1\n", "holds fewer than 2 rows");
    refusedResponse(std::string(600, '4') + " 1\n", ":1: the line is longer than 511 bytes");

    std::string const end = "-9999.\n";
    ASSERT_TRUE(Contains(table, end));
    std::string const cut = table.substr(0, table.find(end));
    refusedTable(cut, "the MODTRAN table has no -9999. end line (is it cut short?)");
    refusedTable(cut.substr(0, cut.size() - 6), "the MODTRAN table has no -9999. end line");
    refusedTable(cut.substr(0, cut.size() - 4) + "\n" + end,
                 "expected a row of frequency, transmission and path radiance");
    refusedTable(response, "is not a MODTRAN table: it has no FREQ heading line");
    refusedTable("FREQ\n2000 1.5 0\n2100 0.5 0\n-9999.\n", "transmissions lie in 0..1");
    refusedTable("FREQ\n2000 0.5 -1\n2100 0.5 0\n-9999.\n", "path radiances are 0 or more");
    refusedTable("FREQ\n2000 0.5 0\n2100 0.5 0\n2050 0.5 0\n-9999.\n", "frequencies must be above 0 and rise or fall");
}

TEST_F(QvTool, CalTakesAResponseInFallingOrder) {
    std::vector<std::string> lines;
    std::stringstream in(ReadFile(kResponse));
    for (std::string line; std::getline(in, line);)
        lines.insert(lines.begin(), line);
    std::string reversed;
    for (std::string const &line : lines)
        reversed += line + "\n";
    SRun rising = Run({"cal", kPoints, kResponse, kAtmosphere, kCounts});
    SRun falling = Run({"cal", kPoints, Write("falling.txt", reversed), kAtmosphere, kCounts});
    ASSERT_EQ(falling.status, 0) << falling.err;
    EXPECT_EQ(falling.out, rising.out);
}

TEST_F(QvTool, CalRefusesCountsThatAreNoCounts) {
    auto refused = [&](std::string const &counts, std::string const &message) {
        ExpectRefused({"cal", kPoints, kResponse, "none", counts}, 1, message);
    };
    refused(Write("empty.csv", ""), "empty.csv holds no counts");
    refused(Write("header.csv", "page,counts\n# nothing\n"), "holds no counts");
    refused(kSaf, "is not a text file (it holds a NUL byte)");
    refused("/dev/zero", "/dev/zero is not a text file");
    refused(Write("counts.csv", "page,counts\n0,1e400,2,3\n"), "counts.csv:2: expected page,counts[,truth]");
    refused(Write("counts.csv", "0,nan\n"), "counts.csv:1: expected page,counts[,truth]");
    refused(Write("counts.csv", "0,3000,-300\n"), "counts.csv:1: expected page,counts[,truth]");
    refused(Write("counts.csv", std::string(5000, '1') + "\n"), "counts.csv:1: the line is longer than 4096 bytes");
    refused("3000,nan", "the counts list holds a number that is not finite");
    // Rows stream out as they are read; a bad row later still fails the run.
    SRun beyond = Run({"cal", kPoints, kResponse, "none", Write("counts.csv", "0,3000\n3,5000\n")});
    EXPECT_EQ(beyond.status, 1);
    EXPECT_TRUE(Contains(beyond.err, "qv: counts for page 3, which does not exist")) << beyond.err;
    SRun header = Run({"cal", kPoints, kResponse, "none", Write("counts.csv", "0,3000\nPage,counts\n")});
    EXPECT_EQ(header.status, 1);
    EXPECT_TRUE(Contains(header.err, "counts.csv:2: expected page,counts[,truth]")) << header.err;
}

// Work stays bounded by a documented limit whatever the input's size.
TEST_F(QvTool, CalBoundsItsWork) {
    std::string const huge = Path("huge.csv");
    ASSERT_EQ(truncate(Write("huge.csv", "").c_str(), off_t(2) << 30), 0); // 2 GB, sparse
    ExpectRefused({"cal", huge, kResponse, "none", kCounts}, 1, "huge.csv is larger than the 16 MiB an input may hold");
    ExpectRefused({"cal", kPoints, huge, "none", kCounts}, 1, "is larger than the 16 MiB");
    ExpectRefused({"cal", "-", kResponse, "none", kCounts}, 1, "standard input is not a text file", "/dev/zero");

    // Many points are added at once and fitted once.
    std::string points = "order,0,1\n";
    for (int i = 0; i < 10000; ++i)
        points += "0," + std::to_string(i % 100) + ",1," + std::to_string(3000 + 100 * (i % 100) + i / 100) +
                  ",none,0,1,0,1\n";
    SRun many = Run({"cal", Write("many.csv", points), kResponse, "none", "3000"});
    EXPECT_EQ(many.status, 0) << many.err;
    EXPECT_TRUE(Contains(many.err, "page 0: 10000 points, 10000 enabled\n")) << many.err;
}

TEST_F(QvTool, SafShowAndSetOnACopy) {
    std::string const original = ReadFile(kSaf);
    SRun shown = Run({"saf", "show", kSaf});
    ASSERT_EQ(shown.status, 0) << shown.err;
    EXPECT_TRUE(Contains(shown.out, "Camera = qv synthetic camera\n")) << shown.out;
    EXPECT_TRUE(Contains(shown.out, "xPixls = 64\n"));
    EXPECT_TRUE(Contains(shown.out, "\ndata offset: 2312\n")) << shown.out;
    EXPECT_FALSE(Contains(shown.out, "Operator"));
    SRun piped = Run({"saf", "show", "-"}, kSaf);
    ASSERT_EQ(piped.status, 0) << piped.err;
    EXPECT_EQ(piped.out, shown.out);

    std::string const copy = Path("sample.saf");
    std::filesystem::copy_file(kSaf, copy);
    SRun added = Run({"saf", "set", copy, "Operator", "Night shift"});
    ASSERT_EQ(added.status, 0) << added.err;
    EXPECT_TRUE(Contains(added.out, "Operator: added 'Night shift'\n")) << added.out;
    EXPECT_TRUE(Contains(added.out, "data segment stayed at 2312\n")) << added.out;
    SRun changed = Run({"saf", "set", copy, "Camera", "bench rig"});
    ASSERT_EQ(changed.status, 0) << changed.err;
    EXPECT_TRUE(Contains(changed.out, "Camera: 'qv synthetic camera' -> 'bench rig'\n")) << changed.out;
    // A value is shown as a load reads it back: without its outer blanks.
    SRun blanks = Run({"saf", "set", copy, "Lens", "  25 mm  "});
    ASSERT_EQ(blanks.status, 0) << blanks.err;
    EXPECT_TRUE(Contains(blanks.out, "Lens: added '25 mm'\n")) << blanks.out;
    SRun negative = Run({"saf", "set", copy, "Offset", "-5"}); // a negative number is no option
    ASSERT_EQ(negative.status, 0) << negative.err;
    SRun dashed = Run({"saf", "set", "--", copy, "Note", "--json"}); // -- ends the options
    ASSERT_EQ(dashed.status, 0) << dashed.err;
    EXPECT_TRUE(Contains(dashed.out, "Note: added '--json'\n")) << dashed.out;

    SRun after = Run({"saf", "show", copy});
    ASSERT_EQ(after.status, 0) << after.err;
    for (char const *line : {"Operator = Night shift\n", "Camera = bench rig\n", "Lens = 25 mm\n", "Offset = -5\n"})
        EXPECT_TRUE(Contains(after.out, line)) << line << after.out;
    EXPECT_TRUE(Contains(after.out, "\ndata offset: 2312\n")) << after.out;
    // The frames behind the header are untouched.
    EXPECT_EQ(ReadFile(copy).substr(2312), original.substr(2312));
    EXPECT_EQ(ReadFile(kSaf), original);
}

TEST_F(QvTool, SafRefusesWhatItCannotDo) {
    std::string const copy = Path("sample.saf");
    std::filesystem::copy_file(kSaf, copy);
    std::string const before = ReadFile(copy);
    ExpectRefused({"saf", "set", copy, "bad name", "x"}, 1, "cannot store tag 'bad name'");
    ExpectRefused({"saf", "set", copy, "DATA", "x"}, 1, "DATA is not a tag one can set");
    ExpectRefused({"saf", "set", copy, "saf_padding", "x"}, 1, "saf_padding is not a tag one can set");
    ExpectRefused({"saf", "set", copy, "", "x"}, 1, "a tag name cannot be empty");
    ExpectRefused({"saf", "set", "-", "Camera", "x"}, 1, "standard input cannot be changed");
    EXPECT_EQ(ReadFile(copy), before);

    ExpectRefused({"saf", "show", Path("missing.saf")}, 1,
                  "cannot open " + Path("missing.saf") + ": No such file or directory");
    ExpectRefused({"saf", "show", dir}, 1, "cannot open " + dir + ": Is a directory");
    ExpectRefused({"saf", "show", Write("junk.saf", "not a header\n")}, 1, "could not be read as a SAF file");
    ExpectRefused({"saf", "show", "-"}, 1, "standard input is not a SAF file", Write("junk.saf", "x\n"));
    // A header cut short would show as whole, its data offset at the cut.
    std::string const cut = Write("cut.saf", ReadFile(kSaf).substr(0, 120));
    ExpectRefused({"saf", "show", cut}, 1, cut + " ends inside its header (no DATA line): the file is cut short");
    ExpectRefused({"saf", "show", "-"}, 1, "standard input ends inside its header", cut);
    ExpectRefused({"saf", "set", cut, "Camera", "x"}, 1, "ends inside its header");
    SRun headerOnly = Run({"saf", "show", Write("header.saf", "HdSize auto\r\nCamera c\r\ndata\r\n")});
    EXPECT_EQ(headerOnly.status, 0) << headerOnly.err;
    EXPECT_TRUE(Contains(headerOnly.out, "data offset: 29\n")) << headerOnly.out;
    SRun fixedSize = Run({"saf", "show", Write("fixed.saf", "HdSize 20\r\nCamera c\r\n")});
    EXPECT_EQ(fixedSize.status, 0) << fixedSize.err;
    if (geteuid() != 0) {
        std::filesystem::permissions(copy, std::filesystem::perms::owner_read);
        ExpectRefused({"saf", "set", copy, "Camera", "x"}, 1, "cannot open " + copy + ": Permission denied");
    }
}

TEST_F(QvTool, SafShowEscapesBinaryBytes) {
    std::string const header = std::string("HdSize auto\r\nRaw a\x1b[2J\x01\xff\\b\r\nText \xc3\xa9t\xc3\xa9\r\n") +
                               "Csi \xc2\x9b" + "1m\r\nDATA\r\n";
    std::string const file = Write("binary.saf", header + std::string(16, '\0'));
    SRun shown = Run({"saf", "show", file});
    ASSERT_EQ(shown.status, 0) << shown.err;
    // The loader made U+FFFD of the byte that is no UTF-8.
    EXPECT_TRUE(Contains(shown.out, "Raw = a\\x1B[2J\\x01\xef\xbf\xbd\\\\b\n")) << shown.out;
    EXPECT_TRUE(Contains(shown.out, "Text = \xc3\xa9t\xc3\xa9\n")) << shown.out; // text passes as it is
    EXPECT_TRUE(Contains(shown.out, "Csi = \\x9B1m\n")) << shown.out;
    for (char c : shown.out)
        EXPECT_TRUE(c == '\n' || static_cast<unsigned char>(c) >= 0x20) << int(c);
}

// --json output is one object a JSON parser reads; python3 judges it where
// it is installed.
TEST_F(QvTool, JsonOutputsParse) {
    SRun saf = Run({"saf", "show", "--json", kSaf});
    ASSERT_EQ(saf.status, 0) << saf.err;
    EXPECT_EQ(saf.out.rfind("{\"file\":", 0), 0u) << saf.out;
    EXPECT_TRUE(Contains(saf.out, "{\"name\":\"Camera\",\"value\":\"qv synthetic camera\"}")) << saf.out;
    EXPECT_TRUE(Contains(saf.out, "\"dataOffset\":2312}\n")) << saf.out;
    SRun date = Run({"date", "--json", "2024-02-29 13:45:10"});
    ASSERT_EQ(date.status, 0) << date.err;
    EXPECT_TRUE(Contains(date.out, "\"year\":2024,\"month\":2,\"day\":29,")) << date.out;
    EXPECT_TRUE(Contains(date.out, "\"irig\":\"13:45:10.000000\"")) << date.out;
    SRun band = Run({"band", "--json", kResponse, "35"});
    ASSERT_EQ(band.status, 0) << band.err;
    EXPECT_TRUE(Contains(band.out, "\"kind\":\"response\",\"points\":60,\"start\":4.7,\"end\":4.8239,")) << band.out;
    EXPECT_TRUE(Contains(band.out, "\"bandLow\":4.721,\"bandHigh\":4.8029}")) << band.out;
    std::string const header = std::string("HdSize auto\r\nRaw \"q\"\x01\xff\\\r\nDATA\r\n");
    SRun binary = Run({"saf", "show", "--json", Write("binary.saf", header)});
    ASSERT_EQ(binary.status, 0) << binary.err;
    EXPECT_TRUE(Contains(binary.out, "\"value\":\"\\\"q\\\"\\u0001\xef\xbf\xbd\\\\\"")) << binary.out;

    if (std::system("python3 -c '' 2>/dev/null") != 0) GTEST_SKIP() << "python3 is not installed";
    for (SRun const *run : {&saf, &date, &band, &binary}) {
        std::string const json = Write("out.json", run->out);
        std::string const check =
            "python3 -c 'import json,sys; json.load(open(sys.argv[1], encoding=\"utf-8\"))' " + json;
        EXPECT_EQ(std::system(check.c_str()), 0) << run->out;
    }
}

TEST_F(QvTool, DatePrintsTheFieldsAndBothForms) {
    SRun run = Run({"date", "2024-02-29 13:45:10"});
    ASSERT_EQ(run.status, 0) << run.err;
    for (char const *line : {"year: 2024\n", "month: 2\n", "day: 29\n", "hour: 13\n", "minute: 45\n", "second: 10\n"})
        EXPECT_TRUE(Contains(run.out, line)) << line << run.out;
    EXPECT_TRUE(Contains(run.out, "\nirig: 13:45:10.000000\n")) << run.out;
    // The timestamp counts the seconds of the year from the day it printed.
    size_t day = run.out.find("dayInYear: ");
    ASSERT_NE(day, std::string::npos) << run.out;
    long seconds = (std::atol(run.out.c_str() + day + 11) * 24 + 13) * 3600 + 45 * 60 + 10;
    EXPECT_TRUE(Contains(run.out, "\ntimestamp: " + std::to_string(seconds) + ".000000\n")) << run.out;

    SRun junk = Run({"date", "no date here"});
    EXPECT_EQ(junk.status, 0) << junk.err; // unreadable text reads as zero
    EXPECT_TRUE(Contains(junk.out, "\nirig: ")) << junk.out;
}

TEST_F(QvTool, BandOfAResponseAndAnAtmosphere) {
    SRun response = Run({"band", kResponse, "35"});
    ASSERT_EQ(response.status, 0) << response.err;
    EXPECT_TRUE(Contains(response.out, ": spectral response, 60 points, 4.7 to 4.8239 um\n")) << response.out;
    // The first and last samples above half the peak of 1.
    EXPECT_TRUE(Contains(response.out, "\nband (half maximum): 4.721 to 4.8029 um\n")) << response.out;
    EXPECT_TRUE(Contains(response.out, "\nin-band radiance at 35 C: ")) << response.out;
    SRun piped = Run({"band", "-", "35"}, kResponse);
    ASSERT_EQ(piped.status, 0) << piped.err;
    EXPECT_EQ(piped.out.substr(piped.out.find(':')), response.out.substr(response.out.find(':')));

    SRun atmosphere = Run({"band", kAtmosphere, "35"});
    ASSERT_EQ(atmosphere.status, 0) << atmosphere.err;
    EXPECT_TRUE(Contains(atmosphere.out, ": atmosphere table, 51 points, ")) << atmosphere.out;
    // The total is the source through the path plus the path's own radiance.
    std::string const at = "in-band radiance at 35 C: ", through = "(source through the path ", path = ", path ";
    size_t total = atmosphere.out.find(at), source = atmosphere.out.find(through);
    ASSERT_TRUE(total != std::string::npos && source != std::string::npos) << atmosphere.out;
    size_t air = atmosphere.out.find(path, source + through.size());
    ASSERT_NE(air, std::string::npos) << atmosphere.out;
    double sum = Number(atmosphere.out.substr(source + through.size(), 12)) +
                 Number(atmosphere.out.substr(air + path.size(), 12));
    EXPECT_NEAR(Number(atmosphere.out.substr(total + at.size(), 12)), sum, 1e-10) << atmosphere.out;
    EXPECT_GT(sum, 0.0);

    SRun csv = Run({"band", "--csv", kAtmosphere, "35"});
    ASSERT_EQ(csv.status, 0) << csv.err;
    EXPECT_EQ(csv.out.rfind("wavelength_um,transmission,path_radiance\n", 0), 0u) << csv.out;
    EXPECT_EQ(std::count(csv.out.begin(), csv.out.end(), '\n'), 52);
    SRun curve = Run({"band", "--csv", kResponse, "35"});
    ASSERT_EQ(curve.status, 0) << curve.err;
    EXPECT_TRUE(Contains(curve.out, "wavelength_um,response\n4.7,0\n")) << curve.out;
}

TEST_F(QvTool, BandRefusesWhatHasNoRadiance) {
    ExpectRefused({"band", kResponse, "warm"}, 2, "usage: qv band FILE CELSIUS");
    ExpectRefused({"band", kResponse, "1e308"}, 2, "usage: qv band FILE CELSIUS");
    ExpectRefused({"band", kResponse, "-300"}, 2, "usage: qv band FILE CELSIUS");
    ExpectRefused({"band", Path("missing.txt"), "35"}, 1, "missing.txt: No such file or directory");
    ExpectRefused({"band", kSaf, "35"}, 1, "is not a text file (it holds a NUL byte)");
    ExpectRefused({"band", Write("header.saf", "HdSize 2271\r\nWidth 64\r\n"), "35"}, 1,
                  ":1: expected two numbers (wavelength in microns, response), found 'HdSize 2271'");
    ExpectRefused({"band", Write("falling.txt", "4.7 0\n4.8 1\n4.75 0.5\n"), "35"}, 1, "is not a usable response");
    SRun falling = Run({"band", Write("falling.txt", "4.8 1\n4.75 0.5\n4.7 0\n"), "35"});
    EXPECT_EQ(falling.status, 0) << falling.err;
    EXPECT_TRUE(Contains(falling.out, "3 points, 4.7 to 4.8 um\n")) << falling.out;
    std::string const table = ReadFile(kAtmosphere);
    ExpectRefused({"band", Write("cut.table", table.substr(0, table.find("-9999."))), "35"}, 1, "no -9999. end line");
}

TEST_F(QvTool, HelpAndVersion) {
    for (std::vector<std::string> args : {std::vector<std::string>{"--help"}, {"-h"}, {"help"}}) {
        SRun help = Run(args);
        EXPECT_EQ(help.status, 0) << args[0];
        EXPECT_TRUE(Contains(help.out, "usage: qv COMMAND [ARGUMENTS]")) << help.out;
        EXPECT_TRUE(Contains(help.out, "  cal [--csv] [--save PATH] [--inc PATH] POINTS RESPONSE ATMOSPHERE COUNTS\n"))
            << help.out;
        EXPECT_TRUE(Contains(help.out, "  saf show [--json] FILE\n")) << help.out;
        EXPECT_EQ(help.err, "");
    }
    for (std::vector<std::string> args : {std::vector<std::string>{"help", "saf", "show"},
                                          {"saf", "show", "--help"},
                                          {"saf", "show", "-h", "ignored.saf"}}) {
        SRun help = Run(args);
        EXPECT_EQ(help.status, 0) << args.back();
        EXPECT_EQ(help.out.rfind("usage: qv saf show [--json] FILE\n", 0), 0u) << help.out;
    }
    SRun cal = Run({"cal", "--help"});
    EXPECT_EQ(cal.status, 0);
    EXPECT_TRUE(Contains(cal.out, "  COUNTS      a file of page,counts[,truth] lines")) << cal.out;
    ExpectRefused({"help", "frobnicate"}, 2, "qv: no command 'frobnicate'");

    SRun version = Run({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out, "qv " QV_VERSION_STRING "\n");
}

TEST_F(QvTool, WrongCommandLinesPrintUsage) {
    ExpectRefused({"frobnicate"}, 2, "qv: unknown command 'frobnicate'");
    ExpectRefused({"saf"}, 2, "qv: 'saf' needs a sub-command: 'saf show', 'saf set'");
    ExpectRefused({"date"}, 2, "usage: qv date [--json] TEXT");
    ExpectRefused({"date", "--csv", "2024-01-01"}, 2, "qv date: unknown option '--csv'");
    ExpectRefused({"saf", "show", "--frobnicate", kSaf}, 2, "qv saf show: unknown option '--frobnicate'");
    ExpectRefused({"band", "--json", "--csv", kResponse, "35"}, 2, "--json and --csv cannot be given together");
    SRun bare = Run({});
    EXPECT_EQ(bare.status, 2);
    EXPECT_TRUE(Contains(bare.err, "usage: qv COMMAND [ARGUMENTS]")) << bare.err;
}

// Output that could not be written is a failure, whatever the command.
TEST_F(QvTool, AFailedWriteToStandardOutputFails) {
    if (access("/dev/full", W_OK) != 0) GTEST_SKIP() << "no /dev/full";
    for (std::vector<std::string> args : {std::vector<std::string>{"saf", "show", kSaf},
                                          {"--help"},
                                          {"--version"},
                                          {"cal", kPoints, kResponse, kAtmosphere, kCounts},
                                          {"band", kResponse, "35"}}) {
        SRun run = Run(args, "/dev/null", "/dev/full");
        EXPECT_EQ(run.status, 1) << args[0];
        EXPECT_TRUE(Contains(run.err, "qv: cannot write to standard output: No space left on device")) << run.err;
    }
}

// qv saf frames / frame read the sample's image header and its counts.
TEST_F(QvTool, SafFramesListsAndPrintsTheSampleFrames) {
    SRun listed = Run({"saf", "frames", kSaf});
    ASSERT_EQ(listed.status, 0) << listed.err;
    EXPECT_TRUE(Contains(listed.out, "size: 64 x 48\nbits: 14\nframe bytes: 6144\n")) << listed.out;
    EXPECT_TRUE(Contains(listed.out, "\nframes: 4\n")) << listed.out;
    SRun frame = Run({"saf", "frame", "--csv", kSaf, "3"});
    ASSERT_EQ(frame.status, 0) << frame.err;
    EXPECT_EQ(Run({"saf", "frame", kSaf, "3"}).out, frame.out); // CSV is the only form
    std::vector<std::vector<std::string>> rows;
    std::stringstream in(frame.out);
    std::string heading;
    std::getline(in, heading);
    EXPECT_EQ(heading.substr(0, 9), "x0,x1,x2,");
    EXPECT_EQ(heading.substr(heading.size() - 4), ",x63");
    for (std::string line; std::getline(in, line);)
        rows.push_back(SplitCsv(line));
    ASSERT_EQ(rows.size(), 48u);
    ASSERT_EQ(rows[24].size(), 64u);
    EXPECT_GT(std::stoi(rows[24][46]), std::stoi(rows[24][16]) + 2000) << "the warm disc is at column 46";
    ExpectRefused({"saf", "frame", "--csv", kSaf, "4"}, 1, "no frame '4'");
    ExpectRefused({"saf", "frame", "--csv", kSaf, "-1"}, 1, "no frame '-1'");
    ExpectRefused({"saf", "frames", kCounts}, 1, "is not a SAF image file");
}

// qv render: a PNG pngcheck accepts, a float TIFF tiffinfo accepts, whose
// pixels are the temperatures the calibration gives for the frame's counts.
TEST_F(QvTool, RenderWritesAPictureAndTheTemperatures) {
    std::string const cal = Path("camera.cal"), png = Path("frame.png"), tiff = Path("frame.tiff");
    ASSERT_EQ(Run({"cal", "--csv", "--save", cal, kPoints, kResponse, kAtmosphere, "3000"}).status, 0);
    SRun rendered = Run({"render", kSaf, cal, png, tiff});
    ASSERT_EQ(rendered.status, 0) << rendered.err;
    EXPECT_EQ(ReadFile(png).substr(1, 3), "PNG");
    if (std::system("command -v pngcheck >/dev/null 2>&1") == 0) {
        EXPECT_EQ(std::system(("pngcheck -q " + png + " >/dev/null").c_str()), 0);
    }
    if (std::system("command -v tiffinfo >/dev/null 2>&1") == 0) {
        EXPECT_EQ(std::system(("tiffinfo " + tiff + " >/dev/null 2>&1").c_str()), 0);
    }

    qv::CRCalFile loaded;
    ASSERT_TRUE(loaded.Load(nullptr, qv::CString(cal.c_str()), 0));
    qv::CSAFFrames frames;
    ASSERT_TRUE(frames.Open(qv::CString(kSaf.c_str()).GetUTF16()));
    std::vector<uint16_t> counts(64 * 48);
    ASSERT_TRUE(frames.ReadFrame(0, counts.data()));
    std::vector<float> expected(counts.size()), written(counts.size());
    ASSERT_TRUE(qv::CountsToTemperatures(loaded, 0, {counts.data(), qv::DT_UInt16}, {expected.data(), qv::DT_Float},
                                         uint32_t(counts.size())));
    qv::CFile file;
    ASSERT_TRUE(file.Open(qv::CString(tiff.c_str()).GetUTF16(), 0x02 | 0x10));
    ASSERT_TRUE(qv::LoadTIFFRaw(&file, written.data(), (unsigned long)(written.size() * sizeof(float))));
    EXPECT_EQ(written[24 * 64 + 16], expected[24 * 64 + 16]);
    EXPECT_EQ(written, expected);
    EXPECT_NEAR(written[24 * 64 + 16], 45.0, 1.5) << "the warm disc of the sample scene";

    // The same counts as a 16-bit TIFF give the same temperatures.
    std::string const countsTiff = Path("counts.tiff"), fromTiff = Path("from_tiff.tiff");
    ASSERT_TRUE(qv::SaveTIFFRaw(qv::CString(countsTiff.c_str()).GetUTF16(), counts.data(), 64, 48, qv::DT_UInt16));
    SRun tiffRendered = Run({"render", countsTiff, cal, png, fromTiff});
    ASSERT_EQ(tiffRendered.status, 0) << tiffRendered.err;
    qv::CFile second;
    ASSERT_TRUE(second.Open(qv::CString(fromTiff.c_str()).GetUTF16(), 0x02 | 0x10));
    std::vector<float> again(counts.size());
    ASSERT_TRUE(qv::LoadTIFFRaw(&second, again.data(), (unsigned long)(again.size() * sizeof(float))));
    EXPECT_EQ(again, expected);

    // Fitted on the spot from the sample points: the same temperatures.
    std::string const fitted = Path("fitted.tiff");
    SRun fit = Run({"render", "fit", kSaf, kPoints, kResponse, kAtmosphere, png, fitted});
    ASSERT_EQ(fit.status, 0) << fit.err;
    EXPECT_EQ(ReadFile(fitted), ReadFile(tiff));

    ExpectRefused({"render", kCounts, cal, png, tiff}, 1, "is neither a SAF image file");
    ExpectRefused({"render", kSaf, kCounts, png, tiff}, 1, "is not a calibration file qv can read");
    ExpectRefused({"render", kSaf, cal, Path("no/dir/x.png"), tiff}, 1,
                  "cannot write " + Path("no/dir/x.png") + ": No such file or directory");
}

// Exactly one line on standard error, nothing on standard output.
#define EXPECT_ONE_SENTENCE(run, code, message)                                                                        \
    do {                                                                                                               \
        SRun const &r_ = (run);                                                                                        \
        EXPECT_EQ(r_.status, code) << r_.err;                                                                          \
        EXPECT_TRUE(Contains(r_.err, message)) << "wanted: " << (message) << "\ngot: " << r_.err;                      \
        EXPECT_EQ(std::count(r_.err.begin(), r_.err.end(), '\n'), 1) << r_.err;                                        \
        EXPECT_EQ(r_.out, "");                                                                                         \
    } while (0)

// An extract never writes over the container it reads, and a failed one
// leaves an old file at OUT as it was.
TEST_F(QvTool, ExtractsKeepTheContainerAndAnyOldOutput) {
    std::string const vqr = Path("c.vqr"), cdfs = Path("c.cdfs"), kept = Write("kept.txt", "old bytes\n");
    ASSERT_EQ(Run({"vqr", "put", vqr, "1", "2", "3", kCounts}).status, 0);
    ASSERT_EQ(Run({"cdfs", "add", cdfs, kCounts}).status, 0);
    std::string const vqrBytes = ReadFile(vqr), cdfsBytes = ReadFile(cdfs);
    EXPECT_ONE_SENTENCE(Run({"vqr", "extract", vqr, "1", "2", "3", vqr}), 1,
                        vqr + " would overwrite another file of the command");
    EXPECT_ONE_SENTENCE(Run({"cdfs", "extract", cdfs, "/cal_counts.csv", cdfs}), 1,
                        cdfs + " would overwrite another file of the command");
    EXPECT_EQ(ReadFile(vqr), vqrBytes);
    EXPECT_EQ(ReadFile(cdfs), cdfsBytes);

    EXPECT_ONE_SENTENCE(Run({"cdfs", "extract", cdfs, "/missing", kept}), 1, "holds no file /missing");
    EXPECT_ONE_SENTENCE(Run({"vqr", "extract", vqr, "1", "2", "4", kept}), 1, "holds no block 1 2 4");
    EXPECT_EQ(ReadFile(kept), "old bytes\n");
    EXPECT_ONE_SENTENCE(Run({"cdfs", "extract", cdfs, "/cal_counts.csv", Path("no/dir/x")}), 1,
                        "cannot write " + Path("no/dir/x") + ": No such file or directory");
    EXPECT_ONE_SENTENCE(Run({"vqr", "extract", vqr, "1", "2", "3", dir}), 1,
                        "cannot write " + dir + ": Is a directory");

    // A good extract replaces the old file whole.
    ASSERT_EQ(Run({"cdfs", "extract", cdfs, "/cal_counts.csv", kept}).status, 0);
    EXPECT_EQ(ReadFile(kept), ReadFile(kCounts));
    ASSERT_EQ(Run({"vqr", "extract", vqr, "1", "2", "3", kept}).status, 0);
    EXPECT_EQ(ReadFile(kept), ReadFile(kCounts));
}

// A source that cannot be read is refused before the store is made or
// given an entry.
TEST_F(QvTool, CdfsAddRefusesAnUnreadableSourceFirst) {
    std::string const cdfs = Path("c.cdfs"), fresh = Path("fresh.cdfs");
    ASSERT_EQ(Run({"cdfs", "add", cdfs, kCounts}).status, 0);
    std::string const before = ReadFile(cdfs);
    EXPECT_ONE_SENTENCE(Run({"cdfs", "add", cdfs, dir}), 1, "cannot read " + dir + ": Is a directory");
    EXPECT_ONE_SENTENCE(Run({"cdfs", "add", fresh, Path("missing")}), 1,
                        "cannot open " + Path("missing") + ": No such file or directory");
    EXPECT_EQ(ReadFile(cdfs), before);
    EXPECT_FALSE(std::filesystem::exists(fresh));
}

// Render writes two files of its own: "-", an input or the other output as
// a target is refused before anything is written.
TEST_F(QvTool, RenderOutputsAreFilesOfTheirOwn) {
    std::string const cal = Path("camera.cal"), frames = Path("sample.saf"), png = Path("f.png");
    ASSERT_EQ(Run({"cal", "--csv", "--save", cal, kPoints, kResponse, kAtmosphere, "3000"}).status, 0);
    std::filesystem::copy_file(kSaf, frames);
    std::string const calBytes = ReadFile(cal);
    EXPECT_ONE_SENTENCE(Run({"render", frames, cal, frames, Path("f.tiff")}), 1,
                        frames + " would overwrite another file of the command");
    EXPECT_ONE_SENTENCE(Run({"render", frames, cal, png, cal}), 1, cal + " would overwrite another file");
    EXPECT_ONE_SENTENCE(Run({"render", frames, cal, png, png}), 1, png + " would overwrite another file");
    EXPECT_ONE_SENTENCE(Run({"render", "fit", frames, kPoints, kResponse, kAtmosphere, png, kPoints}), 1,
                        kPoints + " would overwrite another file");
    EXPECT_ONE_SENTENCE(Run({"render", frames, cal, "-", Path("f.tiff")}), 1, "- names none");
    EXPECT_ONE_SENTENCE(Run({"render", Path("missing.saf"), cal, png, Path("f.tiff")}), 1,
                        "cannot open " + Path("missing.saf") + ": No such file or directory");
    EXPECT_EQ(ReadFile(frames), ReadFile(kSaf));
    EXPECT_EQ(ReadFile(cal), calBytes);
    EXPECT_FALSE(std::filesystem::exists(png));
}

// Commands whose loader only knows "not my kind of file" first ask the
// system, so that a missing file or a directory is named as such.
TEST_F(QvTool, LoadersGiveTheSystemsReason) {
    std::string const missing = Path("missing.ini");
    for (std::vector<std::string> args : {std::vector<std::string>{"saf", "frames", missing},
                                          {"saf", "frame", "--csv", missing, "0"},
                                          {"version", "show", missing},
                                          {"pod", "show", missing},
                                          {"pod", "export", "--csv", missing},
                                          {"cdfs", "list", missing},
                                          {"cdfs", "check", missing},
                                          {"config", "get", missing, "/a"},
                                          {"config", "dump", missing}})
        EXPECT_ONE_SENTENCE(Run(args), 1, "cannot open " + missing + ": No such file or directory");
    for (std::vector<std::string> args : {std::vector<std::string>{"saf", "frames", dir},
                                          {"version", "show", dir},
                                          {"pod", "get", dir, "0", "0"},
                                          {"cdfs", "list", dir}})
        EXPECT_ONE_SENTENCE(Run(args), 1, dir + ": Is a directory");
}

// Writers that make their file say why the system would not let them.
TEST_F(QvTool, WritersGiveTheSystemsReason) {
    for (char const *name : {"x.vqr", "x.xdn", "x.cdfs", "x.db", "x.ini", "x.xml"}) {
        std::string const target = Path("no/dir/") + name, kind = std::string(name).substr(2);
        std::vector<std::string> args = kind == "vqr" || kind == "xdn"
                                            ? std::vector<std::string>{kind, "put", target, "1", "2", "3", kCounts}
                                        : kind == "cdfs" ? std::vector<std::string>{"cdfs", "add", target, kCounts}
                                                         : std::vector<std::string>{"config", "set", target, "/a", "1"};
        EXPECT_ONE_SENTENCE(Run(args), 1, "cannot write " + target + ": No such file or directory");
    }
    EXPECT_ONE_SENTENCE(Run({"cdfs", "add", dir, kCounts}), 1, "cannot write " + dir + ": Is a directory");
}

// A failed write to standard output is told once, with the system's reason.
TEST_F(QvTool, StandardOutputFailureIsToldOnce) {
    if (access("/dev/full", W_OK) != 0) GTEST_SKIP() << "no /dev/full";
    std::string const vqr = Path("c.vqr"), tags = Write("tags.xml", "<?xml version=\"1.0\"?>\n<TagFile>\n"
                                                                    "<TagEntry Name=\"xPixls\"/>\n</TagFile>\n");
    ASSERT_EQ(Run({"vqr", "put", vqr, "1", "2", "3", kCounts}).status, 0);
    for (std::vector<std::string> args :
         {std::vector<std::string>{"tags", "convert", tags, "-"}, {"vqr", "extract", vqr, "1", "2", "3", "-"}}) {
        SRun run = Run(args, "/dev/null", "/dev/full");
        EXPECT_EQ(run.status, 1) << args[0];
        EXPECT_EQ(run.err, "qv: cannot write to standard output: No space left on device\n") << args[0];
    }
}

// A setting is written only when the store's file reads it back as given.
TEST_F(QvTool, ConfigSetRefusesWhatTheFileWouldChange) {
    std::string const ini = Path("s.ini"), xml = Path("s.xml");
    ASSERT_EQ(Run({"config", "set", ini, "/a/b", "5"}).status, 0);
    std::string const before = ReadFile(ini);
    EXPECT_ONE_SENTENCE(Run({"config", "set", ini, "/a/c", "x=y"}), 1,
                        ini + " cannot hold 'x=y' so that it reads back as given");
    EXPECT_ONE_SENTENCE(Run({"config", "set", ini, "/a/c", "x\ty"}), 1, "nothing was written");
    EXPECT_ONE_SENTENCE(Run({"config", "set", ini, "", "1"}), 1, "'' names no setting");
    EXPECT_EQ(ReadFile(ini), before);
    EXPECT_ONE_SENTENCE(Run({"config", "set", dir + "/", "/a", "1"}), 1, "is not a settings store");
    // XML keeps the sign.
    ASSERT_EQ(Run({"config", "set", xml, "/a/c", "x=y"}).status, 0);
    SRun got = Run({"config", "get", xml, "/a/c"});
    EXPECT_EQ(got.status, 0) << got.err;
    EXPECT_EQ(got.out, "x=y\n");
}

// pod set and pod get say why the table refused: a value no line of the
// table can hold (the old file stays), a cell that is not UTF-8 text.
TEST_F(QvTool, PodCommandsGiveTheTablesReason) {
    std::string const table = Path("t.pod");
    {
        qv::CPODFile pod;
        ASSERT_TRUE(pod.New());
        ASSERT_EQ(pod.AddColumn(u"Time", u"Unclassified", u"seconds", u""), 0u);
        pod.AllocRows(2);
        ASSERT_TRUE(pod.PutValue(0, 0, u"1"));
        ASSERT_TRUE(pod.PutValue(0, 1, u"2"));
        ASSERT_TRUE(pod.Save(&qv::GetFileSystem(), qv::CString(table.c_str()).GetUTF16(), false, false));
    }
    std::string const before = ReadFile(table);
    EXPECT_ONE_SENTENCE(Run({"pod", "set", table, "0", "0", "a\"b"}), 1,
                        "cannot write " + table + " (the old file is unchanged): A value or column text holds a double "
                                                  "quote");
    EXPECT_EQ(ReadFile(table), before);
    ASSERT_EQ(Run({"pod", "set", table, "0", "0", "7"}).status, 0);
    SRun got = Run({"pod", "get", table, "0", "0"});
    EXPECT_EQ(got.out, "7\n") << got.err;
    std::string text = ReadFile(table);
    size_t const cell = text.rfind("\r\n2");
    ASSERT_NE(cell, std::string::npos);
    text[cell + 2] = char(0xFF);
    Write("t.pod", text);
    EXPECT_ONE_SENTENCE(Run({"pod", "get", table, "1", "0"}), 1,
                        "cannot read row 1 of " + table + ": A cell of the table is not UTF-8 text.");
}

// "-" reads standard input wherever a file is only read, and is refused
// where a file would be changed in place.
TEST_F(QvTool, StandardInputWhereAFileIsRead) {
    std::string const vqr = Path("c.vqr"), cdfs = Path("c.cdfs");
    ASSERT_EQ(Run({"vqr", "put", vqr, "1", "2", "3", kCounts}).status, 0);
    ASSERT_EQ(Run({"cdfs", "add", cdfs, kCounts}).status, 0);
    for (auto const &[args, input] : std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{"saf", "frames", "-"}, kSaf},
             {{"saf", "frame", "-", "1"}, kSaf},
             {{"vqr", "list", "-"}, vqr},
             {{"vqr", "extract", "-", "1", "2", "3", "-"}, vqr},
             {{"cdfs", "list", "-"}, cdfs},
             {{"cdfs", "extract", "-", "/cal_counts.csv", "-"}, cdfs}}) {
        std::vector<std::string> named = args;
        named[2] = input; // FILE; an OUT of - stays standard output
        SRun piped = Run(args, input), direct = Run(named);
        EXPECT_EQ(piped.status, 0) << args[0] << " " << args[1] << ": " << piped.err;
        EXPECT_EQ(piped.out, direct.out) << args[0] << " " << args[1];
        EXPECT_NE(piped.out, "") << args[0] << " " << args[1];
    }
    for (std::vector<std::string> args : {std::vector<std::string>{"vqr", "put", "-", "1", "2", "3", kCounts},
                                          {"cdfs", "add", "-", kCounts},
                                          {"pod", "set", "-", "0", "0", "x"},
                                          {"version", "set", "-", "Beta", "yes"}})
        EXPECT_ONE_SENTENCE(Run(args, kSaf), 1, "changes its file in place; standard input cannot be changed");
    EXPECT_FALSE(std::filesystem::exists("-"));
    // A message names what was given, not the temporary copy.
    EXPECT_ONE_SENTENCE(Run({"saf", "frames", "-"}, kCounts), 1, "qv: standard input is not a SAF image file");
    EXPECT_ONE_SENTENCE(Run({"vqr", "list", "-"}, kCounts), 1, "qv: standard input is not a sound VQR container");
}

// Every --json output is one JSON document, and every CSV output has a
// heading and rows of its width, as python3 reads them.
TEST_F(QvTool, JsonAndCsvOutputsReadWithPython) {
    if (std::system("python3 -c '' 2>/dev/null") != 0) GTEST_SKIP() << "python3 is not installed";
    std::string const vqr = Path("c.vqr"), cal = Path("c.cal"), ini = Path("s.ini");
    ASSERT_EQ(Run({"vqr", "put", vqr, "1", "2", "3", kCounts}).status, 0);
    ASSERT_EQ(Run({"cal", "--csv", "--save", cal, kPoints, kResponse, kAtmosphere, "3000"}).status, 0);
    ASSERT_EQ(Run({"config", "set", ini, "/a/b", "say \"hi\"\\"}).status, 0);
    for (std::vector<std::string> args : {std::vector<std::string>{"saf", "show", "--json", kSaf},
                                          {"band", "--json", kAtmosphere, "20"},
                                          {"cal", "show", "--json", cal},
                                          {"date", "--json", "2024-02-29"},
                                          {"vqr", "list", "--json", vqr},
                                          {"config", "dump", "--json", ini}}) {
        SRun run = Run(args);
        ASSERT_EQ(run.status, 0) << args[0] << run.err;
        std::string const file = Write("out.json", run.out);
        EXPECT_EQ(std::system(("python3 -m json.tool " + file + " >/dev/null").c_str()), 0) << run.out;
    }
    std::string const check = "python3 -c 'import csv,sys; r=list(csv.reader(open(sys.argv[1], newline=\"\"))); "
                              "assert len(r) > 1 and r[0][0][0].isalpha() and all(len(x) == len(r[0]) for x in r)' ";
    for (std::vector<std::string> args : {std::vector<std::string>{"saf", "frame", "--csv", kSaf, "0"},
                                          {"band", "--csv", kResponse, "20"},
                                          {"cal", "convert", "--csv", cal, kCounts},
                                          {"cal", "--csv", kPoints, kResponse, kAtmosphere, kCounts}}) {
        SRun run = Run(args);
        ASSERT_EQ(run.status, 0) << args[0] << run.err;
        std::string const file = Write("out.csv", run.out);
        EXPECT_EQ(std::system((check + file).c_str()), 0) << args[0] << " " << args[1] << "\n" << run.out;
    }
}

// Text from a file never reaches the terminal as a control sequence.
TEST_F(QvTool, ShowCommandsEscapeControlBytes) {
    std::string const xml = Write("esc.xml", "<a x=\"\x1b[2J\">t\x1b]0;title\x07</a>\n");
    std::string const cdfs = Path("c.cdfs"), odd = Write("e\x1b[1mx", "x");
    ASSERT_EQ(Run({"cdfs", "add", cdfs, odd}).status, 0);
    SRun shown = Run({"xml", "show", xml}), listed = Run({"cdfs", "list", cdfs});
    ASSERT_EQ(shown.status, 0) << shown.err;
    ASSERT_EQ(listed.status, 0) << listed.err;
    EXPECT_EQ(shown.out, "element a x=\"\\x1B[2J\" value \"t\\x1B]0;title\\x07\"\n");
    EXPECT_TRUE(Contains(listed.out, "  /e\\x1B[1mx\n")) << listed.out;
    for (std::string const *out : {&shown.out, &listed.out})
        for (char c : *out)
            EXPECT_TRUE(c == '\n' || static_cast<unsigned char>(c) >= 0x20) << int(c);
}

// A conversion that fails is one sentence: the summary follows only a
// conversion that worked.
TEST_F(QvTool, CalFailureIsOneSentence) {
    std::string const cal = Path("c.cal"), bad = Write("bad.csv", "0,3000\n0,warm\n");
    ASSERT_EQ(Run({"cal", "--csv", "--save", cal, kPoints, kResponse, kAtmosphere, "3000"}).status, 0);
    for (std::vector<std::string> args :
         {std::vector<std::string>{"cal", "convert", cal, bad}, {"cal", kPoints, kResponse, kAtmosphere, bad}}) {
        SRun run = Run(args);
        EXPECT_EQ(run.status, 1) << args[1];
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        EXPECT_EQ(run.err.rfind("qv: ", 0), 0u) << run.err;
    }
    SRun good = Run({"cal", "convert", cal, kCounts});
    ASSERT_EQ(good.status, 0) << good.err;
    EXPECT_EQ(good.err.rfind("calibration: " + cal + ", RCAL revision 7\n", 0), 0u) << good.err;
}

// Each command's help names every option it takes, with its value.
TEST_F(QvTool, HelpNamesEveryOption) {
    SRun pod = Run({"pod", "show", "--help"});
    EXPECT_EQ(pod.status, 0);
    EXPECT_EQ(pod.out.rfind("usage: qv pod show [--json] [--rows A:B] FILE\n", 0), 0u) << pod.out;
    EXPECT_ONE_SENTENCE(Run({"pod", "show", Path("t.pod"), "--rows"}), 2, "--rows needs a row range A:B");
    EXPECT_ONE_SENTENCE(Run({"cal", "show", "--save", Path("x")}), 2, "unknown option '--save'");
}

#else

TEST(QvTool, NotBuilt) {
    GTEST_SKIP() << "the qv tool is not part of this build";
}

#endif

// The main job's second half: the calibration built is saved, shown and
// reloaded, and converts every count to the same text as before.
TEST_F(QvTool, CalSavesACalibrationThatConvertsTheSameAfterReloading) {
    std::string const cal = Path("camera.cal"), inc = Path("camera.inc");
    SRun built = Run({"cal", "--csv", "--save", cal, "--inc", inc, kPoints, kResponse, kAtmosphere, kCounts});
    ASSERT_EQ(built.status, 0) << built.err;
    for (std::string const &file : {cal, inc}) {
        SRun again = Run({"cal", "convert", "--csv", file, kCounts});
        EXPECT_EQ(again.status, 0) << again.err;
        EXPECT_EQ(again.out, built.out) << file;
    }
    SRun show = Run({"cal", "show", inc});
    EXPECT_EQ(show.status, 0) << show.err;
    EXPECT_TRUE(Contains(show.out, "camera.cal, RCAL revision 7 (named by the include file)")) << show.out;
    EXPECT_TRUE(Contains(show.out, "page 1: 9 points, 8 enabled")) << show.out;
    EXPECT_TRUE(Contains(show.out, "counts to radiance (order 1")) << show.out;
    SRun json = Run({"cal", "show", "--json", cal});
    EXPECT_EQ(json.status, 0) << json.err;
    EXPECT_TRUE(Contains(json.out, "\"revision\":7,")) << json.out;
    EXPECT_TRUE(Contains(json.out, "\"temp_order\":6,")) << json.out;
    SRun fromStdin = Run({"cal", "show", "-"}, cal);
    EXPECT_EQ(fromStdin.status, 0) << fromStdin.err;
    EXPECT_TRUE(Contains(fromStdin.out, "file: standard input, RCAL revision 7")) << fromStdin.out;
}

TEST_F(QvTool, CalShowAndConvertRefuseWhatIsNoCalibration) {
    ExpectRefused({"cal", "show", kSaf}, 1, "is an include file without a CAFile tag");
    ExpectRefused({"cal", "show", kCounts}, 1, "is not a calibration file qv can read");
    std::string const cut = Path("cut.cal");
    ASSERT_EQ(Run({"cal", "--csv", "--save", cut, kPoints, kResponse, "none", "3000"}).status, 0);
    std::string bytes = ReadFile(cut);
    Write("cut.cal", bytes.substr(0, bytes.size() / 2));
    ExpectRefused({"cal", "convert", cut, kCounts}, 1, "is not a calibration file qv can read");
    ExpectRefused({"cal", "show", Path("missing.cal")}, 1, "No such file or directory");
    ExpectRefused({"cal", "convert", "-", "-"}, 1, "only one input can be standard input");
    ExpectRefused({"cal", "--save", Path("no/dir/x.cal"), kPoints, kResponse, "none", "3000"}, 1,
                  "cannot write " + Path("no/dir/x.cal") + ": No such file or directory");
    // Neither --save nor the files of --inc may be an input.
    std::string const points = Path("points.csv");
    std::filesystem::copy_file(kPoints, points);
    ExpectRefused({"cal", "--save", points, points, kResponse, "none", "3000"}, 1,
                  points + " would overwrite another file of the command");
    ExpectRefused({"cal", "--inc", Path("counts.inc"), kPoints, kResponse, "none", Path("counts.cal")}, 1,
                  Path("counts.cal") + " would overwrite another file of the command");
    EXPECT_EQ(ReadFile(points), ReadFile(kPoints));
}

} // namespace
