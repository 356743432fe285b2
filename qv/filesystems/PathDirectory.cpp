// The directory of a path, joining a directory and a name, and the separators
// at either end of a path.
#include <algorithm>
#include <cstring>

#include "qv/core/StringFunctions.h"
#include "qv/filesystems/PathAlgebra.h"
#include "qv/filesystems/PathBuffer.h"
#include "qv/filesystems/PathBuilder.h"

namespace qv {

// The text is copied over itself, dropping doubled separators except a
// leading pair; the cut then depends on where the last kept separator stands.
// A lone leading pair gives "/" ("//srv" has the directory "/"): existing
// callers depend on this exact walk.
char16_t *CPathAlgebra::GetDirectory(char16_t *path) {
    std::ptrdiff_t lastKept = -1;
    bool afterSeparator = false;
    size_t write = 0;
    for (size_t read = 0; path[read] != 0; ++read) {
        char16_t c = path[read];
        if (IsSeparator(c)) {
            bool doubled = afterSeparator && read != 1; // the unit in front is a separator, not the first unit
            afterSeparator = true;
            if (doubled) continue;
            lastKept = std::ptrdiff_t(write);
        } else {
            afterSeparator = false;
        }
        path[write++] = c;
    }
    path[write] = 0;
    if (lastKept < 0)
        path[0] = 0;
    else if (lastKept == 0)
        path[1] = 0;
    else
        path[lastKept] = 0;
    return path;
}

char16_t *CPathAlgebra::GetDirectory(char16_t *dst, char16_t const *src, int size) {
    if (size < 1) return dst;
    return GetDirectory(StrCpy(dst, src, size_t(size)));
}

char16_t *CPathAlgebra::MakePath(char16_t *dst, char16_t const *dir, char16_t const *file, char16_t slash, int size) {
    if (size < 1) return dst;
    CStableText name(file, dst, size);
    CPathBuilder out(dst, size, dir, wcslen(dir));
    out.AppendBehindSeparator(name.Text(), name.Length(), slash);
    return dst;
}

CString CPathAlgebra::MakePath(CString const &dir, CString const &file, char16_t slash) {
    return FillPathBuffer(int64_t(dir.GetLength()) + file.GetLength() + 2, [&](char16_t *buffer, int size) {
        MakePath(buffer, dir.GetUTF16(), file.GetUTF16(), slash, size);
    });
}

char16_t *CPathAlgebra::RemoveTrailingSlash(char16_t *path) {
    size_t length = wcslen(path);
    if (length > 0 && IsSeparator(path[length - 1])) path[length - 1] = 0;
    return path;
}

char16_t *CPathAlgebra::RemoveTrailingSlash(char16_t *dst, char16_t const *src, int size) {
    if (size < 1) return dst;
    return RemoveTrailingSlash(StrCpy(dst, src, size_t(size)));
}

char16_t *CPathAlgebra::AppendTrailingSlash(char16_t *path, char16_t slash, int size) {
    return AppendTrailingSlash(path, path, slash, size);
}

char16_t *CPathAlgebra::AppendTrailingSlash(char16_t *dst, char16_t const *src, char16_t slash, int size) {
    if (size < 1) return dst;
    CPathBuilder out(dst, size, src, wcslen(src));
    if (out.Length() > 0 && !out.EndsWithSeparator()) out.Append(slash);
    return dst;
}

char16_t *CPathAlgebra::RemoveLeadingSlash(char16_t *path) {
    if (IsSeparator(path[0])) std::memmove(path, path + 1, wcslen(path) * sizeof(char16_t)); // terminator included
    return path;
}

char16_t *CPathAlgebra::RemoveLeadingSlash(char16_t *dst, char16_t const *src, int size) {
    if (size < 1) return dst;
    return RemoveLeadingSlash(StrCpy(dst, src, size_t(size)));
}

char16_t *CPathAlgebra::AppendLeadingSlash(char16_t *path, char16_t slash, int size) {
    return AppendLeadingSlash(path, path, slash, size);
}

char16_t *CPathAlgebra::AppendLeadingSlash(char16_t *dst, char16_t const *src, char16_t slash, int size) {
    if (size < 1) return dst;
    if (IsSeparator(src[0])) return StrCpy(dst, src, size_t(size));
    if (size == 1) return StrCpy(dst, u"", 1);
    size_t kept = std::min(wcslen(src), size_t(size) - 2); // the slash takes one place
    std::memmove(dst + 1, src, kept * sizeof(char16_t));
    dst[0] = slash;
    dst[kept + 1] = 0;
    return dst;
}

} // namespace qv
