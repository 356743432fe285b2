// The exit-time destruction list of the singletons.
//
// Records (object, priority, deleter) sit in a realloc block ordered by
// priority, ascending, the newest last among equals; the exit routine takes
// them from the end. One atexit registration per record (while the routine is
// not running) counts as pending; the run that brings the count to 0 drains
// whatever is left, including objects built by destructors meanwhile. The
// list and its lock live in malloc blocks and trivially destructible
// globals, so they outlive every static object.
#include <cstdlib>
#include <new>

#include "qv/core/Singleton.h"
#include "qv/threads/CriticalSection.h"

namespace qv::Private {

namespace {

struct SExitRecord {
    void *object;
    int priority;
    void (*deleter)(void *);
};

constinit std::atomic<CCriticalSection *> listLock{nullptr};
constinit std::atomic<int> listLockBegun{0};
constinit std::atomic<int> listLockDone{0};

// Guarded by listLock.
constinit SExitRecord *records = nullptr;
constinit size_t recordCount = 0;
constinit size_t recordCapacity = 0;
constinit int pendingRoutines = 0;
constinit bool exitRunning = false;

CCriticalSection &ListLock() {
    if (CCriticalSection *ready = listLock.load(std::memory_order_acquire)) return *ready;
    RunOnce(listLockBegun, listLockDone, [] {
        void *block = std::malloc(sizeof(CCriticalSection));
        if (!block) throw std::bad_alloc();
        listLock.store(new (block) CCriticalSection(), std::memory_order_release);
    });
    return *listLock.load(std::memory_order_acquire);
}

// After the final drain: a later registration builds the lock again.
void DestroyListLock() {
    CCriticalSection *lock = listLock.exchange(nullptr, std::memory_order_acq_rel);
    lock->~CCriticalSection();
    std::free(lock);
    listLockDone.store(0, std::memory_order_release);
    listLockBegun.store(0, std::memory_order_release);
}

bool InsertRecord(SExitRecord const &record) {
    if (recordCount == recordCapacity) {
        size_t capacity = recordCapacity ? recordCapacity * 2 : 16;
        void *grown = std::realloc(records, capacity * sizeof(SExitRecord));
        if (!grown) return false;
        records = static_cast<SExitRecord *>(grown);
        recordCapacity = capacity;
    }
    size_t at = recordCount++;
    for (; at > 0 && record.priority < records[at - 1].priority; --at) records[at] = records[at - 1];
    records[at] = record;
    return true;
}

// Deletes the last record's object outside the lock; false when none is left.
bool DeleteLastRecord(CCriticalSection &lock) {
    if (recordCount == 0) return false;
    SExitRecord record = records[--recordCount];
    lock.Leave();
    record.deleter(record.object);
    lock.Enter();
    return true;
}

void ExitRoutine() {
    CCriticalSection &lock = ListLock();
    lock.Enter();
    exitRunning = true;
    DeleteLastRecord(lock);
    if (--pendingRoutines > 0) return lock.Leave();
    while (DeleteLastRecord(lock)) {
    }
    std::free(records);
    records = nullptr;
    recordCount = recordCapacity = 0;
    exitRunning = false;
    lock.Leave();
    DestroyListLock();
}

} // namespace

void DeleteAtExit(void *object, int priority, void (*deleter)(void *)) {
    CCriticalSection &lock = ListLock();
    lock.Enter();
    if (InsertRecord({object, priority, deleter}) && !exitRunning && std::atexit(&ExitRoutine) == 0)
        ++pendingRoutines;
    lock.Leave();
}

} // namespace qv::Private
