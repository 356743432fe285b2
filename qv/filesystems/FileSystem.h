/// @file
/// GetFileSystem: the disk file system (the FileSystem singleton of
/// qv/filesystems/DiskFileSystem.h) as a plain IFileSystem, for code that
/// needs the disk without the disk file system's own header (CFile, CLog).
#pragma once

#include "qv/core/Export.h"
#include "qv/filesystems/IFileSystem.h"

namespace qv {

/// The process-wide disk file system. Never fails; built on first use.
QV_API IFileSystem &GetFileSystem();

} // namespace qv
