#include "qv/threads/DirectInvoker.h"

#include "qv/platform/ThreadId.h"

namespace qv {

void CDirectInvoker::Invoke(IInvokable *invokable) {
    invokable->Invoke();
}

bool CDirectInvoker::Queue(IInvokable *invokable, bool autoDelete) {
    invokable->Invoke();
    if (autoDelete) delete invokable;
    return true;
}

void CDirectInvoker::DequeueDuplicates(void *, CMethodId const &) {}

uint32_t CDirectInvoker::GetThreadID() {
    return GetCurrentThreadId();
}

} // namespace qv
