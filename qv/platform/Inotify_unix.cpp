// OS binding: inotify instances, watches and records, and the eventfd that wakes a watcher.
#include "qv/platform/Inotify.h"

#include <cerrno>
#include <cstring>
#include <poll.h>
#include <string>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

#include "qv/platform/DiskName.h"
#include "qv/platform/Syscalls.h"

namespace qv::platform {

namespace {

// Room for many records; one record needs at most a header and NAME_MAX + 1
// (the block is new-allocated, so aligned for the headers).
constexpr size_t kReadBufferSize = 64 * 1024;

EWatchResult FailureOf(int error) {
    return error == ENOSPC || error == EMFILE ? EWatchResult::LimitReached : EWatchResult::Failed;
}

void CloseIfOpen(int &fd) {
    if (fd >= 0) SysClose(fd);
    fd = -1;
}

struct SKindOfBit {
    uint32_t bit;
    EWatchRecord kind;
    bool needsName; // records without a name are about the watched directory itself
};

constexpr SKindOfBit kKinds[] = {
    {IN_Q_OVERFLOW, EWatchRecord::Overflow, false},  {IN_IGNORED, EWatchRecord::WatchGone, false},
    {IN_CREATE, EWatchRecord::Created, true},        {IN_DELETE, EWatchRecord::Deleted, true},
    {IN_MOVED_FROM, EWatchRecord::MovedFrom, true},  {IN_MOVED_TO, EWatchRecord::MovedTo, true},
    {IN_MODIFY, EWatchRecord::ContentChanged, true}, {IN_ATTRIB, EWatchRecord::AttributesChanged, true},
};

// The kind of a record, or false for a record the monitor has no use for.
bool KindOf(uint32_t mask, uint32_t nameLength, EWatchRecord &kind) {
    for (SKindOfBit const &entry : kKinds) {
        if (!(mask & entry.bit)) continue;
        kind = entry.kind;
        return nameLength > 0 || !entry.needsName;
    }
    return false;
}

} // namespace

bool PassInotifyRecords(char const *buffer, size_t size, IWatchRecordSink &sink) {
    size_t at = 0;
    while (size - at >= sizeof(inotify_event)) {
        inotify_event header;
        std::memcpy(&header, buffer + at, sizeof header);
        char const *name = buffer + at + sizeof header;
        at += sizeof header;
        if (header.len > size - at) return true; // a cut record; never read past the buffer
        at += header.len;
        SWatchRecord record;
        if (!KindOf(header.mask, header.len, record.kind)) continue;
        CString text = FromDiskName(std::string(name, strnlen(name, header.len)).c_str());
        record.watch = header.wd;
        record.directory = (header.mask & IN_ISDIR) != 0;
        record.cookie = header.cookie;
        record.name = text.GetUTF16();
        if (!sink.Take(record)) return false;
    }
    return true;
}

CInotify::~CInotify() {
    CloseIfOpen(events);
    CloseIfOpen(wakeUp);
}

EWatchResult CInotify::Open() {
    events = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (events < 0) return FailureOf(errno);
    wakeUp = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (wakeUp < 0) return FailureOf(errno);
    return EWatchResult::Done;
}

EWatchResult CInotify::AddWatch(char16_t const *path, bool contents, bool attributes, int32_t &key) {
    uint32_t mask = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_ONLYDIR | IN_EXCL_UNLINK;
    if (contents) mask |= IN_MODIFY;
    if (attributes) mask |= IN_ATTRIB;
    key = ::inotify_add_watch(events, ToDiskName(path).c_str(), mask);
    return key >= 0 ? EWatchResult::Done : FailureOf(errno);
}

void CInotify::RemoveWatch(int32_t key) {
    ::inotify_rm_watch(events, key);
}

CInotify::EWait CInotify::Wait(int32_t timeoutMs) {
    pollfd watched[2] = {{events, POLLIN, 0}, {wakeUp, POLLIN, 0}};
    int ready;
    do {
        ready = ::poll(watched, 2, timeoutMs);
    } while (ready < 0 && errno == EINTR);
    if (ready < 0) return EWait::Failed;
    if (watched[1].revents) return EWait::Woken;
    if (ready == 0) return EWait::TimedOut;
    return watched[0].revents == POLLIN ? EWait::Ready : EWait::Failed;
}

bool CInotify::Read(IWatchRecordSink &sink) {
    buffer.resize(kReadBufferSize);
    for (;;) {
        ssize_t got = SysRead(events, buffer.data(), buffer.size());
        if (got < 0) return errno == EAGAIN;
        if (got == 0 || !PassInotifyRecords(buffer.data(), size_t(got), sink)) return true;
    }
}

void CInotify::Wake() {
    uint64_t one = 1;
    SysWrite(wakeUp, &one, sizeof one);
}

} // namespace qv::platform
