// Times a qv operation and its standard-library reference in turns inside one
// benchmark, so both see the same machine load and one run gives their ratio.
//
// Each iteration runs qvOp once and referenceOp once. The benchmark's own time
// (register it with UseManualTime) and items_per_second are qv's; the
// counters add the reference's rate and the ratio qv time / reference time
// under ratioName (above 1: qv is slower).
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>

namespace bench {

template <class Op> double SecondsFor(Op &op) {
    auto const start = std::chrono::steady_clock::now();
    op();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// itemsPerOp: how many calls or lock rounds one run of an op makes.
template <class QvOp, class ReferenceOp>
void RunPaired(benchmark::State &state, char const *ratioName, int64_t itemsPerOp, QvOp qvOp, ReferenceOp referenceOp) {
    double qvSeconds = 0;
    double referenceSeconds = 0;
    for (auto _ : state) {
        double const seconds = SecondsFor(qvOp);
        referenceSeconds += SecondsFor(referenceOp);
        qvSeconds += seconds;
        state.SetIterationTime(seconds);
    }
    double const items = double(state.iterations()) * double(itemsPerOp);
    state.SetItemsProcessed(int64_t(items));
    state.counters["reference_per_second"] = items / referenceSeconds;
    state.counters[ratioName] = qvSeconds / referenceSeconds;
}

} // namespace bench
