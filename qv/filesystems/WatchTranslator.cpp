#include "qv/filesystems/WatchTranslator.h"

namespace qv {

namespace {

constexpr uint32_t kNamesAndLastWrite = 0x1;
constexpr uint32_t kSize = 0x2;
constexpr uint32_t kAttributes = 0x4;

bool IsSecondHalfOf(SWatchRecord const &record, uint32_t cookie) {
    return record.kind == EWatchRecord::MovedTo && record.cookie == cookie;
}

} // namespace

CWatchTranslator::CWatchTranslator(uint32_t flags) : flags(flags) {}

bool CWatchTranslator::ReportsNames() const {
    return (flags & kNamesAndLastWrite) != 0;
}

void CWatchTranslator::Feed(SWatchRecord const &record, IWatchListener &listener) {
    if (pending && !IsSecondHalfOf(record, pendingCookie)) Flush(listener);
    if (record.kind == EWatchRecord::Overflow) return listener.Overflowed();
    if (record.kind == EWatchRecord::WatchGone) return table.Remove(record.watch);
    CString const *dir = table.Find(record.watch);
    if (!dir) return Flush(listener); // a move into an unwatched place left the tree
    CString path = JoinWatchPath(*dir, record.name);
    switch (record.kind) {
    case EWatchRecord::Created:
        return Created(path, record.directory, listener);
    case EWatchRecord::Deleted:
        if (ReportsNames()) listener.FileRemoved(path);
        return;
    case EWatchRecord::ContentChanged:
        return Modified(path, kNamesAndLastWrite | kSize, listener);
    case EWatchRecord::AttributesChanged:
        return Modified(path, kAttributes, listener);
    case EWatchRecord::MovedFrom:
        pending = true;
        pendingCookie = record.cookie;
        pendingDirectory = record.directory;
        pendingPath = path;
        return;
    case EWatchRecord::MovedTo:
        return MovedTo(record, path, listener);
    default:
        return;
    }
}

void CWatchTranslator::Appeared(CString const &path, bool directory, IWatchListener::EReport report,
                                IWatchListener &listener) {
    if (directory)
        listener.WatchTree(path, ReportsNames() ? report : IWatchListener::EReport::Nothing);
    else if (ReportsNames())
        listener.FileAdded(path);
}

void CWatchTranslator::Created(CString const &path, bool directory, IWatchListener &listener) {
    Appeared(path, directory, IWatchListener::EReport::DirectoryAndContents, listener);
}

void CWatchTranslator::MovedTo(SWatchRecord const &record, CString const &path, IWatchListener &listener) {
    if (!pending) return Appeared(path, record.directory, IWatchListener::EReport::Directory, listener);
    pending = false;
    if (record.directory) table.Rename(pendingPath, path);
    if (ReportsNames()) listener.FileRenamed(pendingPath, path);
}

void CWatchTranslator::Modified(CString const &path, uint32_t needs, IWatchListener &listener) {
    if (flags & needs) listener.FileModified(path);
}

void CWatchTranslator::Flush(IWatchListener &listener) {
    if (!pending) return;
    pending = false;
    if (pendingDirectory) {
        for (int32_t key : table.KeysUnder(pendingPath)) {
            table.Remove(key);
            listener.Unwatch(key);
        }
    }
    if (ReportsNames()) listener.FileRemoved(pendingPath);
}

} // namespace qv
