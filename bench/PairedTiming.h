// Times a qv operation and its reference in turns inside one benchmark, so
// both see the same machine load and one run gives their ratio.
//
// Each iteration runs qvOp once and referenceOp once, alternating which goes
// first so that neither always finds the caches the other left. The
// benchmark's own time (register it with UseManualTime) is that of the pair,
// so a slow reference does not multiply the rounds. Counters:
//   qv_per_second         qv's rate
//   reference_per_second  the reference's rate
//   speed_ratio           qv speed / reference speed (above 1: qv is faster)
//   goal                  the speed_ratio qv aims for
// The label names the work; scripts/bench.sh turns the counters into
// bench/RESULTS.md.
#pragma once

#include <benchmark/benchmark.h>

#include <time.h>

#include <chrono>
#include <cstdint>

namespace bench {

// What is measured against what, and the ratio aimed for. Work on the
// calling thread alone is timed by that thread's CPU clock, which a machine
// shared with other jobs does not stretch; work that waits on other threads
// sets wallClock.
struct SPair {
    char const *work;
    double goal;
    bool wallClock = false;
};

inline double ThreadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

template <class Op> double SecondsFor(Op &op, bool wallClock) {
    if (!wallClock) {
        double const start = ThreadSeconds();
        op();
        return ThreadSeconds() - start;
    }
    auto const start = std::chrono::steady_clock::now();
    op();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// itemsPerOp: how many calls, bytes' worth or lock rounds one run of an op
// stands for (the same for both). prepare runs, untimed, before every op of
// either side, to put both in the same starting state (say, files removed
// and the disk cache written back).
template <class Prepare, class QvOp, class ReferenceOp>
void RunPairedPrepared(benchmark::State &state, SPair pair, int64_t itemsPerOp, Prepare prepare, QvOp qvOp,
                       ReferenceOp referenceOp) {
    double qvSeconds = 0;
    double referenceSeconds = 0;
    bool qvFirst = true;
    auto timed = [&](auto &op) {
        prepare();
        return SecondsFor(op, pair.wallClock);
    };
    for (auto _ : state) {
        double const before = referenceSeconds;
        double seconds;
        if (qvFirst) {
            seconds = timed(qvOp);
            referenceSeconds += timed(referenceOp);
        } else {
            referenceSeconds += timed(referenceOp);
            seconds = timed(qvOp);
        }
        qvFirst = !qvFirst;
        qvSeconds += seconds;
        state.SetIterationTime(seconds + referenceSeconds - before);
    }
    double const items = double(state.iterations()) * double(itemsPerOp);
    state.SetLabel(pair.work);
    state.counters["qv_per_second"] = items / qvSeconds;
    state.counters["reference_per_second"] = items / referenceSeconds;
    state.counters["speed_ratio"] = referenceSeconds / qvSeconds;
    state.counters["goal"] = pair.goal;
}

// The same with nothing to prepare.
template <class QvOp, class ReferenceOp>
void RunPaired(benchmark::State &state, SPair pair, int64_t itemsPerOp, QvOp qvOp, ReferenceOp referenceOp) {
    RunPairedPrepared(
        state, pair, itemsPerOp, [] {}, qvOp, referenceOp);
}

} // namespace bench
