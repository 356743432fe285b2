// OS binding: starting a detached system thread and recording its end.
#include <chrono>
#include <exception>
#include <thread>

#include "qv/platform/SystemThread.h"
#include "qv/platform/ThreadId.h"
#include "qv/platform/ThreadQueue.h"
#include "qv/platform/Ticks.h"

namespace qv {

bool CThreadRecord::Ended() {
    std::lock_guard<std::mutex> lock(mutex);
    return ended;
}

uint32_t CThreadRecord::ExitCode() {
    std::lock_guard<std::mutex> lock(mutex);
    return exitCode;
}

bool CThreadRecord::WaitEnded(uint32_t timeout) {
    std::unique_lock<std::mutex> lock(mutex);
    auto isEnded = [this] { return ended; };
    if (timeout == kInfinite) {
        changed.wait(lock, isEnded);
        return true;
    }
    return changed.wait_for(lock, std::chrono::milliseconds(timeout), isEnded);
}

uint64_t CThreadRecord::BeginWait(CWaker *waker) {
    std::lock_guard<std::mutex> lock(mutex);
    wakers.Add(waker);
    return 0;
}

bool CThreadRecord::TryTake(uint64_t) {
    return Ended();
}

void CThreadRecord::EndWait(CWaker *waker) {
    std::lock_guard<std::mutex> lock(mutex);
    wakers.Remove(waker);
}

void CThreadRecord::Run(std::function<uint32_t()> const &body) {
    {
        std::lock_guard<std::mutex> lock(mutex);
        id = GetCurrentThreadId();
        changed.notify_all();
    }
    uint32_t const code = body();
    CThreadQueue::EndCurrent();
    std::lock_guard<std::mutex> lock(mutex);
    ended = true;
    exitCode = code;
    changed.notify_all();
    wakers.WakeAll();
}

std::shared_ptr<CThreadRecord> StartThread(std::function<uint32_t()> body) {
    auto record = std::make_shared<CThreadRecord>();
    try {
        std::thread([record, body = std::move(body)] { record->Run(body); }).detach();
    } catch (std::exception const &) {
        return nullptr;
    }
    std::unique_lock<std::mutex> lock(record->mutex);
    record->changed.wait(lock, [&record] { return record->id != 0; });
    return record;
}

} // namespace qv
