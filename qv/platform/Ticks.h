// The millisecond tick clock, sleeping and yielding.
//
// GetTickCount counts milliseconds of a steady clock in 32 bits and wraps
// after about 49.7 days, as callers that measure intervals with unsigned
// subtraction expect. SetTickCountOffset adds a constant to every reading so
// that a test can put the wrap a few milliseconds ahead; it is process-wide.
// All functions are thread-safe.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"

namespace qv {

// Sleep's argument for "no limit".
constexpr uint32_t kInfinite = 0xFFFFFFFF;

QV_API uint32_t GetTickCount();

// The constant added to every GetTickCount reading (0 at start).
QV_API void SetTickCountOffset(uint32_t offset);
QV_API uint32_t GetTickCountOffset();

// Blocks the calling thread for at least milliseconds; 0 only gives up the
// rest of the time slice, kInfinite never returns.
QV_API void Sleep(uint32_t milliseconds);

// Gives the processor to another ready thread, if there is one.
QV_API void SwitchToThread();

} // namespace qv
