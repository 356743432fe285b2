// Posted calls per second through CMessageQueueInvoker::Queue, on the worker
// of a CInvokerThread that pumps its queue, against a plain queue of
// std::function guarded by a std::mutex and served by a worker waiting on a
// std::condition_variable. Each timed op posts a batch of calls and waits
// until the worker has run them all, so the figure covers posting, waking
// and running. The qv calls are made beforehand and reused, and a
// std::function holds the reference's small lambda in place, so neither side
// allocates its calls.
//
// The ratio depends on whether poster and worker share a CPU (each post then
// switches threads) or run side by side (they contend for the locks), so the
// benchmark pins both to one CPU and to two, and a loaded machine cannot
// silently switch between the two cases.
#include <benchmark/benchmark.h>

#include <sched.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "PairedTiming.h"
#include "qv/threads/Invokable.h"
#include "qv/threads/MessageQueueInvoker.h"

namespace {

constexpr uint32_t kBatch = 1000;

// Counts the calls run; the batch's last call wakes the poster.
struct SBatchCount {
    std::atomic<uint32_t> done{0};

    void Run() {
        if (done.fetch_add(1, std::memory_order_acq_rel) + 1 == kBatch) done.notify_one();
    }
    void WaitAll() {
        for (uint32_t seen = done.load(std::memory_order_acquire); seen != kBatch;
             seen = done.load(std::memory_order_acquire))
            done.wait(seen, std::memory_order_acquire);
        done.store(0, std::memory_order_relaxed);
    }
};

void CountCall(SBatchCount *count) {
    count->Run();
}

// The reference: one worker serving a mutex-guarded deque, woken by a
// condition variable on every post.
class CConditionQueue {
public:
    CConditionQueue() : worker([this] { Serve(); }) {}
    CConditionQueue(CConditionQueue const &) = delete;
    CConditionQueue &operator=(CConditionQueue const &) = delete;
    ~CConditionQueue() {
        {
            std::lock_guard<std::mutex> lock(mutex);
            stopping = true;
        }
        ready.notify_one();
        worker.join();
    }

    void Post(std::function<void()> call) {
        {
            std::lock_guard<std::mutex> lock(mutex);
            calls.push_back(std::move(call));
        }
        ready.notify_one();
    }

private:
    void Serve() {
        std::unique_lock<std::mutex> lock(mutex);
        for (;;) {
            ready.wait(lock, [this] { return stopping || !calls.empty(); });
            if (calls.empty()) return;
            std::function<void()> call = std::move(calls.front());
            calls.pop_front();
            lock.unlock();
            call();
            lock.lock();
        }
    }

    std::mutex mutex; // guards calls and stopping
    std::condition_variable ready;
    std::deque<std::function<void()>> calls;
    bool stopping = false;
    std::thread worker;
};

// Keeps the calling thread, and the threads it starts, on the first count
// CPUs it may use; gives the old set back when destroyed.
class CCpuPin {
public:
    explicit CCpuPin(int count) {
        if (sched_getaffinity(0, sizeof saved, &saved) != 0 || CPU_COUNT(&saved) < count) return;
        cpu_set_t pinned;
        CPU_ZERO(&pinned);
        for (int cpu = 0, taken = 0; taken < count; ++cpu)
            if (CPU_ISSET(cpu, &saved)) {
                CPU_SET(cpu, &pinned);
                ++taken;
            }
        pinnedNow = sched_setaffinity(0, sizeof pinned, &pinned) == 0;
    }
    CCpuPin(CCpuPin const &) = delete;
    CCpuPin &operator=(CCpuPin const &) = delete;
    ~CCpuPin() {
        if (pinnedNow) sched_setaffinity(0, sizeof saved, &saved);
    }
    bool Pinned() const { return pinnedNow; }

private:
    cpu_set_t saved{};
    bool pinnedNow = false;
};

void BM_InvokerQueue(benchmark::State &state) {
    CCpuPin const pin(int(state.range(0)));
    if (!pin.Pinned()) {
        state.SkipWithError("cannot pin to that many CPUs");
        return;
    }
    qv::CInvokerThread invokerThread;
    CConditionQueue conditionQueue;
    SBatchCount qvCount;
    SBatchCount referenceCount;
    std::vector<qv::invokable1<SBatchCount *>> calls(kBatch, qv::invokable1<SBatchCount *>(&CountCall, &qvCount));
    bench::RunPaired(
        state,
        {state.range(0) == 1 ? "posted calls through CInvokerThread vs a mutex + condition-variable queue, 1 CPU"
                             : "posted calls through CInvokerThread vs a mutex + condition-variable queue, 2 CPUs",
         state.range(0) == 1 ? 0.0 : 1.0, true},
        kBatch,
        [&] {
            for (auto &call : calls) {
                if (invokerThread.Queue(&call, false)) continue;
                // Out of memory: run it here so the batch still completes.
                state.SkipWithError("Queue refused a call");
                call.Invoke();
            }
            qvCount.WaitAll();
        },
        [&] {
            for (uint32_t i = 0; i < kBatch; ++i)
                conditionQueue.Post([&referenceCount] { referenceCount.Run(); });
            referenceCount.WaitAll();
        });
}
BENCHMARK(BM_InvokerQueue)->ArgName("cpus")->Arg(1)->Arg(2)->UseManualTime();

} // namespace
