// RunModtran with fake tools: shell scripts written into a temporary
// directory that check where and how they run, then write a tape7 (or fail
// in their own way). The real tool is needed nowhere.
#include <gtest/gtest.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "ModtranTestSupport.h"
#include "qv/modtran/ModtranTape5File.h"
#include "qv/modtran/ModtranTape7File.h"
#include "qv/modtran/RunModtran.h"
#include "qv/platform/Syscalls.h"

using namespace qv;
using namespace qvtest;

namespace {

using T7 = CModtranTape7File;

constexpr char kTape7[] = "T   6    2    1    0    0    0    0    0    0    0    0    0    0   0.000   0.00\n"
                          "h\nh\nh\nh\n"
                          "   0.00000   1.00000  30.00000   2.00000\n"
                          "h\nh\nh\nh\n"
                          "    FREQ  TOT_TRANS  PTH_THRML\n"
                          " 1000.00 0.50000000 2.0000E-06\n"
                          " 1001.00 0.25000000 3.0000E-06\n"
                          " -9999.\n";

// The checks every fake tool makes before its own ending: it runs in its own
// directory, reads tape5 there, has /dev/null as input, leads its own
// session, and holds no descriptor beyond 0, 1 and 2.
constexpr char kChecks[] = "#!/bin/sh\n"
                           "here=$(cd \"$(dirname \"$0\")\" && pwd -P)\n"
                           "[ \"$(pwd -P)\" = \"$here\" ] || echo 'wrong directory' >> problems\n"
                           "[ \"$(head -c 2 tape5)\" = MS ] || echo 'no tape5' >> problems\n"
                           "[ \"$(readlink /proc/$$/fd/0)\" = /dev/null ] || echo 'input' >> problems\n"
                           "[ \"$(cut -d' ' -f6 /proc/$$/stat)\" = $$ ] || echo 'session' >> problems\n"
                           "for fd in /proc/$$/fd/*; do\n"
                           "  case ${fd##*/} in 0|1|2) ;; *) readlink $fd | grep -q sentinel && echo \"fd $fd\" >> "
                           "problems ;; esac\n"
                           "done\n";

class RunModtranTest : public testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/qv_modtran_XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir = pattern;
        WriteText(dir + "/source.tp7", kTape7);
        sentinel = open((dir + "/sentinel").c_str(), O_CREAT | O_RDWR, 0600); // inheritable on purpose
        ASSERT_GE(sentinel, 0);
        descriptors = CountDescriptors();
    }
    void TearDown() override {
        close(sentinel);
        EXPECT_EQ(CountDescriptors(), descriptors - 1); // nothing leaked
        errno = 0;
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1); // no child left: no zombie
        EXPECT_EQ(errno, ECHILD);
        std::system(("rm -rf " + dir).c_str());
    }

    static int CountDescriptors() {
        int count = 0;
        DIR *fds = opendir("/proc/self/fd");
        while (readdir(fds))
            ++count;
        closedir(fds);
        return count;
    }

    // A tool: the checks, then body; its path is made the tool's path.
    void Tool(std::string const &body) {
        std::string path = dir + "/tool.sh";
        WriteText(path, kChecks + body);
        chmod(path.c_str(), 0755);
        ASSERT_TRUE(SetModtranExePath(Wide(path).c_str()));
    }

    bool Run(T7 &tape7) {
        CModtranTape5File tape5;
        return RunModtran(tape5, tape7, T7::T7C_TOT_TRANS | T7::T7C_PTH_THRML);
    }

    std::string Problems() { return ReadText(dir + "/problems"); }

    std::string dir;
    int sentinel = -1;
    int descriptors = 0;
};

} // namespace

TEST_F(RunModtranTest, GoodToolRunsInItsDirectoryAndItsTableLoads) {
    Tool("cp source.tp7 tape7\necho 'MODTRAN done' >&2\n");
    T7 tape7;
    ASSERT_TRUE(Run(tape7));
    EXPECT_EQ(Problems(), "");
    EXPECT_EQ(tape7.nPoints(), 2);
    double values[2];
    ASSERT_TRUE(tape7.GetData(values, 0, T7::T7C_PTH_THRML));
    EXPECT_EQ(values[1], 3e-6);
    EXPECT_EQ(ReadText(dir + "/tape5").substr(0, 2), "MS");
    EXPECT_STREQ(GetModtranExePath().GetUTF8(), (dir + "/tool.sh").c_str());
}

