// The disk file system singleton that stands for the disk wherever a caller
// names no file system. Callers reach it only through this function, so the
// real disk file system can replace the placeholder without touching them.
#pragma once

#include "qv/core/Export.h"
#include "qv/filesystems/IFileSystem.h"

namespace qv {

// The process-wide disk file system. Never fails; the object lives until exit.
QV_API IFileSystem &GetFileSystem();

} // namespace qv
