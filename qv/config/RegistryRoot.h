/// @file
/// One registry root in the process: its file, the tree as last read, and the
/// read and write protocol (see qv/config/Registry.h). Internal to libqv.
#pragma once

#include <functional>
#include <mutex>

#include "qv/config/RegistryTree.h"
#include "qv/platform/FileLock.h"

namespace qv {

/// @copydoc RegistryRoot.h
class CRegistryRoot {
public:
    /// name is the root's display name, fileName the file in its directory;
    /// user picks the user directory as default, else /etc/qv/registry. The
    /// strings are kept, not copied.
    CRegistryRoot(char16_t const *name, char16_t const *fileName, bool user);

    char16_t const *Name() const { return name; } ///< The display name, e.g. "HKEY_CURRENT_USER".
    /// The full path of the file; empty when there is no user directory.
    CString File();
    /// Sets the directory (null or empty: the default) and reads again on next use.
    void SetDirectory(char16_t const *directory);

    /// Runs read over the tree as the file has it now; its status, or
    /// ERROR_BADDB when the file cannot be read.
    int32_t Read(std::function<int32_t(SRegNode &)> const &read);
    /// Under the file lock: reads the file again, runs change (which sets its
    /// bool when it changed the tree) and, on ERROR_SUCCESS with a change,
    /// saves the file atomically (ERROR_WRITE_FAULT if that fails).
    int32_t Write(std::function<int32_t(SRegNode &, bool &)> const &change);

private:
    CString Directory();
    int32_t Refresh(CString const &file, bool force);
    bool Save(CString const &file);

    char16_t const *name;
    char16_t const *fileName;
    bool user;
    std::mutex mutex;
    CString directory; ///< empty: the default
    CString loadedFile;
    SFileIdentity identity;
    bool loaded = false;
    bool readable = false;
    SRegNode tree;
};

/// The process-wide roots of HKEY_CURRENT_USER and HKEY_LOCAL_MACHINE.
///@{
CRegistryRoot &UserRoot();
CRegistryRoot &MachineRoot();
///@}

} // namespace qv
