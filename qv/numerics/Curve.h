/// @file
/// Curves: an axis X and values Y held as two TArray<double> of one length.
/// Point functions, curve generators, axis construction, the unit change
/// between wavenumbers (cm^-1) and microns, integrals over an axis and linear
/// resampling. Units: wavelength in microns, temperature in degrees Celsius,
/// radiance in W/(sr-cm^2).
///
/// TArray growth. Element access grows a TArray (GetItem/operator[]), and these
/// functions index without testing counts: given arrays of unequal length,
/// they grow the shorter one with zeros to the length they walk, as callers
/// have always seen. Outputs ("y" below) are cleared first and then receive
/// one value per entry of their axis. If the heap cannot grow an array, the
/// function stops there: outputs are left empty, integrals give 0.
///
/// Ownership: every array is the caller's; nothing is kept. Threads: no state,
/// safe from any thread on distinct arrays. Nothing here throws.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"

namespace qv {

// ---- Point functions ----

QV_API double ExpValue(double x, double a, double b); ///< a * exp(b * x)
QV_API double LogValue(double x, double a, double b); ///< a * ln(x) + b
QV_API double PowValue(double x, double a, double b); ///< a * pow(x, b)
/// 10000.0 / value; the two names are the same formula (the change is its own
/// inverse).
///@{
QV_API double ToMicrons(double value);
QV_API double ToWavenumbers(double value);
///@}
/// Sum of c[i] * pow(x, i), constant term first. 0 when c has fewer than two
/// entries: a lone constant is no polynomial here, and stored calibrations
/// rely on that.
QV_API double PolyValue(double x, TArray<double> &c);

// ---- Curve generators: y is cleared, then y[i] = f(x[i]) ----

QV_API void PolyCurve(TArray<double> &x, TArray<double> &y, TArray<double> &c); ///< PolyValue
QV_API void ExpCurve(TArray<double> &x, TArray<double> &y, double a, double b); ///< ExpValue
QV_API void LogCurve(TArray<double> &x, TArray<double> &y, double a, double b); ///< LogValue
QV_API void PowCurve(TArray<double> &x, TArray<double> &y, double a, double b); ///< PowValue
/// y gets as many entries as x, each 1.0.
QV_API void Tophat(TArray<double> &x, TArray<double> &y);

// ---- Whole-array operations ----

QV_API void CopyAxis(TArray<double> &dst, TArray<double> &src); ///< dst becomes a copy of src
QV_API void Reverse(TArray<double> &a); ///< reverses the order of the values
QV_API void Reverse(TArray<double> &a, TArray<double> &b); ///< each over its own count
/// Divides every value by the greatest one unless that is within 1e-8 of 1.0.
/// Nothing for an empty array. Meant for a positive maximum; a zero or
/// negative one is divided through all the same.
QV_API void ScaleToOne(TArray<double> &a);
/// Multiplies every value by target / max unless max is within 1e-8 of target.
QV_API void ScaleTo(TArray<double> &a, double target);

// ---- Axes ----

/// count points from min(start, end) to max(start, end), evenly spread
/// (x[i] = i * ((end - start) / (count - 1)) + start), the two ends exact. A
/// count below 2 makes 2.
QV_API void XAxis(TArray<double> &x, double start, double end, uint32_t count);
/// The step is a wish: n = ceil((end - start) / step) points, at least 10,
/// spread evenly by the count form (3.0 to 5.0 by 0.001 gives 2000 points).
/// A step that gives no finite count (0, NaN) gives 10 points; n converts to
/// 32 bits as every float-to-integer conversion of the library does.
QV_API void XAxis(TArray<double> &x, double start, double end, double step);

/// In place: every value v becomes 10000.0 / v, then the array is reversed if
/// it falls. False for an empty array, and at the first value of exactly 0,
/// which stays 0 (the values before it are already changed).
QV_API bool ToMicrons(TArray<double> &x);
/// A spectrum (x, y) changed between wavenumbers and microns, in place: in one
/// walk y[i] is multiplied by x[i] * x[i] / 10000.0 (the Jacobian) and then
/// x[i] becomes 10000.0 / x[i]; both arrays are reversed if x then falls.
/// False if the counts differ or are 0, and at the first x of exactly 0 (its y
/// already multiplied, the entries before it changed). The two names are one
/// operation.
///@{
QV_API bool ToMicrons(TArray<double> &x, TArray<double> &y);
QV_API bool ToWavenumbers(TArray<double> &x, TArray<double> &y);
///@}

// ---- Integrals of y over x, n = count of x; y grows to n ----
// Terms are summed in index order, in exactly these forms, so results repeat
// to the last bit (stored calibrations compare against them). dx = x[i+1] -
// x[i], dy = y[i+1] - y[i]. Fewer than two points give 0.

QV_API double IntegrateRectTL(TArray<double> &x, TArray<double> &y);  ///< dx * y[i]
QV_API double IntegrateRectTR(TArray<double> &x, TArray<double> &y);  ///< dx * y[i] + dx * dy
QV_API double IntegrateRectMid(TArray<double> &x, TArray<double> &y); ///< dx * y[i] + dx * dy * 0.5
QV_API double IntegrateTrap(TArray<double> &x, TArray<double> &y);    ///< the same as IntegrateRectMid

// ---- Resampling ----

/// Resamples (x1, y1) at the points of x2 into y2 (cleared first); both axes
/// must rise. A point within 1e-8 of a sample takes that sample; one between
/// samples the straight line between them; one below the first or above the
/// last sample takes `outside`. y1 grows with zeros where x1 reaches further.
QV_API void Interpolate(TArray<double> &x1, TArray<double> &y1, TArray<double> &x2, TArray<double> &y2, double outside);

} // namespace qv
