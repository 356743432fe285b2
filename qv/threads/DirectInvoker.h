/// @file
/// CDirectInvoker: the invoker that runs every call at once, on the caller's
/// thread.
///
/// Invoke runs the call. Queue runs it too, straight away, and then deletes
/// it when autoDelete is set; it never fails. Nothing is ever pending, so
/// DequeueDuplicates does nothing. GetThreadID gives the calling thread's id.
/// Thread-safe: it has no state.
#pragma once

#include "qv/core/Export.h"
#include "qv/threads/Invoker.h"

namespace qv {

class QV_API CDirectInvoker : public IInvoker {
public:
    void Invoke(IInvokable *invokable) override;
    bool Queue(IInvokable *invokable, bool autoDelete) override;
    void DequeueDuplicates(void *target, CMethodId const &method) override;
    uint32_t GetThreadID() override;
};

} // namespace qv
