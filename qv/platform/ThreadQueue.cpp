#include "qv/platform/ThreadQueue.h"

#include <algorithm>
#include <atomic>
#include <new>

#include "qv/platform/SpinningMutex.h"
#include "qv/platform/ThreadId.h"
#include "qv/platform/Ticks.h"

namespace qv {

namespace {

// Shorter intervals would let a timer starve the loop that delivers it.
constexpr uint32_t kMinimumTimerInterval = 10;

std::atomic<uint32_t> lastTimerId{0};

uint32_t NewTimerId() {
    uint32_t id;
    do
        id = lastTimerId.fetch_add(1, std::memory_order_relaxed) + 1;
    while (id == 0);
    return id;
}

// Closes the thread's queue when the thread ends, so that senders waiting for
// it are released.
struct SQueueHolder {
    std::shared_ptr<CThreadQueue> queue;
    ~SQueueHolder() { CThreadQueue::EndCurrent(); }
};

// Initial-exec, as libqv's other thread-local state: the loop reaches it once
// a message, and the general model costs a call into the loader each time.
[[gnu::tls_model("initial-exec")]] thread_local SQueueHolder holder;

} // namespace

CThreadQueue::CThreadQueue(uint32_t threadId) : threadId(threadId) {
    LetMutexSpin(mutex);
}

std::shared_ptr<CThreadQueue> const &CThreadQueue::Current() {
    if (!holder.queue) holder.queue = std::make_shared<CThreadQueue>(GetCurrentThreadId());
    return holder.queue;
}

void CThreadQueue::EndCurrent() {
    if (!holder.queue) return;
    holder.queue->Close();
    holder.queue.reset();
}

void CThreadQueue::Close() {
    std::vector<SSent *> released;
    {
        Lock lock(mutex);
        // Posted messages stay until the queue goes: calls they carry are
        // still the windows' to take back (TakePosted) and drop.
        closed = true;
        timers.clear();
        released.assign(incoming.begin(), incoming.end());
        incoming.clear();
        Changed();
        WakeOwner();
    }
    CompleteAll(released);
}

// Most queues are never watched by an outside loop: they skip the call.
void CThreadQueue::Changed() {
    bool const sending = !incoming.empty();
    if (sendWaiting.load(std::memory_order_relaxed) != sending) sendWaiting.store(sending, std::memory_order_release);
    if (signal.IsOpen()) signal.SetPending(sending || !posted.Empty() || !taken.Empty() || quit);
}

// refill, only under the mutex: once the taken part has run dry, every
// posted message moves over to it in one swap.
bool CThreadQueue::HandOutTaken(SMessage &msg, bool remove, bool refill) {
    std::lock_guard<CWordLock> takenLock(takenMutex);
    if (refill && taken.Empty()) std::swap(taken, posted);
    if (taken.Empty()) return false;
    msg = taken.Front();
    if (remove) taken.PopFront();
    return true;
}

void CThreadQueue::WakeOwner() {
    if (ownerSleeping) changed.notify_one();
}

// The only wait on the condition variable: ownerSleeping tells the threads
// that add input whether a notification is needed.
void CThreadQueue::Sleep(Lock &lock, Clock::time_point until) {
    ownerSleeping = true;
    if (until == Clock::time_point::max())
        changed.wait(lock);
    else
        changed.wait_until(lock, until);
    ownerSleeping = false;
}

void CThreadQueue::Rearm() {
    if (!signal.IsOpen()) return;
    std::optional<Clock::time_point> due = NextTimerDue();
    if (due)
        signal.ArmTimer(*due - Clock::now());
    else
        signal.ArmTimer(std::nullopt);
}

void CThreadQueue::Wake() {
    Lock lock(mutex);
    poked = true;
    WakeOwner();
}

// The owner is notified after the lock is given up, so that it does not wake
// only to wait for the lock.
bool CThreadQueue::Post(SMessage const &msg) {
    Lock lock(mutex);
    if (closed || !posted.Push(msg)) return false;
    Changed();
    bool const wake = ownerSleeping;
    lock.unlock();
    if (wake) changed.notify_one();
    return true;
}

bool CThreadQueue::PostQuit(int32_t exitCode) {
    Lock lock(mutex);
    if (closed) return false;
    quit = true;
    quitCode = exitCode;
    Changed();
    WakeOwner();
    return true;
}

intptr_t CThreadQueue::Send(CMessageWindow *window, uint32_t message, uintptr_t wParam, intptr_t lParam) {
    std::shared_ptr<CThreadQueue> const &me = Current();
    SSent sent{window, message, wParam, lParam, me};
    {
        Lock lock(mutex);
        if (closed) return 0;
        incoming.push_back(&sent);
        Changed();
        WakeOwner();
    }
    me->AwaitReply(sent);
    return sent.result;
}

// Serving our own incoming sends while we wait is what keeps two threads
// that send to each other from waiting for ever.
void CThreadQueue::AwaitReply(SSent &sent) {
    Lock lock(mutex);
    while (!sent.done) {
        if (incoming.empty()) {
            Sleep(lock, Clock::time_point::max());
            continue;
        }
        SSent *next = incoming.front();
        incoming.pop_front();
        Changed();
        lock.unlock();
        Serve(next);
        lock.lock();
    }
}

void CThreadQueue::ServeSent(Lock &lock) {
    while (!incoming.empty()) {
        SSent *next = incoming.front();
        incoming.pop_front();
        Changed();
        lock.unlock();
        Serve(next);
        lock.lock();
    }
}

void CThreadQueue::Serve(SSent *sent) {
    Complete(sent, sent->window->handler->OnMessage(sent->message, sent->wParam, sent->lParam));
}

// The sender may return (and free *sent) as soon as done is seen, so nothing
// touches *sent after the sender's lock is given up.
void CThreadQueue::Complete(SSent *sent, intptr_t result) {
    std::shared_ptr<CThreadQueue> sender = sent->sender;
    Lock lock(sender->mutex);
    sent->result = result;
    sent->done = true;
    sender->WakeOwner();
}

void CThreadQueue::CompleteAll(std::vector<SSent *> const &sent) {
    for (SSent *one : sent)
        Complete(one, 0);
}

void CThreadQueue::Forget(CMessageWindow *window) {
    std::vector<SSent *> released;
    {
        Lock lock(mutex);
        RemovePostedIf([window](SMessage const &msg) { return msg.window == window; });
        for (auto it = incoming.begin(); it != incoming.end();) {
            if ((*it)->window != window) {
                ++it;
                continue;
            }
            released.push_back(*it);
            it = incoming.erase(it);
        }
        Changed();
    }
    CompleteAll(released);
}

std::vector<SMessage> CThreadQueue::TakePosted(CMessageWindow *window, bool (*match)(SMessage const &, void *),
                                               void *context) {
    std::vector<SMessage> found;
    bool full = false;
    auto const take = [&](SMessage const &msg) {
        if (full || msg.window != window || !match(msg, context)) return false;
        try {
            found.push_back(msg);
        } catch (std::bad_alloc const &) {
            full = true;
        }
        return !full;
    };
    Lock lock(mutex);
    RemovePostedIf(take);
    Changed();
    return found;
}

// Messages already taken over go out without the mutex unless a send waits
// (sends come first) or an outside loop watches the descriptor.
bool CThreadQueue::Peek(SMessage &msg, uint32_t flags) {
    bool const remove = (flags & kPeekRemove) != 0;
    bool const postedToo = !(flags & kPeekSentOnly);
    if (postedToo && !signal.IsOpen() && !sendWaiting.load(std::memory_order_acquire) &&
        HandOutTaken(msg, remove, false))
        return true;
    Lock lock(mutex);
    ServeSent(lock);
    if (postedToo && HandOutTaken(msg, remove, true)) {
        Changed();
        return true;
    }
    if (quit) {
        msg = SMessage{nullptr, kQuitMessage, uintptr_t(quitCode), 0};
        if (remove) quit = false;
        Changed();
        return true;
    }
    if (flags & kPeekSentOnly) return false;
    Clock::time_point const now = Clock::now();
    STimer *timer = DueTimer(now);
    if (!timer) return false;
    msg = SMessage{nullptr, kTimerMessage, timer->id, 0};
    if (remove) {
        timer->due = now + std::chrono::milliseconds(timer->interval);
        Rearm();
    }
    return true;
}

bool CThreadQueue::HasInput(uint32_t wakeMask, Clock::time_point now) const {
    if (!incoming.empty() || quit) return true;
    if (wakeMask != kWakeAll) return false;
    return !posted.Empty() || !taken.Empty() ||
           std::any_of(timers.begin(), timers.end(), [now](STimer const &timer) { return timer.due <= now; });
}

CThreadQueue::STimer *CThreadQueue::DueTimer(Clock::time_point now) {
    STimer *first = nullptr;
    for (STimer &timer : timers)
        if (timer.due <= now && (!first || timer.due < first->due)) first = &timer;
    return first;
}

std::optional<CThreadQueue::Clock::time_point> CThreadQueue::NextTimerDue() const {
    std::optional<Clock::time_point> next;
    for (STimer const &timer : timers)
        if (!next || timer.due < *next) next = timer.due;
    return next;
}

EWakeReason CThreadQueue::Wait(IWaitable *object, uint32_t timeout, uint32_t wakeMask) {
    Clock::time_point const deadline =
        timeout == kInfinite ? Clock::time_point::max() : Clock::now() + std::chrono::milliseconds(timeout);
    uint64_t const ticket = object ? object->BeginWait(this) : 0;
    EWakeReason reason;
    for (;;) {
        if (object && object->TryTake(ticket)) {
            reason = EWakeReason::Object;
            break;
        }
        Lock lock(mutex);
        Clock::time_point const now = Clock::now();
        if (HasInput(wakeMask, now)) {
            reason = EWakeReason::Message;
            break;
        }
        if (poked) { // the object changed since it was tested
            poked = false;
            continue;
        }
        if (now >= deadline) {
            reason = EWakeReason::Timeout;
            break;
        }
        Clock::time_point until = deadline;
        std::optional<Clock::time_point> const timerDue = NextTimerDue();
        if (wakeMask == kWakeAll && timerDue) until = std::min(until, *timerDue);
        Sleep(lock, until);
    }
    if (object) object->EndWait(this);
    return reason;
}

uint32_t CThreadQueue::SetTimer(uint32_t interval, void (*callback)(uint32_t id)) {
    interval = std::max(interval, kMinimumTimerInterval);
    uint32_t const id = NewTimerId();
    Lock lock(mutex);
    timers.push_back(STimer{id, interval, Clock::now() + std::chrono::milliseconds(interval), callback});
    Rearm();
    return id;
}

bool CThreadQueue::KillTimer(uint32_t id) {
    Lock lock(mutex);
    size_t const removed = std::erase_if(timers, [id](STimer const &timer) { return timer.id == id; });
    Rearm();
    return removed != 0;
}

void (*CThreadQueue::TimerCallback(uint32_t id))(uint32_t) {
    Lock lock(mutex);
    for (STimer const &timer : timers)
        if (timer.id == id) return timer.callback;
    return nullptr;
}

int CThreadQueue::Fd() {
    Lock lock(mutex);
    if (signal.IsOpen()) return signal.Open();
    int const fd = signal.Open();
    Changed();
    Rearm();
    return fd;
}

} // namespace qv
