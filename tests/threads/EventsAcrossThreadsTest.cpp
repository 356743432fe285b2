#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "ThreadTestSupport.h"
#include "qv/threads/Events.h"
#include "qv/threads/Invokers.h"

namespace qv {
namespace {

// Notes where and with what each call ran.
struct CWorkerListener : IEventTarget {
    std::vector<std::thread::id> threads;
    std::vector<int> values;
    std::atomic<int> calls{0};
    void OnValue(void *, int value) {
        threads.push_back(std::this_thread::get_id());
        values.push_back(value);
        ++calls;
    }
};

TEST(EventsAcrossThreads, HandlersRunOnTheirInvokersThread) {
    CInvokerThread worker;
    CWorkerListener waited, queued;
    event1<int> event;
    event.AddHandlerEx(&waited, &CWorkerListener::OnValue, &worker, false);
    event.AddHandlerEx(&queued, &CWorkerListener::OnValue, &worker, true);

    for (int i = 1; i <= 3; ++i) {
        event.Fire(nullptr, i);
        // Invoke has returned: the waited-for handler ran, on the worker.
        EXPECT_EQ(waited.calls.load(), i);
    }
    ASSERT_TRUE(test::Eventually([&] { return queued.calls.load() == 3; }));
    // The worker has served every call; its writes are visible through the
    // atomic counters read above.
    EXPECT_EQ(waited.values, (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(queued.values, (std::vector<int>{1, 2, 3}));
    for (auto const &id : waited.threads)
        EXPECT_NE(id, std::this_thread::get_id());
    EXPECT_EQ(queued.threads.front(), waited.threads.front());
}

} // namespace
} // namespace qv
