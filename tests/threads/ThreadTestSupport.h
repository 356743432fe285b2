// Helpers for thread tests: every wait has a limit, so a broken lock fails
// a test instead of hanging the run.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <thread>
#include <type_traits>

#include "qv/platform/Ticks.h"
#include "qv/threads/Invokable.h"

namespace qv::test {

// Generous: only a broken lock ever waits this long.
constexpr uint32_t kLimitMs = 10000;
constexpr std::chrono::milliseconds kLimit{kLimitMs};
// How long a thread that should stay blocked is watched.
constexpr std::chrono::milliseconds kGlance{50};

// Runs body on a thread of its own. The thread is detached, so a future
// that never becomes ready (a broken lock) fails its test instead of
// blocking the run in a destructor.
template <class R> std::future<R> Detached(std::function<R()> body) {
    std::promise<R> done;
    std::future<R> result = done.get_future();
    std::thread([body = std::move(body), done = std::move(done)]() mutable {
        if constexpr (std::is_void_v<R>) {
            body();
            done.set_value();
        } else {
            done.set_value(body());
        }
    }).detach();
    return result;
}

inline std::future<bool> Async(std::function<bool()> body) {
    return Detached<bool>(std::move(body));
}

inline std::future<void> AsyncVoid(std::function<void()> body) {
    return Detached<void>(std::move(body));
}

template <class T> bool Finishes(std::future<T> &f) {
    return f.wait_for(kLimit) == std::future_status::ready;
}

template <class T> bool StillBlocked(std::future<T> &f) {
    return f.wait_for(kGlance) == std::future_status::timeout;
}

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

// A call that runs a function and counts its own deletion; target and method
// say which handler it stands for.
class Call : public IInvokable {
public:
    explicit Call(std::function<void()> body, std::atomic<int> *deleted = nullptr)
        : body(std::move(body)), deleted(deleted) {}
    ~Call() override {
        if (deleted) ++*deleted;
    }
    void Invoke() override { body(); }
    bool UsesHandler(void *target, CMethodId const &method) const override {
        return target == this->target && method == this->method;
    }
    void *target = nullptr;
    CMethodId method;

private:
    std::function<void()> body;
    std::atomic<int> *deleted;
};

} // namespace qv::test
