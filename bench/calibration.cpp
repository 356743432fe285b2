// The calibration's two costs, each paired with a reference in the same
// benchmark:
//  - recomputing four pages of ten points with a 100-entry lookup on a
//    2000-point axis (3 to 5 microns by 0.001) with the atmosphere on, as a
//    change of a curve does (UpdateCalPage on every page), against the same
//    work written straightforwardly with std::vector;
//  - a whole 640 x 512 frame of counts turned into temperatures by
//    CFrameTemperatures, against numpy's polyval applied twice (in this
//    process) and against memcpy of the output frame.
// Python.h first, as the interpreter asks.
#include "NumpyReference.h"

#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "PairedTiming.h"
#include "qv/calibration/FrameTemperatures.h"
#include "qv/calibration/RCalFile.h"
#include "qv/numerics/Curve.h"

namespace {

constexpr int kPages = 4;
constexpr int kPoints = 10;
constexpr int kWidth = 640, kHeight = 512;

// A flat atmosphere table over 2000..3340 cm^-1 (3 to 5 microns).
std::string WriteAtmosphere() {
    char name[] = "/tmp/qv_bench_atmosphere_XXXXXX";
    int fd = mkstemp(name);
    if (fd < 0) return "";
    std::string table = "FREQ TRANS RAD\n";
    for (int f = 2000; f <= 3340; f += 5)
        table += std::to_string(f) + " " + std::to_string(0.7 + 0.2 * std::sin(f * 0.01)) + " 2e-7\n";
    table += "-9999.\n";
    bool written = write(fd, table.data(), table.size()) == ssize_t(table.size());
    close(fd);
    return written ? name : "";
}

void BuildCalibration(qv::CRCalFile &cal, std::string const &atmosphere) {
    cal.SetSpectralResponseTophat(3.0, 5.0, 0.001);
    cal.Modtran.setFile(qv::CString(atmosphere.c_str()));
    cal.Modtran.Transmission.setEnabled(true);
    cal.Modtran.PathRadiance.setEnabled(true);
    for (int p = 0; p < kPages; ++p) {
        int page = cal.Pages.Add();
        for (int i = 0; i < kPoints; ++i)
            cal.Pages[page].Points.Add(10.0 * i, 1.0, 1000.0 + 1200.0 * i + 3.0 * i * i, true);
    }
}

// ---- The reference: the same work with std::vector and textbook code ----

struct Spectral {
    std::vector<double> x, response, transmission, path;

