/// @file
/// Unit conversion for POD columns: a unit name gives a conversion index,
/// two indices give a factor (result = value x factor), and wrapping units
/// have a period.
///
/// Indices: 0 meters/m, 1 milimeters/mm, 2 kilometers/km, 3 inches/in, 4 feet/ft,
/// 5 miles/mi, 6 radians/rad, 7 degrees/deg, 8 miliseconds/ms, 9 seconds/sec,
/// 10 minutes/min, 11 hours/hrs, 12 centimeters/cm, 13 miliradians/mrad,
/// 14 microradians/umrad. Names compare ignoring case, long forms first. The
/// spellings "milimeters", "miliseconds", "miliradians" and the factors (such
/// as 39.408 inches to the meter, and the time rows that run the other way
/// round from length and angle) are those that stored tables were made with.
///
/// Pure functions over constant tables, any thread.
#pragma once

#include "qv/core/Export.h"

namespace qv {

inline constexpr int kPODUnitCount = 15; ///< Indices run from 0 to kPODUnitCount - 1.

/// -1 for a name in neither list (and for null).
QV_API int GetPODUnitIndex(char16_t const *unit);
/// 0 when no conversion exists (different kinds, an index out of range).
QV_API double GetPODUnitFactor(int fromIndex, int toIndex);
/// The period of a wrapping unit ("IRIG", "radians", "microradians",
/// "degrees", ignoring case); false for the others.
QV_API bool GetPODUnitPeriod(char16_t const *unit, double &period);

} // namespace qv
