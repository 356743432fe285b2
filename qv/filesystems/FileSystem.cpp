#include "qv/filesystems/FileSystem.h"

namespace qv {

namespace {
// Placeholder until the disk file system exists: it carries identity only.
class DiskFileSystemPlaceholder final : public IFileSystem {};
} // namespace

IFileSystem &GetFileSystem() {
    static DiskFileSystemPlaceholder disk;
    return disk;
}

} // namespace qv
