/// @file
/// CFileStore: a CMemStore that loads and saves one whole file; the base of
/// CINIStore and CXMLStore, which supply the two IFile forms.
///
/// Load replaces the whole content (the current path becomes "/"); Save writes
/// the tree and leaves the memory as it is. A change stays in memory until
/// Save.
///
/// Load(fs, name) opens the file there (must exist, read) and closes it;
/// Load(name) does the same on the disk. Save(fs, name) and Save(name) write
/// a temporary file beside the target and rename it over the target once all
/// was written (qv/filesystems/AtomicSave.h), so a save that fails half-way
/// leaves the previous file whole. On a file system that cannot rename the save
/// writes the target directly, and a failure half-way leaves it damaged.
/// Save(IFile*) writes at the file's position and does not truncate.
///
/// Failures: false when the file cannot be opened, a read or write fails, or
/// (XML) the text does not parse. fs null means the disk.
/// Threads: one thread at a time.
#pragma once

#include "qv/config/MemStore.h"

namespace qv {

class IFile;
class IFileSystem;

/// @copydoc FileStore.h
class QV_API CFileStore : public CMemStore {
public:
    /// Reads the whole content from file (replacing what is in memory) or
    /// writes the tree to it at its position, in the derived class's form.
    /// False on a read, write or parse failure.
    ///@{
    virtual bool Load(IFile *file) = 0;
    virtual bool Save(IFile *file) = 0;
    ///@}
    /// Loads the file name in fs (null: the disk), which must exist; false
    /// when name is null or the file cannot be opened or read.
    ///@{
    bool Load(IFileSystem *fs, char16_t const *name);
    bool Load(char16_t const *name);
    ///@}
    /// Saves to the file name in fs (null: the disk) through a temporary file
    /// renamed over it; false when a write or the rename fails.
    ///@{
    bool Save(IFileSystem *fs, char16_t const *name);
    bool Save(char16_t const *name);
    ///@}
};

} // namespace qv
