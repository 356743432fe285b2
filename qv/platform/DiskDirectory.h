// Directories and names on the disk, for the disk file system. Internal to
// libqv. Paths are library text (see DiskName.h for how they reach the
// disk); every call is thread-safe in itself.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/String.h"

namespace qv {

struct DiskEntryStatus {
    bool directory = false;
    bool link = false;          // the name itself is a symbolic link
    int64_t size = 0;           // bytes; 0 for directories
    uint64_t modifiedTicks = 0; // 100 ns ticks since 1601-01-01 UTC
};

struct DiskDirectoryItem {
    CString name;
    DiskEntryStatus status;
};

// What path names, following links (a dangling link is told as itself).
// False if there is nothing.
bool GetDiskEntryStatus(char16_t const *path, DiskEntryStatus &status);
// Every name in dir but "." and "..", in the system's order. False if dir
// cannot be read.
bool ListDiskDirectory(char16_t const *dir, TArray<DiskDirectoryItem> &items);
bool MakeDiskDirectory(char16_t const *path);   // one level
bool RemoveDiskDirectory(char16_t const *path); // an empty one
bool RemoveDiskName(char16_t const *path);      // a file or link, never a directory
bool RenameDiskName(char16_t const *from, char16_t const *to); // see RenameDiskFile
bool SetDiskWorkingDirectory(char16_t const *path);

} // namespace qv
