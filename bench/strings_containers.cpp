// CString and TArray paired in one run with the standard library on the same
// work, so the ratios tell how the library's containers fare: copying a
// string (shared record against a deep copy), appending in a loop (exact
// growth against geometric), and TArray::Add (linear growth by the rate
// against geometric). Small operations run in rounds of 1000 per timing.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "PairedTiming.h"
#include "qv/core/Array.h"
#include "qv/core/String.h"

namespace {

constexpr int kRounds = 1000;

template <class Op> auto Rounds(Op op) {
    return [op]() mutable {
        for (int i = 0; i < kRounds; ++i)
            op();
    };
}

std::u16string Sample(size_t length) {
    return std::u16string(length, u'x');
}

void CopyVsU16String(benchmark::State &state) {
    std::u16string const reference = Sample(size_t(state.range(0)));
    qv::CString const source(reference.c_str());
    bench::RunPaired(
        state, {state.range(0) == 16 ? "CString copy, 16 characters, vs std::u16string" : "CString copy, 4096 characters, vs std::u16string", 0.0},
        kRounds,
        Rounds([&] {
            qv::CString copy(source);
            benchmark::DoNotOptimize(copy.GetTChar());
        }),
        Rounds([&] {
            std::u16string copy(reference);
            benchmark::DoNotOptimize(copy.data());
        }));
}

// The first write after a copy pays for the deep copy.
void CopyThenWriteVsU16String(benchmark::State &state) {
    std::u16string const reference = Sample(size_t(state.range(0)));
    qv::CString const source(reference.c_str());
    bench::RunPaired(
        state, {state.range(0) == 16 ? "CString copy then write, 16 characters, vs std::u16string" : "CString copy then write, 4096 characters, vs std::u16string", 0.0},
        kRounds,
        Rounds([&] {
            qv::CString copy(source);
            copy.Insert(0, u'y');
            benchmark::DoNotOptimize(copy.GetTChar());
        }),
        Rounds([&] {
            std::u16string copy(reference);
            copy.insert(copy.begin(), u'y');
            benchmark::DoNotOptimize(copy.data());
        }));
}

void AppendVsU16String(benchmark::State &state) {
    int64_t const words = state.range(0);
    bench::RunPaired(
        state, {words == 100 ? "CString += 100 words vs std::u16string" : "CString += 10000 words vs std::u16string", 0.0}, 1,
        [&] {
            qv::CString text;
            for (int64_t i = 0; i < words; ++i)
                text += u"word ";
            benchmark::DoNotOptimize(text.GetTChar());
        },
        [&] {
            std::u16string text;
            for (int64_t i = 0; i < words; ++i)
                text += u"word ";
            benchmark::DoNotOptimize(text.data());
        });
}

template <int kRate> void AddVsPushBack(benchmark::State &state) {
    int const n = int(state.range(0));
    char const *work = kRate ? "TArray<int>::Add at rate 4096, 100000 items, vs std::vector push_back"
                       : n == 100 ? "TArray<int>::Add, 100 items, vs std::vector push_back"
                                  : "TArray<int>::Add, 100000 items, vs std::vector push_back";
    bench::RunPaired(
        state, {work, 0.0}, 1,
        [&] {
            qv::TArray<int> items;
            // Large arrays set their own rate; this is how callers keep Add cheap.
            if (kRate) items.SetGrowthRate(kRate);
            for (int i = 0; i < n; ++i)
                items.Add(i);
            benchmark::DoNotOptimize(items.GetData());
        },
        [&] {
            std::vector<int> items;
            for (int i = 0; i < n; ++i)
                items.push_back(i);
            benchmark::DoNotOptimize(items.data());
        });
}

void AddCStringVsPushBack(benchmark::State &state) {
    qv::CString const text(u"item");
    std::u16string const reference(u"item");
    bench::RunPaired(
        state, {"TArray<CString>::Add, 1000 items, vs std::vector<std::u16string>", 0.0}, 1,
        [&] {
            qv::TArray<qv::CString> items;
            for (int i = 0; i < 1000; ++i)
                items.Add(text);
            benchmark::DoNotOptimize(items.GetData());
        },
        [&] {
            std::vector<std::u16string> items;
            for (int i = 0; i < 1000; ++i)
                items.push_back(reference);
            benchmark::DoNotOptimize(items.data());
        });
}

} // namespace

BENCHMARK(CopyVsU16String)->Arg(16)->Arg(4096)->UseManualTime();
BENCHMARK(CopyThenWriteVsU16String)->Arg(16)->Arg(4096)->UseManualTime();
BENCHMARK(AppendVsU16String)->Arg(100)->Arg(10000)->UseManualTime();
BENCHMARK(AddVsPushBack<0>)->Arg(100)->Arg(100000)->UseManualTime();
BENCHMARK(AddVsPushBack<4096>)->Arg(100000)->UseManualTime();
BENCHMARK(AddCStringVsPushBack)->UseManualTime();
