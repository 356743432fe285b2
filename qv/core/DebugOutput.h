/// @file
/// The debug text sink. Text goes as UTF-8 to standard error when the
/// environment variable QV_DEBUG is set (looked at once, on first use), and to
/// the hook a program installed. Null text is ignored. Thread-safe: the hook is
/// called outside any lock, so it may write debug text itself; a call already
/// under way may still reach a hook that was just replaced.
#pragma once

#include "qv/core/Export.h"

namespace qv {

/// A program's receiver of debug text: the UTF-8 text and the context given
/// to SetDebugTextHook.
using DebugTextHook = void (*)(char const *utf8, void *context);

/// Sends text (UTF-16 or UTF-8) to the sink; null text is ignored.
///@{
QV_API void OutputDebugStringW(char16_t const *text);
QV_API void OutputDebugStringA(char const *utf8);
///@}
/// Installs a hook (null removes it) and returns the previous one. Thread-safe.
QV_API DebugTextHook SetDebugTextHook(DebugTextHook hook, void *context);

} // namespace qv
