// Starting threads, and the record that says when a thread has ended.
//
// StartThread runs a body on a new thread and gives the thread's record,
// shared by the thread and whoever holds the record: dropping the record
// neither stops nor waits for the thread. The record is an IWaitable that is
// signalled, for ever, once the body has returned and the thread's message
// queue is closed (senders waiting for it are then released).
// Failure: StartThread gives null when no thread could be made.
// Threads: every member may be called from any thread.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>

#include "qv/core/Export.h"
#include "qv/platform/Waitable.h"

namespace qv {

class QV_API CThreadRecord final : public IWaitable {
public:
    // The thread's id, known before StartThread returns.
    uint32_t Id() const { return id; }
    bool Ended();
    uint32_t ExitCode();
    // Timeout in milliseconds, 0xFFFFFFFF without limit; true once ended.
    bool WaitEnded(uint32_t timeout);

    uint64_t BeginWait(CWaker *waker) override;
    bool TryTake(uint64_t ticket) override;
    void EndWait(CWaker *waker) override;

private:
    friend QV_API std::shared_ptr<CThreadRecord> StartThread(std::function<uint32_t()> body);
    void Run(std::function<uint32_t()> const &body);

    std::mutex mutex;
    std::condition_variable changed;
    CWakerList wakers;
    uint32_t id = 0;
    bool ended = false;
    uint32_t exitCode = 0;
};

QV_API std::shared_ptr<CThreadRecord> StartThread(std::function<uint32_t()> body);

} // namespace qv
