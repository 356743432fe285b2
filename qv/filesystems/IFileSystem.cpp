#include "qv/filesystems/IFileSystem.h"

namespace qv {

IFileSystem::~IFileSystem() = default;

} // namespace qv
