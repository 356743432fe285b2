// Typed conversions of one 640x512 camera frame against memcpy of the same
// bytes, in one run, so the ratio (memcpy time / conversion time) tells how
// close a conversion comes to moving memory. "Same bytes" is the wider side
// of each conversion (the double frame); memcpy of the narrow side is there
// too. Read bytes_per_second or the times side by side.
#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <vector>

#include "qv/numerics/TypedArray.h"

namespace {

constexpr size_t kPixels = 640 * 512;

template <class T> std::vector<T> Frame(double top) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> value(0.0, top);
    std::vector<T> frame(kPixels);
    for (T &v : frame)
        v = static_cast<T>(value(random));
    return frame;
}

template <class T> void Memcpy(benchmark::State &state) {
    std::vector<T> from = Frame<T>(16383.0), to(kPixels);
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), kPixels * sizeof(T));
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kPixels * sizeof(T)));
}

template <class D, qv::EDataType dType, class S, qv::EDataType sType> void Convert(benchmark::State &state) {
    std::vector<S> from = Frame<S>(16383.0);
    std::vector<D> to(kPixels);
    for (auto _ : state) {
        qv::ConvertArray({to.data(), dType}, {from.data(), sType}, uint32_t(kPixels));
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kPixels * sizeof(double)));
}

BENCHMARK(Memcpy<double>)->Name("memcpy/frame_of_double");
BENCHMARK(Memcpy<float>)->Name("memcpy/frame_of_float");
BENCHMARK(Memcpy<uint16_t>)->Name("memcpy/frame_of_uint16");
BENCHMARK(Convert<double, qv::DT_Double, uint16_t, qv::DT_UInt16>)->Name("convert/uint16_to_double");
BENCHMARK(Convert<uint16_t, qv::DT_UInt16, double, qv::DT_Double>)->Name("convert/double_to_uint16");
BENCHMARK(Convert<double, qv::DT_Double, float, qv::DT_Float>)->Name("convert/float_to_double");

} // namespace
