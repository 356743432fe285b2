// Times a qv operation and its reference in turns inside one benchmark, so
// both see the same machine load and one run gives their ratio.
//
// Each iteration runs qvOp once and referenceOp once, alternating which goes
// first so that neither always finds the caches the other left. The
// benchmark's own time (register it with UseManualTime) is that of the pair,
// so a slow reference does not multiply the rounds. Wall-clock pairs (disk
// and threads) take each side's median round: a round in which the system
// stalled (a disk flush, another job) says nothing of either side, yet one
// such second among eight rounds of a fifth of a second each would decide
// the ratio. Counters:
//   qv_per_second         qv's rate
//   reference_per_second  the reference's rate
//   speed_ratio           qv speed / reference speed (above 1: qv is faster)
//   goal                  the speed_ratio qv aims for
// The label names the work; scripts/bench.sh turns the counters into
// bench/RESULTS.md.
#pragma once

#include <benchmark/benchmark.h>

#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <numeric>
#include <vector>

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

inline double Sum(std::vector<double> const &rounds) {
    return std::accumulate(rounds.begin(), rounds.end(), 0.0);
}

inline double Median(std::vector<double> rounds) {
    if (rounds.empty()) return 0.0;
    auto middle = rounds.begin() + std::ptrdiff_t(rounds.size() / 2);
    std::nth_element(rounds.begin(), middle, rounds.end());
    return *middle;
}

// itemsPerOp: how many calls, bytes' worth or lock rounds one run of an op
// stands for (the same for both). prepare runs, untimed, before every op of
// either side, to put both in the same starting state (say, files removed
// and the disk cache written back).
template <class Prepare, class QvOp, class ReferenceOp>
void RunPairedPrepared(benchmark::State &state, SPair pair, int64_t itemsPerOp, Prepare prepare, QvOp qvOp,
                       ReferenceOp referenceOp) {
    std::vector<double> qvRounds, referenceRounds;
    size_t const expected = size_t(std::min<benchmark::IterationCount>(state.max_iterations, 1 << 16));
    qvRounds.reserve(expected);
    referenceRounds.reserve(expected);
    bool qvFirst = true;
    auto timed = [&](auto &op) {
        prepare();
        return SecondsFor(op, pair.wallClock);
    };
    for (auto _ : state) {
        double seconds, reference;
        if (qvFirst) {
            seconds = timed(qvOp);
            reference = timed(referenceOp);
        } else {
            reference = timed(referenceOp);
            seconds = timed(qvOp);
        }
        qvFirst = !qvFirst;
        qvRounds.push_back(seconds);
        referenceRounds.push_back(reference);
        state.SetIterationTime(seconds + reference);
    }
    double const rounds = double(qvRounds.size());
    double const items = rounds * double(itemsPerOp);
    double const qvSeconds = pair.wallClock ? Median(qvRounds) * rounds : Sum(qvRounds);
    double const referenceSeconds = pair.wallClock ? Median(referenceRounds) * rounds : Sum(referenceRounds);
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
