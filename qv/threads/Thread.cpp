#include "qv/threads/Thread.h"

#include "qv/platform/MessageQueue.h"
#include "qv/platform/Ticks.h"

namespace qv {

CThread::~CThread() = default;

bool CThread::Start(std::function<uint32_t()> body) {
    thread.reset();
    thread = StartThread(std::move(body));
    return thread != nullptr;
}

bool CThread::Create() {
    return Start([this] { return Run(); });
}

bool CThread::Create(uint32_t (*function)(void *), void *argument) {
    return Start([function, argument] { return function(argument); });
}

bool CThread::Create(IInvokable *invokable, bool autoDelete) {
    return Start([invokable, autoDelete] {
        invokable->Invoke();
        if (autoDelete) delete invokable;
        return uint32_t(0);
    });
}

uint32_t CThread::Run() {
    return 0;
}

uint32_t CThread::getID() const {
    return thread ? thread->Id() : 0;
}

void *CThread::getHandle() const {
    return thread ? AsHandle(thread.get()) : nullptr;
}

bool CThread::getRunning() const {
    return thread && !thread->Ended();
}

bool CThread::Join(bool pumpMessages) {
    if (!thread) return false;
    if (pumpMessages) return PumpUntil(thread.get(), kInfinite, false);
    return thread->WaitEnded(kInfinite);
}

bool CThread::JoinWithTimeout(uint32_t timeout) {
    return thread && thread->WaitEnded(timeout);
}

} // namespace qv
