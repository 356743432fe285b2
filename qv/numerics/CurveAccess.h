/// @file
/// How the curve functions reach into a TArray<double> (internal header of
/// qv/numerics). Indexing a TArray grows it; the curve functions keep that
/// effect but grow once, up front, and then run over plain pointers so that
/// their loops carry no per-element growth test.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"

namespace qv::numerics_detail {

/// Grows a with zeros to at least n items. False if the heap refuses.
inline bool Reach(TArray<double> &a, uint32_t n) {
    return a.GetSize() >= n || a.SetSize(n);
}

/// Clears out, then gives it one zero per entry of axis to overwrite. The
/// count is taken after clearing, so an output that is its own axis ends
/// empty, as it always has. Null when there is nothing to write or the heap
/// refuses; out is then empty.
inline double *Fresh(TArray<double> &out, TArray<double> const &axis) {
    out.Empty();
    uint32_t n = axis.GetSize();
    if (n == 0 || !out.SetSize(n)) return nullptr;
    return out.GetData();
}

/// Fresh for a caller that writes every entry: the same results without
/// first filling the array with zeros it will overwrite.
inline double *FreshToOverwrite(TArray<double> &out, TArray<double> const &axis) {
    uint32_t const n = &out == &axis ? 0 : axis.GetSize();
    if (n != 0 && out.SetSize(n)) return out.GetData();
    out.Empty();
    return nullptr;
}

} // namespace qv::numerics_detail
