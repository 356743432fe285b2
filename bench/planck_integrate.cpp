// Planck's law plus IntegrateRectTR: 1000 temperatures, each over a
// 1000-point wavelength axis (3 to 5 microns), paired in one run with the
// same work in numpy (broadcast over the 1000 x 1000 grid, then the
// right-hand rectangles along the axis).
// Python.h first, as the interpreter asks.
#include "NumpyReference.h"

#include <benchmark/benchmark.h>

#include "PairedTiming.h"
#include "qv/core/Array.h"
#include "qv/numerics/Curve.h"
#include "qv/numerics/Planck.h"

namespace {

constexpr int kTemperatures = 1000;

void PlanckVsNumpy(benchmark::State &state) {
    qv::TArray<double> x, y;
    qv::XAxis(x, 3.0, 5.0, uint32_t(1000));
    bench::Numpy numpy(R"(
x = np.linspace(3.0, 5.0, 1000)
t = np.arange(1000) * 0.1 + 273.15
dx = np.diff(x)
)");
    auto reference = numpy.Op(R"(
l5 = x ** 5
y = 1.0 * (11910.06 / l5) * 1 / (np.exp(14388.3 / (x[None, :] * t[:, None])) - 1)
sums = (dx * y[:, 1:] + dx * (y[:, 1:] - y[:, :-1])).sum(axis=1)
)");
    if (!numpy.Ok()) state.SkipWithError(numpy.Error());
    double sum = 0;
    bench::RunPaired(
        state, {"Planck + IntegrateRectTR, 1000 temperatures x 1000 wavelengths, vs numpy", 3.0},
        int64_t(kTemperatures) * x.GetSize(),
        [&] {
            for (int i = 0; i < kTemperatures; ++i) {
                qv::Planck(x, y, i * 0.1, 1.0);
                sum += qv::IntegrateRectTR(x, y);
            }
            benchmark::DoNotOptimize(sum);
        },
        reference);
}

} // namespace

BENCHMARK(PlanckVsNumpy)->UseManualTime()->Unit(benchmark::kMillisecond);
