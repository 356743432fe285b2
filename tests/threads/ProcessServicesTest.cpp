#include <gtest/gtest.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "qv/threads/COMScope.h"
#include "qv/threads/Callback.h"
#include "qv/threads/LockedMemory.h"
#include "qv/threads/MainThread.h"

extern char **environ;

namespace qv {
namespace {

// The first caller decides for the whole process, so the question is asked
// in a fresh run of this program (again at every repetition), where nobody
// asked before: the first caller is a thread other than main's.
TEST(MainUIThread, FirstCallerDecides) {
    if (std::getenv("QV_TEST_FIRST_CALLER")) {
        bool workerFirst = false, workerAgain = false, workerNot = true;
        std::thread([&] {
            workerFirst = qvInMainUIThread();
            workerAgain = qvInMainUIThread();
            workerNot = qvNotInMainUIThread();
        }).join();
        EXPECT_TRUE(workerFirst);
        EXPECT_TRUE(workerAgain);
        EXPECT_FALSE(workerNot);
        EXPECT_FALSE(qvInMainUIThread());
        EXPECT_TRUE(qvNotInMainUIThread());
        return;
    }
    char filter[] = "--gtest_filter=MainUIThread.FirstCallerDecides";
    char quiet[] = "--gtest_brief=1";
    char self[] = "/proc/self/exe";
    char *argv[] = {self, filter, quiet, nullptr};
    std::vector<std::string> variables{"QV_TEST_FIRST_CALLER=1"};
    for (char **e = environ; *e; ++e)
        variables.emplace_back(*e);
    std::vector<char *> env;
    for (auto &v : variables)
        env.push_back(v.data());
    env.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    pid_t child = -1;
    int spawned = posix_spawn(&child, self, &actions, nullptr, argv, env.data());
    posix_spawn_file_actions_destroy(&actions);
    ASSERT_EQ(spawned, 0);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the first caller did not decide";
}

TEST(LockedMemory, ZeroedPageAlignedBlocks) {
    uintptr_t page = uintptr_t(sysconf(_SC_PAGESIZE));
    EXPECT_EQ(virtAlloc(0), nullptr);
    lockAlloc(10000);
    auto *block = static_cast<unsigned char *>(virtAlloc(10000));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(uintptr_t(block) % page, 0u);
    for (uint32_t i = 0; i < 10000; i += 997)
        EXPECT_EQ(block[i], 0);
    block[9999] = 0xAB;
    virtFree(block, 10000);
    lockFree(10000);
    virtFree(nullptr, 10);
}

int callbackRuns = 0; // a plain function counts here; the test starts it afresh
void CountRun() {
    ++callbackRuns;
}

TEST(Callback, CallsWhatIsSetAndNothingOtherwise) {
    callbackRuns = 0;
    TCallback<> callback;
    EXPECT_FALSE(callback.isset());
    callback(); // nothing set: nothing happens
    callback.set(&CountRun);
    EXPECT_TRUE(callback.isset());
    TCallback<> copy(callback);
    callback.unset();
    EXPECT_FALSE(callback.isset());
    callback();
    copy();
    EXPECT_EQ(callbackRuns, 1);
    callback = copy;
    callback();
    EXPECT_EQ(callbackRuns, 2);
    callback.set(nullptr);
    EXPECT_FALSE(callback.isset());

    CCOMScope scope(2); // no effect here; it only has to build
}

} // namespace
} // namespace qv
