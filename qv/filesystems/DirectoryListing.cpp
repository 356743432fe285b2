#include "qv/filesystems/DirectoryListing.h"

#include "qv/core/StringFunctions.h"
#include "qv/core/WideChar.h"

namespace qv {

namespace {

enum class Key { Name, Size, Time };

constexpr Key kKeyRows[3][3] = {
    {Key::Name, Key::Size, Key::Time},
    {Key::Size, Key::Name, Key::Time},
    {Key::Time, Key::Name, Key::Size},
};

template <class T> int Order(T const &a, T const &b) {
    return a < b ? -1 : b < a ? 1 : 0;
}

int CompareKey(Key key, CDirectoryEntry const &a, CDirectoryEntry const &b) {
    switch (key) {
    case Key::Name:
        return _wcsicmp(a.name, b.name);
    case Key::Size:
        return Order(a.size, b.size);
    case Key::Time:
        return Order(a.modified, b.modified);
    }
    return 0;
}

// -1 or 1 when the grouping of flags puts one of a and b first, else 0.
int CompareGroup(uint32_t flags, CDirectoryEntry const &a, CDirectoryEntry const &b) {
    int directoriesFirst = (flags & 0xF0) == kSortDirectoriesFirst ? -1 : (flags & 0xF0) == kSortFilesFirst ? 1 : 0;
    if (a.IsDirectory() && b.IsFile()) return directoriesFirst;
    if (a.IsFile() && b.IsDirectory()) return -directoriesFirst;
    return 0;
}

int CompareEntries(void *context, CDirectoryEntry const *a, CDirectoryEntry const *b) {
    uint32_t flags = *static_cast<uint32_t const *>(context);
    if (int group = CompareGroup(flags, *a, *b)) return group;
    uint32_t row = flags & 0xF;
    int result = 0;
    for (Key key : kKeyRows[row < 3 ? row : 0]) {
        result = CompareKey(key, *a, *b);
        if (result) break;
    }
    return (flags & 0xF00) == kSortDescending ? -result : result;
}

} // namespace

CDirectoryListing::CDirectoryListing(IFileSystem *owner, char16_t const *listed) : fileSystem(owner), directory{} {
    StrCpy(directory, listed ? listed : u"", kDirectoryEntryTextSize);
}

void CDirectoryListing::Sort(uint32_t flags) {
    TArray<CDirectoryEntry>::Sort(&CompareEntries, &flags);
}

} // namespace qv
