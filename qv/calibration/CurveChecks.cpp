// Whether a curve read from a file can serve a calibration.
#include "qv/calibration/CurveChecks.h"

#include <cmath>

#include "qv/numerics/Curve.h"

namespace qv {

namespace {

enum class EAxisOrder { Rising, Falling, Unusable };

EAxisOrder AxisOrder(TArray<double> const &x) {
    uint32_t n = x.GetSize();
    bool rising = true, falling = true;
    for (uint32_t i = 0; i < n; ++i) {
        double v = x.GetAt(i);
        if (!std::isfinite(v) || v <= 0) return EAxisOrder::Unusable;
        if (i == 0) continue;
        double before = x.GetAt(i - 1);
        rising = rising && v > before;
        falling = falling && v < before;
    }
    return rising ? EAxisOrder::Rising : falling ? EAxisOrder::Falling : EAxisOrder::Unusable;
}

bool ValuesWithin(TArray<double> const &y, double low, double high) {
    for (uint32_t i = 0; i < y.GetSize(); ++i) {
        double v = y.GetAt(i);
        if (!std::isfinite(v) || v < low || v > high) return false;
    }
    return true;
}

bool PositivePeak(TArray<double> const &y) {
    for (uint32_t i = 0; i < y.GetSize(); ++i)
        if (y.GetAt(i) > 0) return true;
    return false;
}

// The axis checks and, when they pass, the turn of a falling table.
EResponseStatus CheckTable(TArray<double> &x, TArray<double> *const *values, int count, bool valuesUsable) {
    if (x.GetSize() < 2) return RS_TooFewPoints;
    for (int i = 0; i < count; ++i)
        if (values[i]->GetSize() != x.GetSize()) return RS_ReadError;
    EAxisOrder order = AxisOrder(x);
    if (order == EAxisOrder::Unusable || !valuesUsable) return RS_ReadError;
    if (order == EAxisOrder::Falling) {
        Reverse(x);
        for (int i = 0; i < count; ++i)
            Reverse(*values[i]);
    }
    return RS_OK;
}

} // namespace

EResponseStatus CheckResponseCurve(TArray<double> &x, TArray<double> &y) {
    TArray<double> *values[] = {&y};
    return CheckTable(x, values, 1, ValuesWithin(y, 0, HUGE_VAL) && PositivePeak(y));
}

EResponseStatus CheckFilterCurve(TArray<double> &x, TArray<double> &y) {
    TArray<double> *values[] = {&y};
    return CheckTable(x, values, 1, ValuesWithin(y, 0, HUGE_VAL));
}

EResponseStatus CheckAtmosphereCurves(TArray<double> &x, TArray<double> &transmission, TArray<double> &pathRadiance) {
    TArray<double> *values[] = {&transmission, &pathRadiance};
    return CheckTable(x, values, 2, ValuesWithin(transmission, 0, 1) && ValuesWithin(pathRadiance, 0, HUGE_VAL));
}

} // namespace qv
