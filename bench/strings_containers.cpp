// CString and TArray against the standard library on the same work, so the
// ratios (not absolute times) tell how the library's containers fare:
// copying a string (shared record against a deep copy), appending in a loop
// (exact growth against geometric), and TArray::Add (linear growth by the
// rate against geometric).
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "qv/core/Array.h"
#include "qv/core/String.h"

namespace {

std::u16string Sample(size_t length) {
    return std::u16string(length, u'x');
}

void CStringCopy(benchmark::State &state) {
    qv::CString source(Sample(size_t(state.range(0))).c_str());
    for (auto _ : state) {
        qv::CString copy(source);
        benchmark::DoNotOptimize(copy.GetTChar());
    }
}

void U16StringCopy(benchmark::State &state) {
    std::u16string source = Sample(size_t(state.range(0)));
    for (auto _ : state) {
        std::u16string copy(source);
        benchmark::DoNotOptimize(copy.data());
    }
}

// The first write after a copy pays for the deep copy.
void CStringCopyThenWrite(benchmark::State &state) {
    qv::CString source(Sample(size_t(state.range(0))).c_str());
    for (auto _ : state) {
        qv::CString copy(source);
        copy.Insert(0, u'y');
        benchmark::DoNotOptimize(copy.GetTChar());
    }
}

void CStringAppend(benchmark::State &state) {
    for (auto _ : state) {
        qv::CString text;
        for (int64_t i = 0; i < state.range(0); ++i)
            text += u"word ";
        benchmark::DoNotOptimize(text.GetTChar());
    }
}

void U16StringAppend(benchmark::State &state) {
    for (auto _ : state) {
        std::u16string text;
        for (int64_t i = 0; i < state.range(0); ++i)
            text += u"word ";
        benchmark::DoNotOptimize(text.data());
    }
}

void TArrayAdd(benchmark::State &state) {
    for (auto _ : state) {
        qv::TArray<int> items;
        for (int i = 0; i < state.range(0); ++i)
            items.Add(i);
        benchmark::DoNotOptimize(items.GetData());
    }
}

// Large arrays set their own rate; this is how callers keep Add cheap.
void TArrayAddRate4096(benchmark::State &state) {
    for (auto _ : state) {
        qv::TArray<int> items;
        items.SetGrowthRate(4096);
        for (int i = 0; i < state.range(0); ++i)
            items.Add(i);
        benchmark::DoNotOptimize(items.GetData());
    }
}

void VectorPushBack(benchmark::State &state) {
    for (auto _ : state) {
        std::vector<int> items;
        for (int i = 0; i < state.range(0); ++i)
            items.push_back(i);
        benchmark::DoNotOptimize(items.data());
    }
}

void TArrayAddCString(benchmark::State &state) {
    qv::CString text(u"item");
    for (auto _ : state) {
        qv::TArray<qv::CString> items;
        for (int i = 0; i < state.range(0); ++i)
            items.Add(text);
        benchmark::DoNotOptimize(items.GetData());
    }
}

void VectorPushBackU16String(benchmark::State &state) {
    std::u16string text(u"item");
    for (auto _ : state) {
        std::vector<std::u16string> items;
        for (int i = 0; i < state.range(0); ++i)
            items.push_back(text);
        benchmark::DoNotOptimize(items.data());
    }
}

} // namespace

BENCHMARK(CStringCopy)->Arg(16)->Arg(4096);
BENCHMARK(U16StringCopy)->Arg(16)->Arg(4096);
BENCHMARK(CStringCopyThenWrite)->Arg(16)->Arg(4096);
BENCHMARK(CStringAppend)->Arg(100)->Arg(10000);
BENCHMARK(U16StringAppend)->Arg(100)->Arg(10000);
BENCHMARK(TArrayAdd)->Arg(100)->Arg(100000);
BENCHMARK(TArrayAddRate4096)->Arg(100)->Arg(100000);
BENCHMARK(VectorPushBack)->Arg(100)->Arg(100000);
BENCHMARK(TArrayAddCString)->Arg(1000);
BENCHMARK(VectorPushBackU16String)->Arg(1000);
