// Planck's law plus IntegrateRectTR over a 2000-point axis (3 to 5 microns
// by 0.001), against the same work as a plain scalar loop that the compiler
// may not vectorise. The ratio of the two times is the figure to watch.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "qv/core/Array.h"
#include "qv/numerics/Curve.h"
#include "qv/numerics/Planck.h"

namespace {

constexpr double kCelsius = 25.0;

void QvPlanckIntegrate(benchmark::State &state) {
    qv::TArray<double> x, y;
    qv::XAxis(x, 3.0, 5.0, 0.001);
    for (auto _ : state) {
        qv::Planck(x, y, kCelsius, 1.0);
        benchmark::DoNotOptimize(qv::IntegrateRectTR(x, y));
    }
    state.SetItemsProcessed(state.iterations() * x.GetSize());
}

__attribute__((optimize("no-tree-vectorize"))) double ScalarPlanckIntegrate(std::vector<double> const &x,
                                                                            std::vector<double> &y) {
    double t = kCelsius + 273.15;
    for (size_t i = 0; i < x.size(); ++i) {
        double l = x[i], l2 = l * l;
        y[i] = (11910.06 / (l2 * l2 * l)) / (std::exp(14388.3 / (l * t)) - 1);
    }
    double sum = 0;
    for (size_t i = 0; i + 1 < x.size(); ++i) {
        double dx = x[i + 1] - x[i];
        sum += dx * y[i] + dx * (y[i + 1] - y[i]);
    }
    return sum;
}

void ScalarLoop(benchmark::State &state) {
    qv::TArray<double> axis;
    qv::XAxis(axis, 3.0, 5.0, 0.001);
    std::vector<double> x(axis.GetData(), axis.GetData() + axis.GetSize()), y(x.size());
    for (auto _ : state)
        benchmark::DoNotOptimize(ScalarPlanckIntegrate(x, y));
    state.SetItemsProcessed(state.iterations() * x.size());
}

} // namespace

BENCHMARK(QvPlanckIntegrate);
BENCHMARK(ScalarLoop);
