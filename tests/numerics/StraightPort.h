// Straight scalar ports of the curve algorithms, written the plainest way
// over std::vector. Where the order of operations is fixed, the library must
// agree with them bit for bit, whatever shape its own loops take.
#pragma once

#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace port {

using Vec = std::vector<double>;

inline Vec Planck(Vec const &x, double temperature, double emissivity) {
    Vec y;
    double t = temperature + 273.15;
    for (double l : x) {
        double l5 = l * l;
        l5 = l5 * l5;
        l5 = l5 * l;
        y.push_back(emissivity * (11910.06 / l5) * 1 / (std::exp(14388.3 / (l * t)) - 1));
    }
    return y;
}

enum class Rule { TL, TR, Mid };

inline double Integrate(Vec const &x, Vec const &y, Rule rule) {
    double sum = 0;
    for (size_t i = 0; i + 1 < x.size(); ++i) {
        double dx = x[i + 1] - x[i], dy = y[i + 1] - y[i];
        if (rule == Rule::TL) sum += dx * y[i];
        if (rule == Rule::TR) sum += dx * y[i] + dx * dy;
        if (rule == Rule::Mid) sum += dx * y[i] + dx * dy * 0.5;
    }
    return sum;
}

inline Vec XAxis(double start, double end, uint32_t count) {
    if (start > end) std::swap(start, end);
    if (count < 2) count = 2;
    Vec x(count);
    for (uint32_t i = 0; i <= count - 2; ++i)
        x[i] = i * ((end - start) / (count - 1)) + start;
    x[0] = start;
    x[count - 1] = end;
    return x;
}

inline Vec Interpolate(Vec const &x1, Vec const &y1, Vec const &x2, double outside) {
    Vec y2;
    size_t i = 0, n1 = x1.size();
    for (double at : x2) {
        while (i < n1 && x1[i] < at)
            ++i;
        if (i == n1)
            y2.push_back(outside);
        else if (std::fabs(x1[i] - at) <= 1e-8)
            y2.push_back(y1[i]);
        else if (i == 0)
            y2.push_back(outside);
        else
            y2.push_back((y1[i] - y1[i - 1]) / (x1[i] - x1[i - 1]) * (at - x1[i - 1]) + y1[i - 1]);
    }
    return y2;
}

inline double CalcR2(Vec const &x, Vec const &y, Vec const &c) {
    int order = int(c.size()) - 1;
    if (order < 1) return -1.0;
    double sy = 0, syy = 0, sf = 0, sff = 0, syf = 0;
    for (size_t i = 0; i < x.size(); ++i) {
        double f = c[order];
        for (int j = order - 1; j >= 0; --j)
            f = f * x[i] + c[j];
        sy += y[i];
        syy += y[i] * y[i];
        sf += f;
        sff += f * f;
        syf += y[i] * f;
    }
    double n = double(x.size());
    return std::pow(n * syf - sf * sy, 2) / ((n * syy - sy * sy) * (n * sff - sf * sf));
}

// Normal equations and Gauss-Jordan with full pivoting; empty on failure.
inline Vec LinearLeastSquareFit(Vec const &x, Vec const &y, int order) {
    int n = order + 1;
    std::vector<Vec> a(n, Vec(n, 0.0));
    Vec b(n, 0.0), basis(n);
    for (size_t k = 0; k < x.size(); ++k) {
        basis[0] = 1;
        for (int j = 1; j < n; ++j)
            basis[j] = basis[j - 1] * x[k];
        for (int r = 0; r < n; ++r) {
            for (int c = 0; c <= r; ++c)
                a[r][c] += basis[r] * basis[c];
            b[r] += y[k] * basis[r];
        }
    }
    for (int r = 1; r < n; ++r)
        for (int c = 0; c < r; ++c)
            a[c][r] = a[r][c];
    std::vector<int> pivoted(n, 0);
    for (int i = 0; i < n; ++i) {
        double big = 0;
        int row = -1, col = -1;
        for (int j = 0; j < n; ++j)
            if (pivoted[j] != 1)
                for (int k = 0; k < n; ++k)
                    if (pivoted[k] == 0 && std::fabs(a[j][k]) >= big) {
                        big = std::fabs(a[j][k]);
                        row = j;
                        col = k;
                    }
        if (col < 0 || ++pivoted[col] > 1) return {};
        std::swap(a[row], a[col]);
        std::swap(b[row], b[col]);
        if (a[col][col] == 0.0) return {};
        double inverse = 1.0 / a[col][col];
        a[col][col] = 1.0;
        for (int l = 0; l < n; ++l)
            a[col][l] *= inverse;
        b[col] *= inverse;
        for (int r = 0; r < n; ++r)
            if (r != col) {
                double d = a[r][col];
                a[r][col] = 0;
                for (int l = 0; l < n; ++l)
                    a[r][l] -= a[col][l] * d;
                b[r] -= b[col] * d;
            }
    }
    return b;
}

} // namespace port
