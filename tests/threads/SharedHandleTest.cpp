#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <thread>
#include <vector>

#include "qv/threads/SharedHandle.h"

namespace qv {
namespace {

bool IsOpen(int fd) {
    return fcntl(fd, F_GETFD) != -1;
}

// Two fresh descriptors (the ends of a pipe).
struct CPipe {
    int ends[2];
    CPipe() { EXPECT_EQ(pipe(ends), 0); }
};

TEST(SharedHandle, LastCopyCloses) {
    CPipe p;
    CSharedHandle none;
    EXPECT_EQ(none.RefCount(), 0);
    EXPECT_EQ(intptr_t(none), CSharedHandle::None);
    {
        CSharedHandle first(p.ends[0]);
        EXPECT_EQ(first.RefCount(), 1);
        {
            CSharedHandle copy(first);
            CSharedHandle assigned;
            assigned = copy;
            EXPECT_EQ(first.RefCount(), 3);
            EXPECT_EQ(intptr_t(assigned), p.ends[0]);
            assigned = copy; // the same share: no change
            EXPECT_EQ(first.RefCount(), 3);
        }
        EXPECT_EQ(first.RefCount(), 1);
        EXPECT_TRUE(IsOpen(p.ends[0]));
    }
    EXPECT_FALSE(IsOpen(p.ends[0]));

    // Assigning a handle drops the old share first and starts a new count.
    CSharedHandle a(p.ends[1]);
    CSharedHandle b(a);
    int other = dup(p.ends[1]);
    b = other;
    EXPECT_EQ(a.RefCount(), 1);
    EXPECT_EQ(b.RefCount(), 1);
    b = other; // its own handle again: kept open
    EXPECT_TRUE(IsOpen(other));
    a = CSharedHandle::None;
    EXPECT_EQ(a.RefCount(), 0);
    EXPECT_FALSE(IsOpen(p.ends[1]));
    CSharedHandle &same = b;
    b = same; // itself
    EXPECT_EQ(b.RefCount(), 1);
}

TEST(SharedHandle, CopiesOnManyThreads) {
    CPipe p;
    close(p.ends[1]);
    CSharedHandle original(p.ends[0]);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([original] {
            for (int i = 0; i < 1000; ++i) {
                CSharedHandle copy(original);
                CSharedHandle other;
                other = copy;
            }
        });
    for (auto &t : threads)
        t.join();
    EXPECT_EQ(original.RefCount(), 1);
    EXPECT_TRUE(IsOpen(p.ends[0]));
}

} // namespace
} // namespace qv
