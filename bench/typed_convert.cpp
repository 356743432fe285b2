// Typed conversions of one 640x512 camera frame, each paired in one run with
// memcpy of the frame's wider side (the bytes a conversion must at least
// move), and the widening ones with numpy's astype as well.
// Python.h first, as the interpreter asks.
#include "NumpyReference.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "PairedTiming.h"
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

template <class T> constexpr qv::EDataType kType = std::is_same_v<T, double>     ? qv::DT_Double
                                                   : std::is_same_v<T, float>    ? qv::DT_Float
                                                   : std::is_same_v<T, uint16_t> ? qv::DT_UInt16
                                                   : std::is_same_v<T, int32_t>  ? qv::DT_Int32
                                                                                 : qv::DT_UInt8;

template <class D, class S> void VsMemcpy(benchmark::State &state, char const *work, double goal) {
    std::vector<S> from = Frame<S>(16383.0);
    std::vector<D> to(kPixels);
    size_t const wide = kPixels * std::max(sizeof(D), sizeof(S));
    std::vector<unsigned char> copyFrom(wide, 1), copyTo(wide);
    bench::RunPaired(
        state, {work, goal}, int64_t(kPixels),
        [&] {
            qv::ConvertArray({to.data(), kType<D>}, {from.data(), kType<S>}, uint32_t(kPixels));
            benchmark::DoNotOptimize(to.data());
            benchmark::ClobberMemory();
        },
        [&] {
            std::memcpy(copyTo.data(), copyFrom.data(), wide);
            benchmark::DoNotOptimize(copyTo.data());
            benchmark::ClobberMemory();
        });
}

template <class D, class S> void VsNumpy(benchmark::State &state, char const *work, char const *from, char const *to) {
    std::vector<S> source = Frame<S>(16383.0);
    std::vector<D> out(kPixels);
    bench::Numpy numpy("");
    numpy.Share("frame", source.data(), kPixels, from);
    auto astype = numpy.Op((std::string("out = frame.astype(np.") + to + ")").c_str());
    if (!numpy.Ok()) state.SkipWithError(numpy.Error());
    bench::RunPaired(
        state, {work, 0.0}, int64_t(kPixels),
        [&] {
            qv::ConvertArray({out.data(), kType<D>}, {source.data(), kType<S>}, uint32_t(kPixels));
            benchmark::DoNotOptimize(out.data());
        },
        astype);
}

void DoubleToUInt16(benchmark::State &s) { VsMemcpy<uint16_t, double>(s, "ConvertArray 640x512 double to uint16 vs memcpy of the double frame", 0.6); }
void FloatToUInt16(benchmark::State &s) { VsMemcpy<uint16_t, float>(s, "ConvertArray 640x512 float to uint16 vs memcpy of the float frame", 0.6); }
void DoubleToInt32(benchmark::State &s) { VsMemcpy<int32_t, double>(s, "ConvertArray 640x512 double to int32 vs memcpy of the double frame", 0.6); }
void DoubleToUInt8(benchmark::State &s) { VsMemcpy<uint8_t, double>(s, "ConvertArray 640x512 double to uint8 vs memcpy of the double frame", 0.6); }
void DoubleToFloat(benchmark::State &s) { VsMemcpy<float, double>(s, "ConvertArray 640x512 double to float vs memcpy of the double frame", 0.6); }
void UInt16ToDouble(benchmark::State &s) { VsMemcpy<double, uint16_t>(s, "ConvertArray 640x512 uint16 to double vs memcpy of the double frame", 1.0); }
void FloatToDouble(benchmark::State &s) { VsMemcpy<double, float>(s, "ConvertArray 640x512 float to double vs memcpy of the double frame", 1.0); }
void UInt16ToDoubleNumpy(benchmark::State &s) { VsNumpy<double, uint16_t>(s, "ConvertArray 640x512 uint16 to double vs numpy astype", "uint16", "float64"); }
void FloatToDoubleNumpy(benchmark::State &s) { VsNumpy<double, float>(s, "ConvertArray 640x512 float to double vs numpy astype", "float32", "float64"); }

} // namespace

BENCHMARK(DoubleToUInt16)->UseManualTime();
BENCHMARK(FloatToUInt16)->UseManualTime();
BENCHMARK(DoubleToInt32)->UseManualTime();
BENCHMARK(DoubleToUInt8)->UseManualTime();
BENCHMARK(DoubleToFloat)->UseManualTime();
BENCHMARK(UInt16ToDouble)->UseManualTime();
BENCHMARK(FloatToDouble)->UseManualTime();
BENCHMARK(UInt16ToDoubleNumpy)->UseManualTime();
BENCHMARK(FloatToDoubleNumpy)->UseManualTime();
