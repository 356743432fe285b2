#include "qv/filesystems/DiskMonitorWorker.h"

#include <vector>

#include "qv/core/Log.h"
#include "qv/platform/DiskDirectory.h"
#include "qv/platform/FullPath.h"

namespace qv {

namespace {

// How long a move's first half waits for its second. The system queues both
// halves within one rename; the wait only covers a read that fell between
// them, and a move out of the tree is reported this much later.
constexpr int32_t kMoveGraceMs = 50;
constexpr int32_t kNoLimit = -1;

// The full path without a trailing separator (the root "/" stays).
bool FullRoot(char16_t const *dir, CString &root) {
    if (!FullDiskPath(dir, root)) return false;
    int length = root.GetLength();
    if (length > 1 && root[length - 1] == u'/') root.Truncate(length - 1);
    return true;
}

} // namespace

CDiskMonitorWorker::CDiskMonitorWorker(IDirectoryMonitor *monitor)
    : monitor(monitor), flags(monitor->GetFlags()), translator(flags) {}

bool CDiskMonitorWorker::Begin() {
    platform::EWatchResult opened = inotify.Open();
    if (opened == platform::EWatchResult::LimitReached)
        qvLogWriteLineW(
            u"CWin32DirectoryMonitor: no inotify instance left for \"%s\" (see fs.inotify.max_user_instances).",
            monitor->GetDirectory());
    if (opened != platform::EWatchResult::Done || !FullRoot(monitor->GetDirectory(), root)) return false;
    WatchTree(u"", EReport::Nothing);
    return translator.IsWatching();
}

void CDiskMonitorWorker::Go() {
    going = true;
    going.notify_one();
}

void CDiskMonitorWorker::Run() {
    going.wait(false);
    while (!stopping && translator.IsWatching()) {
        auto waited = inotify.Wait(translator.HasPendingMove() ? kMoveGraceMs : kNoLimit);
        if (waited == platform::CInotify::EWait::TimedOut)
            translator.Flush(*this);
        else if (waited != platform::CInotify::EWait::Ready || !inotify.Read(*this))
            break;
    }
    ended = true;
    ended.notify_all();
}

void CDiskMonitorWorker::RequestStop() {
    stopping = true;
    inotify.Wake();
}

bool CDiskMonitorWorker::Take(SWatchRecord const &record) {
    if (!stopping) translator.Feed(record, *this);
    return !stopping;
}

template <class Event, class... Args> void CDiskMonitorWorker::Fire(Event IDirectoryMonitor::*event, Args... args) {
    if (stopping) return;
    // Fired from a copy, so that a handler may stop or even delete the monitor.
    Event handlers(monitor->*event);
    handlers.Fire(monitor, args...);
}

void CDiskMonitorWorker::FileAdded(char16_t const *path) {
    Fire(&IDirectoryMonitor::FileAdded, path);
}
void CDiskMonitorWorker::FileRemoved(char16_t const *path) {
    Fire(&IDirectoryMonitor::FileRemoved, path);
}
void CDiskMonitorWorker::FileModified(char16_t const *path) {
    Fire(&IDirectoryMonitor::FileModified, path);
}
void CDiskMonitorWorker::FileRenamed(char16_t const *from, char16_t const *to) {
    Fire(&IDirectoryMonitor::FileRenamed, from, to);
}

void CDiskMonitorWorker::WatchTree(char16_t const *path, EReport report) {
    std::vector<CString> found = Walk(path, report == EReport::DirectoryAndContents, false);
    if (report == EReport::Nothing) return;
    FileAdded(path);
    for (CString const &entry : found)
        FileAdded(entry);
}

std::vector<CString> CDiskMonitorWorker::Walk(char16_t const *path, bool collect, bool throughKnown) {
    std::vector<CString> found;
    // An explicit list rather than recursion: trees may be deep.
    std::vector<CString> waiting{CString(path)};
    while (!waiting.empty() && !stopping) {
        CString dir = waiting.back();
        waiting.pop_back();
        EWatched watched = WatchDirectory(dir);
        if (watched == EWatched::Refused || (watched == EWatched::Known && !throughKnown)) continue;
        TArray<DiskDirectoryItem> items;
        ListDiskDirectory(FullPath(dir), items);
        for (uint32_t i = 0; i < items.nItems(); ++i) {
            DiskDirectoryItem const &item = items.GetAt(i);
            CString child = JoinWatchPath(dir, item.name);
            if (collect) found.push_back(child);
            if (item.status.directory && !item.status.link) waiting.push_back(child); // links are not followed
        }
    }
    return found;
}

CDiskMonitorWorker::EWatched CDiskMonitorWorker::WatchDirectory(CString const &path) {
    bool contents = flags & (IDirectoryMonitor::kWatchNames | IDirectoryMonitor::kWatchSize);
    bool attributes = flags & IDirectoryMonitor::kWatchAttributes;
    int32_t key;
    CString full = FullPath(path);
    platform::EWatchResult result = inotify.AddWatch(full, contents, attributes, key);
    if (result == platform::EWatchResult::LimitReached) LogLimit(full);
    if (result != platform::EWatchResult::Done) return EWatched::Refused;
    CString const *known = translator.Table().Find(key);
    if (!known) {
        translator.Table().Add(key, path);
        return EWatched::New;
    }
    // Known under another path: a directory reached twice (a link or a race).
    return known->Equals(path) ? EWatched::Known : EWatched::Refused;
}

void CDiskMonitorWorker::LogLimit(char16_t const *path) {
    if (limitLogged) return;
    limitLogged = true;
    qvLogWriteLineW(u"CWin32DirectoryMonitor: no inotify watch left for \"%s\"; changes there and in further "
                    u"directories are not reported (raise fs.inotify.max_user_watches).",
                    path);
}

CString CDiskMonitorWorker::FullPath(CString const &path) const {
    if (path.IsEmpty()) return root;
    CString full(root);
    if (root.GetLength() > 1) full += u"/";
    full += path;
    return full;
}

void CDiskMonitorWorker::Unwatch(int32_t key) {
    inotify.RemoveWatch(key);
}

void CDiskMonitorWorker::Overflowed() {
    // Directories made meanwhile went unseen: watch them, silently, before
    // telling anyone.
    Walk(u"", false, true);
    qvLogWriteLineW(u"CWin32DirectoryMonitor: changes in \"%s\" came faster than they were read and some were lost "
                    u"(inotify queue overflow; see fs.inotify.max_queued_events).",
                    root.GetUTF16());
}

} // namespace qv
