#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/single_threaded.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "ThreadTestSupport.h"
#include "qv/threads/AutoLock.h"
#include "qv/threads/CriticalSection.h"

namespace qv {
namespace {

// section is held once by this thread: another thread waits on it until the
// Leave, then gets in.
void ExpectOthersWaitForTheLeave(CCriticalSection &section, char const *why) {
    bool entered = false;
    auto other = test::AsyncVoid([&] {
        section.Enter();
        entered = true;
        section.Leave();
    });
    EXPECT_TRUE(test::StillBlocked(other)) << why;
    section.Leave();
    ASSERT_TRUE(test::Finishes(other));
    EXPECT_TRUE(entered);
}

TEST(CriticalSection, RecursiveForItsThreadExclusiveForOthers) {
    CCriticalSection section(100);
    section.Enter();
    section.Enter();
    section.Leave();
    ExpectOthersWaitForTheLeave(section, "one Leave of two must keep the section");
}

// While the process has a single thread, Enter and Leave take their plain
// path. The test runs again in a process of its own, where no thread has
// started yet: recursion there, then a thread started while the lock is
// held, which must wait for the Leave made after it started.
TEST(CriticalSection, SingleThreadedPathAndThreadsStartedWhileHeld) {
    if (!std::getenv("QV_TEST_SINGLE_THREADED")) {
        std::string filter = "--gtest_filter=CriticalSection.SingleThreadedPathAndThreadsStartedWhileHeld";
        char *argv[] = {const_cast<char *>("/proc/self/exe"), filter.data(), nullptr};
        std::vector<char *> env;
        std::string mark = "QV_TEST_SINGLE_THREADED=1";
        env.push_back(mark.data());
        for (char **e = environ; *e; ++e)
            env.push_back(*e);
        env.push_back(nullptr);
        pid_t pid;
        ASSERT_EQ(posix_spawn(&pid, "/proc/self/exe", nullptr, nullptr, argv, env.data()), 0);
        int status = 0;
        ASSERT_EQ(waitpid(pid, &status, 0), pid);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
        return;
    }
    if (!__libc_single_threaded) GTEST_SKIP() << "this process has threads already";
    CCriticalSection section;
    section.Enter();
    section.Enter();
    section.Leave();
    section.Leave();
    section.Enter();
    ExpectOthersWaitForTheLeave(section, "taken while single-threaded, still held");
    EXPECT_FALSE(__libc_single_threaded);
}

TEST(CriticalSection, CopyHasALockOfItsOwn) {
    CCriticalSection original;
    original.Enter();
    CCriticalSection copy(original);
    auto other = test::AsyncVoid([&] {
        copy.Enter();
        copy.Leave();
    });
    bool finished = test::Finishes(other);
    original.Leave();
    EXPECT_TRUE(finished);
}

TEST(CriticalSection, AutoLockGuardsACounter) {
    CCriticalSection section(4000);
    CMutex mutex;
    int viaSection = 0, viaMutex = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 500; ++i) {
                {
                    CAutoLock lock(&section);
                    ++viaSection;
                }
                {
                    CAutoLock lock(&mutex);
                    ++viaMutex;
                }
                CAutoCriticalSection nested(&section);
                CAutoLock again(&section);
                CAutoLock none(static_cast<CMutex *>(nullptr));
            }
        });
    }
    for (auto &thread : threads)
        thread.join();
    EXPECT_EQ(viaSection, 2000);
    EXPECT_EQ(viaMutex, 2000);
    EXPECT_TRUE(mutex.Acquire(0)) << "every guard released its mutex";
    EXPECT_TRUE(mutex.Release());
}

} // namespace
} // namespace qv
