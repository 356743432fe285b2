/// @file
/// IInvoker: runs IInvokable calls where the invoker wants them run: at once on
/// the caller's thread (CDirectInvoker), on the thread that owns a message
/// queue, or on a worker thread.
///
/// Invoke(call) is synchronous: it returns once call->Invoke() has run on the
/// invoker's thread. A call from that thread itself runs straight away. The
/// caller keeps ownership (a call on the caller's stack is fine). Invoke from
/// another thread blocks until the invoker's thread serves its queue; a thread
/// that waits for that other thread must keep serving its own queue, or both
/// wait forever.
///
/// Queue(call, autoDelete) is asynchronous: the call runs later on the
/// invoker's thread, one call per turn of that thread's loop, in the order of
/// queueing. true: the invoker has taken the call and, when autoDelete is set,
/// deletes it once it has run or when it is dropped (by DequeueDuplicates or
/// by the invoker's destruction, which runs nothing still pending). Without
/// autoDelete the caller keeps ownership and must keep the call alive until it
/// has run or been dropped. false (no memory for the queue): the call is
/// neither run nor deleted, and stays the caller's.
///
/// DequeueDuplicates(target, method) drops every pending call whose
/// UsesHandler(target, method) is true, deleting those queued with
/// autoDelete; the others keep their order. A call already running is not
/// touched.
///
/// GetThreadID: the kernel's id of the thread that runs the calls (for
/// CDirectInvoker the caller's own).
///
/// Threads: every operation may be called from any thread; a call is never run
/// while the invoker holds its internal lock, so a running call may queue more.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"

#include "qv/threads/Invokable.h"

namespace qv {

/// @copydoc Invoker.h
class QV_API IInvoker {
public:
    virtual ~IInvoker() = default;
    /// Runs the call on the invoker's thread and returns when it has run;
    /// the caller keeps ownership.
    virtual void Invoke(IInvokable *invokable) = 0;
    /// Queues the call to run later on the invoker's thread; false (nothing
    /// taken) when the queue has no memory. See the file comment for ownership.
    virtual bool Queue(IInvokable *invokable, bool autoDelete) = 0;
    /// Drops the pending calls made for target and method.
    virtual void DequeueDuplicates(void *target, CMethodId const &method) = 0;
    /// The kernel's id of the thread that runs the calls.
    virtual uint32_t GetThreadID() = 0;
};

} // namespace qv
