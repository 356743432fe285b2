// CLog and CLogEntry: kept text flushed by SetFile, CR LF lines, the time
// prefix, entries, the debug-sink echo, the console echo, the qvLog* entry
// points, and two processes appending to one file.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "qv/core/DebugOutput.h"
#include "qv/core/Exception.h"
#include "qv/core/FileTime.h"
#include "qv/core/Log.h"
#include "qv/core/LogText.h"
#include "qv/platform/Clock.h"

using namespace qv;

namespace {

class LogDir : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = testing::TempDir() + "qv_log_XXXXXX";
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        dir = pattern;
    }
    void TearDown() override { std::filesystem::remove_all(dir); }
    std::string Path(char const *name) const { return dir + "/" + name; }
    std::string dir;
};

std::string ReadFile(std::string const &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

CString Text(std::string const &utf8) {
    return CString(utf8.c_str());
}

// Splits CR LF lines; a trailing piece without CR LF is reported as "(cut) ...".
std::vector<std::string> Lines(std::string const &text) {
    std::vector<std::string> lines;
    size_t start = 0;
    for (size_t end; (end = text.find("\r\n", start)) != std::string::npos; start = end + 2)
        lines.push_back(text.substr(start, end - start));
    if (start < text.size()) lines.push_back("(cut) " + text.substr(start));
    return lines;
}

// Collects what reaches the debug text sink meanwhile.
class SinkCapture {
public:
    SinkCapture() { previous = SetDebugTextHook(&Collect, this); }
    ~SinkCapture() { SetDebugTextHook(previous, nullptr); }
    std::string text;

private:
    static void Collect(char const *utf8, void *self) { static_cast<SinkCapture *>(self)->text += utf8; }
    DebugTextHook previous;
};

std::string const kPrefix = R"(\[\d\d-\d\d-\d{4} \d\d:\d\d:\d\d\]: )";

TEST(LogText, PrefixLineEndsAndPercentEscapes) {
    EXPECT_STREQ(FormatLogTimePrefix(CDateTime::NewYMDHMS(2024, 2, 9, 7, 5, 3, 999, 0)).GetUTF8(),
                 "[02-09-2024 07:05:03]: ");
    EXPECT_STREQ(FormatLogTimePrefix(CDateTime::NewYMDHMS(1999, 12, 31, 23, 59, 59, 0, 0)).GetUTF8(),
                 "[12-31-1999 23:59:59]: ");
    EXPECT_EQ(ToLogBytes(Text("a\nb\rc\r\nd\n\re\r\r\n")), "a\r\nb\r\nc\r\nd\r\n\r\ne\r\n\r\n");
    EXPECT_EQ(ToLogBytes(Text("\xE2\x82\xAC no end")), "\xE2\x82\xAC no end");
    EXPECT_EQ(ToLogBytes(CString()), "");
    EXPECT_STREQ(ResolvePercentEscapes(Text("100%% %d %%%s %")).GetUTF8(), "100% %d %%s %");
}

TEST_F(LogDir, KeptTextGoesFirstIntoTheFile) {
    CLog log;
    SinkCapture sink;
    EXPECT_TRUE(log.Write(u"before %d\n", 1));
    EXPECT_TRUE(log.Write(u"cr\ronly\r\nboth"));
    EXPECT_EQ(sink.text, "before 1\r\ncr\r\nonly\r\nboth"); // echoed while there is no file
    EXPECT_FALSE(log.SetFile(Text(Path("missing/dir/log.txt"))));
    EXPECT_TRUE(log.Write(u"\n"));
    EXPECT_TRUE(log.SetFile(Text(Path("log.txt"))));
    EXPECT_FALSE(log.SetFile(Text(Path("other.txt")))); // one file per log
    EXPECT_FALSE(std::filesystem::exists(Path("other.txt")));
    sink.text.clear();
    EXPECT_TRUE(log.Write(u"after\n"));
    EXPECT_EQ(sink.text, "");
    EXPECT_EQ(ReadFile(Path("log.txt")), "before 1\r\ncr\r\nonly\r\nboth\r\nafter\r\n");
}

TEST_F(LogDir, SetFileAppendsToAnExistingFile) {
    std::ofstream(Path("log.txt"), std::ios::binary) << "old\r\n";
    CLog log;
    ASSERT_TRUE(log.SetFile(nullptr, Text(Path("log.txt")))); // null: the disk
    log.Write(u"new\n");
    EXPECT_EQ(ReadFile(Path("log.txt")), "old\r\nnew\r\n");
}

TEST_F(LogDir, WriteLineStampsTheUtcTime) {
    CLog log;
    ASSERT_TRUE(log.SetFile(Text(Path("log.txt"))));
    FILETIME before, after;
    GetSystemTimeAsFileTime(&before);
    EXPECT_TRUE(log.WriteLine(u"%s=%d", u"x", 5));
    GetSystemTimeAsFileTime(&after);
    std::string text = ReadFile(Path("log.txt"));
    std::smatch fields;
    ASSERT_TRUE(std::regex_match(text, fields, std::regex(R"(\[(\d\d)-(\d\d)-(\d{4}) (\d\d):(\d\d):(\d\d)\]: x=5\r\n)")))
        << text;
    auto field = [&](int i) { return std::stoi(fields[i].str()); };
    FILETIME stamped = CDateTime::NewYMDHMS(field(3), field(1), field(2), field(4), field(5), field(6), 0, 0);
    auto seconds = [](FILETIME const &t) { return FileTimeToTicks(t) / kFileTimeTicksPerSecond; };
    EXPECT_LE(seconds(before), seconds(stamped));
    EXPECT_LE(seconds(stamped), seconds(after));
}

TEST_F(LogDir, EntriesGoAsAWhole) {
    CLog log;
    ASSERT_TRUE(log.SetFile(Text(Path("log.txt"))));
    log.setVerbose(true);
    CLogEntry entry = log.StartEntry();
    EXPECT_TRUE(entry.getVerbose());
    EXPECT_TRUE(entry.Write(u"a%d ", 1));
    EXPECT_TRUE(entry.WriteLine(u"100%%%% %s", u"sure"));
    EXPECT_TRUE(entry.Write(u"tail"));
    EXPECT_EQ(ReadFile(Path("log.txt")), ""); // nothing before Finish
    EXPECT_TRUE(entry.Finish());
    EXPECT_FALSE(entry.Finish());
    EXPECT_FALSE(entry.Write(u"late"));
    EXPECT_TRUE(std::regex_match(ReadFile(Path("log.txt")), std::regex(kPrefix + "a1 100% sure\r\ntail")));

    log.setVerbose(false);
    CLogEntry first = log.StartEntry();
    EXPECT_FALSE(first.getVerbose());
    first.Write(u"taken");
    CLogEntry second(first); // takes the entry over
    EXPECT_FALSE(first.Finish());
    CLogEntry third = log.StartEntry();
    third.Write(u"|third|");
    third = second; // sends third's text first
    EXPECT_FALSE(second.Finish());
    {
        CLogEntry lost = log.StartEntry();
        lost.Write(u"lost");
    }
    EXPECT_TRUE(third.Finish());
    EXPECT_TRUE(std::regex_match(ReadFile(Path("log.txt")),
                                 std::regex(kPrefix + "a1 100% sure\r\ntail" + kPrefix + "\\|third\\|" + kPrefix + "taken")));
}

TEST_F(LogDir, CopiesTakeTheTextButNotTheFile) {
    CLog log;
    log.Write(u"kept\n");
    log.setPrintConsole(false);
    log.setVerbose(true);
    CLog copy(log);
    EXPECT_TRUE(copy.getVerbose());
    ASSERT_TRUE(log.SetFile(Text(Path("a.txt"))));
    CLog second(log); // log's file stays with log
    ASSERT_TRUE(second.SetFile(Text(Path("b.txt"))));
    ASSERT_TRUE(copy.SetFile(Text(Path("c.txt"))));
    log.Write(u"a");
    second.Write(u"b");
    EXPECT_EQ(ReadFile(Path("a.txt")), "kept\r\na");
    EXPECT_EQ(ReadFile(Path("b.txt")), "b");
    EXPECT_EQ(ReadFile(Path("c.txt")), "kept\r\n");
}

TEST_F(LogDir, PrintConsoleEchoesToStandardOutput) {
    CLog log;
    ASSERT_TRUE(log.SetFile(Text(Path("log.txt"))));
    EXPECT_FALSE(log.setPrintConsole(true));
    EXPECT_TRUE(log.getPrintConsole());
    fflush(stdout);
    int saved = dup(STDOUT_FILENO);
    int console = open(Path("console.txt").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ASSERT_GE(console, 0);
    dup2(console, STDOUT_FILENO);
    log.Write(u"both\n");
    dup2(saved, STDOUT_FILENO);
    close(saved);
    close(console);
    EXPECT_TRUE(log.setPrintConsole(false));
    EXPECT_EQ(ReadFile(Path("console.txt")), "both\r\n");
    EXPECT_EQ(ReadFile(Path("log.txt")), "both\r\n");
}

// The plain entry points log text, not formats; gLog has no file in this
// program, so its text shows in the debug sink.
TEST(LogFunctions, PlainTextGoesToTheGlobalLog) {
    SinkCapture sink;
    qvLogWriteW(u"w 100%d ");
    qvLogWriteA("a \xE2\x82\xAC%s\n");
    qvLogWriteLineW(u"line %s");
    qvLogWriteLineA("narrow %%");
    qvLogWriteLineW(u"formatted %d", 7);
    EXPECT_TRUE(std::regex_match(sink.text, std::regex("w 100%d a \xE2\x82\xAC%s\r\n" + kPrefix + "line %s\r\n" +
                                                       kPrefix + "narrow %%\r\n" + kPrefix + "formatted 7\r\n")))
        << sink.text;
}

TEST(Exception, CarriesAMessageAndAChain) {
    CException inner(CString(u"disk full"), nullptr);
    CException outer(CString(u"save failed"), &inner);
    CException copy(outer);
    EXPECT_STREQ(copy.message().GetUTF8(), "save failed");
    EXPECT_EQ(copy.innerException(), &inner);
    EXPECT_STREQ(copy.innerException()->message().GetUTF8(), "disk full");
    EXPECT_EQ(inner.innerException(), nullptr);
}

// One thread sets the file while the others write: every line comes out
// once, whole, and in its thread's order.
TEST_F(LogDir, ThreadsWriteWholeLines) {
    CLog log;
    constexpr int kThreads = 4, kLines = 200;
    std::string path = Path("log.txt");
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&log, &path, t] {
            for (int n = 0; n < kLines; ++n) {
                log.Write(u"%d:%d %S\n", t, n, std::string(size_t(n), 'x').c_str());
                if (t == 0 && n == kLines / 2) {
                    EXPECT_TRUE(log.SetFile(Text(path)));
                }
            }
        });
    }
    for (std::thread &thread : threads) thread.join();
    std::vector<std::string> lines = Lines(ReadFile(Path("log.txt")));
    ASSERT_EQ(lines.size(), size_t(kThreads * kLines));
    int next[kThreads] = {};
    for (std::string const &line : lines) {
        int t = line[0] - '0';
        ASSERT_TRUE(t >= 0 && t < kThreads) << line;
        int n = next[t]++;
        EXPECT_EQ(line, std::to_string(t) + ":" + std::to_string(n) + " " + std::string(size_t(n), 'x'));
    }
}

