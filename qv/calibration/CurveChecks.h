// The checks a calibration makes on the curves it reads from files, public
// for callers that read such tables themselves. A table that passes can be
// resampled and integrated; one that fails would give radiances that mean
// nothing (a falling or jumbled axis resamples to zeros, a response without
// a positive peak cannot be scaled to 1, a NaN spreads through every fit).
//
// Every check wants at least 2 rows (RS_TooFewPoints otherwise) and a
// usable wavelength axis: finite values above 0 that strictly rise. An axis
// that strictly falls is turned around in place, its value arrays with it,
// so a table may be given in either order. Anything else is RS_ReadError,
// with the arrays left as they were. RS_OK when the table is usable.
//
// Ownership: the arrays are the caller's. Threads: no state. Nothing throws.
#pragma once

#include "qv/calibration/CalEnums.h"
#include "qv/core/Array.h"
#include "qv/core/Export.h"

namespace qv {

// A spectral response: values finite and not negative, the peak above 0.
QV_API EResponseStatus CheckResponseCurve(TArray<double> &x, TArray<double> &y);

// An additional response (a filter): values finite and not negative.
QV_API EResponseStatus CheckFilterCurve(TArray<double> &x, TArray<double> &y);

// An atmosphere table: transmission finite within 0..1, path radiance finite
// and not negative; all three arrays of one length.
QV_API EResponseStatus CheckAtmosphereCurves(TArray<double> &x, TArray<double> &transmission,
                                             TArray<double> &pathRadiance);

} // namespace qv
