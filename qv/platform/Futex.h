// Waiting on a 32-bit word: the kernel's fast user-space mutex primitive.
//
// FutexWait sleeps while *word still holds `expected` (it returns at once
// when it does not, and may return spuriously: callers loop on their own
// condition). FutexWakeOne wakes one thread sleeping on word. Words are
// private to the process. Thread-safe; never fails in a way callers must see.
#pragma once

#include <atomic>
#include <cstdint>

#include "qv/core/Export.h"

namespace qv::platform {

// Exported for the inline locks that call them (CWordLock) and their tests.
QV_API void FutexWait(std::atomic<uint32_t> &word, uint32_t expected);
QV_API void FutexWakeOne(std::atomic<uint32_t> &word);

} // namespace qv::platform
