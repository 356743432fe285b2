/// @file
/// IDirectoryMonitor: watches a directory tree and fires an event for each
/// change in it. CFileSystem::MonitorDirectory gives the disk's monitor; a
/// file system that cannot watch gives none.
///
/// Events, in this order: file added, file removed, file modified (each with
/// the entry's path), file renamed (old path, new path). Handlers receive the
/// monitor as the sender. Paths are relative to the watched directory, with
/// '/' between names ("sub/a.txt"); a directory's own changes are reported
/// like a file's. The texts are valid during the handler's call only: a
/// handler that queues its work to another thread copies them first.
///
/// Watch flags: 0x1 names and last-write (added, removed, renamed, and
/// modified by a write), 0x2 size (modified by a write), 0x4 attributes
/// (modified by a change of permissions, times or extended attributes).
///
/// Lifecycle: made stopped; Start begins watching and answers whether it
/// could; Stop ends it. Start after Stop watches again. The owner deletes the
/// monitor (the destructor stops it).
///
/// Threads: events fire on the monitor's own thread (see the concrete monitor
/// for what its handlers may do). Set the handlers up before Start.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/threads/Events.h"

namespace qv {

/// @copydoc DirectoryMonitor.h
class QV_API IDirectoryMonitor {
public:
    static constexpr uint32_t kWatchNames = 0x1; ///< names and last write
    static constexpr uint32_t kWatchSize = 0x2;       ///< size changes
    static constexpr uint32_t kWatchAttributes = 0x4; ///< permissions, times, extended attributes
    /// Room for the directory, terminator included.
    static constexpr int kMaxDirectory = 260;

    virtual ~IDirectoryMonitor();
    /// Begins watching; false if it cannot (no such directory, no thread).
    /// True at once if already watching.
    virtual bool Start() = 0;
    /// Ends watching; nothing if not watching. Start may follow.
    virtual void Stop() = 0;

    char16_t const *GetDirectory() const { return directory; } ///< the watched directory, as given
    uint32_t GetFlags() const { return flags; } ///< the watch flags, as given

    /// The change events (see the top of this file); paths relative to the
    /// watched directory, valid during the call only.
    ///@{
    event1<char16_t const *> FileAdded;
    event1<char16_t const *> FileRemoved;
    event1<char16_t const *> FileModified;
    event2<char16_t const *, char16_t const *> FileRenamed; ///< old path, new path
    ///@}

protected:
    /// dir is copied, cut to kMaxDirectory - 1 units (null: empty).
    IDirectoryMonitor(char16_t const *dir, uint32_t flags);

    char16_t directory[kMaxDirectory]; ///< the watched directory, terminated
    uint32_t flags;                    ///< the watch flags
};

} // namespace qv
