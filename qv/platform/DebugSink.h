// Where debug text goes besides the program's hook: standard error, when the
// environment asks for it.
#pragma once

#include <cstddef>

namespace qv::platform {

// Whether QV_DEBUG is set; read once, at the first call. Thread-safe.
bool DebugToStandardError();
// Writes the bytes to standard error, retrying short writes; errors are dropped.
void WriteStandardError(char const *text, size_t length);

} // namespace qv::platform
