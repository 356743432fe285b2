// Reading many measured points into a page: CCalPoints::AddAll (each point's
// radiance, one sort, one fit) against the same work written
// straightforwardly with std::vector (radiance per point, std::stable_sort,
// a least-squares line), measured in turns in the same run. Adding point by
// point refits after each and grows with the square of the count; AddAll
// must stay linear, so its ratio to the reference stays flat as N grows.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "PairedTiming.h"
#include "qv/calibration/RCalFile.h"

namespace {

using CAL_POINT = qv::CRCalFile::CAL_POINT;

std::vector<CAL_POINT> MakePoints(int n) {
    std::vector<CAL_POINT> points(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i) {
        points[size_t(i)].Temperature = double((i * 37) % 100);
        points[size_t(i)].Measurement = 3000.0 + 100.0 * points[size_t(i)].Temperature + i % 7;
        points[size_t(i)].Enabled = true;
    }
    return points;
}

struct SReference {
    std::vector<double> x;
    double Radiance(double t, double e) const {
        std::vector<double> s(x.size());
        for (size_t i = 0; i < x.size(); ++i)
            s[i] = e * 11910.06 / std::pow(x[i], 5) / (std::exp(14388.3 / (x[i] * (t + 273.15))) - 1);
        double sum = 0;
        for (size_t i = 0; i + 1 < x.size(); ++i)
            sum += (x[i + 1] - x[i]) * s[i + 1];
        return sum;
    }
};

void AddManyPoints(benchmark::State &state) {
    int const n = int(state.range(0));
    std::vector<CAL_POINT> const points = MakePoints(n);
    qv::TArray<CAL_POINT> array;
    for (CAL_POINT const &p : points)
        array.Add(p);
    SReference reference;
    for (int i = 0; i <= 200; ++i)
        reference.x.push_back(3.0 + 0.01 * i);
    double sink = 0;
    std::string const work =
        "AddAll of " + std::to_string(n) + " points with one refit, vs a sort and a fit of the same points";
    bench::RunPaired(
        state, {work.c_str(), 1.0}, n,
        [&] {
            qv::CRCalFile cal;
            cal.SetSpectralResponseTophat(3.0, 5.0, 0.01);
            int page = cal.Pages.Add();
            cal.Pages[page].Points.AddAll(array);
            sink += cal.Pages[page].Coefficients[1];
        },
        [&] {
            std::vector<CAL_POINT> sorted = points;
            for (CAL_POINT &p : sorted)
                p.Radiance = reference.Radiance(p.Temperature, p.Emissivity);
            std::stable_sort(sorted.begin(), sorted.end(),
                             [](CAL_POINT const &a, CAL_POINT const &b) { return a.Temperature < b.Temperature; });
            double sx = 0, sy = 0, sxx = 0, sxy = 0;
            for (CAL_POINT const &p : sorted) {
                sx += p.Measurement;
                sy += p.Radiance;
                sxx += p.Measurement * p.Measurement;
                sxy += p.Measurement * p.Radiance;
            }
            sink += (n * sxy - sx * sy) / (n * sxx - sx * sx);
        });
    benchmark::DoNotOptimize(sink);
}

BENCHMARK(AddManyPoints)->Arg(1000)->Arg(10000)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
