#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <thread>
#include <vector>

#include "ThreadTestSupport.h"
#include "qv/platform/MessageQueue.h"
#include "qv/threads/Event.h"
#include "qv/threads/Invokers.h"

namespace qv {
namespace {

using test::kLimitMs;

using test::Call;

// The calling thread's id, as invokers give it.
uint32_t GetCurrentThreadId() {
    return directInvoker->GetThreadID();
}

struct Handlers {
    void OnA() {}
    void OnB() {}
};

// Takes one message and dispatches it; false when there was none.
bool DispatchOne() {
    SMessage msg;
    if (!PeekQueuedMessage(msg, kPeekRemove)) return false;
    DispatchQueuedMessage(msg);
    return true;
}

TEST(MessageQueueInvoker, InvokeOnOwnThreadRunsAtOnceQueueWaitsForThePump) {
    CMessageQueueInvoker invoker;
    EXPECT_EQ(invoker.GetThreadID(), GetCurrentThreadId());
    std::vector<int> order;
    Call now([&] { order.push_back(0); });
    invoker.Invoke(&now);
    EXPECT_EQ(order, std::vector<int>{0});

    std::atomic<int> deleted{0};
    EXPECT_TRUE(invoker.Queue(new Call([&] { order.push_back(1); }, &deleted), true));
    Call kept([&] { order.push_back(2); });
    EXPECT_TRUE(invoker.Queue(&kept, false));
    EXPECT_EQ(order.size(), 1u) << "queued calls wait for the loop";
    EXPECT_TRUE(DispatchOne());
    EXPECT_EQ(order, (std::vector<int>{0, 1})) << "one entry per message";
    EXPECT_EQ(deleted, 1);
    EXPECT_TRUE(PumpMessages());
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2}));
}

// A queued call that pumps runs the next entry nested; that turn posts its
// message again, so one more (empty) turn is left for the outer loop.
TEST(MessageQueueInvoker, NestedPumpRunsNextEntryAndPostsAgain) {
    CMessageQueueInvoker invoker;
    std::vector<int> order;
    Call second([&] { order.push_back(2); });
    Call first([&] {
        order.push_back(1);
        EXPECT_TRUE(DispatchOne());
        order.push_back(3);
    });
    invoker.Queue(&first, false);
    invoker.Queue(&second, false);
    EXPECT_TRUE(DispatchOne());
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
    SMessage msg;
    ASSERT_TRUE(PeekQueuedMessage(msg, kPeekNoRemove)) << "the nested turn posted again";
    EXPECT_EQ(msg.message, 0x401u);
    EXPECT_TRUE(DispatchOne());
    EXPECT_FALSE(DispatchOne());
    EXPECT_EQ(order.size(), 3u);
}

TEST(MessageQueueInvoker, DequeueDuplicatesDropsPendingCallsOnly) {
    CMessageQueueInvoker invoker;
    Handlers handlers;
    std::atomic<int> deleted{0};
    std::vector<int> order;
    auto make = [&](int id, CMethodId method) {
        Call *call = new Call([&order, id] { order.push_back(id); }, &deleted);
        call->target = &handlers;
        call->method = method;
        return call;
    };
    // The running call asks to drop its own kind: it isn't touched itself.
    Call *running = new Call(
        [&] {
            order.push_back(1);
            invoker.DequeueDuplicates(&handlers, &Handlers::OnA);
        },
        &deleted);
    running->target = &handlers;
    running->method = &Handlers::OnA;
    Call kept([&] { order.push_back(4); });
    kept.target = &handlers;
    kept.method = &Handlers::OnA;
    invoker.Queue(running, true);
    invoker.Queue(make(2, &Handlers::OnA), true);
    invoker.Queue(make(3, &Handlers::OnB), true);
    invoker.Queue(&kept, false);
    invoker.Queue(make(5, &Handlers::OnB), true);
    EXPECT_TRUE(DispatchOne());
    EXPECT_EQ(deleted, 2) << "the running call after it ran, and the dropped one with autoDelete";
    EXPECT_TRUE(PumpMessages());
    EXPECT_EQ(order, (std::vector<int>{1, 3, 5})) << "the others keep their order";
    EXPECT_EQ(deleted, 4);
}

TEST(MessageQueueInvoker, DestroyedInvokerDropsPendingCalls) {
    std::atomic<int> deleted{0};
    int ran = 0;
    Call kept([&] { ++ran; });
    {
        CMessageQueueInvoker invoker;
        invoker.Queue(new Call([&] { ++ran; }, &deleted), true);
        invoker.Queue(&kept, false);
    }
    EXPECT_EQ(deleted, 1) << "autoDelete entries are deleted, not run";
    EXPECT_TRUE(PumpMessages());
    EXPECT_EQ(ran, 0);
}

