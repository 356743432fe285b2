/// @file
/// Copying a curve array in one allocation (internal to qv/calibration).
/// TArray::Copy adds item by item, growing five at a time; the spectral
/// curves hold thousands of points and are copied on every radiance.
#pragma once

#include <cstring>

#include "qv/core/Array.h"

namespace qv::calibration_detail {

/// dst becomes a copy of src; false (dst empty) if the heap refuses.
inline bool CopyValues(TArray<double> &dst, TArray<double> const &src) {
    if (&dst == &src) return true;
    dst.Empty();
    uint32_t n = src.GetSize();
    if (n == 0) return true;
    if (!dst.SetSize(n)) return false;
    std::memcpy(dst.GetData(), src.GetData(), n * sizeof(double));
    return true;
}

} // namespace qv::calibration_detail