// Two processes append entries of different lengths to one file, each
// through its own log. Every line must come out whole and in its writer's
// order.
std::string AppendLine(char who, int n) {
    return std::string(1, who) + " " + std::to_string(n) + " " + std::string(size_t(n % 97) * 7, who);
}

constexpr int kLinesPerWriter = 1500;

[[noreturn]] void AppendAndExit(std::string const &path, char who) {
    int failed = 0;
    {
        CLog log;
        log.Write(u"%S start\n", std::string(1, who).c_str()); // kept text, flushed by SetFile
        if (!log.SetFile(Text(path))) failed = 1;
        for (int n = 0; n < kLinesPerWriter; ++n) {
            CLogEntry entry = log.StartEntry();
            entry.WriteLine(u"%S", AppendLine(who, n).c_str());
            entry.Finish();
        }
    }
    _exit(failed);
}

TEST_F(LogDir, TwoProcessesShareOneFile) {
    std::string path = Path("shared.log");
    pid_t writers[2];
    for (int i = 0; i < 2; ++i) {
        writers[i] = fork();
        ASSERT_GE(writers[i], 0);
        if (writers[i] == 0) AppendAndExit(path, char('p' + i));
    }
    for (pid_t writer : writers) {
        int status = 0;
        ASSERT_EQ(waitpid(writer, &status, 0), writer);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    std::vector<std::string> lines = Lines(ReadFile(path));
    ASSERT_EQ(lines.size(), size_t(2 * (kLinesPerWriter + 1)));
    int next[2] = {-1, -1}; // -1: the start line comes first
    std::regex stamped(kPrefix + "(.*)");
    for (std::string const &line : lines) {
        std::smatch body; // entries carry the time; the start line does not
        std::string text = std::regex_match(line, body, stamped) ? body[1].str() : line;
        int who = text.empty() ? -1 : text[0] - 'p';
        ASSERT_TRUE(who == 0 || who == 1) << line;
        int n = next[who]++;
        ASSERT_EQ(text, n < 0 ? std::string(1, char('p' + who)) + " start" : AppendLine(char('p' + who), n));
    }
    EXPECT_EQ(next[0], kLinesPerWriter);
    EXPECT_EQ(next[1], kLinesPerWriter);
}

} // namespace
