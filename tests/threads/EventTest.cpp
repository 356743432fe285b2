#include <gtest/gtest.h>

#include <atomic>

#include "ThreadTestSupport.h"
#include "qv/threads/Event.h"

namespace qv {
namespace {

using test::kLimitMs;

TEST(Event, AutoResetLetsOneWaitThrough) {
    CEvent event(false, false);
    EXPECT_FALSE(event.Wait(0));
    EXPECT_FALSE(event.Wait(10));
    EXPECT_TRUE(event.Signal());
    EXPECT_TRUE(event.Wait(0));
    EXPECT_FALSE(event.Wait(0)) << "the wait took the signal";
    EXPECT_TRUE(event.setSignaled(true));
    EXPECT_TRUE(event.getSignaled());
    EXPECT_FALSE(event.getSignaled());
    EXPECT_FALSE(event.setSignaled(false));
    CEvent initially(true, false);
    EXPECT_TRUE(initially.Wait(kLimitMs));
    CEvent copy(initially);
    EXPECT_NE(copy.getHandle(), initially.getHandle());
}

TEST(Event, AutoResetSignalReleasesOneWaiterOfTwo) {
    CEvent event(false, false);
    std::atomic<int> released{0};
    auto waiter = [&] {
        bool got = event.Wait(kLimitMs);
        if (got) ++released;
        return got;
    };
    auto a = test::Async(waiter), b = test::Async(waiter);
    event.Signal();
    EXPECT_TRUE(test::Eventually([&] { return released == 1; }));
    EXPECT_EQ(released, 1) << "one signal, one waiter";
    event.Signal();
    EXPECT_TRUE(a.get());
    EXPECT_TRUE(b.get());
    EXPECT_FALSE(event.Wait(0));
}

TEST(Event, ManualResetStaysUntilReset) {
    CEvent event(true, true);
    EXPECT_TRUE(event.Wait(0));
    EXPECT_TRUE(event.Wait(0));
    event.Reset();
    EXPECT_FALSE(event.Wait(0));
    auto a = test::Async([&] { return event.Wait(kLimitMs); });
    auto b = test::Async([&] { return event.Wait(kLimitMs); });
    EXPECT_TRUE(test::StillBlocked(a));
    event.Signal();
    EXPECT_TRUE(a.get());
    EXPECT_TRUE(b.get());
    EXPECT_TRUE(event.getSignaled());
    CEvent copy(event);
    EXPECT_FALSE(copy.Wait(0)) << "a copy starts unsignalled";
    copy.Signal();
    EXPECT_TRUE(copy.Wait(0));
    EXPECT_TRUE(copy.Wait(0)) << "with the same reset mode";
}

// Pulses until the waiters come back; a pulse before a waiter arrived is lost.
void PulseUntil(CEvent &event, std::atomic<int> const &released, int expected) {
    EXPECT_TRUE(test::Eventually([&] {
        event.Pulse();
        return released == expected;
    }));
}

TEST(Event, PulseReleasesWaitersAndLeavesItUnsignalled) {
    for (bool manual : {true, false}) {
        CEvent event(false, manual);
        EXPECT_TRUE(event.Pulse());
        EXPECT_FALSE(event.Wait(0)) << "nobody waited: the pulse is gone";
        std::atomic<int> released{0};
        auto waiter = [&] {
            bool got = event.Wait(kLimitMs);
            ++released;
            return got;
        };
        auto a = test::Async(waiter), b = test::Async(waiter);
        PulseUntil(event, released, 2);
        EXPECT_TRUE(a.get());
        EXPECT_TRUE(b.get());
        EXPECT_FALSE(event.Wait(0)) << (manual ? "manual" : "auto");
    }
}

TEST(Event, WaiterThatTimesOutLeavesNoPulseBehind) {
    CEvent event(false, false);
    auto late = test::Async([&] { return event.Wait(30); });
    EXPECT_TRUE(test::Eventually([&] {
        event.Pulse();
        return late.wait_for(std::chrono::milliseconds(0)) == std::future_status::ready;
    }));
    late.get();
    EXPECT_FALSE(event.Wait(0));
}

// An auto-reset pulse belongs to a thread that was waiting when it came: a
// Wait begun after it must not take it and leave that thread asleep.
TEST(Event, AutoResetPulseGoesOnlyToAThreadThatWasWaiting) {
    CEvent event(false, false);
    auto waiting = test::Async([&] { return event.Wait(kLimitMs); });
    bool stolen = false;
    EXPECT_TRUE(test::Eventually([&] {
        event.Pulse();
        stolen = stolen || event.Wait(0);
        return stolen || waiting.wait_for(std::chrono::milliseconds(0)) == std::future_status::ready;
    }));
    EXPECT_FALSE(stolen) << "a later Wait took the pulse";
    EXPECT_TRUE(waiting.get());
    EXPECT_FALSE(event.Wait(0));
}

// Every signal of an auto-reset event releases exactly one waiter, whether
// the waiters block or pump, so none is lost and none counted twice.
TEST(Event, AutoResetHandsEachSignalToExactlyOneWaiter) {
    constexpr int kRounds = 1000;
    CEvent go(false, false), ack(false, false);
    std::atomic<int> taken{0};
    std::atomic<bool> stop{false};
    auto waiter = [&](bool pump) {
        return [&, pump] {
            while (go.Wait(kLimitMs, pump) && !stop) {
                ++taken;
                ack.Signal();
            }
            return bool(stop);
        };
    };
    std::future<bool> waiters[] = {test::Async(waiter(false)), test::Async(waiter(false)), test::Async(waiter(true))};
    for (int i = 0; i < kRounds; ++i) {
        go.Signal();
        ASSERT_TRUE(ack.Wait(kLimitMs)) << "round " << i;
    }
    stop = true;
    for (auto &w : waiters) {
        while (w.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready)
            go.Signal();
        EXPECT_TRUE(w.get());
    }
    EXPECT_EQ(taken, kRounds);
}

} // namespace
} // namespace qv
