// lmfit and lmfit2: the free parameters of a model fitted to samples by
// cminpack's lmdif, with lmfit's control values and call limit.
#include "qv/numerics/LMFit.h"

#include <cminpack.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "qv/numerics/CurveAccess.h"

namespace qv {

namespace {

constexpr double kTolerance = 6.661338147750939e-15; // 30 * DBL_EPSILON
constexpr double kStepBound = 100.0;
constexpr int kScaleAutomatically = 1;
constexpr int kNoPrintout = 0;
constexpr int kImproperInput = 0;

// lmdif's work arrays, in one block.
struct SWork {
    std::unique_ptr<double[]> block;
    std::unique_ptr<int[]> ipvt;
    double *params, *fvec, *diag, *fjac, *qtf, *wa1, *wa2, *wa3, *wa4;

    bool Allocate(uint32_t m, uint32_t n) {
        uint64_t total = uint64_t(m) * n + 2 * uint64_t(m) + 6 * uint64_t(n);
        if (total > SIZE_MAX / sizeof(double)) return false;
        block.reset(new (std::nothrow) double[total]());
        ipvt.reset(new (std::nothrow) int[n]());
        if (!block || !ipvt) return false;
        double *at = block.get();
        auto take = [&at](uint64_t count) {
            double *p = at;
            at += count;
            return p;
        };
        params = take(n), diag = take(n), qtf = take(n), wa1 = take(n), wa2 = take(n), wa3 = take(n);
        fvec = take(m), wa4 = take(m), fjac = take(uint64_t(m) * n);
        return true;
    }
};

// Everything the residual callback needs: a full copy of the parameters,
// where the free ones go, and the model at sample i.
template <class Model> struct SFit {
    Model model;
    double *full;
    int count;
    uint32_t const *freeIndex;
    double const *y;

    static int Residuals(void *context, int m, int n, double const *free, double *fvec, int) {
        auto *fit = static_cast<SFit *>(context);
        for (int k = 0; k < n; ++k)
            fit->full[fit->freeIndex[k]] = free[k];
        for (int i = 0; i < m; ++i)
            fvec[i] = fit->y[i] - fit->model(uint32_t(i), fit->full, fit->count);
        return 0;
    }
};

// lmfit counts its call limit per Jacobian: maxCalls * (free + 1).
int CallLimit(int maxCalls, uint32_t free) {
    int64_t limit = int64_t(maxCalls) * (int64_t(free) + 1);
    return limit > INT_MAX ? INT_MAX : limit < INT_MIN ? INT_MIN : int(limit);
}

template <class Model>
int Minimise(TArray<double> &y, uint32_t m, TArray<double> &p, TArray<bool> &mask, int maxCalls, Model model) {
    uint32_t count = p.GetSize();
    if (m > INT_MAX || count > INT_MAX || !numerics_detail::Reach(y, m)) return kImproperInput;
    std::unique_ptr<uint32_t[]> freeIndex(new (std::nothrow) uint32_t[count + 1]);
    std::unique_ptr<double[]> full(new (std::nothrow) double[count + 1]);
    if (!freeIndex || !full) return kImproperInput;
    uint32_t n = 0;
    for (uint32_t i = 0; i < count; ++i)
        if (mask[i]) freeIndex[n++] = i;
    SWork work;
    if (n == 0 || m < n || !work.Allocate(m, n)) return kImproperInput;
    std::memcpy(full.get(), p.GetData(), count * sizeof(double));
    for (uint32_t k = 0; k < n; ++k)
        work.params[k] = full[freeIndex[k]];

    SFit<Model> fit{model, full.get(), int(count), freeIndex.get(), y.GetData()};
    int calls = 0;
    int info =
        lmdif(&SFit<Model>::Residuals, &fit, int(m), int(n), work.params, work.fvec, kTolerance, kTolerance, kTolerance,
              CallLimit(maxCalls, n), kTolerance, work.diag, kScaleAutomatically, kStepBound, kNoPrintout, &calls,
              work.fjac, int(m), work.ipvt.get(), work.qtf, work.wa1, work.wa2, work.wa3, work.wa4);
    for (uint32_t k = 0; k < n; ++k)
        p.GetData()[freeIndex[k]] = work.params[k];
    return info;
}

bool Succeeded(int info) {
    return info >= 1 && info <= 3;
}

int FitOne(TArray<double> &x, TArray<double> &y, TArray<double> &p, TArray<bool> &mask, LMModel f, int maxCalls) {
    double const *xs = x.GetData();
    return Minimise(y, x.GetSize(), p, mask, maxCalls,
                    [f, xs](uint32_t i, double *params, int count) { return f(xs[i], params, count); });
}

int FitTwo(TArray<double> &x1, TArray<double> &x2, TArray<double> &y, TArray<double> &p, TArray<bool> &mask, LMModel2 f,
           int maxCalls) {
    uint32_t m = x1.GetSize();
    if (!numerics_detail::Reach(x2, m)) return kImproperInput;
    double const *a = x1.GetData(), *b = x2.GetData();
    return Minimise(y, m, p, mask, maxCalls,
                    [f, a, b](uint32_t i, double *params, int count) { return f(a[i], b[i], params, count); });
}

} // namespace

bool lmfit(TArray<double> &x, TArray<double> &y, TArray<double> &p, TArray<bool> mask, LMModel f, int maxCalls) {
    return Succeeded(FitOne(x, y, p, mask, f, maxCalls));
}

bool lmfit2(TArray<double> &x1, TArray<double> &x2, TArray<double> &y, TArray<double> &p, TArray<bool> mask, LMModel2 f,
            int maxCalls) {
    return Succeeded(FitTwo(x1, x2, y, p, mask, f, maxCalls));
}

int lmfitInfo(TArray<double> &x, TArray<double> &y, TArray<double> &p, TArray<bool> mask, LMModel f, int maxCalls) {
    return FitOne(x, y, p, mask, f, maxCalls);
}

int lmfit2Info(TArray<double> &x1, TArray<double> &x2, TArray<double> &y, TArray<double> &p, TArray<bool> mask,
               LMModel2 f, int maxCalls) {
    return FitTwo(x1, x2, y, p, mask, f, maxCalls);
}

} // namespace qv
