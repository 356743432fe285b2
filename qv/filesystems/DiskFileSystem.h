/// @file
/// CFileSystem: the IFileSystem of the disk, and FileSystem, its one instance
/// for the process (built on first use, inside libqv.so). Calls that take no
/// file system use it.
///
/// Names. '/' and '\' both separate on input; the disk gets '/'. Names are
/// case-sensitive as the disk has them (the path algebra stays
/// case-insensitive). Relative paths follow the process's working directory;
/// full paths resolve "." and ".." by text, without following links.
///
/// Files: CreateFileW opens a CFile (see qv/files/File.h for the flags,
/// sharing and failures); the caller deletes it. Attributes: directories are
/// kAttributeDirectory, everything else kAttributeFile; a symbolic link is
/// what it points to (a dangling one is a file). GetFileInfo removes one
/// trailing separator and looks the name up; "/" itself is not found, as a
/// root is not. The read-only and hidden bits are honoured by
/// SetFileAttributesW only (read-only: the write permission bits; hidden: an
/// extended attribute where the disk keeps one) and never reported.
/// DeleteFileW first makes the file normal, so a read-only file goes too.
/// RenameFileW syncs the file's data before the name moves and replaces a file
/// at the new name (never a directory); capabilities: kCapabilityRename.
/// CreateDirectoryW(path, true) makes every missing level (a failure marks the
/// result false, the walk goes on) and keeps a leading '/'.
/// RemoveDirectoryW(path, true) removes the tree below path, links as names
/// (it never follows one), and then path; its answer is the last removal's.
///
/// Temporary files: GetTempFilename creates an empty file "timXXXXXX" in
/// $TMPDIR (or /tmp) and gives its path; the caller removes it.
///
/// Monitoring: MonitorDirectory gives a new, stopped CWin32DirectoryMonitor of
/// an existing directory (its whole subtree), or null; the caller deletes it.
///
/// Threads: no state of its own; every call may run on any thread. The
/// working directory is process-wide (see CCWDFixer).
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/core/Singleton.h"
#include "qv/core/String.h"
#include "qv/filesystems/IFileSystem.h"

namespace qv {

class CWin32DirectoryMonitor;

/// @copydoc DiskFileSystem.h
class QV_API CFileSystem : public IFileSystem {
public:
    using CWin32DirectoryMonitor = ::qv::CWin32DirectoryMonitor; ///< qv/filesystems/DiskDirectoryMonitor.h

    IDirectoryMonitor *MonitorDirectory(char16_t const *dir, uint32_t flags) override;
    uint32_t GetCapabilities() override;
    IFile *CreateFileW(char16_t const *path, uint32_t flags) override;
    CDirectoryListing GetDirectoryListing(char16_t const *dir, char16_t const *pattern) override;
    CDirectoryEntry GetFileInfo(char16_t const *path) override;
    bool SetFileAttributesW(char16_t const *path, uint32_t attributes) override;
    bool SetFileModifiedTime(char16_t const *path, CDateTime time) override;
    bool GetFullPath(char16_t *out, char16_t const *path, int size) override;
    bool DeleteFileW(char16_t const *path) override;
    bool CreateDirectoryW(char16_t const *path, bool recursive) override;
    bool RemoveDirectoryW(char16_t const *path, bool recursive) override;
    bool SetCurrentWorkingDirectory(char16_t const *path) override;
    bool GetCurrentWorkingDirectory(char16_t *out, int size) override;
    bool RenameFileW(char16_t const *oldPath, char16_t const *newPath) override;
    using IFileSystem::GetCurrentWorkingDirectory; ///< the CString helper of IFileSystem
    using IFileSystem::GetFullPath;                ///< the CString helper of IFileSystem

    /// Creates a new empty temporary file; its path into out (size units with
    /// terminator). False if none could be made or the path does not fit
    /// (then no file is left).
    ///@{
    bool GetTempFilename(char16_t *out, int size);
    CString GetTempFilename(); ///< empty on failure
    ///@}
    /// The entries of GetDirectory(searchPath) whose names match the wildcards of
    /// the last item of searchPath; the listing's directory is GetDirectory(searchPath).
    CDirectoryListing Find(char16_t const *searchPath);
};

extern template class TSingletonPtr<CFileSystem>;
extern QV_API TSingletonPtr<CFileSystem> FileSystem; ///< the process's one disk file system

} // namespace qv
