/// @file
/// Opening a module resource (see qv/core/ModuleResources.h) as a file, as the
/// resource file system does.
///
/// CreateResourceFile gives a readable CMemFile over a copy of the resource's
/// bytes, at position 0. With unpack set (a resource whose name ends in ".gz",
/// which the resource tool stores as a "TGZF" stream) the answer is a CGZFile
/// that owns that memory file and gives the unpacked bytes; data that is not
/// TGZF passes through unchanged.
///
/// Ownership: the file is the caller's to delete; it does not need the module
/// to stay loaded. Failure: a null resource or a copy that cannot be made give
/// null. Threads: safe from any thread; the file belongs to the caller's.
#pragma once

#include "qv/core/Export.h"
#include "qv/core/ResourceTable.h"
#include "qv/files/IFile.h"

namespace qv {

/// A new file over a copy of resource's bytes, unpacked if asked (see the
/// top of this file); null on failure.
QV_API IFile *CreateResourceFile(HRSRC resource, bool unpack);

} // namespace qv
