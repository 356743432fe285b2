// Paths as lists of items: splitting, the first item, and comparing item by
// item without regard to case. Nothing resolves "." or "..".
#include "qv/filesystems/PathItems.h"

#include "qv/core/StringFunctions.h"
#include "qv/core/WideChar.h"
#include "qv/filesystems/PathBuilder.h"

namespace qv {

size_t CountPathItems(char16_t const *path) {
    size_t count = 0;
    for (CPathItems items(path); items.Next();)
        ++count;
    return count;
}

size_t CountCommonPathItems(char16_t const *a, char16_t const *b) {
    size_t common = 0;
    for (CPathItems x(a), y(b); x.Next() && y.Next(); ++common)
        if (x.Length() != y.Length() || _wcsnicmp(x.Item(), y.Item(), x.Length()) != 0) break;
    return common;
}

int CPathAlgebra::SplitPath(TArray<CString> &items, char16_t const *path) {
    items.Empty();
    for (CPathItems walk(path); walk.Next();) {
        CString item;
        item.Copy(walk.Item(), int(walk.Length()));
        items.Add(item);
    }
    return int(items.nItems());
}

char16_t *CPathAlgebra::GetFirstPathItem(char16_t *dst, char16_t const *path, int size) {
    if (size < 1) return dst;
    CPathItems first(path);
    if (!first.Next()) return StrCpy(dst, u"", size_t(size));
    CPathBuilder out(dst, size, first.Item(), first.Length());
    return dst;
}

bool CPathAlgebra::InDirectory(char16_t const *dir, char16_t const *path) {
    size_t dirItems = CountPathItems(dir);
    return CountPathItems(path) == dirItems + 1 && CountCommonPathItems(dir, path) == dirItems;
}

bool CPathAlgebra::IsChildOfDirectory(char16_t const *dir, char16_t const *path) {
    size_t dirItems = CountPathItems(dir);
    return CountPathItems(path) > dirItems && CountCommonPathItems(dir, path) == dirItems;
}

bool CPathAlgebra::IsSamePath(char16_t const *a, char16_t const *b) {
    size_t items = CountPathItems(a);
    return CountPathItems(b) == items && CountCommonPathItems(a, b) == items;
}

} // namespace qv
