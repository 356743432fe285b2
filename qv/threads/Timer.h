/// @file
/// CTimer: fires its OnTick event every interval milliseconds from the message
/// loop of the thread that started it.
///
/// Start sets a queue timer on the calling thread (qv/platform/MessageQueue.h);
/// the ticks come only while that thread pumps its queue. Tick fires
/// OnTick(this) only while the timer runs, so a tick already on its way when
/// Stop is called fires nothing. The interval is 1000 after construction;
/// Create sets it; SetInterval on a running timer restarts it with the new
/// value and on a stopped timer only stores it. The destructor stops the
/// timer, so a timer destroyed while its tick waits in the queue is safe. A
/// handler may stop or delete its timer; after a delete no further handler
/// of that tick runs.
///
/// Results: Start false when no system timer could be set; the other bool
/// operations give true (SetInterval and Restart give Start's answer when
/// they start). Threads: start, stop and destroy a timer on one thread; the
/// handlers of OnTick run there (or where their invokers send them).
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/threads/Events.h"

namespace qv {

/// @copydoc Timer.h
class QV_API CTimer {
public:
    CTimer() = default;
    CTimer(CTimer const &) = delete;
    CTimer &operator=(CTimer const &) = delete;
    virtual ~CTimer();

    /// Sets the interval; always true.
    bool Create(uint32_t interval);
    uint32_t GetInterval() const { return interval; } ///< in milliseconds
    /// Stores the interval; a running timer restarts with it (Start's answer).
    bool SetInterval(uint32_t interval);
    bool Start(); ///< false when no system timer could be set; true if running already
    bool Stop();  ///< always true
    bool Restart(); ///< Stop, then Start's answer
    bool getRunning() const { return running; } ///< between a successful Start and Stop

    /// Fires OnTick while running.
    virtual void Tick();

    event0 OnTick; ///< fired by Tick

private:
    static void Callback(uint32_t timerId);

    uint32_t interval = 1000;
    bool running = false;
    uint32_t timerId = 0;
    bool *gone = nullptr; ///< while Tick fires: set by the destructor
};

} // namespace qv
