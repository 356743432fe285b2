#include <gtest/gtest.h>

#include <sched.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <thread>

#include "ThreadTestSupport.h"
#include "qv/threads/Mutex.h"

namespace qv {
namespace {

using test::kLimitMs;

std::u16string UniqueName(char const *what) {
    std::string name = std::string("qv-test/") + what + "-" + std::to_string(getpid());
    return std::u16string(name.begin(), name.end());
}

// Where the system keeps a named mutex; gone once the last handle closes.
bool NameExists(char const *what) {
    std::string path = std::string("/dev/shm/qv-mutex-qv-test%2F") + what + "-" + std::to_string(getpid());
    return access(path.c_str(), F_OK) == 0;
}

// Runs child in a forked process and gives its exit status (-1 when it did
// not exit normally). The child must finish on its own: its waits have limits.
int InChild(std::function<int()> const &child) {
    pid_t pid = fork();
    if (pid == 0) _exit(child());
    int status = 0;
    if (pid < 0 || waitpid(pid, &status, 0) != pid || !WIFEXITED(status)) return -1;
    return WEXITSTATUS(status);
}

TEST(Mutex, RecursiveOwnedByItsThread) {
    CMutex mutex;
    ASSERT_NE(mutex.getHandle(), nullptr);
    EXPECT_TRUE(mutex.Acquire(0));
    EXPECT_TRUE(mutex.Acquire(kLimitMs));
    auto stranger = test::Async([&] { return !mutex.Acquire(0) && !mutex.Acquire(20) && !mutex.Release(); });
    EXPECT_TRUE(stranger.get()) << "another thread can neither take nor release it";
    EXPECT_TRUE(mutex.Release());
    auto stillHeld = test::Async([&] { return mutex.Acquire(0); });
    EXPECT_FALSE(stillHeld.get()) << "one Release of two keeps it";
    EXPECT_TRUE(mutex.Release());
    EXPECT_FALSE(mutex.Release()) << "not owned any more";
    auto free = test::Async([&] { return mutex.Acquire(0) && mutex.Release(); });
    EXPECT_TRUE(free.get());
}

TEST(Mutex, ThreadThatEndsOwningAbandonsIt) {
    CMutex mutex;
    std::thread([&] { EXPECT_TRUE(mutex.Acquire(0)); }).join();
    EXPECT_FALSE(mutex.Acquire(kLimitMs)) << "an abandoned mutex is no signalled wait";
    EXPECT_TRUE(mutex.Release()) << "but the waiter owns it";
    EXPECT_TRUE(mutex.Acquire(0)) << "and it works normally afterwards";
    EXPECT_TRUE(mutex.Release());
}

TEST(Mutex, CopyIsPrivateAndSameNameIsShared) {
    std::u16string name = UniqueName("shared");
    CMutex first(name.c_str());
    CMutex second(name.c_str());
    CMutex copy(first);
    ASSERT_TRUE(first.Acquire(0));
    auto other = test::Async([&] { return !second.Acquire(0) && copy.Acquire(0) && copy.Release(); });
    EXPECT_TRUE(other.get());
    EXPECT_TRUE(first.Release());
    EXPECT_TRUE(NameExists("shared"));
}

TEST(Mutex, NameGoesWithTheLastHandle) {
    {
        CMutex mutex(UniqueName("gone").c_str());
        EXPECT_TRUE(NameExists("gone"));
    }
    EXPECT_FALSE(NameExists("gone"));
    CMutex tooLong(std::u16string(300, u'x').c_str());
    EXPECT_EQ(tooLong.getHandle(), nullptr);
    EXPECT_FALSE(tooLong.Acquire(0));
    EXPECT_FALSE(tooLong.Release());
}

TEST(Mutex, AbandonedAcrossProcesses) {
    std::u16string name = UniqueName("abandoned");
    {
        CMutex mutex(name.c_str());
        EXPECT_EQ(InChild([&] { return mutex.Acquire(0) ? 0 : 1; }), 0);
        EXPECT_FALSE(mutex.Acquire(kLimitMs)) << "the child died owning it";
        EXPECT_TRUE(mutex.Release());
        EXPECT_TRUE(mutex.Acquire(0));
        EXPECT_TRUE(mutex.Release());
    }
    EXPECT_FALSE(NameExists("abandoned"));
}

TEST(Mutex, ExcludesAcrossProcesses) {
    std::u16string name = UniqueName("exclusive");
    CMutex mutex(name.c_str());
    ASSERT_TRUE(mutex.Acquire(0));
    EXPECT_EQ(InChild([&] { return CMutex(name.c_str()).Acquire(20) ? 1 : 0; }), 0) << "held by the parent";
    ASSERT_TRUE(mutex.Release());

    // A read-modify-write with a yield in the middle loses counts unless the
    // mutex keeps the two processes apart.
    void *memory = mmap(nullptr, sizeof(int), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    int volatile *counter = static_cast<int *>(memory);
    *counter = 0;
    auto bump = [&](CMutex &m) {
        for (int i = 0; i < 300; ++i) {
            if (!m.Acquire(kLimitMs)) return 1;
            int value = *counter;
            sched_yield();
            *counter = value + 1;
            m.Release();
        }
        return 0;
    };
    pid_t pid = fork();
    if (pid == 0) {
        int result;
        {
            CMutex own(name.c_str());
            result = bump(own);
        }
        _exit(result);
    }
    ASSERT_GT(pid, 0);
    EXPECT_EQ(bump(mutex), 0);
    int status = 0;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(*counter, 600);
    munmap(memory, sizeof(int));
}

} // namespace
} // namespace qv
