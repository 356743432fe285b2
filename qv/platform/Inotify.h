// Watching disk directories for changes (inotify), for the disk directory
// monitor. Internal to libqv.
//
// CInotify owns one inotify instance and one wake-up counter (eventfd), both
// close-on-exec, closed by the destructor. Records come out as SWatchRecord
// (qv/filesystems/WatchRecord.h); the system's watch descriptors are the
// keys. Paths are full paths of library text, names come back as library
// text (qv/platform/DiskName.h tells how both meet the disk's bytes).
//
// Threads: Wake may be called from any thread at any time while the object
// lives; everything else belongs to the one thread that watches (Open and
// the first watches may come from the thread that starts it, before it runs).
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "qv/core/Export.h"
#include "qv/core/String.h"
#include "qv/filesystems/WatchRecord.h"

namespace qv::platform {

enum class EWatchResult {
    Done,
    LimitReached, // the user's limit of inotify instances or watches is reached
    Failed,       // anything else (the directory is gone, no access, ...)
};

class CInotify {
public:
    CInotify() = default;
    CInotify(CInotify const &) = delete;
    CInotify &operator=(CInotify const &) = delete;
    ~CInotify();

    EWatchResult Open();
    // Watches the directory at path: names always, writes with contents, metadata with attributes. key receives
    // the watch's key; watching a directory again gives the same key.
    EWatchResult AddWatch(char16_t const *path, bool contents, bool attributes, int32_t &key);
    void RemoveWatch(int32_t key);

    enum class EWait { Ready, Woken, TimedOut, Failed };
    // Waits until records can be read, Wake was called (which wins), or
    // timeoutMs passed (-1: no limit). Signals do not end the wait early.
    EWait Wait(int32_t timeoutMs);
    // Reads every record queued now and hands them to sink in order, until
    // the queue is empty or sink says stop. False if reading failed.
    bool Read(IWatchRecordSink &sink);
    // Makes every later Wait return Woken at once.
    void Wake();

private:
    int events = -1;          // the inotify instance
    int wakeUp = -1;          // eventfd
    std::vector<char> buffer; // for Read
};

// Hands the records in size bytes of buffer, as one read of an inotify
// instance gave them, to sink in order; records of no use to a monitor are
// skipped. Never reads past the buffer: a cut record ends the walk, a name
// without its terminator ends at its record. False when sink wanted no more.
// Pure; exported for its tests.
QV_API bool PassInotifyRecords(char const *buffer, size_t size, IWatchRecordSink &sink);

} // namespace qv::platform
