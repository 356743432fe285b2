#include "qv/threads/Semaphore.h"

#include <new>

#include "qv/platform/ThreadId.h"
#include "qv/platform/Ticks.h"
#include "qv/threads/Event.h"

namespace qv {

namespace {

// Milliseconds between two tick readings. Across the wrap the interval is
// one less than the modular difference: existing callers' time limits were
// tuned against this count.
uint32_t TicksBetween(uint32_t then, uint32_t now) {
    return now >= then ? now - then : (now - then) - 1;
}

} // namespace

CSemaphore::CSemaphore(uint32_t count) : maximum(count), count(count) {}

CSemaphore::CSemaphore(CSemaphore const &other) : maximum(other.maximum), count(other.maximum) {}

CSemaphore::~CSemaphore() {
    for (uint32_t i = 0; i < eventPool.GetSize(); ++i)
        delete eventPool[i].event;
}

CEvent *CSemaphore::AcquireEvent() {
    for (uint32_t i = 0; i < eventPool.GetSize(); ++i) {
        if (!eventPool[i].inUse) {
            eventPool[i].inUse = true;
            return eventPool[i].event;
        }
    }
    CEvent *event = new (std::nothrow) CEvent(false, false);
    if (event && !eventPool.Add(SEventEntry{event, true})) {
        delete event;
        return nullptr;
    }
    return event;
}

void CSemaphore::ReleaseEvent(CEvent *event) {
    for (uint32_t i = 0; i < eventPool.GetSize(); ++i) {
        if (eventPool[i].event == event) eventPool[i].inUse = false;
    }
}

uint32_t CSemaphore::FindRequest(CEvent *event) const {
    for (uint32_t i = 0; i < requests.GetSize(); ++i) {
        if (requests.GetAt(i).event == event) return i;
    }
    return UINT32_MAX;
}

void CSemaphore::GrantInOrder() {
    for (uint32_t i = 0; i < requests.GetSize(); ++i) {
        SRequest &request = requests[i];
        if (request.granted) continue;
        if (count < request.count) return;
        count -= request.count;
        request.granted = true;
        request.event->Signal();
    }
}

// Waits until the own request is granted or time runs out; returns with the
// mutex held and the answer in granted.
bool CSemaphore::WaitInQueue(CEvent *event, uint32_t timeout) {
    for (;;) {
        uint32_t then = GetTickCount();
        bool timedOut = !event->Wait(timeout);
        uint32_t spent = TicksBetween(then, GetTickCount());
        mutex.lock();
        GrantInOrder();
        uint32_t own = FindRequest(event);
        bool granted = own != UINT32_MAX && requests[own].granted;
        if (granted || timedOut) return granted;
        if (timeout != kInfinite) timeout = spent >= timeout ? 0 : timeout - spent;
        mutex.unlock();
    }
}

// Called with the mutex held.
void CSemaphore::LeaveQueue(CEvent *event, bool granted) {
    ReleaseEvent(event);
    requests.Remove(FindRequest(event));
    if (requests.GetSize() == 0) {
        currentEvent = nullptr;
        currentThread = 0;
    } else {
        currentEvent = requests[0].event;
        currentThread = requests[0].threadId;
    }
    // The head may have been waiting behind this request; let it look again.
    if (!granted && currentEvent) currentEvent->Signal();
}

bool CSemaphore::Acquire(uint32_t n, uint32_t timeout) {
    // Never servable: waiting would only hold up the queue behind it.
    if (n > maximum) return false;
    mutex.lock();
    if (requests.GetSize() == 0 && n <= count) {
        count -= n;
        mutex.unlock();
        return true;
    }
    CEvent *event = timeout == 0 ? nullptr : AcquireEvent();
    if (!event) {
        mutex.unlock();
        return false;
    }
    uint32_t thread = GetCurrentThreadId();
    if (requests.GetSize() == 0) {
        currentEvent = event;
        currentThread = thread;
    }
    requests.Add(SRequest{event, n, thread, false});
    mutex.unlock();
    bool granted = WaitInQueue(event, timeout);
    LeaveQueue(event, granted);
    mutex.unlock();
    return granted;
}

bool CSemaphore::Release(uint32_t n) {
    std::lock_guard<std::mutex> lock(mutex);
    if (n > maximum || count > maximum - n) return false;
    count += n;
    if (currentEvent) currentEvent->Signal();
    return true;
}

} // namespace qv
