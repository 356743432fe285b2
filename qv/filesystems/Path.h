/// @file
/// The path operations of CPathAlgebra in CString form, plus ChangeExtension.
/// Each gives the buffer form a block large enough for the whole result, so
/// nothing is ever cut here. A null CString counts as the empty text. No shared
/// state: any thread. Nothing fails; an exhausted heap throws the allocator's
/// exception, as every CString does.
#pragma once

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/core/String.h"

namespace qv::path {

/// The CPathAlgebra operation of the same name (qv/filesystems/PathAlgebra.h)
/// on CString: same rules and results, the result returned as a new CString
/// instead of written into a buffer.
///@{
QV_API bool WildcardMatch(CString const &patterns, CString const &name);
QV_API CString ConvertSlashes(CString const &path, char16_t slash);
QV_API CString GetFilename(CString const &path);
QV_API CString GetExtension(CString const &path);
QV_API CString GetDirectory(CString const &path);
QV_API CString MakePath(CString const &dir, CString const &file, char16_t slash);
QV_API CString RemoveExtension(CString const &path);
QV_API CString MakeFilename(CString const &name, CString const &extension);
QV_API CString ExpandRelativePath(CString const &base, CString const &relative, char16_t slash);
QV_API CString RemoveTrailingSlash(CString const &path);
QV_API CString AppendTrailingSlash(CString const &path, char16_t slash);
QV_API CString RemoveLeadingSlash(CString const &path);
QV_API CString AppendLeadingSlash(CString const &path, char16_t slash);
QV_API int SplitPath(TArray<CString> &items, CString const &path);
QV_API bool InDirectory(CString const &dir, CString const &path);
QV_API bool IsChildOfDirectory(CString const &dir, CString const &path);
QV_API bool IsSamePath(CString const &a, CString const &b);
QV_API CString RelativePath(CString const &from, CString const &to);
QV_API CString GetFirstPathItem(CString const &path);
QV_API CString MakeSafeFilename(CString const &name);
QV_API bool IsWindowsPath(CString const &path);
QV_API bool IsUNCPath(CString const &path);
QV_API bool IsUnixPath(CString const &path);
///@}
/// extension, dot included, where GetExtension points: "a.txt" and ".tif"
/// give "a.tif", "a" gives "a.tif".
QV_API CString ChangeExtension(CString const &path, CString const &extension);

} // namespace qv::path
