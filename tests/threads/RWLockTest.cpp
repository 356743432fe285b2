#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "ThreadTestSupport.h"
#include "qv/threads/RWLock.h"

namespace qv {
namespace {

TEST(RWLock, ReaderMayWriteWhenAlone) {
    CRWLock lock;
    lock.ReadLock();
    lock.WriteLock();
    lock.WriteLock();
    lock.ReadLock();
    lock.ReadUnlock();
    lock.WriteUnlock();
    lock.WriteUnlock();
    lock.ReadUnlock();
    lock.ReadUnlock(); // without a lock: nothing happens
    lock.WriteUnlock();
    auto other = test::AsyncVoid([&] {
        lock.WriteLock();
        lock.WriteUnlock();
    });
    EXPECT_TRUE(test::Finishes(other)) << "everything was given back";
}

TEST(RWLock, RepeatedReadWhileAWriterWaitsGoesThrough) {
    CRWLock lock;
    lock.ReadLock();
    std::atomic<bool> writing{false};
    auto writer = test::AsyncVoid([&] {
        lock.WriteLock();
        writing = true;
        lock.WriteUnlock();
    });
    EXPECT_TRUE(test::StillBlocked(writer)) << "the reader is still in";
    lock.ReadLock(); // the writer has set its mark by now; this must not wait for it
    lock.ReadUnlock();
    EXPECT_FALSE(writing);
    lock.ReadUnlock();
    ASSERT_TRUE(test::Finishes(writer));
    EXPECT_TRUE(writing);
}

TEST(RWLock, WriterExcludesReadersAndWriters) {
    CRWLock lock;
    int first = 0, second = 0;
    std::atomic<bool> torn{false};
    std::vector<std::thread> threads;
    for (int t = 0; t < 2; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 300; ++i) {
                lock.WriteLock();
                ++first;
                std::this_thread::yield();
                ++second;
                lock.WriteUnlock();
            }
        });
        threads.emplace_back([&] {
            for (int i = 0; i < 300; ++i) {
                lock.ReadLock();
                if (first != second) torn = true;
                lock.ReadUnlock();
            }
        });
    }
    for (auto &thread : threads)
        thread.join();
    EXPECT_FALSE(torn);
    EXPECT_EQ(first, 600);
    EXPECT_EQ(second, 600);
}

} // namespace
} // namespace qv
