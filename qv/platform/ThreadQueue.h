// CThreadQueue: the message queue of one thread, behind the functions of
// qv/platform/MessageQueue.h. Internal to libqv.
//
// Shared ownership: the thread holds its queue until it ends (then Close
// releases waiting senders and refuses further posts), and every window and
// every pending sender hold it too, so a late Post or Forget never reaches
// freed memory.
//
// Locks: one mutex per queue guards everything in it. Posting and taking
// hold it for a few instructions, so a thread that finds it held spins a
// little before it sleeps (qv/platform/SpinningMutex.h). A queue never holds
// its mutex while it runs a handler or calls an IWaitable; an IWaitable may
// call Wake under its own lock. Completing a send locks the sender's queue alone.
//
// Only the owning thread ever sleeps on a queue (in Wait, or awaiting the
// reply to a send), so a post wakes it only when it sleeps, and posting to a
// busy thread costs one lock and no system call.
//
// The owner takes posted messages over in one step (all that wait), then
// hands them out one by one under a second lock that posters never take: a
// stream of posts from another processor then meets the owner on the queue's
// mutex once a batch instead of once a message. TakePosted and Forget search
// both parts (queue's mutex first, then the taken part's). A queue watched
// through Fd hands out under the queue's mutex, so the descriptor's level is
// set with every message taken.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "qv/platform/MessageQueue.h"
#include "qv/platform/MessageRing.h"
#include "qv/platform/QueueSignal.h"
#include "qv/platform/Waitable.h"
#include "qv/platform/WordLock.h"

namespace qv {

class CThreadQueue final : public CWaker {
public:
    using Clock = std::chrono::steady_clock;

    explicit CThreadQueue(uint32_t threadId);

    // The calling thread's queue, made on first use.
    static std::shared_ptr<CThreadQueue> const &Current();
    // Called by a thread that ends: closes its queue and lets it go.
    static void EndCurrent();

    uint32_t ThreadId() const { return threadId; }

    // Any thread.
    bool Post(SMessage const &msg);
    bool PostQuit(int32_t exitCode);
    // From a thread other than the owner: blocks, serving the caller's own
    // sent messages, until the owner has run the message.
    intptr_t Send(CMessageWindow *window, uint32_t message, uintptr_t wParam, intptr_t lParam);
    void Forget(CMessageWindow *window);
    // Takes the messages posted to window for which match(msg, context) is
    // true out of the queue, oldest first. Stops taking when the result
    // cannot grow.
    std::vector<SMessage> TakePosted(CMessageWindow *window, bool (*match)(SMessage const &, void *), void *context);
    void Wake() override;

    // The owning thread.
    bool Peek(SMessage &msg, uint32_t flags);
    EWakeReason Wait(IWaitable *object, uint32_t timeout, uint32_t wakeMask);
    uint32_t SetTimer(uint32_t interval, void (*callback)(uint32_t id));
    bool KillTimer(uint32_t id);
    // The callback of a live timer, or null.
    void (*TimerCallback(uint32_t id))(uint32_t);
    int Fd();

private:
    struct SSent {
        CMessageWindow *window;
        uint32_t message;
        uintptr_t wParam;
        intptr_t lParam;
        std::shared_ptr<CThreadQueue> sender;
        intptr_t result = 0;
        bool done = false; // guarded by the sender's mutex
    };
    struct STimer {
        uint32_t id;
        uint32_t interval;
        Clock::time_point due;
        void (*callback)(uint32_t id);
    };
    using Lock = std::unique_lock<std::mutex>;

    void Close();
    void AwaitReply(SSent &sent);
    void ServeSent(Lock &lock);
    static void Serve(SSent *sent);
    static void Complete(SSent *sent, intptr_t result);
    static void CompleteAll(std::vector<SSent *> const &sent);
    // The owner, with the mutex when refill is set.
    bool HandOutTaken(SMessage &msg, bool remove, bool refill);
    // Under the mutex: takes out, in order, the messages of both parts for
    // which take(msg) is true.
    template <class Take> void RemovePostedIf(Take take) {
        {
            std::lock_guard<CWordLock> takenLock(takenMutex);
            taken.RemoveIf(take);
        }
        posted.RemoveIf(take);
    }
    // Under the mutex.
    bool HasInput(uint32_t wakeMask, Clock::time_point now) const;
    STimer *DueTimer(Clock::time_point now);
    std::optional<Clock::time_point> NextTimerDue() const;
    void Changed();
    void WakeOwner();
    void Sleep(Lock &lock, Clock::time_point until);
    void Rearm();

    // What every post and every take touch shares one cache line, so that
    // passing the lock between poster and owner moves that line alone.
    alignas(64) std::mutex mutex;
    CMessageRing posted;
    bool closed = false;
    bool ownerSleeping = false;
    bool quit = false;
    bool poked = false;
    uint32_t const threadId;
    int32_t quitCode = 0;
    std::condition_variable changed;
    std::deque<SSent *> incoming;
    std::vector<STimer> timers;

    // What the owner reads on every message without the mutex, apart from
    // what posts write. sendWaiting mirrors !incoming.empty() and is written
    // only when that changes.
    alignas(64) std::atomic<bool> sendWaiting{false};
    CQueueSignal signal;

    // Posted messages that the owner took over, older than all in posted.
    alignas(64) CWordLock takenMutex;
    CMessageRing taken;
};

} // namespace qv
