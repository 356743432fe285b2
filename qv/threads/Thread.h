/// @file
/// CThread: a thread of the system, started by one of the Create forms.
///
/// Create() runs the virtual Run; the other forms run a function with its
/// argument, or an invokable (deleted after it ran when autoDelete is set).
/// Each Create first lets go of the thread handle it held before (that thread
/// goes on running) and answers whether a new thread was started; when none
/// started, an invokable is neither run nor deleted.
///
/// getHandle gives a handle that CMessageQueueInvoker::SafeWait accepts; it
/// is signalled once the thread has ended. Join waits for the end without
/// limit: Join(true) keeps dispatching the calling thread's messages meanwhile
/// (a quit message ends it with false, consumed). Join and JoinWithTimeout
/// give true once the thread has ended, false without a thread or when the
/// time ran out.
///
/// Ownership: destroying a CThread neither stops nor waits for its thread; an
/// object whose Run is running has to outlive the thread (Join first). A
/// thread that ends closes its message queue: posts to it fail and senders
/// still waiting for it are released. Threads: one owner drives a CThread;
/// getRunning and the handle may be used from any thread.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "qv/core/Export.h"
#include "qv/platform/SystemThread.h"
#include "qv/threads/Invokable.h"

namespace qv {

/// @copydoc Thread.h
class QV_API CThread {
public:
    CThread() = default;
    CThread(CThread const &) = delete;
    CThread &operator=(CThread const &) = delete;
    virtual ~CThread();

    /// Starts a thread that runs Run, function(argument) or the invokable;
    /// true when a thread started (see the file comment).
    ///@{
    bool Create();
    bool Create(uint32_t (*function)(void *), void *argument);
    bool Create(IInvokable *invokable, bool autoDelete);
    ///@}

    /// 0 without a thread.
    uint32_t getID() const;
    /// Null without a thread.
    void *getHandle() const;
    bool getRunning() const; ///< a thread was started and has not ended
    /// Wait for the thread to end; true once it has (see the file comment).
    ///@{
    bool Join(bool pumpMessages);
    bool JoinWithTimeout(uint32_t timeout);
    ///@}

protected:
    /// The body of Create(); gives the thread's exit code.
    virtual uint32_t Run();

private:
    bool Start(std::function<uint32_t()> body);

    std::shared_ptr<CThreadRecord> thread;
};

} // namespace qv
