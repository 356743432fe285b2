/// @file
/// Entries that file systems without real directories make up for a listing:
/// a directory implied by the paths below it, and the check that a name is
/// listed already. Internal to libqv.
#pragma once

#include "qv/core/DateTime.h"
#include "qv/core/WideChar.h"
#include "qv/filesystems/DirectoryEntry.h"
#include "qv/filesystems/DirectoryListing.h"

namespace qv {

/// A directory entry dated now, since nothing stores a time for it.
inline CDirectoryEntry MadeUpDirectory(char16_t const *name, char16_t const *path) {
    CDirectoryEntry entry;
    entry.SetName(name);
    entry.SetPath(path);
    entry.attributes = kAttributeDirectory;
    entry.modified = CDateTime::NewNow();
    return entry;
}

/// Whether listing has an entry of that name, without regard to case.
inline bool IsListed(CDirectoryListing const &listing, char16_t const *name) {
    for (uint32_t i = 0; i < listing.GetSize(); ++i)
        if (_wcsicmp(listing.GetAt(i).name, name) == 0) return true;
    return false;
}

} // namespace qv
