// The qv command-line tool end to end: each sub-command is run as its own
// process on the sample data, and its output, messages and exit status read
// back. The sample files are only read; files the tool changes are copies.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

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

extern char **environ;

namespace {

#ifdef QV_TOOL

std::string const kData = QV_TEST_DATA_DIR;
std::string const kPoints = kData + "/cal_points.csv";
std::string const kResponse = kData + "/NelisW__pyradi__pyradi__data__MWIRsensor.txt";
std::string const kAtmosphere = kData + "/NelisW__pyradi__pyradi__data__tape7-02.table";
std::string const kCounts = kData + "/cal_counts.csv";
std::string const kSaf = kData + "/sample.saf";

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
    // to files (no pipe to fill up). A sanitizer report fails the test
    // whatever the exit status.
    SRun Run(std::vector<std::string> const &args) const {
        std::string const out = Path("stdout"), err = Path("stderr");
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
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
        run.out = ReadFile(out);
        run.err = ReadFile(err);
        EXPECT_FALSE(Contains(run.err, "Sanitizer") || Contains(run.err, "runtime error")) << run.err;
        return run;
    }

    // A failure the tool reports itself: its exit code and a message, nothing
    // on standard output.
    void ExpectRefused(std::vector<std::string> const &args, int code, std::string const &message) const {
        SRun run = Run(args);
        EXPECT_EQ(run.status, code) << args[0] << " " << args.back() << "\n" << run.err;
        EXPECT_TRUE(Contains(run.err, message)) << run.err;
        EXPECT_EQ(run.out, "");
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

SCalOutput ParseCal(std::string const &out) {
    SCalOutput parsed;
    std::stringstream in(out);
    int page = -1;
    bool table = false;
    std::string const fitLine = "  temperature fit error over the lookup: at most ";
    for (std::string line; std::getline(in, line);) {
        if (table) {
            parsed.rows.push_back(SplitCsv(line));
        } else if (line == "page,counts,radiance,celsius,in_range,truth,error") {
            table = true;
        } else if (line.rfind("page ", 0) == 0) {
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
    EXPECT_EQ(run.err, "");
    EXPECT_TRUE(Contains(run.out, "response: file (band ")) << run.out;
    EXPECT_TRUE(Contains(run.out, "atmosphere: transmission and path radiance\n"));
    EXPECT_TRUE(Contains(run.out, "page 0: 9 points, 8 enabled\n")) << run.out;
    EXPECT_TRUE(Contains(run.out, "page 1: 9 points, 8 enabled\n")) << run.out;

    SCalOutput cal = ParseCal(run.out);
    ASSERT_EQ(cal.fitError.size(), 2u) << run.out;
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
}

TEST_F(QvTool, CalConvertsAListOfCountsThroughEveryPage) {
    SRun run = Run({"cal", kPoints, kResponse, "none", "3000,9000"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "atmosphere: none\n"));
    SCalOutput cal = ParseCal(run.out);
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

TEST_F(QvTool, CalWithATopHatResponse) {
    SRun run = Run({"cal", kPoints, "tophat:3.5:4.9:0.01", "none", kCounts});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "response: top hat (band 3.5 to 4.9 um, 141 points on the final axis)\n")) << run.out;
    EXPECT_TRUE(Contains(run.out, "temperature -10 to 60 C\n")) << run.out;
    EXPECT_TRUE(Contains(run.out, "temperature 40 to 150 C\n")) << run.out;
    SCalOutput cal = ParseCal(run.out);
    EXPECT_EQ(cal.fitError.size(), 2u) << run.out;
    ASSERT_EQ(cal.rows.size(), 10u) << run.out;
    // Another band than the camera's misses the truth by degrees, but more
    // counts still read warmer on each page.
    for (size_t i = 1; i < cal.rows.size(); ++i) {
        ASSERT_EQ(cal.rows[i].size(), 7u) << run.out;
        if (cal.rows[i][0] == cal.rows[i - 1][0]) {
            EXPECT_GT(Number(cal.rows[i][3]), Number(cal.rows[i - 1][3])) << cal.rows[i][1];
        }
    }

    for (char const *bad : {"tophat:", "tophat:3:5", "tophat:5:3:0", "tophat:3:5:x", "tophat:3:5:0.01:9"})
        ExpectRefused({"cal", kPoints, bad, "none", kCounts}, 1, "bad top hat");
}

TEST_F(QvTool, CalRefusesMissingFilesAndJunk) {
    std::string const missing = Path("missing.csv");
    ExpectRefused({"cal", missing, kResponse, kAtmosphere, kCounts}, 1, "cannot open " + missing);
    ExpectRefused({"cal", kPoints, missing, kAtmosphere, kCounts}, 1, "response " + missing);
    ExpectRefused({"cal", kPoints, kResponse, missing, kCounts}, 1, "atmosphere " + missing);
    ExpectRefused({"cal", kPoints, kResponse, kAtmosphere, missing}, 1, "nor is it a list of numbers");

    std::string const junk = Path("junk.csv");
    std::ofstream(junk) << "0,20,1,abc,none,0,0,0,1\n";
    ExpectRefused({"cal", junk, kResponse, "none", kCounts}, 1, junk + ":1: not a point");
    std::ofstream(junk) << "# a comment\n5,20,1,3000,none,0,0,0,1\n";
    ExpectRefused({"cal", junk, kResponse, "none", kCounts}, 1, junk + ":2: not a point (or page beyond 3)");
    std::ofstream(junk) << "order,0,zero\n";
    ExpectRefused({"cal", junk, kResponse, "none", kCounts}, 1, junk + ":1: not a setting");
    std::ofstream(junk) << "# nothing but a comment\n";
    ExpectRefused({"cal", junk, kResponse, "none", kCounts}, 1, "holds no points");
    std::ofstream(junk) << "page,counts\n0,1e400,2,3\n";
    ExpectRefused({"cal", kPoints, kResponse, "none", junk}, 1, junk + ":2: expected page,counts[,truth]");
    std::ofstream(junk) << "3,5000\n";
    SRun beyond = Run({"cal", kPoints, kResponse, "none", junk}); // found after the pages are printed
    EXPECT_EQ(beyond.status, 1);
    EXPECT_TRUE(Contains(beyond.err, "qv: counts for page 3, which does not exist")) << beyond.err;

    ExpectRefused({"cal", kPoints, kResponse, kAtmosphere}, 2, "usage: qv cal POINTS RESPONSE ATMOSPHERE COUNTS");
    ExpectRefused({"cal", kPoints, kResponse, kAtmosphere, kCounts, "extra"}, 2, "usage: qv cal");
}

TEST_F(QvTool, SafShowAndSetOnACopy) {
    std::string const original = ReadFile(kSaf);
    SRun shown = Run({"saf", "show", kSaf});
    ASSERT_EQ(shown.status, 0) << shown.err;
    EXPECT_TRUE(Contains(shown.out, "Camera = qv synthetic camera\n")) << shown.out;
    EXPECT_TRUE(Contains(shown.out, "Width = 64\n"));
    EXPECT_TRUE(Contains(shown.out, "\ndata offset: 2271\n")) << shown.out;
    EXPECT_FALSE(Contains(shown.out, "Operator"));

    std::string const copy = Path("sample.saf");
    std::filesystem::copy_file(kSaf, copy);
    SRun added = Run({"saf", "set", copy, "Operator", "Night shift"});
    ASSERT_EQ(added.status, 0) << added.err;
    EXPECT_TRUE(Contains(added.out, "Operator: added 'Night shift'\n")) << added.out;
    EXPECT_TRUE(Contains(added.out, "data segment stayed at 2271\n")) << added.out;
    SRun changed = Run({"saf", "set", copy, "Camera", "bench rig"});
    ASSERT_EQ(changed.status, 0) << changed.err;
    EXPECT_TRUE(Contains(changed.out, "Camera: 'qv synthetic camera' -> 'bench rig'\n")) << changed.out;

    SRun after = Run({"saf", "show", copy});
    ASSERT_EQ(after.status, 0) << after.err;
    EXPECT_TRUE(Contains(after.out, "Operator = Night shift\n")) << after.out;
    EXPECT_TRUE(Contains(after.out, "Camera = bench rig\n")) << after.out;
    EXPECT_TRUE(Contains(after.out, "\ndata offset: 2271\n")) << after.out;
    // The frames behind the header are untouched.
    EXPECT_EQ(ReadFile(copy).substr(2271), original.substr(2271));

    ExpectRefused({"saf", "set", copy, "bad name", "x"}, 1, "cannot store tag 'bad name'");
    ExpectRefused({"saf", "show", Path("missing.saf")}, 1, "cannot open");
    std::ofstream(Path("junk.saf")) << "not a header\n";
    ExpectRefused({"saf", "show", Path("junk.saf")}, 1, "is not a SAF file");
    EXPECT_EQ(ReadFile(kSaf), original);
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

    ExpectRefused({"band", kResponse, "warm"}, 2, "usage: qv band FILE CELSIUS");
    ExpectRefused({"band", Path("missing.txt"), "35"}, 1, "cannot open");
}

TEST_F(QvTool, WrongCommandLinesPrintUsage) {
    ExpectRefused({"frobnicate"}, 2, "qv: unknown command 'frobnicate'");
    ExpectRefused({"saf"}, 2, "unknown command 'saf'");
    ExpectRefused({"date"}, 2, "usage: qv date TEXT");
    SRun bare = Run({});
    EXPECT_EQ(bare.status, 2);
    EXPECT_TRUE(Contains(bare.err, "usage: qv COMMAND [ARGUMENTS]")) << bare.err;

    SRun help = Run({"help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(Contains(help.out, "usage: qv COMMAND [ARGUMENTS]")) << help.out;
    EXPECT_TRUE(Contains(help.out, "  cal POINTS RESPONSE ATMOSPHERE COUNTS ")) << help.out;
}

#else

TEST(QvTool, NotBuilt) {
    GTEST_SKIP() << "the qv tool is not part of this build";
}

#endif

} // namespace
