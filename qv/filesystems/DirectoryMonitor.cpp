#include "qv/filesystems/DirectoryMonitor.h"

#include "qv/core/StringFunctions.h"

namespace qv {

IDirectoryMonitor::IDirectoryMonitor(char16_t const *dir, uint32_t flags) : flags(flags) {
    StrCpy(directory, dir ? dir : u"", kMaxDirectory);
}

IDirectoryMonitor::~IDirectoryMonitor() = default;

} // namespace qv
