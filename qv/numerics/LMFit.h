/// @file
/// Non-linear least squares by Levenberg-Marquardt (MINPACK's lmdif, with a
/// forward-difference Jacobian), fitting the free parameters of a model
/// function to samples.
///
/// p holds every parameter; mask[i] true makes p[i] free, false keeps it
/// fixed (a mask shorter than p leaves the rest fixed). The residual of sample
/// i is y[i] - f(x[i], params, count of p), over the samples of x (y grows with
/// zeros to that count). Control values: ftol, xtol, gtol and the difference
/// step all 6.661338147750939e-15 (30 double epsilons), step bound 100,
/// automatic scaling, no printout, and a limit of maxCalls * (free parameters
/// + 1) evaluations of the residuals (lmfit's count; the minimiser tests it
/// after each trial step, so a run may pass it by up to free + 1). After the
/// run the free entries of p hold the last estimate, converged or not.
///
/// The model function may not throw. Ownership: arrays are the caller's, the
/// mask a copy. Threads: no state; safe from any thread if f is.
#pragma once

#include "qv/core/Array.h"
#include "qv/core/Export.h"

namespace qv {

using LMModel = double (*)(double x, double *params, int count); ///< a model y(x) of count parameters
using LMModel2 = double (*)(double x1, double x2, double *params, int count); ///< a model y(x1, x2) of count parameters

/// True if the minimiser reports success (info 1, 2 or 3).
QV_API bool lmfit(TArray<double> &x, TArray<double> &y, TArray<double> &p, TArray<bool> mask, LMModel f, int maxCalls);
/// The same with two abscissas per sample; x2 grows to the count of x1.
QV_API bool lmfit2(TArray<double> &x1, TArray<double> &x2, TArray<double> &y, TArray<double> &p, TArray<bool> mask,
                   LMModel2 f, int maxCalls);

/// The same fits, giving the minimiser's info code instead, for callers that
/// explain a failure with GetLMFitMessage:
///   0 improper input (no free parameter, fewer samples than free parameters,
///     a call limit below 1) or no memory for the work arrays
///   1, 2, 3 success in the sum of squares, in the parameters, in both
///   4 residuals orthogonal to the Jacobian   5 call limit reached
///   6, 7, 8 ftol, xtol, gtol too small for further progress
///@{
QV_API int lmfitInfo(TArray<double> &x, TArray<double> &y, TArray<double> &p, TArray<bool> mask, LMModel f,
                     int maxCalls);
QV_API int lmfit2Info(TArray<double> &x1, TArray<double> &x2, TArray<double> &y, TArray<double> &p, TArray<bool> mask,
                      LMModel2 f, int maxCalls);
///@}

/// What an info code means, as one English sentence; a static text that lives
/// as long as the library. A code outside 0..8 gets a text saying so.
QV_API char16_t const *GetLMFitMessage(int info);

} // namespace qv
