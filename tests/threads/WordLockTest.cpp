#include <gtest/gtest.h>

#include <mutex>
#include <thread>
#include <vector>

#include "qv/platform/WordLock.h"

namespace qv {
namespace {

// Four threads that take turns on a plain counter: no increment is lost, and
// the sleeping road (a holder that others wait for) is taken many times
// (under ThreadSanitizer this also checks the lock orders their writes).
TEST(WordLock, GuardsACounterAcrossThreads) {
    CWordLock lock;
    uint64_t counter = 0;
    constexpr int kRounds = 20000;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < kRounds; ++i) {
                std::lock_guard<CWordLock> hold(lock);
                ++counter;
                if (i % 1000 == 0) std::this_thread::yield(); // held while others arrive
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(counter, 4u * kRounds);
    EXPECT_TRUE(lock.try_lock());
    EXPECT_FALSE(lock.try_lock()) << "not recursive";
    lock.unlock();
}

} // namespace
} // namespace qv
