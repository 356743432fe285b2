#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "ThreadTestSupport.h"
#include "qv/threads/AutoLock.h"
#include "qv/threads/CriticalSection.h"

namespace qv {
namespace {

TEST(CriticalSection, RecursiveForItsThreadExclusiveForOthers) {
    CCriticalSection section(100);
    section.Enter();
    section.Enter();
    section.Leave();
    bool entered = false;
    auto other = test::AsyncVoid([&] {
        section.Enter();
        entered = true;
        section.Leave();
    });
    EXPECT_TRUE(test::StillBlocked(other)) << "one Leave of two must keep the section";
    section.Leave();
    ASSERT_TRUE(test::Finishes(other));
    EXPECT_TRUE(entered);
}

TEST(CriticalSection, CopyHasALockOfItsOwn) {
    CCriticalSection original;
    original.Enter();
    CCriticalSection copy(original);
    auto other = test::AsyncVoid([&] {
        copy.Enter();
        copy.Leave();
    });
    bool finished = test::Finishes(other);
    original.Leave();
    EXPECT_TRUE(finished);
}

TEST(CriticalSection, AutoLockGuardsACounter) {
    CCriticalSection section(4000);
    CMutex mutex;
    int viaSection = 0, viaMutex = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 500; ++i) {
                {
                    CAutoLock lock(&section);
                    ++viaSection;
                }
                {
                    CAutoLock lock(&mutex);
                    ++viaMutex;
                }
                CAutoCriticalSection nested(&section);
                CAutoLock again(&section);
                CAutoLock none(static_cast<CMutex *>(nullptr));
            }
        });
    }
    for (auto &thread : threads)
        thread.join();
    EXPECT_EQ(viaSection, 2000);
    EXPECT_EQ(viaMutex, 2000);
    EXPECT_TRUE(mutex.Acquire(0)) << "every guard released its mutex";
    EXPECT_TRUE(mutex.Release());
}

} // namespace
} // namespace qv
