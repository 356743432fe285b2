// CRWLock: a reader-writer lock for short holds that never sleeps in the
// kernel: a waiting thread yields its time slice until it may go on.
//
// Many readers or one writer. Writers come first: once a writer has set its
// mark, new readers wait, and the writer then waits for the readers present
// to leave. The writer may lock again (recursively) and may also read; a
// reader may read again at once, even while a writer waits. A thread that
// reads may take the write lock when no other thread reads; two readers that
// both try to write wait for each other for ever (callers avoid that).
// Unlocks do not check that the caller holds a lock. A copy is a new,
// unlocked lock. Thread-safe.
#pragma once

#include <atomic>
#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/threads/CriticalSection.h"

namespace qv {

class QV_API CRWLock {
public:
    CRWLock();
    CRWLock(CRWLock const &other);
    CRWLock &operator=(CRWLock const &) = delete;
    ~CRWLock();

    void ReadLock();
    void ReadUnlock();
    void WriteLock();
    void WriteUnlock();

private:
    bool HoldsReadLock(uint32_t thread) const;
    uint32_t NumReadersNotMe(uint32_t thread);
    void LeaveUntilNoWriter();
    void YieldUntilNoReaderBut(uint32_t thread);

    CCriticalSection lock;
    int32_t readers = 0;
    std::atomic<int32_t> writers{0}; // read without the lock while yielding
    uint32_t writerThread = 0;
    TArray<uint32_t> readerThreads; // one element per read lock held
};

} // namespace qv
