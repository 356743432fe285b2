#include "qv/filesystems/DirectoryEntry.h"

#include "qv/core/StringFunctions.h"

namespace qv {

CDirectoryEntry::CDirectoryEntry() : name{}, path{}, attributes(kAttributeNone), size(0) {
    modified.Zero();
}

void CDirectoryEntry::SetName(char16_t const *newName) {
    StrCpy(name, newName ? newName : u"", kDirectoryEntryTextSize);
}

void CDirectoryEntry::SetPath(char16_t const *newPath) {
    StrCpy(path, newPath ? newPath : u"", kDirectoryEntryTextSize);
}

} // namespace qv
