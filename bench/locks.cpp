// Uncontended lock and unlock: CCriticalSection against std::mutex,
// CSemaphore against a std::mutex-guarded counter, CRWLock (read and write)
// against std::shared_mutex. The qv locks carry more bookkeeping (recursion,
// per-thread reader lists, an order queue); the goal is to stay within a
// small factor of the standard ones.
#include <benchmark/benchmark.h>

#include <mutex>
#include <shared_mutex>

#include "qv/threads/CriticalSection.h"
#include "qv/threads/RWLock.h"
#include "qv/threads/Semaphore.h"

namespace {

void BM_CriticalSection(benchmark::State &state) {
    qv::CCriticalSection section;
    for (auto _ : state) {
        section.Enter();
        section.Leave();
    }
}
BENCHMARK(BM_CriticalSection);

void BM_StdMutex(benchmark::State &state) {
    std::mutex mutex;
    for (auto _ : state) {
        mutex.lock();
        mutex.unlock();
    }
}
BENCHMARK(BM_StdMutex);

void BM_Semaphore(benchmark::State &state) {
    qv::CSemaphore semaphore(4);
    for (auto _ : state) {
        benchmark::DoNotOptimize(semaphore.Acquire(1, 0));
        semaphore.Release(1);
    }
}
BENCHMARK(BM_Semaphore);

void BM_StdMutexCounter(benchmark::State &state) {
    std::mutex mutex;
    int count = 4;
    for (auto _ : state) {
        {
            std::lock_guard<std::mutex> lock(mutex);
            --count;
        }
        {
            std::lock_guard<std::mutex> lock(mutex);
            ++count;
        }
        benchmark::DoNotOptimize(count);
    }
}
BENCHMARK(BM_StdMutexCounter);

void BM_RWLockRead(benchmark::State &state) {
    qv::CRWLock lock;
    for (auto _ : state) {
        lock.ReadLock();
        lock.ReadUnlock();
    }
}
BENCHMARK(BM_RWLockRead);

void BM_RWLockWrite(benchmark::State &state) {
    qv::CRWLock lock;
    for (auto _ : state) {
        lock.WriteLock();
        lock.WriteUnlock();
    }
}
BENCHMARK(BM_RWLockWrite);

void BM_StdSharedMutexRead(benchmark::State &state) {
    std::shared_mutex mutex;
    for (auto _ : state) {
        mutex.lock_shared();
        mutex.unlock_shared();
    }
}
BENCHMARK(BM_StdSharedMutexRead);

void BM_StdSharedMutexWrite(benchmark::State &state) {
    std::shared_mutex mutex;
    for (auto _ : state) {
        mutex.lock();
        mutex.unlock();
    }
}
BENCHMARK(BM_StdSharedMutexWrite);

} // namespace
