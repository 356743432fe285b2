// Two-parameter fits made straight by logarithms and fitted as lines.
#include <cmath>

#include "qv/numerics/Fits.h"

namespace qv {

namespace {

enum class ELogOf { X, Y, Both };

// Fits the line c[0] + c[1] * u through (x, y) with ln taken of the named
// coordinates. False if the counts differ or the fit fails.
bool FitLogLine(TArray<double> &x, TArray<double> &y, ELogOf which, double (&c)[2]) {
    if (x.GetSize() != y.GetSize()) return false;
    auto logOf = [](TArray<double> &in, TArray<double> &out) {
        if (!out.SetSize(in.GetSize())) return false;
        for (uint32_t i = 0; i < in.GetSize(); ++i)
            out.GetData()[i] = std::log(in.GetData()[i]);
        return true;
    };
    TArray<double> lx, ly, line;
    bool logX = which != ELogOf::Y, logY = which != ELogOf::X;
    if ((logX && !logOf(x, lx)) || (logY && !logOf(y, ly))) return false;
    if (!LinearLeastSquareFit(logX ? lx : x, logY ? ly : y, 1, line)) return false;
    c[0] = line.GetData()[0];
    c[1] = line.GetData()[1];
    return true;
}

} // namespace

bool ExpLeastSquareFit(TArray<double> &x, TArray<double> &y, double &a, double &b) {
    double c[2];
    if (!FitLogLine(x, y, ELogOf::Y, c)) return false;
    a = std::exp(c[0]);
    b = c[1];
    return true;
}

bool LogLeastSquareFit(TArray<double> &x, TArray<double> &y, double &a, double &b) {
    double c[2];
    if (!FitLogLine(x, y, ELogOf::X, c)) return false;
    a = c[1];
    b = c[0];
    return true;
}

bool PowLeastSquareFit(TArray<double> &x, TArray<double> &y, double &a, double &b) {
    double c[2];
    if (!FitLogLine(x, y, ELogOf::Both, c)) return false;
    a = std::exp(c[0]);
    b = c[1];
    return true;
}

} // namespace qv
