/// @file
/// IFileSystem: the one contract of a tree of named files. Every loader and
/// saver by path takes (IFileSystem *, path), so one format code works on the
/// disk, in memory, on program resources, inside composite files and through
/// mount tables. FileSystem (qv/filesystems/DiskFileSystem.h) is the disk.
///
/// Paths: '/' and '\' both separate. The path operations come from
/// CPathAlgebra and compare without regard to case; whether a file system's
/// own names do is its own affair (the disk's do not).
///
/// Ownership. A file from CreateFileW and a monitor from MonitorDirectory
/// belong to the caller, who deletes them. Listings and entries are values.
///
/// Failures are false, null, or (GetFileInfo) an entry whose attributes are
/// kAttributeNone with empty name and path. No file system keeps error state.
/// The helpers GetCurrentWorkingDirectory() and GetFullPath(CString) give the
/// empty string where the virtual fails.
///
/// Open flags of CreateFileW: those of CFile::Open, named in qv/files/OpenFlags.h:
/// 0x01 open or create, 0x02 must exist, 0x04 must not exist, 0x08 create or
/// truncate, 0x10 read, 0x20 write, 0x40 start at the end, 0x100/0x200 share
/// write/read, 0x100000 delete on close.
///
/// Capabilities (GetCapabilities): kCapabilityCopyWithin, the file system
/// copies one of its files to another of its paths itself (the protected
/// CopyFileW(srcPath, dstPath, ...)); kCapabilityCopyAcross, it copies to and
/// from other file systems and IFile objects itself (the other protected
/// forms); kCapabilityRename, RenameFileW works. The disk answers
/// kCapabilityRename; the base answers 0.
///
/// Renaming (RenameFileW): moves the file at oldPath to newPath, replacing a
/// file there, in one step that leaves either the old or the new state, never
/// a mix. The base answers false. It is how whole-file saves stay atomic (see
/// qv/filesystems/AtomicSave.h).
///
/// Copying (the static CopyFileW forms). The core form copies count bytes
/// from src's position to dst's in blocks of 0x80000 bytes (one heap block per
/// copy); progress, if not null, is called with (count, 0) first and with
/// (count, done) after each write. Between two disk files the system copies
/// without the block, and when progress is null in steps of up to 1 GiB
/// (much faster than small steps); on ext2/3/4 each step first claims the
/// destination's space (its size unchanged), so a disk too full for the copy
/// fails it before a byte is written. Zero bytes succeed and report (0, 0) once.
/// A source that ends early, a short write or a negative count give false.
/// A copy to a path first tries to create it as a new file (0x24, must not
/// exist): with no old bytes to protect it is written in place, without a
/// temporary file and without a sync (as fast as any file written through
/// the system's cache; the source still holds the bytes should the machine
/// fail before they reach the disk), and a copy that fails deletes it. When
/// the path exists, a copy without overwrite fails and leaves it alone; with
/// overwrite it writes a new file beside the destination, syncs it and
/// renames it over the destination at the end (CAtomicSave), so a copy that
/// fails, or a crash, leaves the existing destination whole and removes the
/// new file; on a file system without kCapabilityRename it opens the
/// destination with 0x28 (create or truncate) and a failure leaves it damaged.
///
/// Deriving: overriding GetFullPath, GetCurrentWorkingDirectory or a CopyFileW
/// form hides the other forms of that name; bring them back with a
/// using-declaration (using IFileSystem::GetFullPath;).
///
/// Threads: the static operations touch no shared state. Whether an object
/// may be used from several threads is told by each file system.
#pragma once

#include <cstdint>

#include "qv/core/DateTime.h"
#include "qv/core/Export.h"
#include "qv/core/String.h"
#include "qv/filesystems/DirectoryEntry.h"
#include "qv/filesystems/DirectoryListing.h"
#include "qv/filesystems/PathAlgebra.h"

namespace qv {

class IFile;
class IDirectoryMonitor;

/// Progress of a copy: total bytes, bytes done, the caller's context.
using CopyProgressRoutine = void (*)(int64_t total, int64_t done, void *context);

/// Bits of GetCapabilities (see the top of this file).
///@{
inline constexpr uint32_t kCapabilityCopyWithin = 0x2;
inline constexpr uint32_t kCapabilityCopyAcross = 0x4;
inline constexpr uint32_t kCapabilityRename = 0x8;
///@}

/// Block size of the copy loop.
inline constexpr uint32_t kCopyBlockSize = 0x80000;

/// @copydoc IFileSystem.h
class QV_API IFileSystem : public CPathAlgebra {
public:
    /// The namespace's types under the names callers use inside a file system.
    ///@{
    using CDirectoryEntry = ::qv::CDirectoryEntry;
    using CDirectoryListing = ::qv::CDirectoryListing;
    using IDirectoryMonitor = ::qv::IDirectoryMonitor;
    ///@}

