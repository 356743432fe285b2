/// @file
/// CMessageQueueInvoker: the invoker whose calls run in the message loop of
/// the thread that made it; CInvokerThread: the same on a worker thread of its
/// own that runs that loop.
///
/// CMessageQueueInvoker works through a message-only window
/// (qv/platform/MessageQueue.h) on the thread that calls Init (the public
/// constructor does). Invoke sends message 0x400 to the window: from that
/// thread it runs at once, from another thread the caller blocks until the
/// owner's loop has run it (and meanwhile serves calls sent to its own
/// thread). Queue posts 0x401 carrying its entry (lParam the call, wParam 1
/// when the invoker deletes it), so a queued call costs the thread queue's one
/// lock; each 0x401 runs at most one entry, so queued calls never starve the
/// loop. The owning thread has to pump
/// its queue (GetQueuedMessage/DispatchQueuedMessage, GetMessageQueueFd with a
/// loop of its own, SafeWait, or a pumping CEvent::Wait); without a pump no
/// queued call ever runs and Invoke from another thread blocks for ever.
///
/// Ownership and failures follow IInvoker: the destructor drops pending
/// entries without running them (deleting those queued with autoDelete); a
/// Queue that cannot grow gives false and neither runs nor deletes the call;
/// before Init, Invoke runs nothing and Queue gives false. Destroy the
/// invoker on its own thread, or after that thread has ended.
///
/// SafeWait(handle, timeout) waits for a handle (CEvent::getHandle,
/// CThread::getHandle; no other kind, CMutex's included) while serving only the calls that other threads send
/// to the calling thread, so a UI thread can wait for a worker that is inside
/// an Invoke aimed at it. Every call served starts the timeout anew. A quit
/// message ends it with false (and is consumed). True when the handle was
/// signalled.
///
/// Threads: Invoke, Queue, DequeueDuplicates and GetThreadID may be called
/// from any thread; the entries wait in the owning thread's message queue,
/// whose mutex is never held while a call runs.
#pragma once

#include <cstdint>
#include <memory>

#include "qv/core/Export.h"
#include "qv/platform/MessageQueue.h"
#include "qv/platform/SystemThread.h"
#include "qv/threads/Invoker.h"

namespace qv {

/// @copydoc MessageQueueInvoker.h
class QV_API CMessageQueueInvoker : public IInvoker, private IMessageHandler {
public:
    /// One pending call of Queue.
    struct QUEUE_ENTRY {
        IInvokable *invokable; ///< the call
        bool autoDelete;       ///< the invoker deletes it once run or dropped
    };

    /// Calls Init on the calling thread.
    ///@{
    CMessageQueueInvoker();
    CMessageQueueInvoker(CMessageQueueInvoker const &) = delete;
    CMessageQueueInvoker &operator=(CMessageQueueInvoker const &) = delete;
    ~CMessageQueueInvoker() override;
    ///@}

    /// Binds the invoker to the calling thread; true (again on a second call,
    /// which changes nothing).
    bool Init();

    void Invoke(IInvokable *invokable) override;
    bool Queue(IInvokable *invokable, bool autoDelete) override;
    void DequeueDuplicates(void *target, CMethodId const &method) override;
    uint32_t GetThreadID() override;

    /// Waits for handle while serving the calls sent to this thread; true when
    /// it was signalled (see the file comment).
    static bool SafeWait(void *handle, uint32_t timeout);

private:
    friend class CInvokerThread;
    /// Made without a window; Init follows on the thread that will own it.
    explicit CMessageQueueInvoker(bool init);

    intptr_t OnMessage(uint32_t message, uintptr_t wParam, intptr_t lParam) override;
    void RunQueued(QUEUE_ENTRY const &entry);
    bool PostQuit();
    void DropPosted(bool (*match)(SMessage const &msg, void *context), void *context);
    static QUEUE_ENTRY EntryOf(SMessage const &msg);

    uint32_t threadId = 0;
    std::unique_ptr<CMessageWindow> window;
    bool busy = false;
};

/// @copydoc MessageQueueInvoker.h
class QV_API CInvokerThread : public IInvoker {
public:
    /// Starts the worker and returns once its invoker is ready.
    ///@{
    CInvokerThread();
    CInvokerThread(CInvokerThread const &) = delete;
    CInvokerThread &operator=(CInvokerThread const &) = delete;
    ///@}
    /// Asks the worker's loop to quit and waits for the worker, without limit;
    /// calls still queued are dropped.
    ~CInvokerThread() override;

    void Invoke(IInvokable *invokable) override;
    bool Queue(IInvokable *invokable, bool autoDelete) override;
    void DequeueDuplicates(void *target, CMethodId const &method) override;
    uint32_t GetThreadID() override;

private:
    uint32_t Work(class CEvent *started);

    CMessageQueueInvoker invoker{false};
    std::shared_ptr<CThreadRecord> thread;
};

} // namespace qv
