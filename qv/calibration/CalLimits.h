/// @file
/// Bounds on the axes a calibration builds from a span and a step (internal to
/// qv/calibration). Spans and steps come from files and callers; an axis of
/// billions of points would exhaust memory (each lookup entry is a whole
/// spectrum integrated, too). An axis beyond its bound is refused: left empty.
#pragma once

#include <cmath>

namespace qv::calibration_detail {

constexpr double kMaxLookupEntries = 1 << 20; ///< a lookup axis longer than this is refused (left empty)
constexpr double kMaxAxisPoints = 1 << 22; ///< wavelength axes
/// Lookup entries times wavelength points: each entry integrates a whole
/// spectrum, so a file may not ask for more work than this (left empty).
constexpr double kMaxLookupWork = 1 << 26;

/// Whether the step form of XAxis would make more than limit points. A step
/// that gives no finite count is not too long: XAxis makes 10 points of it.
inline bool StepAxisTooLong(double start, double end, double step, double limit) {
    double points = std::ceil(std::fabs(end - start) / step);
    return std::isfinite(points) && points > limit;
}

} // namespace qv::calibration_detail
