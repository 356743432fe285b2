#include "qv/filesystems/FlatPaths.h"

#include "qv/core/StringFunctions.h"
#include "qv/core/WideChar.h"
#include "qv/filesystems/IFileSystem.h"
#include "qv/filesystems/Path.h"

namespace qv {

bool FlatFullPath(char16_t const *workingDirectory, char16_t *out, char16_t const *path, int size) {
    if (!out || !path || size < 1) return false;
    // Only '/' makes a path absolute; a leading '\' counts as relative, as existing callers expect.
    CString full = path[0] == u'/' ? CString(path)
                                   : path::ConvertSlashes(
                                         path::ExpandRelativePath(CString(workingDirectory), CString(path), u'/'), u'/');
    if (full.GetLength() >= size) return false;
    StrCpy(out, full.GetUTF16(), size_t(size));
    return true;
}

bool SetFlatWorkingDirectory(IFileSystem &fs, char16_t *workingDirectory, char16_t const *path) {
    char16_t full[CPathAlgebra::PathBufferSize];
    if (!path || !fs.IsDirectory(path) || !fs.GetFullPath(full, path, CPathAlgebra::PathBufferSize - 1)) return false;
    CPathAlgebra::AppendTrailingSlash(full, u'/');
    StrCpy(workingDirectory, full, CPathAlgebra::PathBufferSize);
    return true;
}

bool GetFlatWorkingDirectory(char16_t const *workingDirectory, char16_t *out, int size) {
    if (!out || size < 1 || int(wcslen(workingDirectory)) >= size) return false;
    StrCpy(out, workingDirectory, size_t(size));
    return true;
}

} // namespace qv
