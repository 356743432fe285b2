/// @file
/// CWatchTranslator: turns the raw records of a directory watcher into the
/// four events of a directory monitor, keeping track of the watched subtree.
/// Pure logic, so it can be tested with made-up records. Internal to libqv
/// (exported for its tests).
///
/// What comes out, paths relative to the watched root with '/' separators:
///   - Created: added; a new directory goes to WatchTree, which reports it
///     once it is watched, and with it what it already holds, since entries
///     made before its watch existed would otherwise be missed.
///   - Deleted: removed.
///   - ContentChanged (flags 0x1 or 0x2) and AttributesChanged (flag 0x4):
///     modified.
///   - MovedFrom followed at once by MovedTo with the same cookie: one
///     renamed (old path, new path); a renamed directory keeps its watches
///     under the new path.
///   - MovedFrom followed by anything else, or by nothing (Flush): removed;
///     a directory that left the tree has its watches ended (Unwatch).
///   - MovedTo without its first half: added; a directory that came in goes
///     to WatchTree, which reports it but not its contents.
///   - Overflow: Overflowed (a pending move is first reported as removed).
///   - WatchGone: the key leaves the table; when the root's goes, IsWatching
///     turns false.
/// Added, removed and renamed need flag 0x1. Records of keys the table does
/// not know (a directory already unwatched) are dropped.
///
/// Names are never cut: a path comes out whole however long it is.
///
/// Threads: none of its own; a translator belongs to one monitor thread.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/core/String.h"
#include "qv/filesystems/WatchRecord.h"
#include "qv/filesystems/WatchTable.h"

namespace qv {

/// What a translator asks of its monitor. Text pointers are valid during the
/// call only.
class IWatchListener {
public:
    /// Report a change: the monitor's events of the same names.
    ///@{
    virtual void FileAdded(char16_t const *path) = 0;
    virtual void FileRemoved(char16_t const *path) = 0;
    virtual void FileModified(char16_t const *path) = 0;
    virtual void FileRenamed(char16_t const *from, char16_t const *to) = 0;
    ///@}
    /// What WatchTree reports as added: nothing, the directory, or the
    /// directory and everything found below it.
    enum class EReport { Nothing, Directory, DirectoryAndContents };
    /// A directory appeared at path: watch it and every directory below it
    /// (adding the keys to the table), then report as added what report
    /// says: the directory, and each entry found below it. So a handler that
    /// hears of a directory finds it watched.
    virtual void WatchTree(char16_t const *path, EReport report) = 0;
    /// The directory of key left the tree: end the system's watch.
    virtual void Unwatch(int32_t key) = 0;
    /// Records were lost.
    virtual void Overflowed() = 0;

protected:
    ~IWatchListener() = default;
};

/// @copydoc WatchTranslator.h
class QV_API CWatchTranslator {
public:
    /// flags: the monitor's watch flags (0x1 names and last write, 0x2 size,
    /// 0x4 attributes).
    explicit CWatchTranslator(uint32_t flags);

    CWatchTable &Table() { return table; } ///< the watched directories by key
    /// Translates one raw record into calls on listener (see the top of this
    /// file).
    void Feed(SWatchRecord const &record, IWatchListener &listener);
    /// Reports a move still waiting for its second half as removed.
    void Flush(IWatchListener &listener);
    bool HasPendingMove() const { return pending; } ///< a move waits for its second half
    bool IsWatching() const { return table.HasRoot(); } ///< the table has its root directory

private:
    void Created(CString const &path, bool directory, IWatchListener &listener);
    void Appeared(CString const &path, bool directory, IWatchListener::EReport report, IWatchListener &listener);
    void MovedTo(SWatchRecord const &record, CString const &path, IWatchListener &listener);
    void Modified(CString const &path, uint32_t needs, IWatchListener &listener);
    bool ReportsNames() const;

    uint32_t flags;
    CWatchTable table;
    bool pending = false; ///< a MovedFrom waits for its MovedTo
    uint32_t pendingCookie = 0;
    bool pendingDirectory = false;
    CString pendingPath;
};

} // namespace qv
