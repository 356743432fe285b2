/// @file
/// CPathAlgebra: the static path operations that every file system shares
/// (IFileSystem inherits them, so IFileSystem::GetFilename and its kin work).
/// Paths are NUL-terminated char16_t text; '/' and '\' are both separators
/// everywhere, and paths and path items compare without regard to case
/// (_wcsicmp folding). Nothing here touches a disk or resolves a link.
///
/// Buffers. A "buffer form" writes its result into dst and returns dst. dst
/// holds `size` units, terminator included; the default is PathBufferSize
/// (512 units, the library's usual path buffer); a caller with a smaller buffer
/// (260 units, say) passes its size. A result longer than size - 1 units is cut
/// there, and the text is always terminated, so no input can write past the
/// buffer: an over-long source is cut first and the operation then works on the
/// cut text. A size below 1 writes nothing. The forms with a separate source
/// copy it into dst first and then work in place; dst may be that source
/// (MakePath: dir) itself, and any other overlap of a source with dst is safe as
/// well (such a source is copied aside first). In-place forms without a size
/// only ever shorten their text.
///
/// Failure. Path operations do not fail and have no error value. Pointers must
/// not be null.
///
/// Threads. No shared state: any operation may run on any thread.
///
/// Letters (IsWindowsPath, IsURL) are those of the "C" locale: ASCII a-z, A-Z.
/// Case folding is qv::towlower.
#pragma once

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/core/String.h"

namespace qv {

/// @copydoc PathAlgebra.h
class QV_API CPathAlgebra {
public:
    /// The usual size of a path buffer in units, terminator included.
    static constexpr int PathBufferSize = 512;

    static bool IsSeparator(char16_t c) { return c == u'/' || c == u'\\'; } ///< '/' or a backslash

    /// Every '/' and '\' becomes slash. The copying form copies src with
    /// StrCpy limited to size units first, unless dst is src (then the whole
    /// text is converted and size is not looked at).
    ///@{
    static char16_t *ConvertSlashes(char16_t *dst, char16_t const *src, int size, char16_t slash);
    static char16_t *ConvertSlashes(char16_t *path, char16_t slash);
    ///@}

    /// Just behind the last separator of either kind, or the start.
    ///@{
    static char16_t const *GetFilename(char16_t const *path);
    static char16_t *GetFilename(char16_t *path) {
        return const_cast<char16_t *>(GetFilename(static_cast<char16_t const *>(path)));
    }
    static char16_t *GetFilename(char16_t *dst, char16_t const *src, int size = PathBufferSize);
    ///@}

    /// The last '.', dot included; the terminator if there is no dot or the
    /// last dot stands ahead of the last separator.
    ///@{
    static char16_t const *GetExtension(char16_t const *path);
    static char16_t *GetExtension(char16_t *path) {
        return const_cast<char16_t *>(GetExtension(static_cast<char16_t const *>(path)));
    }
    ///@}
    /// A terminator where GetExtension points.
    ///@{
    static char16_t *RemoveExtension(char16_t *path);
    static char16_t *RemoveExtension(char16_t *dst, char16_t const *src, int size = PathBufferSize);
    ///@}

    /// The directory part, copied over itself: a separator right behind a
    /// separator is dropped unless that one stood at the very start (a leading
    /// "//" survives). No separator kept gives the empty text; the last one at
    /// the start is kept ("/file" gives "/"); otherwise the text ends in front
    /// of the last one ("a/b/" gives "a/b").
    ///@{
    static char16_t *GetDirectory(char16_t *path);
    static char16_t *GetDirectory(char16_t *dst, char16_t const *src, int size = PathBufferSize);
    ///@}

    /// dir, then slash unless dir ends in a separator of either kind, then
    /// file. An empty dir gives slash and file.
    ///@{
    static char16_t *MakePath(char16_t *dst, char16_t const *dir, char16_t const *file, char16_t slash,
                              int size = PathBufferSize);
    static CString MakePath(CString const &dir, CString const &file, char16_t slash);
    ///@}
    /// Plain concatenation; the extension brings its own dot.
    static char16_t *MakeFilename(char16_t *dst, char16_t const *name, char16_t const *extension,
                                  int size = PathBufferSize);

