// Save through a path with each system call of the save failing in turn:
// the save never reports success unless the file holds the whole deck. (The
// save writes the file directly: the file systems have no rename yet.)
#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include "ModtranTestSupport.h"
#include "qv/modtran/ModtranTape5File.h"
#include "qv/platform/Syscalls.h"

using namespace qv;
using namespace qvtest;

namespace {

int calls = 0;  // system calls made so far
int failAt = 0; // the call that fails, 1-based; 0 none

bool Fails() {
    if (++calls != failAt) return false;
    errno = EIO;
    return true;
}

int Open(char const *path, int flags, mode_t mode) { return Fails() ? -1 : ::open(path, flags, mode); }
int Close(int fd) {
    int result = ::close(fd); // Linux releases the descriptor even when close fails
    return Fails() ? -1 : result;
}
ssize_t Read(int fd, void *buf, size_t n) { return Fails() ? -1 : ::read(fd, buf, n); }
ssize_t Write(int fd, void const *buf, size_t n) { return Fails() ? -1 : ::write(fd, buf, n); }
off_t Lseek(int fd, off_t offset, int whence) { return Fails() ? -1 : ::lseek(fd, offset, whence); }
int Ftruncate(int fd, off_t length) { return Fails() ? -1 : ::ftruncate(fd, length); }
int Fsync(int fd) { return Fails() ? -1 : ::fsync(fd); }
int Lock(int fd, int cmd, struct flock *lock) { return Fails() ? -1 : ::fcntl(fd, cmd, lock); }
int Flags(int fd, int cmd, int arg) { return Fails() ? -1 : ::fcntl(fd, cmd, arg); }
int Fstat(int fd, struct stat *st) { return Fails() ? -1 : ::fstat(fd, st); }

void Install() {
    SyscallTable &table = Syscalls();
    table.open = &Open;
    table.close = &Close;
    table.read = &Read;
    table.write = &Write;
    table.lseek = &Lseek;
    table.ftruncate = &Ftruncate;
    table.fsync = &Fsync;
    table.fcntlLock = &Lock;
    table.fcntlFlags = &Flags;
    table.fstat = &Fstat;
}

} // namespace

TEST(Tape5Faults, EveryFailingCallOfASaveIsReported) {
    std::string path = testing::TempDir() + "qv_modtran_fault_tape5";
    CModtranTape5File tape5;
    tape5.AddRun(-1);
    CMemFile whole;
    ASSERT_TRUE(tape5.Save(whole));
    std::string expected = Contents(whole);

    Install();
    calls = 0;
    failAt = 0;
    ASSERT_TRUE(tape5.Save(Wide(path).c_str()));
    int total = calls;
    ResetSyscalls();
    ASSERT_GT(total, 2);
    EXPECT_EQ(ReadText(path), expected);

    for (failAt = 1; failAt <= total; ++failAt) {
        SCOPED_TRACE(failAt);
        std::remove(path.c_str());
        Install();
        calls = 0;
        bool saved = tape5.Save(Wide(path).c_str());
        ResetSyscalls();
        if (saved) EXPECT_EQ(ReadText(path), expected); // only a call whose failure changes nothing
        else EXPECT_NE(ReadText(path), expected);
    }
    std::remove(path.c_str());
}
