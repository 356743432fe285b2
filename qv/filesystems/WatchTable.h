/// @file
/// CWatchTable: which directory of a watched tree each watch key stands for.
/// Internal to libqv (exported for its tests).
///
/// Paths are relative to the tree's root, '/'-separated, without a leading or
/// trailing separator; the root itself is the empty path. Names compare
/// case-sensitively, as disk names do.
///
/// Threads: none of its own; a table belongs to one monitor thread.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "qv/core/Export.h"
#include "qv/core/String.h"

namespace qv {

/// @copydoc WatchTable.h
class QV_API CWatchTable {
public:
    /// Sets the directory of key (a key seen again takes the new path).
    ///@{
    void Add(int32_t key, CString const &path);
    void Remove(int32_t key);
    ///@}
    /// The directory of key, or null for a key the table does not know.
    CString const *Find(int32_t key) const;
    /// The keys of path and of every directory below it.
    std::vector<int32_t> KeysUnder(char16_t const *path) const;
    /// The directory from, and everything below it, now lives at to.
    ///@{
    void Rename(char16_t const *from, char16_t const *to);
    bool HasRoot() const;
    size_t Count() const { return directories.size(); }
    ///@}

private:
    std::map<int32_t, CString> directories;
};

/// dir/name, or name alone when dir is the root.
QV_API CString JoinWatchPath(CString const &dir, char16_t const *name);

} // namespace qv
