/// @file
/// CDirectoryListing: the entries of one directory as a file system listed
/// them (reached as IFileSystem::CDirectoryListing). A value: copying copies
/// the entries. The entries are read through the TArray interface it derives
/// from (GetSize, GetAt, operator[]).
///
/// fileSystem is the file system that made the listing (not owned, may be
/// null); directory is the listed directory, cut to 511 units.
///
/// Sort(flags), three fields in one word:
///   flags & 0xF    keys: 0 name, size, time; 1 size, name, time;
///                  2 time, name, size (other values as 0)
///   flags & 0xF0   0x10 directories ahead of files, 0x20 files ahead
///   flags & 0xF00  0x200 descending
/// Names compare without regard to case (folded to lower case), sizes as
/// signed 64-bit numbers, times as CDateTime. The directory/file grouping is
/// final and not turned by "descending", so 0x210 keeps directories first and
/// turns the order only within directories and within files. The sort is
/// stable: entries whose keys are all equal keep the order they were listed in.
///
/// Failure: an entry that cannot be appended (heap exhausted) is dropped.
/// Threads: a value; one thread at a time.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/filesystems/DirectoryEntry.h"

namespace qv {

class IFileSystem;

/// Sort flags of CDirectoryListing::Sort.
///@{
inline constexpr uint32_t kSortByName = 0x0;
inline constexpr uint32_t kSortBySize = 0x1;
inline constexpr uint32_t kSortByTime = 0x2;
inline constexpr uint32_t kSortDirectoriesFirst = 0x10;
inline constexpr uint32_t kSortFilesFirst = 0x20;
inline constexpr uint32_t kSortDescending = 0x200;
///@}

/// @copydoc DirectoryListing.h
class QV_API CDirectoryListing : public TArray<CDirectoryEntry> {
public:
    /// An empty listing of listed (null: empty, cut to 511 units) made by owner.
    explicit CDirectoryListing(IFileSystem *owner = nullptr, char16_t const *listed = nullptr);
    /// Copies the entries, the file system pointer and the directory.
    ///@{
    CDirectoryListing(CDirectoryListing const &other) = default;
    CDirectoryListing &operator=(CDirectoryListing const &other) = default;
    ///@}

    void Sort(uint32_t flags); ///< stable, by the kSort flags (see the top of this file)

    IFileSystem *fileSystem;                     ///< made the listing; not owned, may be null
    char16_t directory[kDirectoryEntryTextSize]; ///< the listed directory
};

} // namespace qv