    /// The base holds no state; copies are trivial.
    ///@{
    IFileSystem() = default;
    IFileSystem(IFileSystem const &) = default;
    IFileSystem &operator=(IFileSystem const &) = default;
    ///@}

    /// ---- The contract, in slot order ----
    virtual ~IFileSystem();
    /// A monitor of dir that is not started yet, or null (the base: null).
    ///@{
    virtual IDirectoryMonitor *MonitorDirectory(char16_t const *dir, uint32_t flags);
    virtual uint32_t GetCapabilities(); ///< 0
    virtual IFile *CreateFileW(char16_t const *path, uint32_t flags) = 0;
    virtual bool Defragment(); ///< false
    ///@}

protected:
    /// The copies a file system does itself (see the capabilities). The base
    /// forms do nothing and give false.
    ///@{
    virtual bool CopyFileW(IFileSystem *src, char16_t const *srcPath, char16_t const *dstPath, bool overwrite,
                           CopyProgressRoutine progress, void *context);
    virtual bool CopyFileW(char16_t const *srcPath, IFileSystem *dst, char16_t const *dstPath, bool overwrite,
                           CopyProgressRoutine progress, void *context);
    virtual bool CopyFileW(IFile *src, char16_t const *dstPath, int64_t count, bool overwrite,
                           CopyProgressRoutine progress, void *context);
    virtual bool CopyFileW(IFile *src, char16_t const *dstPath, bool overwrite, CopyProgressRoutine progress,
                           void *context);
    virtual bool CopyFileW(char16_t const *srcPath, IFile *dst, CopyProgressRoutine progress, void *context);
    virtual bool CopyFileW(char16_t const *srcPath, char16_t const *dstPath, bool overwrite,
                           CopyProgressRoutine progress, void *context);
    ///@}

public:
    /// Entries of dir whose names match pattern ('*', '?', alternatives split
    /// by '|'; null: all). An empty directory gives an empty listing.
    ///@{
    virtual CDirectoryListing GetDirectoryListing(char16_t const *dir, char16_t const *pattern) = 0;
    virtual CDirectoryEntry GetFileInfo(char16_t const *path) = 0;
    virtual bool SetFileAttributesW(char16_t const *path, uint32_t attributes); ///< false
    virtual bool SetFileModifiedTime(char16_t const *path, CDateTime time);     ///< false
    ///@}
    /// The full path of path into out (size units with terminator); out may
    /// be path itself. False if it does not fit.
    ///@{
    virtual bool GetFullPath(char16_t *out, char16_t const *path, int size) = 0;
    virtual bool DeleteFileW(char16_t const *path) = 0;
    virtual bool CreateDirectoryW(char16_t const *path, bool recursive) = 0;
    virtual bool RemoveDirectoryW(char16_t const *path, bool recursive) = 0;
    virtual bool SetCurrentWorkingDirectory(char16_t const *path) = 0;
    virtual bool GetCurrentWorkingDirectory(char16_t *out, int size) = 0;
    ///@}
    /// Deliberately only IsFile: false for a directory.
    ///@{
    virtual bool FileExists(char16_t const *path);
    virtual bool IsFile(char16_t const *path);      ///< GetFileInfo has kAttributeFile
    virtual bool IsDirectory(char16_t const *path); ///< GetFileInfo has kAttributeDirectory
    ///@}
    /// Added after the designed slots: see "Renaming" above. False: nothing moved.
    virtual bool RenameFileW(char16_t const *oldPath, char16_t const *newPath); ///< false

    /// ---- Helpers (2,048-unit buffers; empty where the virtual fails) ----
    ///@{
    CString GetCurrentWorkingDirectory();
    CString GetFullPath(CString path);
    ///@}

    /// ---- Copying ----
    static bool CopyFileW(IFile *src, IFile *dst, int64_t count, CopyProgressRoutine progress, void *context);
    /// All of src from its start.
    static bool CopyFileW(IFile *src, IFile *dst, CopyProgressRoutine progress, void *context);
    /// The file at path in fs, from its start. The source opens with 0x11
    /// (open or create, read): a missing source becomes an empty file, which
    /// existing callers depend on.
    static bool CopyFileW(IFileSystem *fs, char16_t const *path, IFile *dst, CopyProgressRoutine progress,
                          void *context);
    /// All of src from its start into path in fs.
    static bool CopyFileW(IFile *src, IFileSystem *fs, char16_t const *path, bool overwrite,
                          CopyProgressRoutine progress, void *context);
    /// count bytes from src's present position into path in fs.
    static bool CopyFileW(IFile *src, IFileSystem *fs, char16_t const *path, int64_t count, bool overwrite,
                          CopyProgressRoutine progress, void *context);
    /// Between two file systems, or within one (through its own copy, or a
    /// temporary disk file when it copies only across). Null arguments: false.
    static bool CopyFileW(IFileSystem *src, char16_t const *srcPath, IFileSystem *dst, char16_t const *dstPath,
                          bool overwrite, CopyProgressRoutine progress, void *context);
};

} // namespace qv
