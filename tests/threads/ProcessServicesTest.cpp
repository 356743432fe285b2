#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdint>
#include <thread>

#include "qv/threads/COMScope.h"
#include "qv/threads/Callback.h"
#include "qv/threads/LockedMemory.h"
#include "qv/threads/MainThread.h"

namespace qv {
namespace {

// The only test in this program that asks: the first caller is a thread
// other than the one that runs main.
TEST(MainUIThread, FirstCallerDecides) {
    bool workerFirst = false, workerAgain = false, workerNot = true;
    std::thread([&] {
        workerFirst = qvInMainUIThread();
        workerAgain = qvInMainUIThread();
        workerNot = qvNotInMainUIThread();
    }).join();
    EXPECT_TRUE(workerFirst);
    EXPECT_TRUE(workerAgain);
    EXPECT_FALSE(workerNot);
    EXPECT_FALSE(qvInMainUIThread());
    EXPECT_TRUE(qvNotInMainUIThread());
}

TEST(LockedMemory, ZeroedPageAlignedBlocks) {
    uintptr_t page = uintptr_t(sysconf(_SC_PAGESIZE));
    EXPECT_EQ(virtAlloc(0), nullptr);
    lockAlloc(10000);
    auto *block = static_cast<unsigned char *>(virtAlloc(10000));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(uintptr_t(block) % page, 0u);
    for (uint32_t i = 0; i < 10000; i += 997)
        EXPECT_EQ(block[i], 0);
    block[9999] = 0xAB;
    virtFree(block, 10000);
    lockFree(10000);
    virtFree(nullptr, 10);
}

int callbackRuns = 0;
void CountRun() {
    ++callbackRuns;
}

TEST(Callback, CallsWhatIsSetAndNothingOtherwise) {
    TCallback<> callback;
    EXPECT_FALSE(callback.isset());
    callback(); // nothing set: nothing happens
    callback.set(&CountRun);
    EXPECT_TRUE(callback.isset());
    TCallback<> copy(callback);
    callback.unset();
    EXPECT_FALSE(callback.isset());
    callback();
    copy();
    EXPECT_EQ(callbackRuns, 1);
    callback = copy;
    callback();
    EXPECT_EQ(callbackRuns, 2);
    callback.set(nullptr);
    EXPECT_FALSE(callback.isset());

    CCOMScope scope(2); // no effect here; it only has to build
}

} // namespace
} // namespace qv
