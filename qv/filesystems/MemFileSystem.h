/// @file
/// CMemFileSystem: blocks of the caller's memory served as files under flat
/// paths (see qv/filesystems/FlatFileSystem.h for paths and directories).
///
/// AddFile(path, data, size) appends an entry (kAttributeFile, size, modified
/// now, property "Data" the block's address); path is stored as given, so a
/// caller gives an absolute path (a relative one is stored but never found).
/// A path that exists already gives false and keeps the old block. Nothing is
/// copied: the block stays the caller's and must outlive the file system and
/// every file opened on it.
///
/// CreateFileW(path, flags) gives a CMemFile over the block in place (it does
/// not own it) for an existing file, null otherwise; the flags are not looked
/// at, as existing callers expect. Writes inside the size change the caller's
/// block, so a caller that writes gives writable memory; a write that grows the
/// file moves its bytes to a block of the file's own (the entry keeps the old
/// block and size). There are no new files, no deletes and no directories of
/// their own (those answer false); RenameFileW moves an entry to a new path,
/// replacing a file there (never a directory): kCapabilityRename.
///
/// Ownership: files from CreateFileW are the caller's to delete.
/// Threads: no lock; AddFile, RenameFileW and SetCurrentWorkingDirectory need
/// the caller's protection.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/filesystems/FlatFileSystem.h"

namespace qv {

/// @copydoc MemFileSystem.h
class QV_API CMemFileSystem : public CFlatFileSystem {
public:
    CMemFileSystem() = default;
    /// Copies the table; both then serve the same caller's blocks.
    ///@{
    CMemFileSystem(CMemFileSystem const &) = default;
    CMemFileSystem &operator=(CMemFileSystem const &) = default;
    ///@}

    /// Serves the size bytes at data as the file path (see the top of this
    /// file); false for a null or existing path or a table that cannot grow.
    bool AddFile(char16_t const *path, void const *data, uint32_t size);

    uint32_t GetCapabilities() override;
    IFile *CreateFileW(char16_t const *path, uint32_t flags) override;
    bool DeleteFileW(char16_t const *path) override;
    bool CreateDirectoryW(char16_t const *path, bool recursive) override;
    bool RemoveDirectoryW(char16_t const *path, bool recursive) override;
    bool RenameFileW(char16_t const *oldPath, char16_t const *newPath) override;
};

} // namespace qv