TEST_F(RunModtranTest, MissingToolKeepsTheOldPathAndFails) {
    Tool("cp source.tp7 tape7\n");
    EXPECT_FALSE(SetModtranExePath(Wide(dir + "/absent").c_str()));
    EXPECT_STREQ(GetModtranExePath().GetUTF8(), (dir + "/tool.sh").c_str());
    std::remove((dir + "/tool.sh").c_str());
    T7 tape7;
    EXPECT_FALSE(Run(tape7));
}

TEST_F(RunModtranTest, ErrorMarkerFailsAndTheTableIsNotRead) {
    Tool("cp source.tp7 tape7\necho ' *ERR* bad card'\n");
    T7 tape7;
    EXPECT_FALSE(Run(tape7));
    EXPECT_EQ(tape7.nRuns(), 0);
}

// 4,095 bytes then the marker in one write: the first read of 4,096 bytes
// ends inside it.
TEST_F(RunModtranTest, ErrorMarkerSplitBetweenTwoReadsIsFound) {
    Tool("cp source.tp7 tape7\nprintf '%4095s*ERR*' x\n");
    T7 tape7;
    EXPECT_FALSE(Run(tape7));
}

TEST_F(RunModtranTest, NonZeroExitFails) {
    Tool("cp source.tp7 tape7\nexit 3\n");
    T7 tape7;
    EXPECT_FALSE(Run(tape7));
    Tool("cp source.tp7 tape7\nkill -9 $$\n");
    EXPECT_FALSE(Run(tape7));
}

// A tape7 of an earlier run is removed first, so a tool that writes nothing
// fails instead of handing back the old table.
TEST_F(RunModtranTest, ToolThatWritesNothingFailsEvenOverAnOldTable) {
    WriteText(dir + "/tape7", kTape7);
    Tool("exit 0\n");
    T7 tape7;
    EXPECT_FALSE(Run(tape7));
    EXPECT_EQ(Problems(), "");
}

TEST_F(RunModtranTest, BrokenTableFails) {
    Tool("head -c 200 source.tp7 > tape7\n");
    T7 tape7;
    EXPECT_FALSE(Run(tape7));
}

TEST_F(RunModtranTest, FloodOfOutputNeitherHangsNorFails) {
    Tool("head -c 6000000 /dev/zero | tr '\\0' x >&2\ncp source.tp7 tape7\nhead -c 100000 /dev/zero >&1\n");
    T7 tape7;
    EXPECT_TRUE(Run(tape7));
    EXPECT_EQ(Problems(), "");
}

// A grandchild that keeps the output pipe open does not hold the run after
// the tool itself has ended.
TEST_F(RunModtranTest, GrandchildHoldingThePipeDoesNotHoldTheRun) {
    Tool("cp source.tp7 tape7\n(sleep 5 &) \nexit 0\n");
    T7 tape7;
    EXPECT_TRUE(Run(tape7));
}


namespace {

SyscallTable realCalls;
int pipeReadsLeft = 0; // pipe reads that still work

ssize_t PipeReadFailing(int fd, void *buf, size_t n) {
    struct stat st {};
    if (fstat(fd, &st) == 0 && S_ISFIFO(st.st_mode) && pipeReadsLeft-- <= 0) {
        errno = EIO;
        return -1;
    }
    return realCalls.read(fd, buf, n);
}

} // namespace

// Output that could not be read may have held the error marker: the run
// fails rather than pass on what it could read. A tool that still writes is
// not left waiting on a full pipe: it ends and is reaped.
TEST_F(RunModtranTest, UnreadableOutputFailsTheRun) {
    realCalls = Syscalls();
    for (char const *output : {"echo 'MODTRAN done'\n", "head -c 6000000 /dev/zero\n"}) {
        for (int working : {0, 1}) {
            SCOPED_TRACE(testing::Message() << output << " after " << working << " pipe reads");
            Tool(std::string("cp source.tp7 tape7\n") + output);
            pipeReadsLeft = working;
            Syscalls().read = &PipeReadFailing;
            T7 tape7;
            EXPECT_FALSE(Run(tape7));
            Syscalls() = realCalls;
        }
    }
    EXPECT_EQ(Problems(), "");
}
