// Polynomial least squares: the normal equations, solved by Gauss-Jordan
// elimination with full pivoting. The order of every sum and the pivot choice
// are fixed, so that fits repeat to the last bit the coefficients that stored
// calibrations hold.
#include <cmath>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

#include "qv/numerics/Fits.h"

namespace qv {

namespace {

// The system A c = b of size n, row-major, and the pivot bookkeeping.
struct SNormalSystem {
    uint32_t n = 0;
    std::unique_ptr<double[]> a, b;
    std::unique_ptr<bool[]> used;

    bool Allocate(uint32_t size) {
        n = size;
        if (uint64_t(n) * n > SIZE_MAX / sizeof(double)) return false;
        a.reset(new (std::nothrow) double[size_t(n) * n]());
        b.reset(new (std::nothrow) double[n]());
        used.reset(new (std::nothrow) bool[n]());
        return a && b && used;
    }
    double &At(uint32_t row, uint32_t col) { return a[size_t(row) * n + col]; }

    // Basis 1, x, x^2, ... with each power from the previous one; per sample
    // the lower triangle and the right side are accumulated, samples in
    // index order. The upper triangle is mirrored at the end.
    void Accumulate(double const *x, double const *y, uint32_t m, double *basis) {
        for (uint32_t k = 0; k < m; ++k) {
            basis[0] = 1.0;
            for (uint32_t j = 1; j < n; ++j)
                basis[j] = basis[j - 1] * x[k];
            for (uint32_t r = 0; r < n; ++r) {
                for (uint32_t col = 0; col <= r; ++col)
                    At(r, col) += basis[r] * basis[col];
                b[r] += y[k] * basis[r];
            }
        }
        for (uint32_t r = 0; r < n; ++r)
            for (uint32_t col = r + 1; col < n; ++col)
                At(r, col) = At(col, r);
    }

    // Over unused rows, then unused columns, the last element of greatest
    // magnitude (a tie goes to the later one). False if none qualifies (only
    // NaN left), which counts as a column picked twice.
    bool FindPivot(uint32_t &row, uint32_t &col) {
        double big = 0.0;
        bool found = false;
        for (uint32_t j = 0; j < n; ++j) {
            if (used[j]) continue;
            for (uint32_t k = 0; k < n; ++k) {
                if (used[k] || !(std::fabs(At(j, k)) >= big)) continue;
                big = std::fabs(At(j, k));
                row = j;
                col = k;
                found = true;
            }
        }
        return found;
    }

    void SwapRows(uint32_t r1, uint32_t r2) {
        for (uint32_t l = 0; l < n; ++l)
            std::swap(At(r1, l), At(r2, l));
        std::swap(b[r1], b[r2]);
    }

    // In place, the matrix turning into its inverse (columns left permuted;
    // only b, the solution, is used). False on a zero pivot or a column
    // picked twice.
    bool Solve() {
        for (uint32_t i = 0; i < n; ++i) {
            uint32_t row = 0, col = 0;
            if (!FindPivot(row, col)) return false;
            used[col] = true;
            if (row != col) SwapRows(row, col);
            if (At(col, col) == 0.0) return false;
            double inverse = 1.0 / At(col, col);
            At(col, col) = 1.0;
            for (uint32_t l = 0; l < n; ++l)
                At(col, l) *= inverse;
            b[col] *= inverse;
            for (uint32_t r = 0; r < n; ++r) {
                if (r == col) continue;
                double factor = At(r, col);
                At(r, col) = 0.0;
                for (uint32_t l = 0; l < n; ++l)
                    At(r, l) -= At(col, l) * factor;
                b[r] -= b[col] * factor;
            }
        }
        return true;
    }
};

} // namespace

bool LinearLeastSquareFit(TArray<double> &x, TArray<double> &y, int order, TArray<double> &c) {
    if (order < 1 || x.GetSize() != y.GetSize()) return false;
    uint32_t n = static_cast<uint32_t>(order) + 1;
    c.Empty();
    if (!c.SetSize(n)) return false;
    SNormalSystem system;
    std::unique_ptr<double[]> basis(new (std::nothrow) double[n]);
    if (!basis || !system.Allocate(n)) return false;
    system.Accumulate(x.GetData(), y.GetData(), x.GetSize(), basis.get());
    if (!system.Solve()) return false;
    // An infinite or NaN sample (ln of 0 in the exponential fit, say) can
    // pass every pivot test and leave no number in the solution: no fit. The
    // solution stays in c, where chains that ignore the result (page refits)
    // still show it as no number.
    bool finite = true;
    for (uint32_t i = 0; i < n; ++i) {
        c.GetData()[i] = system.b[i];
        finite = finite && std::isfinite(system.b[i]);
    }
    return finite;
}

} // namespace qv
