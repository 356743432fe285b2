#include "qv/platform/FullPath.h"

#include "qv/core/WideChar.h"
#include "qv/platform/WorkingDirectory.h"

namespace qv {

namespace {

bool IsSeparator(char16_t c) {
    return c == u'/' || c == u'\\';
}

// Appends the names of text to out (which holds "/" or "/a/b"), resolving
// "." and ".." as it goes.
void AppendNames(CString &out, char16_t const *text) {
    for (char16_t const *p = text; *p;) {
        while (IsSeparator(*p))
            ++p;
        char16_t const *name = p;
        while (*p && !IsSeparator(*p))
            ++p;
        int length = int(p - name);
        if (length == 0 || (length == 1 && name[0] == u'.')) continue;
        if (length == 2 && name[0] == u'.' && name[1] == u'.') {
            int slash = out.ReverseFindChar(u'/');
            out.Truncate(slash > 0 ? slash : 1);
            continue;
        }
        if (out.GetLength() > 1) out += u"/";
        out.Concatenate(name, length);
    }
}

} // namespace

CString CompletePath(char16_t const *base, char16_t const *path) {
    CString out(u"/");
    if (!IsSeparator(path[0])) AppendNames(out, base);
    AppendNames(out, path);
    size_t length = wcslen(path);
    if (length && IsSeparator(path[length - 1]) && out.GetLength() > 1) out += u"/";
    return out;
}

bool FullDiskPath(char16_t const *path, CString &out) {
    if (!path) return false;
    CString base;
    if (!IsSeparator(path[0]) && !GetWorkingDirectory(base)) return false;
    out = CompletePath(base.GetUTF16(), path);
    return true;
}

} // namespace qv
