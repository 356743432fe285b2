// Names inside a path: slashes, the file name, the extension, joining a name
// and an extension, safe names, and the kinds of path by their first units.
#include <string_view>

#include "qv/core/StringFunctions.h"
#include "qv/core/WideChar.h"
#include "qv/filesystems/PathAlgebra.h"
#include "qv/filesystems/PathBuilder.h"

namespace qv {

namespace {

bool IsUnsafeInName(char16_t c) {
    return std::u16string_view(u":/\\*?\"<>|.").find(c) != std::u16string_view::npos;
}

} // namespace

char16_t *CPathAlgebra::ConvertSlashes(char16_t *dst, char16_t const *src, int size, char16_t slash) {
    if (dst == src) return ConvertSlashes(dst, slash);
    if (size < 1) return dst;
    return ConvertSlashes(StrCpy(dst, src, size_t(size)), slash);
}

char16_t *CPathAlgebra::ConvertSlashes(char16_t *path, char16_t slash) {
    for (char16_t *p = path; *p != 0; ++p)
        if (IsSeparator(*p)) *p = slash;
    return path;
}

char16_t const *CPathAlgebra::GetFilename(char16_t const *path) {
    char16_t const *name = path;
    for (char16_t const *p = path; *p != 0; ++p)
        if (IsSeparator(*p)) name = p + 1;
    return name;
}

char16_t *CPathAlgebra::GetFilename(char16_t *dst, char16_t const *src, int size) {
    if (size < 1) return dst;
    return StrCpy(dst, GetFilename(src), size_t(size));
}

char16_t const *CPathAlgebra::GetExtension(char16_t const *path) {
    char16_t const *dot = nullptr, *separator = nullptr, *p = path;
    for (; *p != 0; ++p) {
        if (*p == u'.') dot = p;
        if (IsSeparator(*p)) separator = p;
    }
    if (dot == nullptr || (separator != nullptr && dot < separator)) return p;
    return dot;
}

char16_t *CPathAlgebra::RemoveExtension(char16_t *path) {
    path[GetExtension(path) - path] = 0;
    return path;
}

char16_t *CPathAlgebra::RemoveExtension(char16_t *dst, char16_t const *src, int size) {
    if (size < 1) return dst;
    return RemoveExtension(StrCpy(dst, src, size_t(size)));
}

char16_t *CPathAlgebra::MakeFilename(char16_t *dst, char16_t const *name, char16_t const *extension, int size) {
    if (size < 1) return dst;
    CStableText tail(extension, dst, size);
    CPathBuilder out(dst, size, name, wcslen(name));
    out.Append(tail.Text(), tail.Length());
    return dst;
}

// The dot goes too, deliberately, so that no extension survives: existing
// callers depend on it.
CString CPathAlgebra::MakeSafeFilename(CString const &name) {
    CString safe;
    safe.Copy(name.GetUTF16());
    char16_t *text = safe.GetBuffer(-1);
    for (char16_t *p = text; *p != 0; ++p)
        if (IsUnsafeInName(*p)) *p = u'_';
    safe.ReleaseBuffer();
    return safe;
}

bool CPathAlgebra::IsWindowsPath(char16_t const *path) {
    return IsAsciiLetter(path[0]) && path[1] == u':';
}

bool CPathAlgebra::IsUNCPath(char16_t const *path) {
    return IsSeparator(path[0]) && IsSeparator(path[1]);
}

bool CPathAlgebra::IsUnixPath(char16_t const *path) {
    return IsSeparator(path[0]) && !IsSeparator(path[1]);
}

bool CPathAlgebra::IsURL(char16_t const *path) {
    char16_t const *p = path;
    while (IsAsciiLetter(*p))
        ++p;
    return p != path && p[0] == u':' && IsSeparator(p[1]);
}

} // namespace qv
