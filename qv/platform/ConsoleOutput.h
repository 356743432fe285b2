// The console echo of the log: plain writes to standard output. Internal to
// libqv.
#pragma once

#include <cstddef>

namespace qv::platform {

// Writes the bytes to standard output, retrying short writes; errors are dropped.
void WriteStandardOutput(char const *text, size_t length);

} // namespace qv::platform
