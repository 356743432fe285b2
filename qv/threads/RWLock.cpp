// CRWLock over one atomic word; each thread's own reads in initial-exec
// thread-local storage, which is read without a call.
#include "qv/threads/RWLock.h"

#include "qv/platform/Ticks.h"

namespace qv {

namespace {

constexpr uint32_t kWriter = 0x80000000u;  // a writer has set its mark
constexpr uint32_t kUpgrade = 0x40000000u; // a thread that reads waits to write
constexpr uint32_t kReads = ~(kWriter | kUpgrade);

uintptr_t ThisThread() { return reinterpret_cast<uintptr_t>(__builtin_thread_pointer()); }

// This thread's reads of the locks it reads now.
struct SHeldReads {
    CRWLock const *lock;
    uint32_t count;
};
constexpr int kHeldSlots = 16;
[[gnu::tls_model("initial-exec")]] thread_local SHeldReads tHeld[kHeldSlots];

SHeldReads *FindHeld(CRWLock const *lock) {
    for (SHeldReads &slot : tHeld)
        if (slot.lock == lock) return &slot;
    return nullptr;
}

uint32_t ReadsOfThisThread(CRWLock const *lock) {
    SHeldReads const *slot = FindHeld(lock);
    return slot ? slot->count : 0;
}

void CountRead(CRWLock const *lock) {
    if (SHeldReads *slot = FindHeld(lock)) {
        ++slot->count;
    } else if ((slot = FindHeld(nullptr))) {
        *slot = {lock, 1};
    }
}

void UncountRead(CRWLock const *lock) {
    SHeldReads *slot = FindHeld(lock);
    if (slot && --slot->count == 0) slot->lock = nullptr;
}

} // namespace

CRWLock::CRWLock() = default;

CRWLock::CRWLock(CRWLock const &) : CRWLock() {}

CRWLock::~CRWLock() = default;

void CRWLock::ReadLock() {
    bool const atOnce = writer.load(std::memory_order_relaxed) == ThisThread() || ReadsOfThisThread(this) != 0;
    uint32_t s = state.load(std::memory_order_relaxed);
    for (;;) {
        if (atOnce || (s & kWriter) == 0) {
            if (state.compare_exchange_weak(s, s + 1, std::memory_order_acquire, std::memory_order_relaxed)) break;
        } else {
            SwitchToThread();
            s = state.load(std::memory_order_relaxed);
        }
    }
    CountRead(this);
}

void CRWLock::ReadUnlock() {
    uint32_t s = state.load(std::memory_order_relaxed);
    while ((s & kReads) != 0 && !state.compare_exchange_weak(s, s - 1, std::memory_order_release, std::memory_order_relaxed)) {
    }
    UncountRead(this);
}

void CRWLock::WriteLock() {
    uintptr_t const me = ThisThread();
    if (writer.load(std::memory_order_relaxed) == me) {
        writeDepth.fetch_add(1, std::memory_order_relaxed);
        return;
    }
    uint32_t const mine = ReadsOfThisThread(this);
    while (!MarkAndDrain(me, mine)) {
    }
}

// Sets the writer's mark, then waits for the reads of other threads to end.
// A writer that reads nothing itself steps back (false) when a thread that
// reads wants to write: that thread's read would otherwise never end.
bool CRWLock::MarkAndDrain(uintptr_t me, uint32_t mine) {
    uint32_t s = state.load(std::memory_order_relaxed);
    for (;;) {
        // While a reader waits to write, the mark is left to it.
        if ((s & kWriter) == 0 && (mine != 0 || (s & kUpgrade) == 0)) {
            if (state.compare_exchange_weak(s, (s | kWriter) & ~kUpgrade, std::memory_order_acquire,
                                            std::memory_order_relaxed))
                break;
            continue;
        }
        if (mine != 0 && (s & kUpgrade) == 0) state.fetch_or(kUpgrade, std::memory_order_relaxed);
        SwitchToThread();
        s = state.load(std::memory_order_relaxed);
    }
    writer.store(me, std::memory_order_relaxed);
    writeDepth.store(1, std::memory_order_relaxed);
    // The mark is set: only reads already held remain; this thread's own do not count.
    while (((s = state.load(std::memory_order_acquire)) & kReads) > mine) {
        if (mine == 0 && (s & kUpgrade) != 0) {
            WriteUnlock();
            return false;
        }
        SwitchToThread();
    }
    return true;
}

// Unchecked, as it always was: whichever thread calls it gives back one
// write lock, and nothing happens without one.
void CRWLock::WriteUnlock() {
    uint32_t depth = writeDepth.load(std::memory_order_relaxed);
    while (depth != 0 && !writeDepth.compare_exchange_weak(depth, depth - 1, std::memory_order_relaxed)) {
    }
    if (depth != 1) return;
    writer.store(0, std::memory_order_relaxed);
    state.fetch_and(~kWriter, std::memory_order_release);
}

} // namespace qv
