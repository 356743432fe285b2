// The process's working directory as UTF-16 text. Internal to libqv.
#pragma once

#include "qv/core/String.h"

namespace qv {

// The absolute working directory with '/' separators; false (out untouched)
// if the system cannot tell it.
bool GetWorkingDirectory(CString &out);

} // namespace qv
