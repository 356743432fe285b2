// The fault harness every writer's test uses: it runs a writer once to count
// its system calls, then again and again, failing call k of one kind for every
// k, and lets the test judge the result and the bytes after each run.
//
// Use (a few lines per writer):
//
//     #include "support/FaultInjection.h"
//
//     qv::test::RunUnderFaults(
//         [&] { /* put the files in their starting state */ },
//         [&] { return /* run the writer */ writer.Save(path); },
//         [&](qv::test::FaultRun const &run) {
//             if (run.IsClean()) { after = qv::test::FileBytes(path); return; }
//             qv::test::ExpectFailureReported(run);
//             qv::test::ExpectBeforeOrAfter(run, qv::test::FileBytes(path), before, after);
//         });
//
// prepare runs before every run (the clean one too) with the real system
// calls. run is the only part under the injected table; it returns what the
// writer returned (its success). check runs after every run, again with the
// real calls: first for the clean run (IsClean(), the place to take the
// completed result), then once per injected fault. The harness expects the
// clean run to succeed. Failures inside check carry the fault's name and index.
//
// Fault kinds and what the failing call does (errno in brackets):
//   kWrite           write: nothing written (ENOSPC)
//   kWriteShort      write: half the bytes written, the next write fails (ENOSPC);
//                    a write of one byte fails at once
//   kRead            read (EIO)
//   kLseek           lseek (EINVAL)
//   kFtruncate       ftruncate (EIO)
//   kFallocate       fallocate (ENOSPC)
//   kFsync           fsync (EIO)
//   kRename          rename (EIO)
//   kCopyFileRange   the kernel copy (EIO)
//   kMapShared       a shared mapping of a file (ENOMEM); writers work on without one
//   kClose           close (EIO; the descriptor is released all the same, as Linux does)
// Each kind runs twice per call index: once failing only that call (a
// transient fault: a roll-back after it succeeds), once "sticky", failing it
// and every later call of the same kind (a full disk, a dead device: a
// roll-back fails too). FaultRun::sticky tells which.
//
// The harness wraps whatever table is installed when it starts, so a test can
// first put its own entry in (say, a fallocate that answers EOPNOTSUPP) and
// run every fault over that road. The table is restored when it returns.
//
// Threads: the system-call table is process-wide; the writer must do its I/O
// on the calling thread, and nothing else may do file I/O meanwhile.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <fstream>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

#include "qv/platform/Syscalls.h"

namespace qv::test {

enum class Fault {
    kNone, // the clean run
    kWrite,
    kWriteShort,
    kRead,
    kLseek,
    kFtruncate,
    kFallocate,
    kFsync,
    kRename,
    kCopyFileRange,
    kMapShared,
    kClose,
};

inline char const *FaultName(Fault fault) {
    switch (fault) {
    case Fault::kNone: return "none";
    case Fault::kWrite: return "write";
    case Fault::kWriteShort: return "write short then ENOSPC";
    case Fault::kRead: return "read EIO";
    case Fault::kLseek: return "lseek";
    case Fault::kFtruncate: return "ftruncate";
    case Fault::kFallocate: return "fallocate";
    case Fault::kFsync: return "fsync";
    case Fault::kRename: return "rename";
    case Fault::kCopyFileRange: return "copy_file_range";
    case Fault::kMapShared: return "mmap";
    case Fault::kClose: return "close";
    }
    return "?";
}

inline std::vector<Fault> AllFaults() {
    return {Fault::kWrite,  Fault::kWriteShort, Fault::kRead,          Fault::kLseek,
            Fault::kFtruncate, Fault::kFallocate, Fault::kFsync,         Fault::kRename,
            Fault::kCopyFileRange, Fault::kMapShared, Fault::kClose};
}

// What one run did; handed to check.
struct FaultRun {
    Fault fault = Fault::kNone;
    int index = -1;      // the call of that kind that failed, from 0
    int calls = 0;       // calls of that kind the clean run made
    bool sticky = false; // every later call of the kind failed too
    bool fired = false;  // the failing call was reached
    bool succeeded = false; // what the writer returned

