#include <gtest/gtest.h>

#include <atomic>
#include <functional>
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

// Two counters that writers step together under the lock; a reader that
// sees them differ saw a write half done.
struct CPair {
    CRWLock lock;
    int first = 0, second = 0;
    std::atomic<bool> torn{false};

    void Write() {
        lock.WriteLock();
        ++first;
        std::this_thread::yield();
        ++second;
        lock.WriteUnlock();
    }
    // Reads, and writes as well while reading when asked.
    void Read(bool alsoWrite) {
        lock.ReadLock();
        if (first != second) torn = true;
        if (alsoWrite) Write();
        lock.ReadUnlock();
    }
};

// Runs each body 300 times, each on a thread of its own, and waits for all.
void RunEach300(std::vector<std::function<void()>> const &bodies) {
    std::vector<std::thread> threads;
    for (auto const &body : bodies)
        threads.emplace_back([&body] {
            for (int i = 0; i < 300; ++i)
                body();
        });
    for (auto &thread : threads)
        thread.join();
}

TEST(RWLock, WriterExcludesReadersAndWriters) {
    CPair pair;
    auto write = [&] { pair.Write(); };
    auto read = [&] { pair.Read(false); };
    RunEach300({write, read, write, read});
    EXPECT_FALSE(pair.torn);
    EXPECT_EQ(pair.first, 600);
    EXPECT_EQ(pair.second, 600);
}

// One thread that reads and then writes, among plain writers and readers:
// everyone gets through, and no write is seen half done.
TEST(RWLock, ReaderThatWritesAmongWritersAndReaders) {
    CPair pair;
    auto write = [&] { pair.Write(); };
    RunEach300({[&] { pair.Read(true); }, write, write, [&] { pair.Read(false); }});
    EXPECT_FALSE(pair.torn);
    EXPECT_EQ(pair.first, 900);
    EXPECT_EQ(pair.second, 900);
}

} // namespace
} // namespace qv
