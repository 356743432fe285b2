/// @file
/// CFlatFileSystem: the base of the file systems whose whole content is one
/// table of entries in memory (memory, module resources, CDFS composites).
/// There are no directory objects: a file is an entry holding its full path,
/// and a directory exists only while some entry's path runs through it.
///
/// Paths. An entry's path is absolute, begins with '/' and uses '/'.
/// GetFullPath takes a path that begins with '/' as it stands (not
/// normalised, so "/a/../b" does not find "/b"; a leading '\' counts as
/// relative, which existing callers depend on); any other path is expanded
/// against the current directory with '/'. Lookups compare without regard to
/// case; the first entry of a path wins.
///
/// GetFileInfo: a copy of the file's entry; else, when some entry lies below
/// the path, a made-up directory (name the last item, path the full path with
/// a trailing '/', kAttributeDirectory, size 0, modified now); else an entry
/// with kAttributeNone. So "/" is a directory only while any entry exists.
/// GetDirectoryListing(dir, pattern): dir (null: the current directory) is
/// not expanded; with a trailing '/' it is the listing's directory. Files
/// directly in it are copies of their entries, deeper entries give one made-up
/// directory per name (case-insensitively; the first entry wins). The current
/// directory starts as "/" and always ends in '/'; it can be set only to a
/// directory that exists. GetFullPath fails only when out is too small.
///
/// Derived classes give CreateFileW, DeleteFileW and the directory calls.
/// Threads: no lock; a table that no longer changes may be read from several
/// threads. Changing calls need the caller's protection.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/core/String.h"
#include "qv/filesystems/IFileSystem.h"

namespace qv {

/// @copydoc FlatFileSystem.h
class QV_API CFlatFileSystem : public IFileSystem {
public:
    CFlatFileSystem();
    /// Copies the whole table and the current directory.
    ///@{
    CFlatFileSystem(CFlatFileSystem const &) = default;
    CFlatFileSystem &operator=(CFlatFileSystem const &) = default;
    ///@}

    CDirectoryListing GetDirectoryListing(char16_t const *dir, char16_t const *pattern) override;
    CDirectoryEntry GetFileInfo(char16_t const *path) override;
    bool GetFullPath(char16_t *out, char16_t const *path, int size) override;
    bool SetCurrentWorkingDirectory(char16_t const *path) override;
    bool GetCurrentWorkingDirectory(char16_t *out, int size) override;
    using IFileSystem::GetCurrentWorkingDirectory; ///< the CString helper of IFileSystem
    using IFileSystem::GetFullPath;                ///< the CString helper of IFileSystem

protected:
    /// The index of the file entry at path (made full first), or -1.
    int FindFile(char16_t const *path);
    /// The index of the file entry whose path is full (taken as it stands), or -1.
    int FindFullPath(char16_t const *full) const;
    /// A file entry for fullPath: name and path set, kAttributeFile, modified now.
    static CDirectoryEntry MakeFileEntry(char16_t const *fullPath);
    /// Moves the file entry at index to newPath (made full), dropping a file
    /// entry that was there. False if newPath is a directory; index stays valid
    /// unless an entry ahead of it goes (then *index is lowered).
    bool MoveEntry(int &index, char16_t const *newPath);

    TArray<CDirectoryEntry> entries;           ///< the table: one entry per file, full paths
    char16_t currentDirectory[PathBufferSize]; ///< starts as "/", always ends in '/'
};

} // namespace qv
