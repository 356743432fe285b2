// Helpers for thread tests: every wait has a limit, so a broken lock fails
// a test instead of hanging the run.
#pragma once

#include <chrono>
#include <functional>
#include <future>

#include "qv/platform/Ticks.h"

namespace qv::test {

// Generous: only a broken lock ever waits this long.
constexpr uint32_t kLimitMs = 10000;
constexpr std::chrono::milliseconds kLimit{kLimitMs};
// How long a thread that should stay blocked is watched.
constexpr std::chrono::milliseconds kGlance{50};

inline std::future<bool> Async(std::function<bool()> body) { return std::async(std::launch::async, std::move(body)); }

inline std::future<void> AsyncVoid(std::function<void()> body) { return std::async(std::launch::async, std::move(body)); }

template <class T> bool Finishes(std::future<T> &f) { return f.wait_for(kLimit) == std::future_status::ready; }

template <class T> bool StillBlocked(std::future<T> &f) { return f.wait_for(kGlance) == std::future_status::timeout; }

// Polls condition until it holds or the limit passes.
inline bool Eventually(std::function<bool()> const &condition) {
    for (uint32_t start = GetTickCount(); uint32_t(GetTickCount() - start) < kLimitMs;) {
        if (condition()) return true;
        Sleep(1);
    }
    return condition();
}

// Makes GetTickCount read about `ticks` now; restores the offset at the end.
class TickScope {
public:
    TickScope() : saved(GetTickCountOffset()) {}
    ~TickScope() { SetTickCountOffset(saved); }
    void ReadNow(uint32_t ticks) { SetTickCountOffset(ticks - (GetTickCount() - GetTickCountOffset())); }

private:
    uint32_t saved;
};

} // namespace qv::test
