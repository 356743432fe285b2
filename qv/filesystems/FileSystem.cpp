#include "qv/filesystems/FileSystem.h"

#include "qv/filesystems/DiskFileSystem.h"

namespace qv {

template class TSingletonPtr<CFileSystem>;
TSingletonPtr<CFileSystem> FileSystem;

IFileSystem &GetFileSystem() {
    return *FileSystem;
}

} // namespace qv
