#include <gtest/gtest.h>
#include <poll.h>

#include <memory>

#include "ThreadTestSupport.h"
#include "qv/platform/MessageQueue.h"
#include "qv/threads/Event.h"
#include "qv/threads/Timer.h"

namespace qv {
namespace {

using test::kLimitMs;

struct TickCounter {
    int ticks = 0;
    void *lastSender = nullptr;
    CEvent ticked{false, false};
    void OnTick(void *sender) {
        ++ticks;
        lastSender = sender;
        ticked.Signal();
    }
};

// Waits until the queue shows input: here, the due timer.
bool TimerDue() {
    struct pollfd watch {
        GetMessageQueueFd(), POLLIN, 0
    };
    return poll(&watch, 1, int(kLimitMs)) == 1;
}

TEST(Timer, SettingsAndStartStop) {
    CTimer timer;
    EXPECT_EQ(timer.GetInterval(), 1000u);
    EXPECT_FALSE(timer.getRunning());
    EXPECT_TRUE(timer.Create(20));
    EXPECT_EQ(timer.GetInterval(), 20u);
    EXPECT_FALSE(timer.getRunning()) << "Create only sets the interval";
    EXPECT_TRUE(timer.SetInterval(30));
    EXPECT_EQ(timer.GetInterval(), 30u);
    EXPECT_FALSE(timer.getRunning()) << "SetInterval on a stopped timer doesn't start it";
    EXPECT_TRUE(timer.Stop());
    EXPECT_TRUE(timer.Start());
    EXPECT_TRUE(timer.Start());
    EXPECT_TRUE(timer.getRunning());
    EXPECT_TRUE(timer.SetInterval(40));
    EXPECT_TRUE(timer.getRunning());
    EXPECT_EQ(timer.GetInterval(), 40u);
    EXPECT_TRUE(timer.Restart());
    EXPECT_TRUE(timer.getRunning());
    EXPECT_TRUE(timer.Stop());
    EXPECT_FALSE(timer.getRunning());
}

TEST(Timer, TicksFromTheLoopOnlyWhileRunning) {
    CTimer timer;
    TickCounter counter;
    timer.OnTick.AddHandlerEx(&counter, &TickCounter::OnTick);
    timer.Tick();
    EXPECT_EQ(counter.ticks, 0) << "a stopped timer fires nothing";

    timer.Create(10);
    ASSERT_TRUE(timer.Start());
    EXPECT_EQ(counter.ticks, 0) << "ticks come only from the loop";
    EXPECT_TRUE(counter.ticked.Wait(kLimitMs, true));
    EXPECT_GE(counter.ticks, 1);
    EXPECT_EQ(counter.lastSender, &timer);
    EXPECT_TRUE(counter.ticked.Wait(kLimitMs, true)) << "and again after the interval";

    timer.Stop();
    int const before = counter.ticks;
    timer.Tick();
    EXPECT_FALSE(counter.ticked.Wait(30, true));
    EXPECT_EQ(counter.ticks, before);
}

TEST(Timer, DestroyedWhileItsTickWaitsIsSafe) {
    TickCounter counter;
    auto timer = std::make_unique<CTimer>();
    timer->OnTick.AddHandlerEx(&counter, &TickCounter::OnTick);
    timer->Create(10);
    ASSERT_TRUE(timer->Start());
    ASSERT_TRUE(TimerDue());
    timer.reset();
    EXPECT_TRUE(PumpMessages());
    EXPECT_EQ(counter.ticks, 0);

    // The tick's message already taken from the queue when the timer goes.
    timer = std::make_unique<CTimer>();
    timer->OnTick.AddHandlerEx(&counter, &TickCounter::OnTick);
    timer->Create(10);
    ASSERT_TRUE(timer->Start());
    ASSERT_TRUE(TimerDue());
    SMessage msg;
    ASSERT_TRUE(PeekQueuedMessage(msg, kPeekRemove));
    ASSERT_EQ(msg.message, kTimerMessage);
    timer.reset();
    DispatchQueuedMessage(msg);
    EXPECT_EQ(counter.ticks, 0);
}

// Deletes its timer from inside a tick: at once, or from a tick nested in
// the first (as a handler that pumps would meet).
struct SelfDeleting {
    CTimer *timer = nullptr;
    bool nest = false;
    int ticks = 0;
    CEvent done{false, false};
    void OnTick(void *) {
        if (++ticks == 1 && nest) return timer->Tick();
        delete timer;
        timer = nullptr;
        done.Signal();
    }
};

CTimer *StartedTimer(SelfDeleting &deleter, TickCounter &after) {
    auto *timer = new CTimer;
    timer->OnTick.AddHandlerEx(&deleter, &SelfDeleting::OnTick);
    timer->OnTick.AddHandlerEx(&after, &TickCounter::OnTick);
    timer->Create(1);
    EXPECT_TRUE(timer->Start());
    return timer;
}

TEST(Timer, HandlerMayDeleteItsOwnTimer) {
    SelfDeleting deleter;
    TickCounter after;
    deleter.timer = StartedTimer(deleter, after);
    ASSERT_TRUE(deleter.done.Wait(kLimitMs, true));
    EXPECT_EQ(deleter.timer, nullptr);
    EXPECT_EQ(deleter.ticks, 1);
    EXPECT_FALSE(after.ticked.Wait(30, true)) << "no later handler runs, and no tick follows";
    EXPECT_EQ(after.ticks, 0);
    EXPECT_EQ(deleter.ticks, 1);

    SelfDeleting nested;
    nested.nest = true;
    nested.timer = StartedTimer(nested, after);
    nested.timer->Tick();
    EXPECT_EQ(nested.timer, nullptr);
    EXPECT_EQ(nested.ticks, 2);
    EXPECT_EQ(after.ticks, 0) << "neither the inner nor the outer tick goes on";
    EXPECT_TRUE(PumpMessages());
}

} // namespace
} // namespace qv
