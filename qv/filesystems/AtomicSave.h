/// @file
/// CAtomicSave: a whole new file written beside its target and moved over it
/// in one step, so a save that fails half-way leaves the old file whole.
///
/// The constructor opens "<path>.~qv<8 hex digits>" (a name that did not
/// exist) on the file system for reading and writing; the caller writes the
/// whole content through File() and calls Commit, which closes the file and
/// renames it over the target (on the disk, after syncing its data). A save
/// that is not committed, because the caller gave up or Commit failed, deletes
/// the temporary file and leaves the target as it was.
///
/// File systems without kCapabilityRename get the direct write instead: File()
/// is the target itself, opened with create-or-truncate, and a failure half-way
/// leaves it damaged. IsAtomic() tells which road was taken; every saver that
/// uses this class says so in its own header.
///
/// Failures: File() is null when nothing could be opened (then Commit is
/// false). Commit is false when the caller marked a failed write with Fail(),
/// or the rename failed.
///
/// Ownership: the file belongs to this object; do not delete or close it.
/// Threads: one object belongs to one thread.
#pragma once

#include "qv/core/Export.h"
#include "qv/core/String.h"

namespace qv {

class IFile;
class IFileSystem;

/// @copydoc AtomicSave.h
class QV_API CAtomicSave {
public:
    /// fs null: the disk (FileSystem).
    ///@{
    CAtomicSave(IFileSystem *fs, char16_t const *path);
    ~CAtomicSave();
    CAtomicSave(CAtomicSave const &) = delete;
    CAtomicSave &operator=(CAtomicSave const &) = delete;
    ///@}

    IFile *File() const { return file; }    ///< the file to write; null when nothing could be opened
    bool IsAtomic() const { return atomic; } ///< whether a temporary file is written (see above)
    /// Records that a write of the caller failed: Commit will give up.
    void Fail() { failed = true; }
    /// Closes the file and puts it in the target's place. Call once.
    bool Commit();

private:
    void Abandon();

    IFileSystem *fs;
    CString target;
    CString temporary; ///< empty on the direct road
    IFile *file = nullptr;
    bool atomic = false;
    bool failed = false;
};

/// Runs write over the new file and commits it; false if anything failed,
/// including write returning false.
template <class Writer> bool SaveAtomically(IFileSystem *fs, char16_t const *path, Writer &&write) {
    CAtomicSave save(fs, path);
    if (!save.File()) return false;
    if (!write(*save.File())) save.Fail();
    return save.Commit();
}

} // namespace qv
