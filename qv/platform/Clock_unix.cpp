// OS binding: the real-time clock and the C library's time-zone rules.
#include <time.h>

#include <cstdint>

#include "qv/platform/Clock.h"

namespace qv {

namespace {

constexpr int64_t kSecondsFrom1601To1970 = 11644473600;
// Clock changes lie further apart than this in every zone, so the offsets a
// day before and after a wall time are the only candidates for it.
constexpr int64_t kProbeSeconds = 86400;

bool OffsetAt(int64_t unixSeconds, int64_t &offsetSeconds) {
    time_t t = time_t(unixSeconds);
    struct tm local {};
    if (!localtime_r(&t, &local)) return false;
    offsetSeconds = local.tm_gmtoff;
    return true;
}

int64_t UnixSecondsOfTicks(int64_t ticks) {
    return ticks / kFileTimeTicksPerSecond - kSecondsFrom1601To1970;
}

bool StoreShifted(FILETIME const *in, int64_t offsetSeconds, FILETIME *out) {
    int64_t ticks = int64_t(FileTimeToTicks(*in));
    int64_t shift = offsetSeconds * kFileTimeTicksPerSecond;
    if ((shift < 0 && ticks < -shift) || (shift > 0 && ticks > int64_t(kFileTimeMaxTicks) - shift)) return false;
    *out = TicksToFileTime(uint64_t(ticks + shift));
    return true;
}

bool InRange(FILETIME const *ft) {
    return ft && FileTimeToTicks(*ft) <= kFileTimeMaxTicks;
}

} // namespace

void GetSystemTimeAsFileTime(FILETIME *ft) {
    struct timespec now {};
    clock_gettime(CLOCK_REALTIME, &now);
    int64_t ticks = (int64_t(now.tv_sec) + kSecondsFrom1601To1970) * kFileTimeTicksPerSecond + now.tv_nsec / 100;
    *ft = TicksToFileTime(uint64_t(ticks));
}

void GetSystemTime(SYSTEMTIME *st) {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    FileTimeToSystemTime(&now, st);
}

bool FileTimeToLocalFileTime(FILETIME const *utc, FILETIME *local) {
    int64_t offset = 0;
    if (!InRange(utc) || !local) return false;
    if (!OffsetAt(UnixSecondsOfTicks(int64_t(FileTimeToTicks(*utc))), offset)) return false;
    return StoreShifted(utc, offset, local);
}

bool LocalFileTimeToFileTime(FILETIME const *local, FILETIME *utc) {
    if (!InRange(local) || !utc) return false;
    int64_t wall = UnixSecondsOfTicks(int64_t(FileTimeToTicks(*local)));
    int64_t before = 0, after = 0, check = 0;
    if (!OffsetAt(wall - kProbeSeconds, before) || !OffsetAt(wall + kProbeSeconds, after)) return false;
    // The earlier instant wins where both offsets fit (a repeated hour); the
    // offset before the change where neither does (a skipped hour).
    int64_t offset = before;
    if (before != after && !(OffsetAt(wall - before, check) && check == before)) {
        if (OffsetAt(wall - after, check) && check == after) offset = after;
    }
    return StoreShifted(local, -offset, utc);
}

} // namespace qv
