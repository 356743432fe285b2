// Every writer of the file layer under the fault harness: each failing system
// call reaches the caller, and the bytes left behind are what the writer's
// header promises.
#include <cerrno>
#include <cstdio>
#include <functional>
#include <sys/mman.h>

#include "FileTestSupport.h"
#include "qv/files/GZFile.h"
#include "support/FaultInjection.h"

namespace qv::test {
namespace {

constexpr uint32_t kOpenReadWrite = 0x01 | 0x10 | 0x20; // open or create, read and write

Bytes Pattern(size_t n, unsigned seed) {
    Bytes out(n);
    for (size_t i = 0; i < n; ++i)
        out[i] = uint8_t(i * 131 + seed + i / 251);
    return out;
}

// Every fault but a failing close, for writers whose close reports nothing.
std::vector<Fault> WithoutClose() {
    auto kinds = AllFaults();
    std::erase(kinds, Fault::kClose);
    return kinds;
}

class WriterFaults : public testing::Test {
protected:
    ScratchDir dir;
    std::string path = dir.Path("w.bin");
    std::u16string name = Wide(path);
};

// A plain write passes what it can and says how much: the file holds the old
// bytes with a prefix of the new ones over them.
TEST_F(WriterFaults, CFileWriteReportsWhatPassed) {
    Bytes old = Pattern(10000, 1), data = Pattern(7000, 2);
    uint32_t written = 0;
    int runs = RunUnderFaults(
        [&] { WriteDiskBytes(path, old); },
        [&] {
            CFile f;
            written = 0;
            if (!f.Open(name.c_str(), kOpenReadWrite) || f.Seek(1000, 1) != 1000) return false;
            written = f.Write(data.data(), uint32_t(data.size()));
            return written == data.size();
        },
        [&](FaultRun const &run) {
            ExpectFailureReported(run);
            Bytes expected = old;
            std::copy(data.begin(), data.begin() + written, expected.begin() + 1000);
            EXPECT_EQ(ReadDiskBytes(path), expected);
        },
        WithoutClose()); // CFile::Close reports nothing: the data passed at Write

    EXPECT_GT(runs, 0);
}

// Insert and Remove on a disk file: a failure leaves the file as it was, or,
// only when the undo failed too (a fault that stays), says the file is
// damaged with no original byte lost.
class EditFaults : public WriterFaults {
protected:
    Bytes before = Pattern(20000, 3);
    IFile::EditOutcome outcome = IFile::EditOutcome::Done;

