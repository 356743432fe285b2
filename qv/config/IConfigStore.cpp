// IConfigStore: the current path, navigation and the subtree copy.
#include "qv/config/IConfigStore.h"

#include <cstdarg>

#include "qv/core/WideFormat.h"
#include "qv/filesystems/Path.h"
#include "qv/filesystems/PathAlgebra.h"

namespace qv {

RECT const IConfigStore::DefaultRect = {0, 0, 0, 0};
LOGFONTW const IConfigStore::DefaultFont = {-12, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 0, 0, u"Arial"};

IConfigStore::IConfigStore() : current(u"/") {}

IConfigStore::~IConfigStore() = default;

CString IConfigStore::ExpandPath(char16_t const *name) const {
    char16_t const *text = name ? name : u"";
    // ExpandRelativePath appends an absolute path to its base, so an
    // absolute name starts from the root instead.
    CString base = CPathAlgebra::IsSeparator(text[0]) ? CString(u"/") : current;
    CString expanded = path::ExpandRelativePath(base, CString(text), u'/');
    if (expanded.GetLength() >= PathSize) expanded.Truncate(PathSize - 1);
    return expanded.IsEmpty() ? CString(u"/") : expanded; // ".." above the root stays there
}

bool IConfigStore::cd(char16_t const *path) {
    current = ExpandPath(path);
    return true;
}

bool IConfigStore::cdin(char16_t const *format, ...) {
    char16_t pattern[PathSize];
    char16_t formed[PathSize];
    swprintf(pattern, PathSize, u".\\%s", format ? format : u"");
    va_list args;
    va_start(args, format);
    vswprintf(formed, PathSize, pattern, args);
    va_end(args);
    return cd(formed);
}

bool IConfigStore::cdout() {
    return cd(u"..");
}

bool IConfigStore::unlink(char16_t const *) {
    return false;
}

bool IConfigStore::copy(IConfigStore &target, char16_t const *targetPath, char16_t const *sourcePath) {
    return copy(target, targetPath, *this, sourcePath);
}

bool IConfigStore::copy(IConfigStore &target, char16_t const *targetPath, IConfigStore &source,
                        char16_t const *sourcePath) {
    TArray<CString> names;
    source.list(names, sourcePath);
    bool allWell = true;
    for (uint32_t i = 0; i < names.GetSize(); ++i) {
        CString sourceChild = path::MakePath(CString(sourcePath), names[i], u'/');
        CString targetChild = path::MakePath(CString(targetPath), names[i], u'/');
        bool done = source.isLeaf(sourceChild) ? source.copyValue(target, targetChild, sourceChild)
                                               : copy(target, targetChild, source, sourceChild);
        allWell = done && allWell;
    }
    return allWell;
}

} // namespace qv
