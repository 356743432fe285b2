/// @file
/// One raw record of a directory watcher, as the platform layer hands it to the
/// portable monitor logic: which watched directory, what happened, to which
/// entry. Internal to libqv.
#pragma once

#include <cstdint>

namespace qv {

/// What a raw record reports.
enum class EWatchRecord : uint8_t {
    Created,           ///< an entry appeared in the directory
    Deleted,           ///< an entry was deleted
    ContentChanged,    ///< a file was written or truncated
    AttributesChanged, ///< permissions, times, links or extended attributes
    MovedFrom,         ///< first half of a move; cookie names the move
    MovedTo,           ///< second half of a move; same cookie as its first half
    WatchGone,         ///< the watch ended (its directory was deleted or unwatched)
    Overflow,          ///< the system dropped records; watch and name are unused
};

/// @copydoc WatchRecord.h
struct SWatchRecord {
    int32_t watch = -1; ///< key of the watched directory
    EWatchRecord kind = EWatchRecord::Overflow; ///< what happened
    bool directory = false; ///< the entry is a directory
    uint32_t cookie = 0; ///< pairs a MovedFrom with its MovedTo
    char16_t const *name = u""; ///< entry name within the directory; valid during the call that passes it
};

/// Takes the records of one read, in order. Take returns false to drop the
/// rest of the read (the monitor is stopping).
class IWatchRecordSink {
public:
    virtual bool Take(SWatchRecord const &record) = 0; ///< one record; false drops the rest

protected:
    ~IWatchRecordSink() = default;
};

} // namespace qv
