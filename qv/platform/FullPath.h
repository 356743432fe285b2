// Full paths of disk names, resolved lexically as the disk file layer needs
// them. Internal to libqv (CompletePath and FullDiskPath are exported for its
// tests and fuzz targets).
#pragma once

#include "qv/core/Export.h"
#include "qv/core/String.h"

namespace qv {

// The longest full path a disk file keeps, in UTF-16 units without the
// terminator (a buffer of 512 units with its terminator).
constexpr int kMaxFullPathLength = 511;

// Completes path against base (an absolute directory): a path that begins
// with a separator stands alone, others follow base. Both '/' and '\' are
// separators and come out as single '/'; "." is dropped and ".." removes the
// name before it (never climbing above the root). No symbolic link is
// followed and nothing needs to exist. A trailing separator is kept (it says
// the name is a directory); the root is "/". Pure.
QV_API CString CompletePath(char16_t const *base, char16_t const *path);

// CompletePath against the working directory. False if path is null or the
// working directory is unknown.
QV_API bool FullDiskPath(char16_t const *path, CString &out);

} // namespace qv
