#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "ThreadTestSupport.h"
#include "qv/threads/Semaphore.h"

namespace qv {
namespace {

using test::kLimitMs;

// Acquire(0, 0) succeeds exactly when nobody is queued.
bool Queued(CSemaphore &semaphore) {
    return test::Eventually([&] { return !semaphore.Acquire(0, 0); });
}

TEST(Semaphore, CountsWithinItsMaximum) {
    CSemaphore semaphore(3);
    EXPECT_FALSE(semaphore.Acquire(4, 0));
    EXPECT_FALSE(semaphore.Release(1)) << "full already";
    EXPECT_TRUE(semaphore.Acquire(2, 0));
    EXPECT_FALSE(semaphore.Acquire(2, 10));
    EXPECT_FALSE(semaphore.Release(3)) << "would pass the maximum";
    EXPECT_TRUE(semaphore.Acquire(1, 0));
    EXPECT_TRUE(semaphore.Release(3));
    EXPECT_FALSE(semaphore.Release(0xFFFFFFFFu));
    CSemaphore copy(semaphore);
    EXPECT_TRUE(copy.Acquire(3, 0)) << "a copy starts full";
    EXPECT_TRUE(semaphore.Acquire(3, 0)) << "and takes nothing from the original";
}

TEST(Semaphore, RequestBeyondTheMaximumFailsAtOnce) {
    CSemaphore semaphore(2);
    ASSERT_TRUE(semaphore.Acquire(1, 0));
    // It could never be served: waiting would hang and hold up the queue.
    auto beyond = test::Async([&] { return semaphore.Acquire(3, kInfinite); });
    ASSERT_TRUE(test::Finishes(beyond));
    EXPECT_FALSE(beyond.get());
    EXPECT_TRUE(semaphore.Acquire(1, 0)) << "nothing was left in the queue";
    EXPECT_TRUE(semaphore.Release(2));
    CSemaphore none(0);
    EXPECT_TRUE(none.Acquire(0, kInfinite));
}

TEST(Semaphore, QueueHeadBlocksLaterRequests) {
    CSemaphore semaphore(3);
    ASSERT_TRUE(semaphore.Acquire(2, 0));
    auto head = test::Async([&] { return semaphore.Acquire(2, kLimitMs); });
    ASSERT_TRUE(Queued(semaphore));
    EXPECT_FALSE(semaphore.Acquire(1, 0)) << "one permit is free, but a request never overtakes the queue";
    EXPECT_TRUE(semaphore.Release(1));
    EXPECT_TRUE(head.get());
    EXPECT_FALSE(semaphore.Acquire(1, 0));
}

TEST(Semaphore, ServesStrictlyInOrder) {
    CSemaphore semaphore(4);
    ASSERT_TRUE(semaphore.Acquire(4, 0));
    std::atomic<int> order{0};
    auto big = test::Async([&] { return semaphore.Acquire(3, kLimitMs) && order.fetch_add(1) == 0; });
    ASSERT_TRUE(Queued(semaphore));
    auto small = test::Async([&] { return semaphore.Acquire(1, kLimitMs) && order.fetch_add(1) == 1; });
    EXPECT_TRUE(semaphore.Release(1));
    EXPECT_TRUE(test::StillBlocked(small)) << "the head wants 3";
    EXPECT_TRUE(semaphore.Release(2));
    EXPECT_TRUE(big.get());
    EXPECT_TRUE(test::StillBlocked(small));
    EXPECT_TRUE(semaphore.Release(1));
    EXPECT_TRUE(small.get());
}

TEST(Semaphore, WaiterThatTimesOutWakesTheNext) {
    CSemaphore semaphore(2);
    ASSERT_TRUE(semaphore.Acquire(2, 0));
    auto head = test::Async([&] { return semaphore.Acquire(2, 100); });
    ASSERT_TRUE(Queued(semaphore));
    auto next = test::Async([&] { return semaphore.Acquire(1, kLimitMs); });
    EXPECT_TRUE(semaphore.Release(1));
    EXPECT_FALSE(head.get());
    EXPECT_TRUE(next.get()) << "served without another Release";
}

TEST(Semaphore, TickWrapDuringAWaitCostsLittleTime) {
    test::TickScope ticks;
    ticks.ReadNow(0xFFFFFFF0u);
    CSemaphore semaphore(2);
    ASSERT_TRUE(semaphore.Acquire(2, 0));
    auto waiter = test::Async([&] { return semaphore.Acquire(2, kLimitMs); });
    ASSERT_TRUE(Queued(semaphore));
    ticks.ReadNow(5);
    // Wakes the waiter without granting it: it measures the wrapped interval.
    EXPECT_TRUE(semaphore.Release(1));
    EXPECT_TRUE(test::StillBlocked(waiter)) << "a wrapped interval must not use up the time limit";
    EXPECT_TRUE(semaphore.Release(1));
    EXPECT_TRUE(waiter.get());
}

TEST(Semaphore, NeverHandsOutMoreThanItHas) {
    CSemaphore semaphore(3);
    std::atomic<int> inUse{0}, worst{0};
    std::atomic<bool> failed{false};
    std::vector<std::thread> threads;
    for (uint32_t want = 1; want <= 3; ++want) {
        threads.emplace_back([&, want] {
            for (int i = 0; i < 200; ++i) {
                if (!semaphore.Acquire(want, kLimitMs)) {
                    failed = true;
                    return;
                }
                int now = inUse += int(want);
                for (int seen = worst; now > seen && !worst.compare_exchange_weak(seen, now);) {
                }
                inUse -= int(want);
                semaphore.Release(want);
            }
        });
    }
    for (auto &thread : threads)
        thread.join();
    EXPECT_FALSE(failed);
    EXPECT_LE(worst, 3);
    EXPECT_TRUE(semaphore.Acquire(3, 0)) << "every permit came back";
}

// Waiters that give up at their time limit leave the queue to the others:
// nobody is left asleep behind a request that went, and no permit is lost.
TEST(Semaphore, WaitersThatTimeOutHandTheQueueOn) {
    CSemaphore semaphore(3);
    std::atomic<bool> failed{false};
    std::atomic<int> starting{3};
    std::vector<std::thread> threads;
    for (uint32_t want = 1; want <= 3; ++want) {
        threads.emplace_back([&, want] {
            for (--starting; starting != 0;)
                std::this_thread::yield();
            for (int i = 0; i < 300; ++i) {
                if (!semaphore.Acquire(want, uint32_t(i % 3))) continue;
                std::this_thread::yield(); // hold a moment, so that others queue
                if (!semaphore.Release(want)) failed = true;
            }
            // A patient request at the end: it must be served.
            if (!semaphore.Acquire(want, kLimitMs) || !semaphore.Release(want)) failed = true;
        });
    }
    for (auto &thread : threads)
        thread.join();
    EXPECT_FALSE(failed);
    EXPECT_TRUE(semaphore.Acquire(3, 0)) << "every permit came back";
}

} // namespace
} // namespace qv
