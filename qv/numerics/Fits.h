/// @file
/// Least-squares fits of polynomials and of two-parameter curves, the squared
/// correlation, and the numerical inversion of calibration polynomials.
/// Polynomial coefficients are stored constant term first.
///
/// Failure is told by result only: false from a fit, -1.0 from CalcR2 for a
/// polynomial below order 1. Ownership: the arrays are the caller's.
/// Threads: no state. Nothing here throws.
#pragma once

#include "qv/core/Array.h"
#include "qv/core/Export.h"

namespace qv {

/// Polynomial of degree `order` through (x, y) by the normal equations, solved
/// by Gauss-Jordan elimination with full pivoting. x is not scaled and the
/// condition is not tested: callers keep the order low.
/// False with c untouched if order is below 1 or the counts differ. Otherwise c
/// becomes order + 1 zeros first; a singular system (a zero pivot) returns
/// false with c left at those zeros; success fills c. A solution that is not
/// finite (an infinite or NaN sample) is no fit either: false, with c holding
/// it, so that callers that ignore the result still see no number.
QV_API bool LinearLeastSquareFit(TArray<double> &x, TArray<double> &y, int order, TArray<double> &c);

/// y = a * exp(b * x), fitted as ln(y) = ln(a) + b * x. False if the counts
/// differ or the line fit fails (also for a y of 0 or below, whose logarithm
/// is no number); a and b are then untouched.
QV_API bool ExpLeastSquareFit(TArray<double> &x, TArray<double> &y, double &a, double &b);
/// y = a * ln(x) + b, fitted as a line in ln(x).
QV_API bool LogLeastSquareFit(TArray<double> &x, TArray<double> &y, double &a, double &b);
/// y = a * pow(x, b), fitted as ln(y) = ln(a) + b * ln(x).
QV_API bool PowLeastSquareFit(TArray<double> &x, TArray<double> &y, double &a, double &b);

/// Squared correlation of y with the polynomial c evaluated at x (Horner's
/// rule), over n = count of x samples (y grows to n). -1.0 if c is below order
/// 1 (or y cannot grow). A zero denominator is not guarded: constant data gives
/// NaN or inf.
QV_API double CalcR2(TArray<double> &x, TArray<double> &y, TArray<double> &c);
/// The same formula for two arrays, over the count of a (b grows to it).
QV_API double CalcR2(TArray<double> &a, TArray<double> &b);

/// Inverts the counts-to-radiance polynomial c in place over the range of a
/// 14-bit detector: fits counts i = 0..16383 against PolyValue(i, c) with the
/// same order. The result is that of the fit.
QV_API bool CalcRadToCountsFromCountsToRad(TArray<double> &c);
/// With a counts-to-radiance and b radiance-to-temperature, replaces b by the
/// temperature-to-radiance polynomial of the same order, fitted over the
/// radiances of counts 0..16383. The result is that of the fit.
QV_API bool CalcTempToRadFromRadToTemp(TArray<double> &a, TArray<double> &b);

} // namespace qv