    double Radiance(double t, double e) const {
        std::vector<double> s(x.size());
        for (size_t i = 0; i < x.size(); ++i) {
            double planck = e * 11910.06 / std::pow(x[i], 5) / (std::exp(14388.3 / (x[i] * (t + 273.15))) - 1);
            s[i] = planck * response[i] * transmission[i] + path[i] * response[i];
        }
        double sum = 0;
        for (size_t i = 0; i + 1 < x.size(); ++i)
            sum += (x[i + 1] - x[i]) * s[i + 1];
        return sum;
    }
};

std::vector<double> PolyFit(std::vector<double> const &x, std::vector<double> const &y, int order) {
    int n = order + 1;
    std::vector<std::vector<double>> a(n, std::vector<double>(n + 1, 0.0));
    for (size_t k = 0; k < x.size(); ++k)
        for (int r = 0; r < n; ++r) {
            for (int c = 0; c < n; ++c)
                a[r][c] += std::pow(x[k], r + c);
            a[r][n] += y[k] * std::pow(x[k], r);
        }
    for (int c = 0; c < n; ++c) {
        int best = c;
        for (int r = c + 1; r < n; ++r)
            if (std::fabs(a[r][c]) > std::fabs(a[best][c])) best = r;
        std::swap(a[c], a[best]);
        for (int r = 0; r < n; ++r)
            if (r != c && a[c][c] != 0) {
                double f = a[r][c] / a[c][c];
                for (int l = c; l <= n; ++l)
                    a[r][l] -= f * a[c][l];
            }
    }
    std::vector<double> coefficients(n);
    for (int r = 0; r < n; ++r)
        coefficients[r] = a[r][r] != 0 ? a[r][n] / a[r][r] : 0;
    return coefficients;
}

Spectral ModelOf(qv::CRCalFile &cal) {
    Spectral model;
    for (int i = 0; i < cal.SpectralResponse.Curve.getCount(); ++i) {
        model.x.push_back(cal.SpectralResponse.Curve.X[i]);
        model.response.push_back(cal.SpectralResponse.Curve.Y[i]);
        model.transmission.push_back(cal.Modtran.Transmission.Y[i]);
        model.path.push_back(cal.Modtran.PathRadiance.Y[i]);
    }
    return model;
}

void ReferenceUpdateAllPages(Spectral const &model) {
        for (int p = 0; p < kPages; ++p) {
            std::vector<double> counts, radiance, lookupT, lookupR;
            for (int i = 0; i < kPoints; ++i) {
                counts.push_back(1000.0 + 1200.0 * i + 3.0 * i * i);
                radiance.push_back(model.Radiance(10.0 * i, 1.0));
            }
            benchmark::DoNotOptimize(PolyFit(counts, radiance, 1));
            for (int i = 0; i < 100; ++i) {
                lookupT.push_back(i * (100.0 / 99));
                lookupR.push_back(model.Radiance(lookupT.back(), 1.0));
            }
            benchmark::DoNotOptimize(PolyFit(lookupR, lookupT, 6));
        }
}

void UpdateAllPages(benchmark::State &state) {
    std::string atmosphere = WriteAtmosphere();
    qv::CRCalFile cal;
    BuildCalibration(cal, atmosphere);
    std::remove(atmosphere.c_str());
    if (cal.Modtran.getStatus() != qv::RS_OK) state.SkipWithError("atmosphere table not loaded");
    Spectral const model = ModelOf(cal);
    bench::RunPaired(
        state, {"UpdateCalPage, 4 pages x 10 points, 2000-point axis, vs std::vector code", 1.0}, kPages,
        // Loaded already: one UpdateCalPage of every page.
        [&] { cal.Modtran.PathRadiance.setEnabled(true); }, [&] { ReferenceUpdateAllPages(model); });
}

// ---- A frame of counts to temperatures ----

std::vector<uint16_t> Frame() {
    std::vector<uint16_t> frame(size_t(kWidth) * kHeight);
    for (size_t i = 0; i < frame.size(); ++i)
        frame[i] = uint16_t(2000 + (i * 7919) % 12000);
    return frame;
}

// One page fitted to a synthetic camera.
struct SFramePage {
    qv::CRCalFile cal;
    int page;
    SFramePage() {
        cal.SetSpectralResponseTophat(3.0, 5.0, 0.001);
        page = cal.Pages.Add();
        for (int i = 0; i < kPoints; ++i)
            cal.Pages[page].Points.Add(10.0 * i, 1.0, 1000.0 + 1200.0 * i, true);
    }
};

void FrameVsNumpy(benchmark::State &state) {
    SFramePage p;
    qv::TArray<double> c, t;
    p.cal.GetCoefficients(p.page, c);
    p.cal.GetTempCoefficients(p.page, t);
    std::vector<uint16_t> frame = Frame();
    std::vector<float> out(frame.size());
    qv::CFrameTemperatures temperatures;
    if (!temperatures.SetPage(p.cal, p.page)) state.SkipWithError("no page");
    bench::Numpy numpy("");
    numpy.Share("frame", frame.data(), frame.size(), "uint16");
    numpy.Share("c", c.GetData(), c.GetSize(), "float64");
    numpy.Share("t", t.GetData(), t.GetSize(), "float64");
    numpy.Run("c = c[::-1].copy()\nt = t[::-1].copy()");
    auto polyval = numpy.Op("out = np.polyval(t, np.polyval(c, frame)).astype(np.float32)");
    if (!numpy.Ok()) state.SkipWithError(numpy.Error());
    bench::RunPaired(
        state, {"640x512 uint16 counts to float Celsius, CFrameTemperatures vs numpy polyval twice", 10.0},
        int64_t(frame.size()),
        [&] {
            temperatures.Convert({frame.data(), qv::DT_UInt16}, {out.data(), qv::DT_Float}, uint32_t(frame.size()));
            benchmark::DoNotOptimize(out.data());
        },
        polyval);
}

void FrameVsMemcpy(benchmark::State &state) {
    SFramePage p;
    std::vector<uint16_t> frame = Frame();
    std::vector<float> out(frame.size()), from(frame.size()), copy(frame.size());
    qv::CFrameTemperatures temperatures;
    if (!temperatures.SetPage(p.cal, p.page)) state.SkipWithError("no page");
    bench::RunPaired(
        state, {"640x512 uint16 counts to float Celsius, CFrameTemperatures vs memcpy of the float frame", 0.3},
        int64_t(frame.size()),
        [&] {
            temperatures.Convert({frame.data(), qv::DT_UInt16}, {out.data(), qv::DT_Float}, uint32_t(frame.size()));
            benchmark::DoNotOptimize(out.data());
        },
        [&] {
            std::memcpy(copy.data(), from.data(), copy.size() * sizeof(float));
            benchmark::DoNotOptimize(copy.data());
        });
}

} // namespace

BENCHMARK(UpdateAllPages)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(FrameVsNumpy)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(FrameVsMemcpy)->UseManualTime()->Unit(benchmark::kMicrosecond);
