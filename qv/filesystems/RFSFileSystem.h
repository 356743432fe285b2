/// @file
/// CRFSFileSystem: the resources of loaded modules (see qv/core/ModuleResources.h)
/// as read-only files under flat paths, so that any loader of the library can
/// read a program's resources. ExeResources is the one for the program, to
/// which libqv's own resources are added on first use.
///
/// Paths are "/" type "/" name. A numeric type is written by its Windows name
/// ("RCDATA" for 10, see ResourceName) or "#n", a numeric name as "#n". A
/// resource whose name ends in ".gz" (stored as TGZF) appears without that
/// extension and reads unpacked; its entry reports the stored size. One entry
/// per type and name of a module (whatever its languages); opening it takes
/// the language that CLocale prefers. Two modules with the same resource give
/// two entries with one path, and lookups find the first.
///
/// Entries carry "Module" (the module handle), "ResourceName", "ResourceType"
/// (numbers as "#n") and "GZFilter" (1 for an unpacked resource, else 0).
/// CreateFileW gives a readable file over a copy of the bytes (the flags are
/// not looked at), or null. Nothing can be made, deleted or renamed.
///
/// Ownership: files from CreateFileW are the caller's and do not need the
/// module. Threads: the table is built by the constructor and AddModule; once
/// it stands it may be read from several threads (ExeResources is built
/// safely on first use). AddModule needs the caller's protection.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/core/ResourceTable.h"
#include "qv/core/Singleton.h"
#include "qv/filesystems/FlatFileSystem.h"

namespace qv {

/// @copydoc RFSFileSystem.h
class QV_API CRFSFileSystem : public CFlatFileSystem {
public:
    /// Lists module, or the program's table for null.
    explicit CRFSFileSystem(HINSTANCE module = nullptr);

    /// Adds the resources of module (null: the program's) to the table, one
    /// entry per type and name.
    void AddModule(HINSTANCE module);
    /// The path of a resource (type and name in the pointer convention of
    /// qv/core/ResourceId.h) into out (PathBufferSize units); returns out.
    static char16_t *ResourceName(char16_t *out, char16_t const *type, char16_t const *name);

    uint32_t GetCapabilities() override; ///< 0
    IFile *CreateFileW(char16_t const *path, uint32_t flags) override;
    bool DeleteFileW(char16_t const *path) override;
    bool CreateDirectoryW(char16_t const *path, bool recursive) override;
    bool RemoveDirectoryW(char16_t const *path, bool recursive) override;
};

/// Adds libqv's own module to the program's resources once, when ExeResources
/// is first used.
struct QV_API CExeResourcesPostCreate {
    static void PostCreate(CRFSFileSystem *made); ///< called once on the new file system
};

extern template class TSingletonPtr<CRFSFileSystem, 1, false, CExeResourcesPostCreate>;
extern QV_API TSingletonPtr<CRFSFileSystem, 1, false, CExeResourcesPostCreate> ExeResources; ///< the program's resources, made on first use

} // namespace qv
