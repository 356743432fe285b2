// Faults injected through the system-call table: interrupted calls are
// retried, partial transfers continued, failures reported as short counts,
// and a failing lock probe refuses the open.
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include "FileTestSupport.h"
#include "qv/platform/Syscalls.h"

namespace qv::test {
namespace {

int interruptions = 0;  // calls left to interrupt
size_t writeBudget = 0; // bytes the failing write still lets through

// True (with errno EINTR) while calls are left to interrupt.
bool Interrupt() {
    if (interruptions <= 0) return false;
    --interruptions;
    errno = EINTR;
    return true;
}

int InterruptedOpen(char const *path, int flags, mode_t mode) {
    return Interrupt() ? -1 : ::open(path, flags, mode);
}
ssize_t InterruptedRead(int fd, void *buf, size_t n) {
    return Interrupt() ? -1 : ::read(fd, buf, n);
}
ssize_t InterruptedWrite(int fd, void const *buf, size_t n) {
    return Interrupt() ? -1 : ::write(fd, buf, n);
}

// Two bytes per call until the budget is spent, then EIO.
ssize_t DwindlingWrite(int fd, void const *buf, size_t n) {
    if (writeBudget == 0) {
        errno = EIO;
        return -1;
    }
    size_t now = std::min({n, writeBudget, size_t(2)});
    writeBudget -= now;
    return ::write(fd, buf, now);
}

int FailingProbe(int fd, int cmd, struct flock *lock) {
    if (cmd == F_OFD_GETLK) {
        errno = EINVAL;
        return -1;
    }
    return ::fcntl(fd, cmd, lock);
}

int openFlagsSeen = 0;
int RecordingOpen(char const *path, int flags, mode_t mode) {
    openFlagsSeen = flags;
    return ::open(path, flags, mode);
}

class SyscallFaults : public testing::Test {
protected:
    ScratchDir dir;
    std::u16string name = Wide(dir.Path("f.bin"));
    void TearDown() override {
        ResetSyscalls();
        interruptions = 0;
    }
};

TEST_F(SyscallFaults, InterruptedCallsAreRetried) {
    Syscalls().open = &InterruptedOpen;
    Syscalls().read = &InterruptedRead;
    Syscalls().write = &InterruptedWrite;
    CFile f;
    interruptions = 3;
    ASSERT_TRUE(f.Open(name.c_str(), 0x08 | 0x10 | 0x20));
    EXPECT_EQ(interruptions, 0);
    interruptions = 2;
    EXPECT_EQ(f.Write("hello", 5), 5u);
    EXPECT_EQ(interruptions, 0);
    f.SeekToBegin();
    interruptions = 2;
    char buf[5];
    EXPECT_EQ(f.Read(buf, 5), 5u);
    EXPECT_EQ(interruptions, 0);
    EXPECT_EQ(std::string(buf, 5), "hello");
}

TEST_F(SyscallFaults, PartialWritesContinueAndFailuresShowAsShortCounts) {
    CFile f;
    ASSERT_TRUE(f.Open(name.c_str(), 0x08 | 0x10 | 0x20));
    Syscalls().write = &DwindlingWrite;
    writeBudget = 100;
    EXPECT_EQ(f.Write("abcdefg", 7), 7u); // in pieces of two
    writeBudget = 3;
    EXPECT_EQ(f.Write("0123456789", 10), 3u);
    EXPECT_FALSE(f.PutInt32(1));
    EXPECT_FALSE(f.PutString("text")); // nothing of it passed
    ResetSyscalls();
    EXPECT_EQ(AllBytes(f), Text("abcdefg012"));

    // A string whose body falls short seeks back over what passed.
    Syscalls().write = &DwindlingWrite;
    writeBudget = 6;
    int64_t before = f.GetPosition();
    EXPECT_FALSE(f.PutString("abcdef"));
    EXPECT_EQ(f.GetPosition(), before);
}

TEST_F(SyscallFaults, EveryOpenIsCloseOnExecAndAFailingProbeRefuses) {
    Syscalls().open = &RecordingOpen;
    CFile f;
    ASSERT_TRUE(f.Open(name.c_str(), 0x08 | 0x20));
    EXPECT_EQ(openFlagsSeen & O_CLOEXEC, O_CLOEXEC);
    f.Close();

    Syscalls().fcntlLock = &FailingProbe;
    EXPECT_FALSE(f.Open(name.c_str(), 0x02 | 0x10));
    EXPECT_TRUE(f.Open(name.c_str(), 0x02)); // no access: no probe
}

} // namespace
} // namespace qv::test
