/// @file
/// CDiskMonitorWorker: the state and loop of one run of the disk directory
/// monitor, from Start to the end of its thread. Internal to libqv.
///
/// The worker is shared between the monitor and its thread, so the thread
/// never depends on the monitor once asked to stop: after RequestStop it
/// fires nothing and touches the monitor no more, and the monitor may go
/// away while the thread finishes its last handler call.
///
/// Threads: Begin runs on the starting thread before the thread exists; Run
/// on the monitor's thread; RequestStop, HasEnded and WaitEnded on any thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "qv/core/String.h"
#include "qv/filesystems/DirectoryMonitor.h"
#include "qv/filesystems/WatchTranslator.h"
#include "qv/platform/Inotify.h"

namespace qv {

/// @copydoc DiskMonitorWorker.h
class CDiskMonitorWorker final : IWatchRecordSink, IWatchListener {
public:
    /// monitor: whose directory, flags and events; it outlives every call
    /// until RequestStop.
    explicit CDiskMonitorWorker(IDirectoryMonitor *monitor);

    /// Opens the watcher and watches the whole tree. False (logged when a
    /// system limit is the cause) if the directory itself cannot be watched.
    bool Begin();
    /// Lets Run begin: the starter calls it once it has recorded the thread,
    /// so that a handler's Stop finds the monitor complete.
    void Go();
    /// Waits for Go, then watches and fires until RequestStop, or until the
    /// watched directory is gone or the watcher fails.
    ///@{
    void Run();
    void RequestStop();
    bool HasEnded() const { return ended; }
    void WaitEnded() const { ended.wait(false); }
    ///@}

private:
    bool Take(SWatchRecord const &record) override;
    void FileAdded(char16_t const *path) override;
    void FileRemoved(char16_t const *path) override;
    void FileModified(char16_t const *path) override;
    void FileRenamed(char16_t const *from, char16_t const *to) override;
    void WatchTree(char16_t const *path, EReport report) override;
    void Unwatch(int32_t key) override;
    void Overflowed() override;

    /// Watches the directory at path and every directory below it, and gives
    /// the paths of all entries found below it when collect is set. A
    /// directory watched already is walked through only with throughKnown.
    ///@{
    std::vector<CString> Walk(char16_t const *path, bool collect, bool throughKnown);
    enum class EWatched { New, Known, Refused };
    ///@}
    /// Watches one directory of the tree.
    ///@{
    EWatched WatchDirectory(CString const &path);
    CString FullPath(CString const &path) const;
    void LogLimit(char16_t const *path);
    template <class Event, class... Args> void Fire(Event IDirectoryMonitor::*event, Args... args);
    ///@}

    IDirectoryMonitor *monitor;
    uint32_t flags; ///< the monitor's watch flags
    platform::CInotify inotify;
    CWatchTranslator translator;
    CString root; ///< full path of the watched directory
    bool limitLogged = false;
    std::atomic<bool> going{false};
    std::atomic<bool> stopping{false};
    std::atomic<bool> ended{false};
};

} // namespace qv
