// Process-wide log entry points. Until the CLog singleton arrives these write
// through the debug text sink; callers already use the final names, so the log
// can be completed behind them without touching any caller.
#pragma once

#include "qv/core/Export.h"

namespace qv {

// Writes one line, formatted with the library's wide printf grammar.
// Thread-safe. Never fails visibly.
QV_API void qvLogWriteLineW(char16_t const *fmt, ...);

} // namespace qv
