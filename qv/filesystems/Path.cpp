// namespace path: each operation sizes a buffer for its whole result and calls
// the buffer form of CPathAlgebra.
#include "qv/filesystems/Path.h"

#include "qv/filesystems/PathAlgebra.h"
#include "qv/filesystems/PathBuffer.h"

namespace qv::path {

namespace {

using Paths = CPathAlgebra;

char16_t const *Text(CString const &s) {
    return s.GetUTF16();
}

int64_t Units(CString const &s) {
    return s.GetLength();
}

// A result no longer than the source plus extra units.
template <class Edit> CString Edited(CString const &source, int64_t extra, Edit edit) {
    return FillPathBuffer(Units(source) + extra + 1, edit);
}

} // namespace

bool WildcardMatch(CString const &patterns, CString const &name) {
    return Paths::WildcardMatch(Text(patterns), Text(name));
}

CString ConvertSlashes(CString const &path, char16_t slash) {
    return Edited(path, 0, [&](char16_t *buffer, int size) { Paths::ConvertSlashes(buffer, Text(path), size, slash); });
}

CString GetFilename(CString const &path) {
    return CString(Paths::GetFilename(Text(path)));
}

CString GetExtension(CString const &path) {
    return CString(Paths::GetExtension(Text(path)));
}

CString GetDirectory(CString const &path) {
    return Edited(path, 0, [&](char16_t *buffer, int size) { Paths::GetDirectory(buffer, Text(path), size); });
}

CString MakePath(CString const &dir, CString const &file, char16_t slash) {
    return Paths::MakePath(dir, file, slash);
}

CString RemoveExtension(CString const &path) {
    return Edited(path, 0, [&](char16_t *buffer, int size) { Paths::RemoveExtension(buffer, Text(path), size); });
}

CString MakeFilename(CString const &name, CString const &extension) {
    return Edited(name, Units(extension),
                  [&](char16_t *buffer, int size) { Paths::MakeFilename(buffer, Text(name), Text(extension), size); });
}

// The anchor adds one separator and the steps at most one more than relative
// holds.
CString ExpandRelativePath(CString const &base, CString const &relative, char16_t slash) {
    return Edited(base, Units(relative) + 2, [&](char16_t *buffer, int size) {
        Paths::ExpandRelativePath(buffer, Text(base), Text(relative), slash, size);
    });
}

CString RemoveTrailingSlash(CString const &path) {
    return Edited(path, 0, [&](char16_t *buffer, int size) { Paths::RemoveTrailingSlash(buffer, Text(path), size); });
}

CString AppendTrailingSlash(CString const &path, char16_t slash) {
    return Edited(path, 1,
                  [&](char16_t *buffer, int size) { Paths::AppendTrailingSlash(buffer, Text(path), slash, size); });
}

CString RemoveLeadingSlash(CString const &path) {
    return Edited(path, 0, [&](char16_t *buffer, int size) { Paths::RemoveLeadingSlash(buffer, Text(path), size); });
}

CString AppendLeadingSlash(CString const &path, char16_t slash) {
    return Edited(path, 1,
                  [&](char16_t *buffer, int size) { Paths::AppendLeadingSlash(buffer, Text(path), slash, size); });
}

int SplitPath(TArray<CString> &items, CString const &path) {
    return Paths::SplitPath(items, Text(path));
}

bool InDirectory(CString const &dir, CString const &path) {
    return Paths::InDirectory(Text(dir), Text(path));
}

bool IsChildOfDirectory(CString const &dir, CString const &path) {
    return Paths::IsChildOfDirectory(Text(dir), Text(path));
}

bool IsSamePath(CString const &a, CString const &b) {
    return Paths::IsSamePath(Text(a), Text(b));
}

// Each item of from becomes "../" (an item takes at least two units with its
// separator); to comes through with at most one separator more.
CString RelativePath(CString const &from, CString const &to) {
    return Edited(to, 2 * Units(from) + 2,
                  [&](char16_t *buffer, int size) { Paths::RelativePath(buffer, Text(from), Text(to), size); });
}

CString GetFirstPathItem(CString const &path) {
    return Edited(path, 0, [&](char16_t *buffer, int size) { Paths::GetFirstPathItem(buffer, Text(path), size); });
}

CString MakeSafeFilename(CString const &name) {
    return Paths::MakeSafeFilename(name);
}

bool IsWindowsPath(CString const &path) {
    return Paths::IsWindowsPath(Text(path));
}

bool IsUNCPath(CString const &path) {
    return Paths::IsUNCPath(Text(path));
}

bool IsUnixPath(CString const &path) {
    return Paths::IsUnixPath(Text(path));
}

CString ChangeExtension(CString const &path, CString const &extension) {
    return Edited(path, Units(extension), [&](char16_t *buffer, int size) {
        Paths::MakeFilename(buffer, Paths::RemoveExtension(buffer, Text(path), size), Text(extension), size);
    });
}

} // namespace qv::path
