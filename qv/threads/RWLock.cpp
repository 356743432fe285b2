#include "qv/threads/RWLock.h"

#include "qv/platform/ThreadId.h"
#include "qv/platform/Ticks.h"

namespace qv {

namespace {

// The field lock is held for a few instructions only.
constexpr uint32_t kSpinCount = 4000;

} // namespace

CRWLock::CRWLock() : lock(kSpinCount) {}

CRWLock::CRWLock(CRWLock const &) : CRWLock() {}

CRWLock::~CRWLock() = default;

bool CRWLock::HoldsReadLock(uint32_t thread) const {
    for (uint32_t i = 0; i < readerThreads.GetSize(); ++i) {
        if (readerThreads.GetAt(i) == thread) return true;
    }
    return false;
}

uint32_t CRWLock::NumReadersNotMe(uint32_t thread) {
    lock.Enter();
    uint32_t others = 0;
    for (uint32_t i = 0; i < readerThreads.GetSize(); ++i) {
        if (readerThreads.GetAt(i) != thread) ++others;
    }
    lock.Leave();
    return others;
}

// Called with the lock held; returns with it held and no writer.
void CRWLock::LeaveUntilNoWriter() {
    while (writers.load() != 0) {
        lock.Leave();
        while (writers.load() != 0)
            SwitchToThread();
        lock.Enter();
    }
}

void CRWLock::YieldUntilNoReaderBut(uint32_t thread) {
    while (NumReadersNotMe(thread) != 0)
        SwitchToThread();
}

void CRWLock::WriteLock() {
    uint32_t const me = GetCurrentThreadId();
    lock.Enter();
    if (writers.load() != 0 && writerThread == me) {
        writers.fetch_add(1);
        lock.Leave();
        return;
    }
    LeaveUntilNoWriter();
    writers.store(1);
    writerThread = me;
    lock.Leave();
    YieldUntilNoReaderBut(me);
}

void CRWLock::WriteUnlock() {
    lock.Enter();
    if (writers.load() != 0) writers.fetch_sub(1);
    lock.Leave();
}

void CRWLock::ReadLock() {
    uint32_t const me = GetCurrentThreadId();
    lock.Enter();
    bool const atOnce = (writers.load() != 0 && writerThread == me) || HoldsReadLock(me);
    if (!atOnce) LeaveUntilNoWriter();
    ++readers;
    readerThreads.Add(me);
    lock.Leave();
}

void CRWLock::ReadUnlock() {
    uint32_t const me = GetCurrentThreadId();
    lock.Enter();
    if (readers != 0) {
        --readers;
        for (uint32_t i = 0; i < readerThreads.GetSize(); ++i) {
            if (readerThreads[i] == me) {
                readerThreads.Remove(i);
                break;
            }
        }
    }
    lock.Leave();
}

} // namespace qv
