// The calling thread's system-wide id. Internal to libqv.
#pragma once

#include <cstdint>

namespace qv {

// Unique among the live threads of the machine; never 0. Thread-safe.
uint32_t GetCurrentThreadId();

} // namespace qv
