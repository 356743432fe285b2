#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "ThreadTestSupport.h"
#include "qv/threads/Event.h"
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
    CEvent readerIn(false, true);
    std::atomic<bool> writing{false};
    auto writer = test::AsyncVoid([&] {
        ASSERT_TRUE(readerIn.Wait(test::kLimitMs));
        lock.WriteLock();
        writing = true;
        lock.WriteUnlock();
    });
    auto reader = test::Async([&] {
        lock.ReadLock();
        readerIn.Signal();
        // Gives the writer time to set its mark; the outcome must not depend on it.
        Sleep(50);
        lock.ReadLock();
        lock.ReadUnlock();
        bool writerKeptOut = !writing;
        lock.ReadUnlock();
        return writerKeptOut;
    });
    ASSERT_TRUE(test::Finishes(reader)) << "a reader that reads again must not wait for a waiting writer";
    EXPECT_TRUE(reader.get());
    ASSERT_TRUE(test::Finishes(writer));
    EXPECT_TRUE(writing);
}

// A lone reader that wants to write while another thread's writer waits for
// it: the waiting writer must step back instead of both waiting for ever.
TEST(RWLock, ReaderWritesWhileAnotherWriterWaitsForIt) {
    CRWLock lock;
    CEvent readerIn(false, true);
    std::atomic<bool> readerWrote{false};
    std::atomic<bool> writerSawIt{false};
    auto writer = test::AsyncVoid([&] {
        ASSERT_TRUE(readerIn.Wait(test::kLimitMs));
        lock.WriteLock();
        writerSawIt = readerWrote.load();
        lock.WriteUnlock();
    });
    auto reader = test::AsyncVoid([&] {
        lock.ReadLock();
        readerIn.Signal();
        // Gives the writer time to set its mark; the outcome must not depend on it.
        Sleep(50);
        lock.WriteLock();
        readerWrote = true;
        lock.WriteUnlock();
        lock.ReadUnlock();
    });
    ASSERT_TRUE(test::Finishes(reader)) << "reader and writer wait for each other";
    ASSERT_TRUE(test::Finishes(writer));
    EXPECT_TRUE(writerSawIt) << "the writer came after the reader it waited for";
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

// One thread that reads and then writes, among plain writers and readers:
// everyone gets through, and no write is seen half done.
TEST(RWLock, ReaderThatWritesAmongWritersAndReaders) {
    CRWLock lock;
    int first = 0, second = 0;
    std::atomic<bool> torn{false};
    auto write = [&] {
        lock.WriteLock();
        ++first;
        std::this_thread::yield();
        ++second;
        lock.WriteUnlock();
    };
    std::vector<std::thread> threads;
    threads.emplace_back([&] {
        for (int i = 0; i < 300; ++i) {
            lock.ReadLock();
            if (first != second) torn = true;
            write();
            lock.ReadUnlock();
        }
    });
    for (int t = 0; t < 2; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 300; ++i)
                write();
        });
    }
    threads.emplace_back([&] {
        for (int i = 0; i < 300; ++i) {
            lock.ReadLock();
            if (first != second) torn = true;
            lock.ReadUnlock();
        }
    });
    for (auto &thread : threads)
        thread.join();
    EXPECT_FALSE(torn);
    EXPECT_EQ(first, 900);
    EXPECT_EQ(second, 900);
}

} // namespace
} // namespace qv
