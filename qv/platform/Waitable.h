// IWaitable: an object that a thread can wait for together with its message
// queue (WaitForObjectOrMessage in qv/platform/MessageQueue.h).
//
// A waiting thread registers a CWaker with BeginWait, then tests the object
// with TryTake and sleeps until its waker is woken; EndWait unregisters it.
// The object calls Wake on every registered waker whenever a waiter might now
// succeed (signalled, pulsed, ended), while holding its own lock, so that a
// waker is never woken after EndWait has returned. Wake only marks and
// notifies; it takes no lock of an IWaitable.
//
// Handles. The void * handles that qv's waitable objects give (CEvent and
// CThread getHandle) point to their IWaitable; AsWaitable turns one back.
// Any other pointer is not a handle of this kind.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace qv {

class CWaker {
public:
    virtual void Wake() = 0;

protected:
    ~CWaker() = default;
};

class IWaitable {
public:
    // Registers waker; the ticket marks the moment, for objects whose waits
    // depend on it (a pulse releases only the threads already waiting).
    virtual uint64_t BeginWait(CWaker *waker) = 0;
    // True when the wait that began with ticket is satisfied now; an
    // auto-reset object is taken by a true answer.
    virtual bool TryTake(uint64_t ticket) = 0;
    virtual void EndWait(CWaker *waker) = 0;

protected:
    ~IWaitable() = default;
};

inline void *AsHandle(IWaitable *waitable) {
    return static_cast<void *>(waitable);
}

inline IWaitable *AsWaitable(void *handle) {
    return static_cast<IWaitable *>(handle);
}

// The registered wakers of one object; guarded by the object's lock.
class CWakerList {
public:
    void Add(CWaker *waker) { wakers.push_back(waker); }
    void Remove(CWaker *waker) {
        auto found = std::find(wakers.begin(), wakers.end(), waker);
        if (found != wakers.end()) wakers.erase(found);
    }
    void WakeAll() const {
        for (CWaker *waker : wakers)
            waker->Wake();
    }

private:
    std::vector<CWaker *> wakers;
};

} // namespace qv
