/// @file
/// CMergeFileSystem: other file systems joined into one tree by a mount
/// table. A mount hangs subPath of a file system at mountPoint; mounts may
/// overlap and the order of mounting decides. A composite file (a
/// CCDFileSystem, say) is mounted like any other file system: nothing here
/// opens one by itself.
///
/// Lookups (GetFileInfo, CreateFileW and the rest). The full path is split
/// into items and the mounts are tried in order. A path that is a mount point
/// or lies above one is a made-up directory (kAttributeDirectory), ahead of
/// anything a later mount or the mounted file system holds there. Below a
/// mount point the path resolves to subPath plus the remaining items in that
/// mount's file system; the first mount that has it wins. A found entry gets
/// the properties "FileSystem" (the mounted file system) and "ResolvedPath"
/// (its path there) and, unlike the mounted entry, the merged full path as its
/// path. When no mount has the path, the first mount under which it could lie
/// takes new files: CreateFileW goes there. DeleteFileW needs a found file,
/// SetFileAttributesW and SetFileModifiedTime a file or such a place,
/// RemoveDirectoryW a directory of a mounted file system (never a mount point).
/// CreateDirectoryW works only with exactly one mount and joins the full path
/// behind that mount's subPath, deliberately. RenameFileW works when both
/// paths resolve in the same mounted file system and it can rename.
///
/// Listings merge the mounts' listings in mount order (a name stays with the
/// first mount that lists it; paths are rewritten into the merged tree) and
/// show a made-up directory for each mount point below the listed directory,
/// named by the mount point's last item: a mount at /a/b/c appears in the
/// listing of "/" as "c" with the path "/a/b/c", as existing callers expect.
/// The pattern goes only to the mounted file systems.
///
/// Paths and the working directory follow CFlatFileSystem: "/..." stands as
/// it is, others are expanded against the working directory ("/" at first).
///
/// Ownership: the mounted file systems are not owned; each must outlive its
/// mount (files that came through a mount live as long as their file system).
/// Failures: false, null or kAttributeNone. Threads: no lock; set the table up
/// first, then only read it; calls reach the mounted file systems with
/// whatever safety they have.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/filesystems/IFileSystem.h"

namespace qv {

/// @copydoc MergeFileSystem.h
struct MOUNT {
    IFileSystem *fileSystem;   ///< the mounted file system; not owned
    char16_t subPath[260];     ///< the path in fileSystem that is mounted
    char16_t mountPoint[260];  ///< where it hangs in the merged tree
};

/// @copydoc MergeFileSystem.h
class QV_API CMergeFileSystem : public IFileSystem {
public:
    CMergeFileSystem();
    /// Copies the mount table and the working directory; the mounted file
    /// systems are shared, not copied.
    ///@{
    CMergeFileSystem(CMergeFileSystem const &) = default;
    CMergeFileSystem &operator=(CMergeFileSystem const &) = default;
    ///@}
    ~CMergeFileSystem() override;

    /// Appends a mount. False for a null fs, a text of 260 units or more, or a
    /// table that cannot grow.
    bool Mount(char16_t const *mountPoint, IFileSystem *fs, char16_t const *subPath);
    /// Removes the first mount of fs at mountPoint (case ignored); false if none.
    bool Unmount(char16_t const *mountPoint, IFileSystem *fs);
    /// The lookup above; exists tells a found entry from a place for a new file.
    CDirectoryEntry intGetFileInfo(char16_t const *path, bool &exists);

    uint32_t GetCapabilities() override; ///< kCapabilityRename
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

private:
    /// The file system and path a lookup resolved to, or null.
    static IFileSystem *ResolvedFileSystem(CDirectoryEntry &entry, CString &resolved);

    char16_t currentDirectory[PathBufferSize];
    TArray<MOUNT> mounts;
};

} // namespace qv
