// Shared pieces of the calibration tests: a scratch directory for table
// files, and a page of points from a known synthetic camera.
#pragma once

#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "qv/calibration/RCalFile.h"
#include "qv/core/String.h"

namespace caltest {

// A fresh directory under the test temp dir, removed with the object.
class ScratchDir {
public:
    ScratchDir() {
        std::string pattern = testing::TempDir() + "qvcal_XXXXXX";
        char *made = mkdtemp(pattern.data());
        dir_ = made ? made : testing::TempDir();
    }
    ~ScratchDir() {
        std::error_code ignored;
        std::filesystem::remove_all(dir_, ignored);
    }
    ScratchDir(ScratchDir const &) = delete;
    ScratchDir &operator=(ScratchDir const &) = delete;

    // Writes text to name and returns the full path as qv text.
    qv::CString Write(std::string const &name, std::string const &text) const {
        std::ofstream(dir_ + "/" + name, std::ios::binary) << text;
        return Path(name);
    }
    qv::CString Path(std::string const &name) const { return qv::CString((dir_ + "/" + name).c_str()); }

private:
    std::string dir_;
};

// XY text of n rows from x0 to x1 with y = f(x).
template <class F> std::string XYRows(int n, double x0, double x1, F f) {
    std::string text;
    char line[96];
    for (int i = 0; i < n; ++i) {
        double x = x0 + (x1 - x0) * i / (n - 1);
        std::snprintf(line, sizeof line, "%.17g %.17g\n", x, f(x));
        text += line;
    }
    return text;
}

// A camera that is linear in in-band radiance: counts = gain * L + offset.
struct SyntheticCamera {
    double gain = 20000.0;
    double offset = 1500.0;
    double Counts(double radiance) const { return gain * radiance + offset; }
};

// Adds one page of enabled points (no reflected term) at the temperatures,
// with counts from the camera; returns the page index.
inline int AddCameraPage(qv::CRCalFile &cal, SyntheticCamera const &camera, std::initializer_list<double> temps) {
    int page = cal.Pages.Add();
    for (double t : temps)
        cal.Pages[page].Points.Add(t, 1.0, camera.Counts(cal.CalcRadiance(t, 1.0)), true);
    return page;
}

} // namespace caltest
