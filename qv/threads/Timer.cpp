#include "qv/threads/Timer.h"

#include <mutex>

#include "qv/core/Array.h"
#include "qv/platform/MessageQueue.h"

namespace qv {

namespace {

struct LOOKUP {
    uint32_t timerId;
    CTimer *timer;
};

// Finds the timer of a system timer id. Timers of several threads may meet
// here, so the table has a lock; it is never freed, so that timers destroyed
// during exit still find it.
class CTimerTable {
public:
    bool Add(uint32_t timerId, CTimer *timer) {
        std::lock_guard<std::mutex> lock(mutex);
        return rows.Add(LOOKUP{timerId, timer});
    }
    void Remove(uint32_t timerId) {
        std::lock_guard<std::mutex> lock(mutex);
        for (uint32_t i = 0; i < rows.GetSize(); ++i)
            if (rows.GetAt(i).timerId == timerId) {
                rows.Remove(i);
                return;
            }
    }
    CTimer *Find(uint32_t timerId) {
        std::lock_guard<std::mutex> lock(mutex);
        for (uint32_t i = 0; i < rows.GetSize(); ++i)
            if (rows.GetAt(i).timerId == timerId) return rows.GetAt(i).timer;
        return nullptr;
    }

private:
    std::mutex mutex;
    TArray<LOOKUP> rows;
};

CTimerTable &Lookup() {
    static CTimerTable *table = new CTimerTable;
    return *table;
}

} // namespace

CTimer::~CTimer() {
    if (gone) *gone = true;
    Stop();
}

bool CTimer::Create(uint32_t newInterval) {
    interval = newInterval;
    return true;
}

bool CTimer::SetInterval(uint32_t newInterval) {
    if (!running) {
        interval = newInterval;
        return true;
    }
    Stop();
    interval = newInterval;
    return Start();
}

bool CTimer::Start() {
    if (running) return true;
    uint32_t const id = SetQueueTimer(interval, &CTimer::Callback);
    if (id == 0) return false;
    if (!Lookup().Add(id, this)) {
        KillQueueTimer(id);
        return false;
    }
    timerId = id;
    running = true;
    return true;
}

bool CTimer::Stop() {
    if (running) {
        KillQueueTimer(timerId);
        Lookup().Remove(timerId);
    }
    running = false;
    timerId = 0;
    return true;
}

bool CTimer::Restart() {
    Stop();
    return Start();
}

// A handler may delete the timer, even from a tick nested in another (a
// handler that pumps): each tick then stops firing and leaves the object alone.
void CTimer::Tick() {
    if (!running) return;
    bool deleted = false;
    bool *const outer = gone;
    gone = &deleted;
    OnTick.FireUnless(deleted, this);
    if (!deleted)
        gone = outer;
    else if (outer)
        *outer = true;
}

void CTimer::Callback(uint32_t timerId) {
    if (CTimer *timer = Lookup().Find(timerId)) timer->Tick();
}

} // namespace qv