TEST(MessageQueueInvoker, SafeWaitServesSendsAndStopsAtQuit) {
    CMessageQueueInvoker invoker;
    CEvent done(false, true);
    uint32_t ranOn = 0;
    Call call([&] { ranOn = GetCurrentThreadId(); });
    // The worker invokes on this thread and then signals: without serving
    // the send while waiting, both would wait for ever.
    auto worker = test::AsyncVoid([&] {
        invoker.Invoke(&call);
        done.Signal();
    });
    EXPECT_TRUE(CMessageQueueInvoker::SafeWait(done.getHandle(), kLimitMs));
    EXPECT_EQ(ranOn, GetCurrentThreadId());
    ASSERT_TRUE(test::Finishes(worker));

    CEvent never(false, false);
    EXPECT_FALSE(CMessageQueueInvoker::SafeWait(never.getHandle(), 5));
    int queuedRan = 0;
    Call queued([&] { ++queuedRan; });
    invoker.Queue(&queued, false);
    PostQuitMessage(0);
    EXPECT_FALSE(CMessageQueueInvoker::SafeWait(never.getHandle(), kLimitMs)) << "a quit ends the wait";
    EXPECT_EQ(queuedRan, 0) << "SafeWait serves sent calls only";
    SMessage msg;
    EXPECT_TRUE(PeekQueuedMessage(msg, kPeekNoRemove));
    EXPECT_NE(msg.message, kQuitMessage) << "the quit was consumed";
    EXPECT_TRUE(PumpMessages());
    EXPECT_EQ(queuedRan, 1);
}

TEST(InvokerThread, RunsCallsOnItsWorkerInOrder) {
    CInvokerThread worker;
    uint32_t const workerId = worker.GetThreadID();
    EXPECT_NE(workerId, 0u);
    EXPECT_NE(workerId, GetCurrentThreadId());
    uint32_t ranOn = 0;
    Call call([&] { ranOn = GetCurrentThreadId(); });
    worker.Invoke(&call);
    EXPECT_EQ(ranOn, workerId);

    std::vector<int> order;
    CEvent last(false, true);
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(worker.Queue(new Call([&order, i] { order.push_back(i); }), true));
    Call signal([&] { last.Signal(); });
    worker.Queue(&signal, false);
    ASSERT_TRUE(last.Wait(kLimitMs));
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4}));
}

// Once the invoker's thread has ended nothing would run a call: Queue refuses
// it and the caller keeps it. Calls that were still waiting then are deleted
// (autoDelete) without running when the invoker goes.
TEST(MessageQueueInvoker, AfterItsThreadEndedQueueRefusesAndPendingCallsAreDropped) {
    std::atomic<int> deleted{0};
    int ran = 0;
    std::unique_ptr<CMessageQueueInvoker> invoker;
    std::thread owner([&] {
        invoker = std::make_unique<CMessageQueueInvoker>();
        invoker->Queue(new Call([&] { ++ran; }, &deleted), true); // never pumped
    });
    owner.join();
    auto *late = new Call([&] { ++ran; }, &deleted);
    EXPECT_FALSE(invoker->Queue(late, true));
    EXPECT_EQ(deleted, 0) << "a refused call stays the caller's";
    delete late;
    invoker.reset();
    EXPECT_EQ(deleted, 2);
    EXPECT_EQ(ran, 0);
}

TEST(InvokerThread, ManyCallsFromTwoThreadsRunInEachThreadsOrder) {
    CInvokerThread worker;
    constexpr int kEach = 5000;
    std::vector<int> next(2, 0);
    std::atomic<bool> inOrder{true};
    std::atomic<int> ran{0};
    auto post = [&](int poster) {
        return test::AsyncVoid([&, poster] {
            for (int i = 0; i < kEach; ++i)
                EXPECT_TRUE(worker.Queue(new Call([&, poster, i] {
                                             if (next[poster]++ != i) inOrder = false;
                                             ++ran;
                                         }),
                                         true));
        });
    };
    auto first = post(0), second = post(1);
    ASSERT_TRUE(test::Finishes(first));
    ASSERT_TRUE(test::Finishes(second));
    CEvent last(false, true);
    Call signal([&] { last.Signal(); });
    worker.Queue(&signal, false);
    ASSERT_TRUE(last.Wait(kLimitMs));
    EXPECT_EQ(ran, 2 * kEach);
    EXPECT_TRUE(inOrder);
}

// Two threads whose invokers call each other: the one blocked in Invoke
// serves the call made to it.
TEST(InvokerThread, MutualInvokeCompletes) {
    CInvokerThread worker;
    auto result = test::Async([&] {
        CMessageQueueInvoker mine;
        uint32_t innerRanOn = 0;
        Call inner([&] { innerRanOn = GetCurrentThreadId(); });
        Call outer([&] { mine.Invoke(&inner); });
        worker.Invoke(&outer);
        return innerRanOn == GetCurrentThreadId();
    });
    ASSERT_TRUE(test::Finishes(result));
    EXPECT_TRUE(result.get());
}

TEST(Invokers, SingletonsRunWhereTheySay) {
    int ran = 0;
    Call direct([&] { ++ran; });
    directInvoker->Invoke(&direct);
    EXPECT_EQ(ran, 1);

    // Built at load, by the thread that loaded the library: here, the main
    // thread that runs the tests.
    EXPECT_EQ(messageQueueInvoker->GetThreadID(), GetCurrentThreadId());
    Call loop([&] { ++ran; });
    messageQueueInvoker->Queue(&loop, false);
    EXPECT_TRUE(PumpMessages());
    EXPECT_EQ(ran, 2);

    uint32_t ranOn = 0;
    Call worker([&] { ranOn = GetCurrentThreadId(); });
    threadInvoker->Invoke(&worker);
    EXPECT_EQ(ranOn, threadInvoker->GetThreadID());
    EXPECT_NE(ranOn, GetCurrentThreadId());
}

} // namespace
} // namespace qv
