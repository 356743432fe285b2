// Linear resampling of a curve onto another rising axis.
#include <cmath>

#include "qv/numerics/Curve.h"
#include "qv/numerics/CurveAccess.h"

namespace qv {

void Interpolate(TArray<double> &x1, TArray<double> &y1, TArray<double> &x2, TArray<double> &y2, double outside) {
    double *out = numerics_detail::Fresh(y2, x2);
    if (!out) return;
    uint32_t n1 = x1.GetSize(), n2 = y2.GetSize(), i = 0;
    double const *a = x1.GetData(), *at = x2.GetData();
    for (uint32_t j = 0; j < n2; ++j) {
        while (i < n1 && a[i] < at[j])
            ++i;
        if (i == n1) {
            out[j] = outside;
            continue;
        }
        bool onSample = std::fabs(a[i] - at[j]) <= 1e-8;
        if (!onSample && i == 0) {
            out[j] = outside;
            continue;
        }
        // y1 grows, as indexing it always did, only as far as it is read.
        // Growing may move any array that is y1 under another name.
        if (y1.GetSize() <= i) {
            if (!y1.SetSize(i + 1)) return;
            out = y2.GetData();
            a = x1.GetData();
            at = x2.GetData();
        }
        double const *b = y1.GetData();
        out[j] = onSample ? b[i] : (b[i] - b[i - 1]) / (a[i] - a[i - 1]) * (at[j] - a[i - 1]) + b[i - 1];
    }
}

} // namespace qv