    bool IsClean() const { return fault == Fault::kNone; }
    std::string Describe() const {
        return std::string(FaultName(fault)) + " call " + std::to_string(index) + " of " + std::to_string(calls) +
               (sticky ? " and all after" : " only");
    }
};

namespace fault_detail {

// The state the wrappers read; plain functions cannot capture.
struct State {
    SyscallTable base{};          // the table the harness wraps
    Fault fault = Fault::kNone;   // the kind being failed
    int failAt = -1;              // its failing call index; -1 only counts
    bool sticky = false;
    bool fired = false;
    bool shortPending = false;    // kWriteShort: the next write fails
    int counts[int(Fault::kClose) + 1] = {};
};

inline State &S() {
    static State state;
    return state;
}

// Counts a call of kind (writes count for both write kinds) and says whether it fails.
inline bool Fails(Fault kind) {
    State &s = S();
    int index = s.counts[int(kind)]++;
    if (kind == Fault::kWrite) s.counts[int(Fault::kWriteShort)]++;
    bool matches = s.fault == kind || (kind == Fault::kWrite && s.fault == Fault::kWriteShort);
    if (!matches || s.failAt < 0) return false;
    if (index == s.failAt || (s.sticky && index > s.failAt)) {
        s.fired = true;
        return true;
    }
    return false;
}

inline int FailWith(int error) {
    errno = error;
    return -1;
}

inline ssize_t Read(int fd, void *buf, size_t n) {
    return Fails(Fault::kRead) ? FailWith(EIO) : S().base.read(fd, buf, n);
}

inline ssize_t Write(int fd, void const *buf, size_t n) {
    State &s = S();
    if (s.shortPending) { // the call after a short write finds the disk full
        s.shortPending = s.sticky;
        ++s.counts[int(Fault::kWrite)];
        ++s.counts[int(Fault::kWriteShort)];
        return FailWith(ENOSPC);
    }
    if (!Fails(Fault::kWrite)) return s.base.write(fd, buf, n);
    if (s.fault == Fault::kWrite || n < 2) return FailWith(ENOSPC);
    s.shortPending = true;
    return s.base.write(fd, buf, n / 2);
}

inline off_t Lseek(int fd, off_t offset, int whence) {
    return Fails(Fault::kLseek) ? off_t(FailWith(EINVAL)) : S().base.lseek(fd, offset, whence);
}
inline int Ftruncate(int fd, off_t length) {
    return Fails(Fault::kFtruncate) ? FailWith(EIO) : S().base.ftruncate(fd, length);
}
inline int Fallocate(int fd, int mode, off_t offset, off_t length) {
    return Fails(Fault::kFallocate) ? FailWith(ENOSPC) : S().base.fallocate(fd, mode, offset, length);
}
inline int Fsync(int fd) {
    return Fails(Fault::kFsync) ? FailWith(EIO) : S().base.fsync(fd);
}
inline int Rename(char const *from, char const *to) {
    return Fails(Fault::kRename) ? FailWith(EIO) : S().base.rename(from, to);
}
inline ssize_t CopyFileRange(int in, int out, size_t n) {
    return Fails(Fault::kCopyFileRange) ? FailWith(EIO) : S().base.copyFileRange(in, out, n);
}
inline void *MapShared(int fd, off_t offset, size_t length) {
    if (!Fails(Fault::kMapShared)) return S().base.mapShared(fd, offset, length);
    FailWith(ENOMEM);
    return MAP_FAILED;
}
inline int Close(int fd) {
    if (!Fails(Fault::kClose)) return S().base.close(fd);
    S().base.close(fd);
    return FailWith(EIO);
}

// Installs the wrappers for one run, restores the wrapped table after it.
class Injected {
public:
    Injected(Fault fault, int failAt, bool sticky) {
        State &s = S();
        s.fault = fault;
        s.failAt = failAt;
        s.sticky = sticky;
        s.fired = false;
        s.shortPending = false;
        for (int &count : s.counts)
            count = 0;
        SyscallTable &t = Syscalls();
        t.read = &Read;
        t.write = &Write;
        t.lseek = &Lseek;
        t.ftruncate = &Ftruncate;
        t.fallocate = &Fallocate;
        t.fsync = &Fsync;
        t.rename = &Rename;
        t.copyFileRange = &CopyFileRange;
        t.mapShared = &MapShared;
        t.close = &Close;
    }
    ~Injected() { Syscalls() = S().base; }
    Injected(Injected const &) = delete;
    Injected &operator=(Injected const &) = delete;
};

} // namespace fault_detail

// Runs the writer clean, then under every fault of kinds at every call index
// the clean run reached, once transient and once sticky (see the top of this
// file). Returns the number of faulty runs made.
inline int RunUnderFaults(std::function<void()> const &prepare, std::function<bool()> const &run,
                          std::function<void(FaultRun const &)> const &check,
                          std::vector<Fault> const &kinds = AllFaults()) {
    fault_detail::State &s = fault_detail::S();
    s.base = Syscalls();
    int counts[int(Fault::kClose) + 1] = {};
    {
        prepare();
        FaultRun clean;
        {
            fault_detail::Injected counting(Fault::kNone, -1, false);
            clean.succeeded = run();
            std::copy(std::begin(s.counts), std::end(s.counts), std::begin(counts));
        }
        EXPECT_TRUE(clean.succeeded) << "the writer fails without any fault";
        SCOPED_TRACE("clean run");
        check(clean);
    }
    int runs = 0;
    for (Fault fault : kinds) {
        for (int index = 0; index < counts[int(fault)]; ++index) {
            for (bool sticky : {false, true}) {
                FaultRun faulty;
                faulty.fault = fault;
                faulty.index = index;
                faulty.calls = counts[int(fault)];
                faulty.sticky = sticky;
                prepare();
                {
                    fault_detail::Injected injected(fault, index, sticky);
                    faulty.succeeded = run();
                    faulty.fired = s.fired;
                }
                SCOPED_TRACE(faulty.Describe());
                check(faulty);
                ++runs;
            }
        }
    }
    Syscalls() = s.base;
    return runs;
}

// Runs a reader under failing reads and seeks: each run must fail or give
// what the clean run gives, as contents() tells it after a load (a failed
// read is never taken for the end of the file). Returns the clean contents.
template <class Contents>
auto ExpectWholeLoadOrFailure(std::function<bool()> const &load, Contents const &contents) {
    decltype(contents()) clean{};
    RunUnderFaults(
        [] {}, load,
        [&](FaultRun const &run) {
            if (run.IsClean()) {
                clean = contents();
            } else if (run.succeeded) {
                EXPECT_EQ(contents(), clean);
            }
        },
        {Fault::kRead, Fault::kLseek});
    return clean;
}

// ---- Checks ----

using FaultBytes = std::vector<uint8_t>;

// A file's bytes read without the system-call table (so nothing is counted
// or failed); empty if it does not exist.
inline FaultBytes FileBytes(std::string const &path) {
    std::ifstream in(path, std::ios::binary);
    return FaultBytes(std::istreambuf_iterator<char>(in), {});
}

inline bool FileExists(std::string const &path) {
    return ::access(path.c_str(), F_OK) == 0;
}

// A fault that was reached must reach the caller as a failure; except a
// refused mapping, which writers take as a hint to use plain writes instead.
inline void ExpectFailureReported(FaultRun const &run) {
    if (run.fired && run.fault != Fault::kMapShared) {
        EXPECT_FALSE(run.succeeded) << "the writer reported success over a failed call";
    }
}

// A successful run left the completed result; a failed one left the file as it
// was before or, if it got that far, completed.
inline void ExpectBeforeOrAfter(FaultRun const &run, FaultBytes const &now, FaultBytes const &before,
                                FaultBytes const &after) {
    if (run.succeeded) {
        EXPECT_TRUE(now == after) << "success, yet the file is not the completed result";
    } else {
        EXPECT_TRUE(now == before || now == after) << "failure left a file that is neither the old nor the new one";
    }
}

// For an edit that moves the bytes of before from position from on by shift
// (positive: an insert opens a gap; negative: a remove closes the gap of
// -shift bytes before from): every byte before the edit is in place, and
// every byte from on is at its old place or its new one, so none is lost.
// The bytes a remove was asked to drop are not judged. scratch, if given, is
// where an insert's copy of its block in flight may lie past the new end:
// the tail from from on is cut into blocks of block bytes from its end down
// (the lowest may be shorter), and the copy starts with its block's start.
inline void ExpectNoByteLost(FaultBytes const &before, FaultBytes const &now, int64_t from, int64_t shift,
                             int64_t scratch = -1, int64_t block = INT64_MAX) {
    auto at = [&](int64_t i, uint8_t value) { return i >= 0 && i < int64_t(now.size()) && now[size_t(i)] == value; };
    int64_t end = int64_t(before.size());
    auto blockStart = [&](int64_t i) { return std::max(from, end - ((end - 1 - i) / block + 1) * block); };
    auto inScratch = [&](int64_t i, uint8_t value) { return scratch >= 0 && at(scratch + i - blockStart(i), value); };
    int64_t lost = 0, first = -1;
    int64_t edit = shift < 0 ? from + shift : from;
    for (int64_t i = 0; i < int64_t(before.size()); ++i) {
        if (i >= edit && i < from) continue;
        uint8_t value = before[size_t(i)];
        bool kept = i < edit ? at(i, value) : at(i, value) || at(i + shift, value) || inScratch(i, value);
        if (!kept && lost++ == 0) first = i;
    }
    EXPECT_EQ(lost, 0) << "original bytes lost, the first at " << first;
}

} // namespace qv::test
