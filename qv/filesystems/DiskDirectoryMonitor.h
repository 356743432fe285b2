/// @file
/// CWin32DirectoryMonitor: the disk's directory monitor (IDirectoryMonitor),
/// the one CFileSystem::MonitorDirectory gives. It keeps its historical name;
/// callers know it by it.
///
/// Watching. Start watches the directory and every directory below it before
/// it returns, then a thread of the monitor's own reports changes; new
/// directories are watched as they appear, and what was made in one before
/// its watch began is reported as added (an entry made in that moment may be
/// reported twice). A move within the tree is one renamed event; a move out
/// of it is removed, a move into it added (without the moved directory's
/// contents). Symbolic links are reported but never followed.
///
/// Limits. The system caps the number of watches per user
/// (fs.inotify.max_user_watches): directories past the cap are not watched,
/// and the log says so once per start. Changes that come faster than the
/// thread reads them are lost, and the log says so; no event stands for
/// them, but directories made meanwhile are found and watched. Moving the
/// watched directory itself keeps the reports coming, but directories made
/// after the move are not watched.
///
/// Results. Start is false when the directory cannot be watched (it does not
/// exist, it is no directory, no access, a system limit), and when the thread
/// cannot be made; true while already running. Start after Stop, or after the
/// watched directory was removed (which ends the thread), watches anew.
///
/// Threads. Events fire on the monitor's thread. Start, Stop and the
/// destructor are called from one thread at a time: the owner's, or the
/// monitor's own thread from within a handler. Stop from another thread wakes
/// the monitor's thread and waits for it to end, including a handler it is
/// running, so such a handler must not wait for the thread calling Stop.
/// Stop (or the destructor) from within a handler cannot wait for its own
/// thread: it asks the thread to end and lets it go; the thread fires no
/// further event (the other handlers of the current one still run, from a
/// copy of the handler list), never touches the monitor again, and ends as
/// soon as the handlers return. So a handler may stop, restart or delete its
/// monitor; a monitor restarted so fires nothing before those handlers have
/// returned.
#pragma once

#include <cstdint>
#include <memory>
#include <thread>

#include "qv/core/Export.h"
#include "qv/filesystems/DirectoryMonitor.h"

namespace qv {

class CDiskMonitorWorker;

/// @copydoc DiskDirectoryMonitor.h
class QV_API CWin32DirectoryMonitor : public IDirectoryMonitor {
public:
    /// A stopped monitor of dir; CreateDiskDirectoryMonitor checks dir first.
    CWin32DirectoryMonitor(char16_t const *dir, uint32_t flags);
    ~CWin32DirectoryMonitor() override;
    CWin32DirectoryMonitor(CWin32DirectoryMonitor const &) = delete;
    CWin32DirectoryMonitor &operator=(CWin32DirectoryMonitor const &) = delete;

    /// Start runs the watch on a thread of its own; Stop asks it to end and
    /// joins it (from a handler, on that thread, it is detached instead).
    ///@{
    bool Start() override;
    void Stop() override;
    ///@}

private:
    std::shared_ptr<CDiskMonitorWorker> worker; ///< shared with the thread
    std::thread thread;
    std::shared_ptr<CDiskMonitorWorker> leaving; ///< let go by a handler's Stop, maybe still running
};

/// A new, stopped disk monitor of dir with the watch flags; the caller owns
/// it and deletes it. Null if dir is null, empty, or does not fit the
/// monitor's directory (IDirectoryMonitor::kMaxDirectory units with the
/// terminator). Whether dir is a directory is checked by Start.
QV_API IDirectoryMonitor *CreateDiskDirectoryMonitor(char16_t const *dir, uint32_t flags);

} // namespace qv
