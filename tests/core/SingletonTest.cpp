// TSingletonPtr: one instance under a creation race, build at start, and the
// exit-time destruction order (watched from a forked child that exits).
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "qv/core/Log.h"
#include "qv/core/Singleton.h"

using namespace qv;

namespace {

struct RaceTarget {
    static inline std::atomic<int> built{0};
    RaceTarget() {
        built.fetch_add(1);
        for (int i = 0; i < 1000; ++i) std::this_thread::yield(); // keep the window open
    }
};

TEST(Singleton, RacedCreationMakesOneInstance) {
    constexpr int kThreads = 16;
    std::vector<RaceTarget *> seen(kThreads);
    std::latch start(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            start.arrive_and_wait();
            seen[size_t(t)] = TSingletonPtr<RaceTarget>::GetInstance();
        });
    }
    for (std::thread &thread : threads) thread.join();
    EXPECT_EQ(RaceTarget::built.load(), 1);
    for (RaceTarget *p : seen) EXPECT_EQ(p, seen[0]);
    TSingletonPtr<RaceTarget> handle, other;
    other = handle; // handles carry nothing
    EXPECT_EQ(static_cast<RaceTarget *>(handle), seen[0]);
    EXPECT_EQ(&*other, seen[0]);
}

struct BuiltAtStart {
    static inline int built = 0;
    BuiltAtStart() { ++built; }
};
struct BuiltLazily {
    static inline int built = 0;
    BuiltLazily() { ++built; }
};

TEST(Singleton, CreateAtStartBuildsInTheConstructor) {
    TSingletonPtr<BuiltAtStart, 1, true> eager;
    TSingletonPtr<BuiltLazily, 1, false> lazy;
    EXPECT_EQ(BuiltAtStart::built, 1);
    EXPECT_EQ(BuiltLazily::built, 0);
    EXPECT_NE(lazy.GetInstance(), nullptr);
    EXPECT_EQ(BuiltLazily::built, 1);
}

// The program's gLog is the library's own: a flag set through the handle
// here is what the library reads.
TEST(Singleton, GlobalLogIsTheLibrarysInstance) {
    bool before = gLog->setVerbose(true);
    EXPECT_TRUE(qvLogIsVerbose());
    gLog->setVerbose(false);
    EXPECT_FALSE(qvLogIsVerbose());
    gLog->setVerbose(before);
}

// Exit-order witnesses: each destructor writes its letter to the pipe; some
// build another singleton while they are destroyed.
int gExitPipe = -1;

template <char Letter, int Priority, class Spawn = void> struct Witness {
    ~Witness() {
        if constexpr (!std::is_void_v<Spawn>) TSingletonPtr<Spawn, Spawn::kPriority>::GetInstance();
        char const letter = Letter;
        [[maybe_unused]] ssize_t n = write(gExitPipe, &letter, 1);
    }
};
struct LateF : Witness<'F', 9> {
    static constexpr int kPriority = 9;
};
struct LateG : Witness<'G', 0> {
    static constexpr int kPriority = 0;
};

// Builds, in this order, A(1) B(1, builds F(9) when destroyed) C(5) D(0,
// builds G(0) when destroyed) E(5), then exits.
[[noreturn]] void BuildWitnessesAndExit(int pipe) {
    gExitPipe = pipe;
    TSingletonPtr<Witness<'A', 1>, 1>::GetInstance();
    TSingletonPtr<Witness<'B', 1, LateF>, 1>::GetInstance();
    TSingletonPtr<Witness<'C', 5>, 5>::GetInstance();
    TSingletonPtr<Witness<'D', 0, LateG>, 0>::GetInstance();
    TSingletonPtr<Witness<'E', 5>, 5>::GetInstance();
    std::exit(0);
}

std::string ReadAll(int fd) {
    std::string text;
    char buffer[256];
    for (ssize_t n; (n = read(fd, buffer, sizeof buffer)) > 0;) text.append(buffer, size_t(n));
    return text;
}

TEST(Singleton, DestructionOrderAtExit) {
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        close(fds[0]);
        BuildWitnessesAndExit(fds[1]);
    }
    close(fds[1]);
    std::string order = ReadAll(fds[0]);
    close(fds[0]);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    // Highest priority first, newest first among equals. F, built while B
    // went, has the highest priority left and goes next; G, built by the last
    // one, is left to the final drain.
    EXPECT_EQ(order, "ECBFADG");
}

} // namespace
