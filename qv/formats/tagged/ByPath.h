/// @file
/// Loading a format by (file system, path): open, run the loader on the open
/// file, close and delete the file object. Internal to the library.
#pragma once

#include <cstdint>

#include "qv/files/IFile.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "qv/filesystems/IFileSystem.h"

namespace qv::tagged {

/// Open flags of a load: must exist, read, share read.
constexpr uint32_t kOpenForLoad = 0x212;

/// fs null: the disk. False if the file does not open or load gives false.
template <class Load> bool LoadByPath(IFileSystem *fs, char16_t const *path, Load &&load) {
    IFileSystem *system = fs ? fs : static_cast<IFileSystem *>(FileSystem);
    IFile *f = path ? system->CreateFileW(path, kOpenForLoad) : nullptr;
    if (!f) return false;
    bool loaded = load(f);
    f->Close();
    delete f;
    return loaded;
}

} // namespace qv::tagged
