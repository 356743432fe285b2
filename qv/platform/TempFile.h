// Temporary files on the disk. Internal to libqv.
#pragma once

#include "qv/core/String.h"

namespace qv {

// Creates a new empty file "<temporary directory>/<prefix>XXXXXX" (a unique
// suffix chosen by the system), closed again, and gives its path. False if
// none can be made. The temporary directory is $TMPDIR if it names one,
// else "/tmp". Thread-safe.
bool CreateDiskTempFile(char16_t const *prefix, CString &path);

} // namespace qv
