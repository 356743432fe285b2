/// @file
/// CRWLock: a reader-writer lock for short holds that never sleeps in the
/// kernel: a waiting thread yields its time slice until it may go on.
///
/// Many readers or one writer. Writers come first: once a writer has set its
/// mark, new readers wait, and the writer then waits for the readers present
/// to leave. The writer may lock again (recursively) and may also read; a
/// reader may read again at once, even while a writer waits. A thread that
/// reads may take the write lock when no other thread reads (a writer that
/// waits for it steps back); two readers that both try to write wait for
/// each other for ever (callers avoid that).
/// Unlocks do not check that the caller holds a lock. A copy is a new,
/// unlocked lock. Thread-safe.
///
/// One atomic word holds the writer's mark and the number of reads; each
/// thread counts its own reads of each lock in thread-local storage, for up
/// to 16 locks read at once (the reads of a 17th lock are still counted in
/// its word, but that thread reading it again waits behind a waiting writer
/// like a new reader).
#pragma once

#include <atomic>
#include <cstdint>

#include "qv/core/Export.h"

namespace qv {

/// @copydoc RWLock.h
class QV_API CRWLock {
public:
    CRWLock();
    CRWLock(CRWLock const &other); ///< a new, unlocked lock
    CRWLock &operator=(CRWLock const &) = delete;
    ~CRWLock();

    /// Take and give up the shared (read) or the exclusive (write) lock, as
    /// the file comment describes.
    ///@{
    void ReadLock();
    void ReadUnlock();
    void WriteLock();
    void WriteUnlock();
    ///@}

private:
    bool MarkAndDrain(uintptr_t me, uint32_t mine);

    std::atomic<uint32_t> state{0};      ///< kWriter, kUpgrade, plus the reads held
    std::atomic<uintptr_t> writer{0};    ///< the marking thread; only it stores its own value
    std::atomic<uint32_t> writeDepth{0}; ///< the writer's locks
};

} // namespace qv
