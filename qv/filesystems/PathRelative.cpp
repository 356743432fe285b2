// RelativePath: the way from one directory to a path, always with '/'.
#include "qv/core/StringFunctions.h"
#include "qv/filesystems/PathAlgebra.h"
#include "qv/filesystems/PathBuilder.h"
#include "qv/filesystems/PathItems.h"

namespace qv {

namespace {

// A drive, a server or a scheme: two such paths with no item in common have
// no way between them.
bool HasOwnRoot(char16_t const *path) {
    return CPathAlgebra::IsWindowsPath(path) || CPathAlgebra::IsUNCPath(path) || CPathAlgebra::IsURL(path);
}

} // namespace

char16_t *CPathAlgebra::RelativePath(char16_t *dst, char16_t const *from, char16_t const *to, int size) {
    if (size < 1) return dst;
    CStableText start(from, dst, size), goal(to, dst, size);
    size_t fromItems = CountPathItems(start.Text());
    if (fromItems == 0 || CountPathItems(goal.Text()) == 0) return StrCpy(dst, goal.Text(), size_t(size));
    size_t common = CountCommonPathItems(start.Text(), goal.Text());
    if (common == 0 && (HasOwnRoot(start.Text()) || HasOwnRoot(goal.Text())))
        return StrCpy(dst, goal.Text(), size_t(size));

    CPathBuilder out(dst, size, u"", 0);
    for (size_t up = common; up < fromItems; ++up)
        out.AddItem(u"..", 2, u'/');
    CPathItems down(goal.Text());
    for (size_t skipped = 0; skipped < common; ++skipped)
        down.Next();
    while (down.Next())
        out.AddItem(down.Item(), down.Length(), u'/');
    return dst;
}

} // namespace qv
