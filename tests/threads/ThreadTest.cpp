#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <utility>

#include "ThreadTestSupport.h"
#include "qv/platform/MessageQueue.h"
#include "qv/threads/Event.h"
#include "qv/threads/Invokers.h"
#include "qv/threads/Thread.h"

namespace qv {
namespace {

using test::kLimitMs;

uint32_t CurrentId() {
    return directInvoker->GetThreadID();
}

using test::Call;

class Worker : public CThread {
public:
    CEvent go{false, true};
    std::atomic<uint32_t> ranOn{0};

protected:
    uint32_t Run() override {
        ranOn = CurrentId();
        return go.Wait(kLimitMs) ? 7 : 0;
    }
};

TEST(Thread, CreateRunsRunAndJoinWaitsForTheEnd) {
    Worker worker;
    EXPECT_EQ(worker.getID(), 0u);
    EXPECT_EQ(worker.getHandle(), nullptr);
    EXPECT_FALSE(worker.getRunning());
    EXPECT_FALSE(worker.Join(false)) << "no thread to join";
    EXPECT_FALSE(worker.JoinWithTimeout(0));

    ASSERT_TRUE(worker.Create());
    EXPECT_NE(worker.getID(), 0u);
    EXPECT_NE(worker.getID(), CurrentId());
    EXPECT_NE(worker.getHandle(), nullptr);
    EXPECT_TRUE(worker.getRunning());
    EXPECT_FALSE(worker.JoinWithTimeout(10)) << "still held at its event";
    worker.go.Signal();
    EXPECT_TRUE(worker.JoinWithTimeout(kLimitMs));
    EXPECT_FALSE(worker.getRunning());
    EXPECT_EQ(worker.ranOn, worker.getID());
    EXPECT_TRUE(worker.Join(false)) << "an ended thread stays signalled";
    EXPECT_TRUE(CMessageQueueInvoker::SafeWait(worker.getHandle(), 0));
}

TEST(Thread, FunctionAndInvokableForms) {
    CThread thread;
    static std::atomic<int> calls{0};
    calls = 0;
    int argument = 5;
    ASSERT_TRUE(thread.Create(
        [](void *p) {
            calls += *static_cast<int *>(p);
            return uint32_t(1);
        },
        &argument));
    EXPECT_TRUE(thread.JoinWithTimeout(kLimitMs));
    EXPECT_EQ(calls, 5);

    std::atomic<int> deleted{0};
    ASSERT_TRUE(thread.Create(new Call([] { ++calls; }, &deleted), true));
    EXPECT_TRUE(thread.JoinWithTimeout(kLimitMs));
    EXPECT_EQ(calls, 6);
    EXPECT_EQ(deleted, 1) << "autoDelete deletes the invokable after it ran";

    Call kept([] { ++calls; }, &deleted);
    ASSERT_TRUE(thread.Create(&kept, false));
    EXPECT_TRUE(thread.JoinWithTimeout(kLimitMs));
    EXPECT_EQ(calls, 7);
    EXPECT_EQ(deleted, 1);
}

// Dropping a thread object, or starting another thread with it, leaves the
// running thread alone: it finishes, and the last one is the object's.
TEST(Thread, ObjectLetGoWhileItsThreadRunsLetsItFinish) {
    CEvent go(false, true);
    std::atomic<int> finished{0};
    auto body = [](void *p) {
        auto *state = static_cast<std::pair<CEvent *, std::atomic<int> *> *>(p);
        state->first->Wait(kLimitMs);
        ++*state->second;
        return uint32_t(0);
    };
    std::pair<CEvent *, std::atomic<int> *> state{&go, &finished};
    CThread kept;
    {
        CThread dropped;
        ASSERT_TRUE(dropped.Create(body, &state));
        ASSERT_TRUE(kept.Create(body, &state));
        void *first = kept.getHandle();
        ASSERT_TRUE(kept.Create(body, &state));
        EXPECT_NE(kept.getHandle(), first);
    }
    for (int i = 0; i < 100; ++i) {
        CThread quick;
        ASSERT_TRUE(quick.Create(body, &state));
    }
    EXPECT_TRUE(kept.getRunning());
    go.Signal();
    EXPECT_TRUE(kept.JoinWithTimeout(kLimitMs));
    EXPECT_TRUE(test::Eventually([&] { return finished == 103; }));
}

// A thread that invokes on its creator before it ends: Join(true) serves the
// call, where a plain join would wait for ever. Run on a thread of its own so
// that a broken join fails instead of hanging.
TEST(Thread, PumpingJoinServesTheThreadsCalls) {
    auto served = test::Async([] {
        CMessageQueueInvoker invoker;
        std::atomic<uint32_t> ranOn{0};
        Call call([&] { ranOn = CurrentId(); });
        CThread thread;
        if (!thread.Create(new Call([&] { invoker.Invoke(&call); }), true)) return false;
        return thread.Join(true) && ranOn == CurrentId();
    });
    ASSERT_TRUE(test::Finishes(served));
    EXPECT_TRUE(served.get());

    auto quit = test::Async([] {
        CThread held;
        CEvent go(false, true);
        if (!held.Create(new Call([&] { go.Wait(kLimitMs); }), true)) return false;
        PostQuitMessage(0);
        bool const joined = held.Join(true);
        go.Signal();
        return !joined && held.JoinWithTimeout(kLimitMs);
    });
    ASSERT_TRUE(test::Finishes(quit));
    EXPECT_TRUE(quit.get()) << "a quit ends the pumping join with false";
}

TEST(EventPumping, DispatchesWhileWaiting) {
    CMessageQueueInvoker invoker;
    CEvent event(false, false);
    int ran = 0;
    Call signal([&] {
        ++ran;
        event.Signal();
    });
    invoker.Queue(&signal, false);
    EXPECT_TRUE(event.Wait(kLimitMs, true)) << "the queued call ran inside the wait and signalled";
    EXPECT_EQ(ran, 1);
    EXPECT_FALSE(event.Wait(0, true)) << "auto reset: taken";

    EXPECT_FALSE(event.Wait(5, true)) << "times out with nothing to serve";

    auto signaller = test::AsyncVoid([&] { event.Signal(); });
    EXPECT_TRUE(event.Wait(kLimitMs, true));
    ASSERT_TRUE(test::Finishes(signaller));

    PostQuitMessage(0);
    event.Signal();
    EXPECT_FALSE(event.Wait(kLimitMs, true)) << "the quit comes first";
    EXPECT_TRUE(event.Wait(0)) << "the signal is still there";
}

// 150 queued calls: the first batch of 100 skips the sleep, so the event,
// signalled by the last call, is seen in the second pass.
TEST(EventPumping, DrainsMoreThanOneBatch) {
    CMessageQueueInvoker invoker;
    CEvent event(false, true);
    int ran = 0;
    Call count([&] { ++ran; });
    Call signal([&] { event.Signal(); });
    for (int i = 0; i < 149; ++i)
        invoker.Queue(&count, false);
    invoker.Queue(&signal, false);
    EXPECT_TRUE(event.Wait(kLimitMs, true));
    EXPECT_EQ(ran, 149);
}

TEST(EventPumping, ServesSendsFromAnotherThread) {
    CMessageQueueInvoker invoker;
    CEvent done(false, true);
    std::atomic<uint32_t> ranOn{0};
    Call call([&] { ranOn = CurrentId(); });
    auto worker = test::AsyncVoid([&] {
        invoker.Invoke(&call);
        done.Signal();
    });
    EXPECT_TRUE(done.Wait(kLimitMs, true));
    EXPECT_EQ(ranOn, CurrentId());
    ASSERT_TRUE(test::Finishes(worker));
}

} // namespace
} // namespace qv
