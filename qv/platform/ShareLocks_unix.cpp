// OS side: share and deny modes emulated with open-file-description record locks.
//
// Two opens of one file are compatible, as on Windows, when each one's access
// (read, write) is allowed by the other's share mode. An open without access
// neither conflicts nor constrains. The scheme keeps four one-byte ranges at
// 2^62 and up, far above any record lock a database takes on real data:
//
//   base + 0  "I read"            base + 2  "I deny read"  (I don't share read)
//   base + 1  "I write"           base + 3  "I deny write" (I don't share write)
//
// Each open takes shared (F_RDLCK) open-file-description locks on the bytes
// that describe it, which never conflict with each other, so taking them
// always works through a descriptor that can read. It then probes the
// opposite bytes: reading needs nobody on "deny read", denying read needs
// nobody on "I read", and the same for write. A probe (F_OFD_GETLK) sees only
// other open file descriptions, so duplicates of one open never collide.
//
// The locks are taken before the probes, so of two racing opens at least the
// later sees the other: a conflict is never missed, though in a close race
// both may fail where Windows would let one through. The locks vanish with
// the last descriptor of the open, also when a process dies.
#include "qv/platform/ShareLocks.h"

#include <fcntl.h>

#include "qv/platform/Syscalls.h"

namespace qv {

namespace {

constexpr off_t kShareBase = off_t(1) << 62;
constexpr off_t kReads = 0, kWrites = 1, kDeniesRead = 2, kDeniesWrite = 3;

struct flock ByteRange(short type, off_t byte) {
    struct flock range {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = kShareBase + byte;
    range.l_len = 1;
    return range;
}

bool Declare(int fd, off_t byte) {
    struct flock range = ByteRange(F_RDLCK, byte);
    return SysLock(fd, F_OFD_SETLK, &range) == 0;
}

// True also when the probe itself fails: then nothing proves the open safe.
bool HeldByOthers(int fd, off_t byte) {
    struct flock range = ByteRange(F_WRLCK, byte);
    return SysLock(fd, F_OFD_GETLK, &range) != 0 || range.l_type != F_UNLCK;
}

struct Rule {
    bool applies;
    off_t declare; // what this open says about itself
    off_t absent;  // what no other open may have said
};

} // namespace

bool ClaimShareAccess(int fd, OpenRequest const &request) {
    if (!request.read && !request.write) return true;
    Rule const rules[] = {
        {request.read, kReads, kDeniesRead},
        {request.write, kWrites, kDeniesWrite},
        {!request.shareRead, kDeniesRead, kReads},
        {!request.shareWrite, kDeniesWrite, kWrites},
    };
    for (Rule const &rule : rules)
        if (rule.applies && !Declare(fd, rule.declare)) return false;
    for (Rule const &rule : rules)
        if (rule.applies && HeldByOthers(fd, rule.absent)) return false;
    return true;
}

} // namespace qv
