#include <gtest/gtest.h>
#include <poll.h>

#include <atomic>
#include <future>
#include <memory>
#include <thread>
#include <vector>

#include "ThreadTestSupport.h"
#include "qv/platform/MessageQueue.h"
#include "qv/threads/Event.h"

namespace qv {
namespace {

using test::kLimitMs;

// Records what reaches it; answers a send with the message number plus wParam.
struct Recorder : IMessageHandler {
    std::vector<uint32_t> seen;
    intptr_t OnMessage(uint32_t message, uintptr_t wParam, intptr_t) override {
        seen.push_back(message);
        return intptr_t(message + wParam);
    }
};

bool Readable(int fd, int timeoutMs) {
    struct pollfd watch {
        fd, POLLIN, 0
    };
    return poll(&watch, 1, timeoutMs) == 1 && (watch.revents & POLLIN) != 0;
}

// A thread that makes a window and runs a plain loop until it gets a quit.
class LoopThread {
public:
    explicit LoopThread(IMessageHandler *handler) {
        auto made = std::make_shared<std::promise<CMessageWindow *>>();
        auto window = made->get_future();
        done = test::AsyncVoid([handler, made] {
            CMessageWindow own(handler);
            made->set_value(&own);
            SMessage msg;
            while (GetQueuedMessage(msg) > 0)
                DispatchQueuedMessage(msg);
        });
        this->window = window.get();
    }
    ~LoopThread() {
        window->PostQuit(0);
        EXPECT_TRUE(test::Finishes(done));
    }
    CMessageWindow *window;
    std::future<void> done;
};

TEST(MessageQueue, PostedMessagesWaitForThePumpInOrder) {
    Recorder recorder;
    CMessageWindow window(&recorder);
    EXPECT_EQ(window.Send(0x500, 2, 0), 0x502) << "a send to the own thread runs at once";
    EXPECT_EQ(recorder.seen, std::vector<uint32_t>{0x500});
    recorder.seen.clear();
    EXPECT_TRUE(window.Post(0x401, 0, 0));
    EXPECT_TRUE(window.Post(0x402, 0, 0));
    PostQuitMessage(3);
    EXPECT_TRUE(recorder.seen.empty()) << "nothing posted runs without a pump";

    SMessage msg;
    EXPECT_TRUE(PeekQueuedMessage(msg, kPeekRemove | kPeekSentOnly));
    EXPECT_EQ(msg.message, kQuitMessage) << "a filter passes only the quit";
    PostQuitMessage(3);
    EXPECT_TRUE(PeekQueuedMessage(msg, kPeekNoRemove));
    EXPECT_EQ(msg.message, 0x401u);
    EXPECT_EQ(GetQueuedMessage(msg), 1);
    EXPECT_EQ(msg.window, &window);
    DispatchQueuedMessage(msg);
    EXPECT_EQ(GetQueuedMessage(msg), 1);
    DispatchQueuedMessage(msg);
    EXPECT_EQ(GetQueuedMessage(msg), 0);
    EXPECT_EQ(msg.wParam, 3u);
    EXPECT_EQ(recorder.seen, (std::vector<uint32_t>{0x401, 0x402}));
    EXPECT_FALSE(PeekQueuedMessage(msg, kPeekRemove));
}

TEST(MessageQueue, DestroyedWindowLosesItsPostedMessages) {
    Recorder recorder, other;
    CMessageWindow kept(&other);
    {
        CMessageWindow window(&recorder);
        window.Post(0x401, 0, 0);
        kept.Post(0x402, 0, 0);
    }
    EXPECT_TRUE(PumpMessages());
    EXPECT_TRUE(recorder.seen.empty());
    EXPECT_EQ(other.seen, std::vector<uint32_t>{0x402});
}

// Well past the ring's first size, with messages taken back from the middle:
// the rest keep their order.
TEST(MessageQueue, TakePostedLeavesTheOthersInOrder) {
    Recorder recorder, other;
    CMessageWindow window(&recorder), kept(&other);
    for (uint32_t i = 0; i < 300; ++i) {
        ASSERT_TRUE(window.Post(0x1000 + i, i % 3, 0));
        ASSERT_TRUE(kept.Post(0x2000 + i, 0, 0));
    }
    std::vector<SMessage> taken =
        window.TakePosted([](SMessage const &msg, void *) { return msg.wParam == 1; }, nullptr);
    ASSERT_EQ(taken.size(), 100u);
    for (size_t i = 0; i < taken.size(); ++i) {
        EXPECT_EQ(taken[i].message, 0x1000 + 3 * i + 1);
        EXPECT_EQ(taken[i].window, &window);
    }
    EXPECT_TRUE(kept.TakePosted([](SMessage const &, void *) { return false; }, nullptr).empty());
    EXPECT_TRUE(PumpMessages());
    ASSERT_EQ(recorder.seen.size(), 200u);
    ASSERT_EQ(other.seen.size(), 300u);
    for (uint32_t i = 0, j = 0; i < 300; ++i) {
        if (i % 3 != 1) {
            EXPECT_EQ(recorder.seen[j++], 0x1000 + i);
        }
        EXPECT_EQ(other.seen[i], 0x2000 + i);
    }
}

// The first peek takes every posted message over from the posters' side at
// once; what it took still counts as posted: a send overtakes it, TakePosted
// and a window's end reach it, and an outside loop still sees it waiting.
TEST(MessageQueue, MessagesTakenOverStayPosted) {
    Recorder recorder, other;
    CMessageWindow window(&recorder), kept(&other);
    auto brief = std::make_unique<CMessageWindow>(&recorder);
    for (uint32_t i = 0; i < 6; ++i)
        ASSERT_TRUE(window.Post(0x1000 + i, i % 2, 0));
    ASSERT_TRUE(brief->Post(0x3000, 0, 0));
    ASSERT_TRUE(kept.Post(0x2000, 0, 0));
    SMessage msg;
    ASSERT_EQ(GetQueuedMessage(msg), 1);
    DispatchQueuedMessage(msg);
    ASSERT_TRUE(window.Post(0x1006, 1, 0));
    brief.reset();

    std::vector<SMessage> const taken =
        window.TakePosted([](SMessage const &msg, void *) { return msg.wParam == 1; }, nullptr);
    std::vector<uint32_t> takenNumbers;
    for (SMessage const &one : taken)
        takenNumbers.push_back(one.message);
    EXPECT_EQ(takenNumbers, (std::vector<uint32_t>{0x1001, 0x1003, 0x1005, 0x1006})) << "oldest first, across both parts";

    auto sender = test::Detached<intptr_t>([&] { return window.Send(0x900, 0, 0); });
    EXPECT_EQ(WaitForObjectOrMessage(nullptr, kLimitMs, kWakeSent), EWakeReason::Message);
    ASSERT_EQ(GetQueuedMessage(msg), 1);
    ASSERT_TRUE(test::Finishes(sender));
    EXPECT_EQ(msg.message, 0x1002u);
    DispatchQueuedMessage(msg);
    EXPECT_EQ(recorder.seen, (std::vector<uint32_t>{0x1000, 0x900, 0x1002}));

    int const fd = GetMessageQueueFd();
    ASSERT_GE(fd, 0);
    EXPECT_TRUE(Readable(fd, 0)) << "messages taken over still wait";
    EXPECT_TRUE(PumpMessages());
    EXPECT_EQ(recorder.seen, (std::vector<uint32_t>{0x1000, 0x900, 0x1002, 0x1004}));
    EXPECT_EQ(other.seen, std::vector<uint32_t>{0x2000});
    EXPECT_FALSE(Readable(fd, 0));
}

// Two posters and a worker that sleeps whenever it runs dry: every message
// arrives, in each poster's order (under TSan this also checks the wake-up).
TEST(MessageQueue, PostsFromTwoThreadsAllArriveInOrder) {
    struct Counter : IMessageHandler {
        std::vector<uint32_t> next = std::vector<uint32_t>(2, 0);
        bool inOrder = true;
        intptr_t OnMessage(uint32_t message, uintptr_t wParam, intptr_t lParam) override {
            inOrder = inOrder && uint32_t(lParam) == next[wParam]++;
            return message;
        }
    } counter;
    constexpr uint32_t kEach = 20000;
    {
        LoopThread loop(&counter);
        auto post = [&](uintptr_t poster) {
            return test::AsyncVoid([&loop, poster] {
                for (uint32_t i = 0; i < kEach; ++i)
                    while (!loop.window->Post(0x401, poster, intptr_t(i)))
                        std::this_thread::yield();
            });
        };
        auto first = post(0), second = post(1);
        ASSERT_TRUE(test::Finishes(first));
        ASSERT_TRUE(test::Finishes(second));
    } // the quit comes after every posted message
    EXPECT_TRUE(counter.inOrder);
    EXPECT_EQ(counter.next, (std::vector<uint32_t>{kEach, kEach}));
}

TEST(MessageQueue, SendFromAnotherThreadRunsOnTheOwner) {
    Recorder recorder;
    LoopThread loop(&recorder);
    EXPECT_NE(loop.window->GetThreadID(), 0u);
    auto answer = test::Detached<intptr_t>([&] { return loop.window->Send(0x600, 5, 0); });
    ASSERT_TRUE(test::Finishes(answer));
    EXPECT_EQ(answer.get(), 0x605);
}

// Each thread sends to the other from inside a handler: the blocked sender
// serves the send made to it, so both complete.
TEST(MessageQueue, TwoThreadsSendingToEachOtherComplete) {
    struct Bouncer : IMessageHandler {
        CMessageWindow *peer = nullptr;
        intptr_t OnMessage(uint32_t message, uintptr_t, intptr_t) override {
            if (message == 0x700) return peer->Send(0x701, 0, 0) + 1;
            return 40;
        }
    } a, b;
    LoopThread loopB(&b);
    auto result = test::Detached<intptr_t>([&] {
        CMessageWindow windowA(&a);
        b.peer = &windowA;
        a.peer = loopB.window;
        // A sends to B; B's handler sends back to A while A is blocked.
        return loopB.window->Send(0x700, 0, 0);
    });
    ASSERT_TRUE(test::Finishes(result));
    EXPECT_EQ(result.get(), 41);
}

TEST(MessageQueue, EndedThreadRefusesPostsAndReleasesSenders) {
    Recorder recorder;
    CEvent release(false, true);
    std::promise<CMessageWindow *> made;
    std::unique_ptr<CMessageWindow> window;
    auto ended = test::AsyncVoid([&] {
        window = std::make_unique<CMessageWindow>(&recorder);
        made.set_value(window.get());
        release.Wait(kLimitMs); // never pumps
    });
    CMessageWindow *target = made.get_future().get();
    auto sender = test::Detached<intptr_t>([target] { return target->Send(0x800, 0, 0); });
    EXPECT_TRUE(test::StillBlocked(sender)) << "no pump, no answer";
    release.Signal();
    ASSERT_TRUE(test::Finishes(ended));
    ASSERT_TRUE(test::Finishes(sender));
    EXPECT_EQ(sender.get(), 0);
    EXPECT_FALSE(target->Post(0x801, 0, 0));
    EXPECT_FALSE(target->PostQuit(0));
    EXPECT_TRUE(recorder.seen.empty());
    window.reset();
}

TEST(MessageQueue, FilterServesSentMessagesAndKeepsPostedOnes) {
    Recorder recorder;
    CMessageWindow window(&recorder);
    window.Post(0x401, 0, 0);
    auto sender = test::Detached<intptr_t>([&] { return window.Send(0x900, 0, 0); });
    // The send wakes the wait; the peek with the filter runs it.
    bool served = false;
    for (uint32_t start = GetTickCount(); !served && GetTickCount() - start < kLimitMs;) {
        EXPECT_EQ(WaitForObjectOrMessage(nullptr, kLimitMs, kWakeSent), EWakeReason::Message);
        SMessage msg;
        EXPECT_FALSE(PeekQueuedMessage(msg, kPeekRemove | kPeekSentOnly));
        served = !recorder.seen.empty();
    }
    ASSERT_TRUE(test::Finishes(sender));
    EXPECT_EQ(recorder.seen, std::vector<uint32_t>{0x900});
    EXPECT_EQ(WaitForObjectOrMessage(nullptr, 0, kWakeSent), EWakeReason::Timeout) << "posted input doesn't count";
    EXPECT_EQ(WaitForObjectOrMessage(nullptr, 0, kWakeAll), EWakeReason::Message);
    EXPECT_TRUE(PumpMessages());
    EXPECT_EQ(recorder.seen, (std::vector<uint32_t>{0x900, 0x401}));
}

TEST(MessageQueue, WaitCoversAnObjectAndTheQueue) {
    CEvent event(false, false);
    EXPECT_EQ(WaitForObjectOrMessage(static_cast<IWaitable *>(nullptr), 0, kWakeAll), EWakeReason::Timeout);
    EXPECT_EQ(WaitForObjectOrMessage(AsWaitable(event.getHandle()), 5, kWakeAll), EWakeReason::Timeout);
    auto signaller = test::AsyncVoid([&] { event.Signal(); });
    EXPECT_EQ(WaitForObjectOrMessage(AsWaitable(event.getHandle()), kLimitMs, kWakeAll), EWakeReason::Object);
    EXPECT_FALSE(event.Wait(0)) << "the wait took the auto-reset signal";
    ASSERT_TRUE(test::Finishes(signaller));

    Recorder recorder;
    CMessageWindow window(&recorder);
    auto poster = test::AsyncVoid([&] { window.Post(0x401, 0, 0); });
    EXPECT_EQ(WaitForObjectOrMessage(AsWaitable(event.getHandle()), kLimitMs, kWakeAll), EWakeReason::Message);
    ASSERT_TRUE(test::Finishes(poster));
    EXPECT_TRUE(PumpMessages());
}

TEST(MessageQueue, DescriptorIsReadableWhileMessagesWait) {
    Recorder recorder;
    CMessageWindow window(&recorder);
    int const fd = GetMessageQueueFd();
    ASSERT_GE(fd, 0);
    EXPECT_EQ(GetMessageQueueFd(), fd);
    EXPECT_FALSE(Readable(fd, 0));
    auto poster = test::AsyncVoid([&] { window.Post(0x401, 0, 0); });
    EXPECT_TRUE(Readable(fd, int(kLimitMs))) << "a post from another thread wakes an outside loop";
    ASSERT_TRUE(test::Finishes(poster));
    EXPECT_TRUE(Readable(fd, 0)) << "stays readable until pumped";
    EXPECT_TRUE(PumpMessages());
    EXPECT_EQ(recorder.seen, std::vector<uint32_t>{0x401});
    EXPECT_FALSE(Readable(fd, 0));

    auto sender = test::Detached<intptr_t>([&] { return window.Send(0x402, 1, 0); });
    EXPECT_TRUE(Readable(fd, int(kLimitMs))) << "so does a send";
    EXPECT_TRUE(PumpMessages());
    ASSERT_TRUE(test::Finishes(sender));
    EXPECT_EQ(sender.get(), 0x403);
    EXPECT_FALSE(Readable(fd, 0));

    PostQuitMessage(0);
    EXPECT_TRUE(Readable(fd, 0));
    EXPECT_FALSE(PumpMessages()) << "the quit is reported";
    EXPECT_FALSE(Readable(fd, 0));

    static std::atomic<int> fired{0};
    fired = 0;
    uint32_t const timer = SetQueueTimer(200, [](uint32_t) { ++fired; });
    ASSERT_NE(timer, 0u);
    EXPECT_TRUE(Readable(fd, int(kLimitMs))) << "a due timer wakes an outside loop";
    EXPECT_TRUE(PumpMessages());
    EXPECT_EQ(fired, 1);
    EXPECT_FALSE(Readable(fd, 0)) << "rearmed for the next interval";
    EXPECT_TRUE(KillQueueTimer(timer));
    EXPECT_FALSE(KillQueueTimer(timer));
}

TEST(MessageQueue, KilledTimerCallsNothingEvenWhenItsMessageWasTaken) {
    static std::atomic<int> fired{0};
    fired = 0;
    uint32_t const timer = SetQueueTimer(10, [](uint32_t) { ++fired; });
    SMessage msg;
    for (uint32_t start = GetTickCount(); GetTickCount() - start < kLimitMs;) {
        if (PeekQueuedMessage(msg, kPeekRemove)) break;
        WaitForObjectOrMessage(nullptr, kLimitMs, kWakeAll);
    }
    ASSERT_EQ(msg.message, kTimerMessage);
    EXPECT_EQ(msg.wParam, timer);
    EXPECT_TRUE(KillQueueTimer(timer));
    DispatchQueuedMessage(msg);
    EXPECT_EQ(fired, 0);
}

} // namespace
} // namespace qv
