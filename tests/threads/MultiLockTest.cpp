#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <future>
#include <thread>

#include "ThreadTestSupport.h"
#include "qv/threads/Event.h"
#include "qv/threads/MultiLock.h"

namespace qv {
namespace {

using test::kLimitMs;

// A thread that enters and stays in until told to leave, so that thread ids
// stay distinct while the test looks at the lock.
class Holder {
public:
    Holder(CMultiLock &lock, bool exclusive) {
        thread = std::thread([this, &lock, exclusive] {
            bool in = exclusive ? lock.EnterExclusive(false) : lock.Enter(false);
            entered.set_value(in);
            if (leave.Wait(kLimitMs) && in) exclusive ? lock.LeaveExclusive() : lock.Leave();
        });
    }
    ~Holder() {
        leave.Signal();
        thread.join();
    }
    bool Entered() {
        auto f = entered.get_future();
        return test::Finishes(f) && f.get();
    }
    void Leave() { leave.Signal(); }

private:
    std::promise<bool> entered;
    CEvent leave;
    std::thread thread;
};

TEST(MultiLock, SlotsLimitSharedEntries) {
    CMultiLock lock(2);
    Holder one(lock, false), two(lock, false);
    EXPECT_TRUE(one.Entered());
    EXPECT_TRUE(two.Entered());
    Holder three(lock, false);
    EXPECT_FALSE(three.Entered());
    EXPECT_EQ(lock.GetLockCount(), 2);
}

TEST(MultiLock, ReentryIsCountedWithoutAPermit) {
    CMultiLock lock(2);
    lock.Leave(); // without an entry: nothing happens
    lock.LeaveExclusive();
    EXPECT_EQ(lock.GetLockCount(), 0);
    EXPECT_TRUE(lock.Enter(false));
    EXPECT_TRUE(lock.Enter(false));
    EXPECT_EQ(lock.GetLockCount(), 2);
    {
        Holder other(lock, false);
        EXPECT_TRUE(other.Entered()) << "the second entry took no permit";
    }
    lock.Leave();
    lock.Leave();
    EXPECT_EQ(lock.GetLockCount(), 0);
    CMultiLock copy(lock);
    EXPECT_TRUE(copy.EnterExclusive(true));
    copy.LeaveExclusive();
}

TEST(MultiLock, ExclusiveEntryOfAThreadThatIsInTakesTheRest) {
    CMultiLock lock(3);
    EXPECT_TRUE(lock.Enter(true));
    EXPECT_TRUE(lock.EnterExclusive(true)) << "its own permit counts";
    EXPECT_TRUE(lock.Enter(false));
    {
        Holder other(lock, false);
        EXPECT_FALSE(other.Entered());
    }
    lock.LeaveExclusive();
    {
        Holder other(lock, false);
        EXPECT_TRUE(other.Entered());
    }
    lock.Leave();
    lock.Leave();
    EXPECT_EQ(lock.GetLockCount(), 0);
    EXPECT_TRUE(lock.EnterExclusive(false) == false) << "the permits were free";
}

TEST(MultiLock, ExclusiveWithoutWaitAnswersTheOtherWayRound) {
    CMultiLock lock(2);
    EXPECT_FALSE(lock.EnterExclusive(false)) << "it got the permits";
    EXPECT_EQ(lock.GetLockCount(), 0) << "and counted nothing";
    {
        Holder other(lock, false);
        EXPECT_FALSE(other.Entered()) << "the permits stay taken";
    }
    CMultiLock busy(2);
    Holder in(busy, false);
    ASSERT_TRUE(in.Entered());
    EXPECT_TRUE(busy.EnterExclusive(false)) << "no permits at once, yet true";
    EXPECT_EQ(busy.GetLockCount(), 2);
}

TEST(MultiLock, EntryToALockWithoutSlotsFails) {
    CMultiLock lock(-1);
    auto entered = test::Async([&] { return lock.Enter(true); });
    ASSERT_TRUE(test::Finishes(entered)) << "no slot will ever free";
    EXPECT_FALSE(entered.get());
    EXPECT_EQ(lock.GetLockCount(), 0);
    EXPECT_TRUE(lock.EnterExclusive(true)) << "all of no permits";
    lock.LeaveExclusive();
}

TEST(MultiLock, BlockedExclusiveEntryLeavesTheTableFree) {
    CMultiLock lock(2);
    Holder in(lock, false);
    ASSERT_TRUE(in.Entered());
    auto exclusive = test::Async([&] {
        bool got = lock.EnterExclusive(true);
        lock.LeaveExclusive();
        return got;
    });
    EXPECT_TRUE(test::StillBlocked(exclusive));
    // The waiting thread holds no table lock, so these go through.
    EXPECT_GE(lock.GetLockCount(), 1);
    in.Leave();
    ASSERT_TRUE(test::Finishes(exclusive));
    EXPECT_TRUE(exclusive.get());
    EXPECT_EQ(lock.GetLockCount(), 0);
}

TEST(MultiLock, ForkedChildIsAThreadOfItsOwn) {
    CMultiLock lock(1);
    ASSERT_TRUE(lock.Enter(false));
    pid_t pid = fork();
    if (pid == 0) _exit(lock.Enter(false) ? 1 : 0); // the parent's entry must not count as the child's
    ASSERT_GT(pid, 0);
    int status = 0;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    lock.Leave();
}

} // namespace
} // namespace qv
