// The calling thread's system-wide id. Internal to libqv.
#pragma once

#include <cstdint>

namespace qv {

// Unique among the live threads of the machine; never 0. Thread-safe. Kept
// per thread and renewed in the child of fork().
uint32_t GetCurrentThreadId();

} // namespace qv
