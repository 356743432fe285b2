/// @file
/// Internal to the path algebra (not installed for callers): the CString forms
/// give a buffer form a block of their own, large enough for the whole result.
#pragma once

#include <algorithm>
#include <cstdint>

#include "qv/core/String.h"

namespace qv {

/// Runs fill(buffer, size) on a fresh block of units units (terminator
/// included; at least 1, at most what a CString can hold) and returns the text
/// that fill left there.
template <class Fill> CString FillPathBuffer(int64_t units, Fill fill) {
    int size = int(std::clamp<int64_t>(units, 1, INT32_MAX - 1));
    CString result;
    char16_t *buffer = result.GetBuffer(size - 1);
    buffer[0] = 0;
    fill(buffer, size);
    result.ReleaseBuffer();
    return result;
}

} // namespace qv