    // Runs edit on the file under every fault; from, shift and block as
    // ExpectNoByteLost takes them (an insert's scratch room starts at the new end).
    void Check(std::function<bool(CFile &)> const &edit, int64_t from, int64_t shift, int64_t block = INT64_MAX) {
        Bytes after;
        int runs = RunUnderFaults(
            [&] { WriteDiskBytes(path, before); },
            [&] {
                CFile f;
                return f.Open(name.c_str(), kOpenReadWrite) && edit(f);
            },
            [&](FaultRun const &run) {
                Bytes now = ReadDiskBytes(path);
                if (run.IsClean()) {
                    after = now;
                    return;
                }
                ExpectFailureReported(run);
                if (run.succeeded) {
                    EXPECT_EQ(now, after);
                } else if (outcome == IFile::EditOutcome::Unchanged) {
                    EXPECT_TRUE(now == before) << "said unchanged, yet changed";
                } else {
                    EXPECT_EQ(outcome, IFile::EditOutcome::Damaged);
                    EXPECT_TRUE(run.sticky) << "a fault that passes is undone";
                    ExpectNoByteLost(before, now, from, shift, shift > 0 ? int64_t(before.size()) + shift : -1,
                                     block);
                }
            },
            WithoutClose());
        EXPECT_GT(runs, 10); // the faults were reached
    }
};

TEST_F(EditFaults, InsertKeepsEveryByte) {
    Check([&](CFile &f) { return f.Insert(100, 3000, outcome); }, 100, 3000);
}

TEST_F(EditFaults, RemoveKeepsEveryByte) {
    Check([&](CFile &f) { return f.Remove(100, 3000, outcome); }, 3100, -3000);
}

// A few bytes into a tail of three blocks: each goes to the scratch room
// (through a mapping of it) before it is written whole to its new place.
TEST_F(EditFaults, InsertOverBlocksKeepsEveryByte) {
    before = Pattern(0x40000 * 2 + 5000, 7);
    Check([&](CFile &f) { return f.Insert(100, 3, outcome); }, 100, 3, 0x40000);
}

// A few hundred bytes out of a tail of three blocks: each block goes down in one
// write, and a write that stops half-way has already put what it covered in
// place.
TEST_F(EditFaults, RemoveOverBlocksKeepsEveryByte) {
    before = Pattern(0x80000 * 2 + 5000, 5);
    Check([&](CFile &f) { return f.Remove(100, 700, outcome); }, 800, -700);
}

int Unsupported(int, int, off_t, off_t) {
    errno = EOPNOTSUPP;
    return -1;
}

// Where the file system cannot reserve blocks, the room is written as zeros
// first, and the same promises hold.
TEST_F(EditFaults, InsertWithoutReservationKeepsEveryByte) {
    Syscalls().fallocate = &Unsupported;
    Check([&](CFile &f) { return f.Insert(7, 5000, outcome); }, 7, 5000);
    ResetSyscalls();
}

int writeCalls = 0;
ssize_t CountedWrite(int fd, void const *p, size_t n) {
    ++writeCalls;
    return ::write(fd, p, n);
}

// Closing a gap of a few bytes costs one write a block, not one per few bytes.
TEST_F(WriterFaults, RemoveWritesEachBlockOnce) {
    Bytes before = Pattern(0x80000 * 2 + 5000, 6);
    WriteDiskBytes(path, before);
    CFile f;
    ASSERT_TRUE(f.Open(name.c_str(), kOpenReadWrite));
    writeCalls = 0;
    Syscalls().write = &CountedWrite;
    bool removed = f.Remove(100, 3);
    ResetSyscalls();
    f.Close();
    EXPECT_TRUE(removed);
    EXPECT_EQ(writeCalls, 3); // two whole blocks and the rest
    before.erase(before.begin() + 100, before.begin() + 103);
    EXPECT_TRUE(ReadDiskBytes(path) == before);
}

void *NoMapping(int, off_t, size_t) {
    errno = ENODEV;
    return MAP_FAILED;
}

// Opening a gap of a few bytes writes each block once: its scratch copy goes
// through a mapping of the room. Without a mapping the copy is a write too.
TEST_F(WriterFaults, InsertWritesEachBlockOnce) {
    Bytes before = Pattern(0x40000 * 2 + 5000, 8);
    for (bool mapped : {true, false}) {
        WriteDiskBytes(path, before);
        CFile f;
        ASSERT_TRUE(f.Open(name.c_str(), kOpenReadWrite));
        writeCalls = 0;
        Syscalls().write = &CountedWrite;
        if (!mapped) Syscalls().mapShared = &NoMapping;
        bool inserted = f.Insert(100, 3);
        ResetSyscalls();
        f.Close();
        EXPECT_TRUE(inserted);
        EXPECT_EQ(writeCalls, mapped ? 3 : 6); // three blocks, and their copies when not mapped
        Bytes after = ReadDiskBytes(path);
        ASSERT_EQ(after.size(), before.size() + 3);
        after.erase(after.begin() + 100, after.begin() + 103); // the gap keeps what it held
        EXPECT_TRUE(after == before);
    }
}

TEST_F(WriterFaults, SetSizeIsAllOrNothing) {
    Bytes before = Pattern(20000, 4);
    for (int64_t size : {50000, 5000}) {
        Bytes after;
        RunUnderFaults(
            [&] { WriteDiskBytes(path, before); },
            [&] {
                CFile f;
                return f.Open(name.c_str(), kOpenReadWrite) && f.SetSize(size);
            },
            [&](FaultRun const &run) {
                if (run.IsClean()) after = ReadDiskBytes(path);
                ExpectFailureReported(run);
                ExpectBeforeOrAfter(run, ReadDiskBytes(path), before, after);
            },
            WithoutClose());
    }
}

// A TGZF stream written to disk is complete when Finish says so, and every
// failure reaches the caller through Write or Finish.
TEST_F(WriterFaults, GZFileStreamIsCompleteOrReportedBroken) {
    Bytes data(1 << 19);
    uint32_t x = 99;
    for (auto &b : data)
        b = uint8_t((x = x * 1103515245 + 12345) >> 24) & 0x3F; // compresses, but not to nothing
    int runs = RunUnderFaults(
        [&] { std::remove(path.c_str()); },
        [&] {
            CFile f;
            if (!f.Open(name.c_str(), kOpenReadWrite)) return false;
            CGZFile gz(&f, 0x20, false);
            bool written = true;
            for (size_t at = 0; at < data.size(); at += 65536)
                written = gz.Write(data.data() + at, 65536) == 65536 && written;
            return gz.Finish() && written;
        },
        [&](FaultRun const &run) {
            ExpectFailureReported(run);
            if (!run.succeeded) return;
            CFile f;
            ASSERT_TRUE(f.Open(name.c_str(), 0x02 | 0x10));
            CGZFile back(&f, 0x10, false);
            EXPECT_EQ(AllBytes(back), data);
        },
        WithoutClose());
    EXPECT_GT(runs, 20);
}

} // namespace
} // namespace qv::test
