// CQueueSignal: the descriptor that tells an outside event loop that a thread
// queue has input. Internal to libqv.
//
// One pollable descriptor covers two conditions: messages wait (a level that
// SetPending keeps) and a timer is due (ArmTimer). Nothing is made until the
// first Open, so queues that nobody watches cost no descriptors. The owner
// calls every member under its queue's lock.
#pragma once

#include <chrono>
#include <optional>

namespace qv {

class CQueueSignal {
public:
    CQueueSignal() = default;
    CQueueSignal(CQueueSignal const &) = delete;
    CQueueSignal &operator=(CQueueSignal const &) = delete;
    ~CQueueSignal();

    // Makes the descriptors on first use; the pollable one, or -1.
    int Open();
    bool IsOpen() const { return pollFd >= 0; }
    void SetPending(bool pending);
    // Readable after delay; nullopt: no timer.
    void ArmTimer(std::optional<std::chrono::nanoseconds> delay);

private:
    void Close();

    int pollFd = -1;
    int eventFd = -1;
    int timerFd = -1;
    bool pendingShown = false;
};

} // namespace qv
