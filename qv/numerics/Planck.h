/// @file
/// Planck's law on a wavelength axis, with the calibration's own constants.
///
/// Ownership: the arrays are the caller's. Threads: no state. Never throws.
#pragma once

#include "qv/core/Array.h"
#include "qv/core/Export.h"

namespace qv {

/// y is cleared, then for each wavelength l of x (microns), with T =
/// temperature + 273.15 (temperature in degrees Celsius):
///   y = emissivity * (11910.06 / l^5) * 1 / (exp(14388.3 / (l * T)) - 1)
/// in W/(sr-cm^2) per micron. l^5 is formed by squaring, not by pow; exp is
/// qv's own, within 0.011 ulp before its rounding, so it gives the C library's
/// bits nearly everywhere and is within 1e-13 of them always. The two
/// constants are the ones every stored calibration was computed with: other
/// (even more exact) values would make recomputed radiances disagree with them.
/// A wavelength of 0 or below emits nothing: y is 0 there (the formula would
/// give NaN or a huge meaningless value; a top hat may start below zero).
QV_API void Planck(TArray<double> &x, TArray<double> &y, double temperature, double emissivity);

} // namespace qv
