// Per-thread message queues: how calls reach a thread that runs a loop.
//
// Every thread has one queue, made on first use. A CMessageWindow is a
// receiver bound to the thread that made it; messages to it carry a message
// number and two parameters and run its handler on that thread:
//   Post  - asynchronous; the message waits in the queue until the owning
//           thread pumps it.
//   Send  - synchronous; from the owning thread the handler runs at once.
//           From another thread the caller blocks until the owner has run it,
//           and while blocked it still serves messages sent to its own
//           thread, so two threads that send to each other never deadlock.
// Timers (SetQueueTimer) call back on the thread that set them, from its
// loop. PostQuitMessage ends a GetQueuedMessage loop.
//
// Pumping. Nothing queued runs by itself: posted messages, timers and
// messages sent from other threads run only while the owning thread is in
// GetQueuedMessage / PeekQueuedMessage / DispatchQueuedMessage, in a pumping
// wait (PumpUntil, CEvent::Wait with pumping, CThread::Join(true),
// CMessageQueueInvoker::SafeWait), or in a Send of its own. A thread that
// never pumps never runs its queued handlers, and a Send to it blocks for
// ever. A plain loop:
//
//     qv::SMessage msg;
//     while (qv::GetQueuedMessage(msg) > 0) qv::DispatchQueuedMessage(msg);
//
// A thread with an event loop of its own (Qt, GLib, libuv, poll) watches
// GetMessageQueueFd and pumps when it becomes readable:
//
//     int fd = qv::GetMessageQueueFd();   // watch for reading
//     ... on readable:  if (!qv::PumpMessages()) { /* quit was posted */ }
//
// The descriptor is readable while messages wait or a timer is due; it is
// owned by the queue (do not read or close it) and lives as long as the
// thread.
//
// Order of delivery: messages sent from other threads first (they run inside
// the peek), then posted messages in posting order, then a posted quit, then
// due timers. A message filter (kPeekSentOnly) serves sent messages and
// returns only a quit, leaving posted messages and timers where they are.
//
// Failure: Post to a window whose thread has ended gives false; Send to it
// gives 0 without running anything. Threads: all functions without a window
// act on the calling thread's queue; a window's Post and Send may be called
// from any thread.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "qv/core/Export.h"
#include "qv/platform/Waitable.h"

namespace qv {

class CThreadQueue;
class CMessageWindow;

constexpr uint32_t kQuitMessage = 0x0012;
constexpr uint32_t kTimerMessage = 0x0113;
// The first message number free for a window's own use.
constexpr uint32_t kUserMessage = 0x0400;

struct SMessage {
    CMessageWindow *window = nullptr; // null: a thread message (quit, timer)
    uint32_t message = 0;
    uintptr_t wParam = 0; // the exit code of a quit, the id of a timer
    intptr_t lParam = 0;
};

class IMessageHandler {
public:
    virtual intptr_t OnMessage(uint32_t message, uintptr_t wParam, intptr_t lParam) = 0;

protected:
    ~IMessageHandler() = default;
};

// A message-only receiver. The handler is not owned and must outlive the
// window. Destroying the window (from any thread) drops the messages posted
// to it, and releases senders still waiting for it with the result 0.
class QV_API CMessageWindow {
public:
    explicit CMessageWindow(IMessageHandler *handler);
    CMessageWindow(CMessageWindow const &) = delete;
    CMessageWindow &operator=(CMessageWindow const &) = delete;
    ~CMessageWindow();

    bool Post(uint32_t message, uintptr_t wParam, intptr_t lParam);
    intptr_t Send(uint32_t message, uintptr_t wParam, intptr_t lParam);
    // Posts a quit to the owning thread's queue; false when it has ended.
    bool PostQuit(int32_t exitCode);
    // Takes the messages posted to this window for which match(msg, context)
    // is true back out of the queue, oldest first (also after the owning
    // thread has ended), so that the caller can release what they carry.
    // Stops taking when memory runs out; the rest stay queued.
    std::vector<SMessage> TakePosted(bool (*match)(SMessage const &msg, void *context), void *context);
    uint32_t GetThreadID() const { return threadId; }

private:
    friend class CThreadQueue;
    friend QV_API intptr_t DispatchQueuedMessage(SMessage const &msg);
    std::shared_ptr<CThreadQueue> queue;
    IMessageHandler *handler;
    uint32_t threadId;
};

// PeekQueuedMessage flags.
constexpr uint32_t kPeekNoRemove = 0;
constexpr uint32_t kPeekRemove = 1;
constexpr uint32_t kPeekSentOnly = 2;

// Serves messages sent from other threads, then gives the first message that
// the flags allow; false when there is none.
QV_API bool PeekQueuedMessage(SMessage &msg, uint32_t flags);
// Waits for a message: 1 for a message, 0 for a quit (msg.wParam holds
// its exit code).
QV_API int GetQueuedMessage(SMessage &msg);
// Runs a window's handler or a timer's callback; 0 for other messages.
QV_API intptr_t DispatchQueuedMessage(SMessage const &msg);
// Dispatches messages until none waits (those posted meanwhile included);
// false when it met a quit (which is then taken from the queue).
QV_API bool PumpMessages();
QV_API void PostQuitMessage(int32_t exitCode);

// The descriptor described above; -1 if the system refuses one.
QV_API int GetMessageQueueFd();

// Calls callback(id) from the calling thread's loop every interval
// milliseconds (at least 10, so a timer cannot starve the loop); a due timer
// is delivered once however late it is. Gives the id, never 0.
QV_API uint32_t SetQueueTimer(uint32_t interval, void (*callback)(uint32_t id));
// Stops a timer of the calling thread; false for an unknown id.
QV_API bool KillQueueTimer(uint32_t id);

// What a wait for an object and the queue ended with.
enum class EWakeReason { Object, Message, Timeout };
// Wake masks: messages sent from other threads (and a quit), or any input.
constexpr uint32_t kWakeSent = 1;
constexpr uint32_t kWakeAll = 3;

// Waits until object (may be null) is signalled (and taken), input of the mask
// waits in the calling thread's queue, or timeout milliseconds pass
// (0xFFFFFFFF: no limit). Runs nothing. The object comes first when both are
// ready.
QV_API EWakeReason WaitForObjectOrMessage(IWaitable *object, uint32_t timeout, uint32_t wakeMask);

// Pumps the calling thread's queue until object is signalled: with sentOnly,
// only messages sent from other threads are served; otherwise everything is
// dispatched. The time limit starts anew after every message served. A quit
// ends the wait with false and is consumed. True when the object was
// signalled.
QV_API bool PumpUntil(IWaitable *object, uint32_t timeout, bool sentOnly);

} // namespace qv
