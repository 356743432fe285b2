// The debug text sink. Text goes as UTF-8 to standard error when the
// environment variable QV_DEBUG is set, and to the hook a program installed.
#pragma once

#include "qv/core/Export.h"

namespace qv {

using DebugTextHook = void (*)(char const *utf8, void *context);

QV_API void OutputDebugStringW(char16_t const *text);
QV_API void OutputDebugStringA(char const *utf8);
// Installs a hook (null removes it) and returns the previous one. Thread-safe.
QV_API DebugTextHook SetDebugTextHook(DebugTextHook hook, void *context);

} // namespace qv
