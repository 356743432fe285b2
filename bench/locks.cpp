// Uncontended lock and unlock, each qv lock against its standard reference in
// the same run: CCriticalSection against std::mutex (in a process of one
// thread, and again after a thread was started), CSemaphore against a
// std::mutex-guarded counter, CRWLock (read and write) against
// std::shared_mutex (shared and exclusive). The qv locks carry more
// bookkeeping (recursion, per-thread reader lists, an order queue); the goal
// is to stay within a small factor of the standard ones.
#include <benchmark/benchmark.h>

#include <mutex>
#include <shared_mutex>
#include <thread>

#include "PairedTiming.h"
#include "qv/threads/CriticalSection.h"
#include "qv/threads/RWLock.h"
#include "qv/threads/Semaphore.h"

namespace {

// Rounds per timed op: one round alone is below the clock's resolution.
constexpr int kRounds = 1000;

template <class Round> auto Rounds(Round round) {
    return [round]() mutable {
        for (int i = 0; i < kRounds; ++i)
            round();
    };
}

template <class QvRound, class ReferenceRound>
void RunRounds(benchmark::State &state, bench::SPair pair, QvRound qvRound, ReferenceRound referenceRound) {
    bench::RunPaired(state, pair, kRounds, Rounds(qvRound), Rounds(referenceRound));
}

void BM_CriticalSection(benchmark::State &state) {
    qv::CCriticalSection section;
    std::mutex mutex;
    RunRounds(
        state, {"CCriticalSection enter/leave, uncontended, vs std::mutex", 1.0},
        [&] {
            section.Enter();
            section.Leave();
        },
        [&] {
            mutex.lock();
            mutex.unlock();
        });
}
BENCHMARK(BM_CriticalSection)->UseManualTime();

void BM_Semaphore(benchmark::State &state) {
    qv::CSemaphore semaphore(4);
    std::mutex mutex;
    int count = 4;
    RunRounds(
        state, {"CSemaphore release/wait, uncontended, vs a mutex and a counter", 0.0},
        [&] {
            benchmark::DoNotOptimize(semaphore.Acquire(1, 0));
            semaphore.Release(1);
        },
        [&] {
            {
                std::lock_guard<std::mutex> lock(mutex);
                --count;
            }
            {
                std::lock_guard<std::mutex> lock(mutex);
                ++count;
            }
            benchmark::DoNotOptimize(count);
        });
}
BENCHMARK(BM_Semaphore)->UseManualTime();

void BM_RWLockRead(benchmark::State &state) {
    qv::CRWLock lock;
    std::shared_mutex mutex;
    RunRounds(
        state, {"CRWLock read lock/unlock, uncontended, vs std::shared_mutex", 0.8},
        [&] {
            lock.ReadLock();
            lock.ReadUnlock();
        },
        [&] {
            mutex.lock_shared();
            mutex.unlock_shared();
        });
}
BENCHMARK(BM_RWLockRead)->UseManualTime();

void BM_RWLockWrite(benchmark::State &state) {
    qv::CRWLock lock;
    std::shared_mutex mutex;
    RunRounds(
        state, {"CRWLock write lock/unlock, uncontended, vs std::shared_mutex", 0.8},
        [&] {
            lock.WriteLock();
            lock.WriteUnlock();
        },
        [&] {
            mutex.lock();
            mutex.unlock();
        });
}
BENCHMARK(BM_RWLockWrite)->UseManualTime();

// The same as BM_CriticalSection in a process that has started a second
// thread: from then on the C library's mutex and qv's lock both use atomic
// instructions. Registered last, since a process never goes back to one
// thread.
void BM_CriticalSectionOtherThread(benchmark::State &state) {
    std::thread([] {}).join();
    qv::CCriticalSection section;
    std::mutex mutex;
    RunRounds(
        state, {"CCriticalSection enter/leave, uncontended, in a process that has started threads, vs std::mutex", 1.0},
        [&] {
            section.Enter();
            section.Leave();
        },
        [&] {
            mutex.lock();
            mutex.unlock();
        });
}
BENCHMARK(BM_CriticalSectionOtherThread)->UseManualTime();

} // namespace