    /// base (with a separator appended by MakePath: the anchor), then each item
    /// of relative cut at every separator: "." goes back to the anchor, ".."
    /// drops the last separator of the text and everything behind the one
    /// before it (no separator left: the empty text), any other item (also an
    /// empty one) is added with MakePath, or taken as it stands by an empty
    /// text. A separator at the end of relative adds no step. An empty base
    /// anchors at slash, as MakePath makes it. An absolute relative is simply
    /// appended: callers decide first.
    static char16_t *ExpandRelativePath(char16_t *dst, char16_t const *base, char16_t const *relative, char16_t slash,
                                        int size = PathBufferSize);

    /// One separator at the end is removed, or slash is added; the empty text
    /// stays empty in both.
    ///@{
    static char16_t *RemoveTrailingSlash(char16_t *path);
    static char16_t *RemoveTrailingSlash(char16_t *dst, char16_t const *src, int size = PathBufferSize);
    static char16_t *AppendTrailingSlash(char16_t *path, char16_t slash, int size = PathBufferSize);
    static char16_t *AppendTrailingSlash(char16_t *dst, char16_t const *src, char16_t slash, int size = PathBufferSize);
    ///@}
    /// One separator in front is removed, or slash is put in front (the empty
    /// text gets the slash).
    ///@{
    static char16_t *RemoveLeadingSlash(char16_t *path);
    static char16_t *RemoveLeadingSlash(char16_t *dst, char16_t const *src, int size = PathBufferSize);
    static char16_t *AppendLeadingSlash(char16_t *path, char16_t slash, int size = PathBufferSize);
    static char16_t *AppendLeadingSlash(char16_t *dst, char16_t const *src, char16_t slash, int size = PathBufferSize);
    ///@}

    /// A letter, then ':' ("c:").
    static bool IsWindowsPath(char16_t const *path);
    /// Two separators of either kind in front.
    static bool IsUNCPath(char16_t const *path);
    /// A separator in front and no second one.
    static bool IsUnixPath(char16_t const *path);
    /// One or more letters, ':', then a separator.
    static bool IsURL(char16_t const *path);

    /// Each of : / \ * ? " < > | . becomes '_'.
    static CString MakeSafeFilename(CString const &name);

    /// items is emptied and gets each run of non-separators; leading, doubled
    /// and trailing separators give no item; "." and ".." stay as they stand.
    /// Returns the number of items (an item that the array could not take is
    /// dropped silently).
    static int SplitPath(TArray<CString> &items, char16_t const *path);
    /// The first item of SplitPath, or the empty text.
    static char16_t *GetFirstPathItem(char16_t *dst, char16_t const *path, int size = PathBufferSize);
    /// By items, case-insensitively, without resolving "." or "..": path lies
    /// directly in dir; anywhere below dir; has the same items.
    ///@{
    static bool InDirectory(char16_t const *dir, char16_t const *path);
    static bool IsChildOfDirectory(char16_t const *dir, char16_t const *path);
    static bool IsSamePath(char16_t const *a, char16_t const *b);
    ///@}

    /// The way from directory from to path to, with '/' separators: ".." for
    /// each item of from behind the common ones, then to's items behind them.
    /// to as it stands when either has no items, or when nothing is common and
    /// either is a Windows path, a UNC path or a URL.
    static char16_t *RelativePath(char16_t *dst, char16_t const *from, char16_t const *to, int size = PathBufferSize);

    /// patterns is a '|'-separated list; true on the first one that matches
    /// name. '*' is any run, '?' any one unit, case is ignored. Empty pieces
    /// are skipped, so an empty list matches nothing; an empty name matches
    /// only a pattern of stars. A list of PathBufferSize units or more matches
    /// nothing (its buffer would cut it).
    static bool WildcardMatch(char16_t const *patterns, char16_t const *name);
};

} // namespace qv
