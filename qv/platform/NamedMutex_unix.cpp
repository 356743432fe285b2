// OS binding: robust, recursive pthread mutexes, shared through shm_open and mmap.
#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <climits>
#include <new>

#include "qv/platform/NamedMutex.h"
#include "qv/platform/SharedMemory.h"
#include "qv/platform/Ticks.h"

namespace qv {

struct NamedMutex::Shared {
    std::atomic<uint32_t> ready;
    pthread_mutex_t guard; // over handles and unlinked
    uint32_t handles;
    uint32_t unlinked;
    pthread_mutex_t mutex;
    // The owner, kept beside the mutex: Release checks it, and memory that
    // an owner's robust list points into must stay mapped.
    std::atomic<pid_t> ownerThread;
    std::atomic<pid_t> ownerProcess;
    uint32_t depth; // changed only by the owner
};

namespace {

using Shared = NamedMutex::Shared;

constexpr uint32_t kReady = 0x51584D58;
// How long an opener waits for a creator in another process to finish.
constexpr int kSetupPolls = 1000;
constexpr struct timespec kPollInterval { 0, 1000000 };
constexpr int kOpenAttempts = 100;

bool InitRobust(pthread_mutex_t *mutex, int type, int pshared) {
    pthread_mutexattr_t attr;
    if (pthread_mutexattr_init(&attr) != 0) return false;
    bool ok = pthread_mutexattr_settype(&attr, type) == 0 &&
              pthread_mutexattr_setrobust(&attr, PTHREAD_MUTEX_ROBUST) == 0 &&
              pthread_mutexattr_setpshared(&attr, pshared) == 0 && pthread_mutex_init(mutex, &attr) == 0;
    pthread_mutexattr_destroy(&attr);
    return ok;
}

bool InitShared(Shared *s, int pshared) {
    s->handles = 1;
    s->unlinked = 0;
    s->ownerThread.store(0);
    s->ownerProcess.store(0);
    s->depth = 0;
    return InitRobust(&s->guard, PTHREAD_MUTEX_NORMAL, pshared) &&
           InitRobust(&s->mutex, PTHREAD_MUTEX_RECURSIVE, pshared);
}

void LockGuard(Shared *s) {
    if (pthread_mutex_lock(&s->guard) == EOWNERDEAD) pthread_mutex_consistent(&s->guard);
}

// The object name of a named mutex: its own prefix, then the name escaped as
// every shared-memory name is, so that distinct mutex names never meet.
std::string ShmNameOf(char const *name) {
    return "/qv-mutex-" + SharedMemorySysName(name).substr(1);
}

bool WaitForSize(int fd) {
    for (int i = 0; i < kSetupPolls; ++i) {
        struct stat st {};
        if (fstat(fd, &st) != 0) return false;
        if (size_t(st.st_size) >= sizeof(Shared)) return true;
        nanosleep(&kPollInterval, nullptr);
    }
    return false;
}

bool WaitForReady(Shared *s) {
    for (int i = 0; i < kSetupPolls; ++i) {
        if (s->ready.load(std::memory_order_acquire) == kReady) return true;
        nanosleep(&kPollInterval, nullptr);
    }
    return false;
}

Shared *MapShared(int fd) {
    void *p = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    close(fd);
    return p == MAP_FAILED ? nullptr : static_cast<Shared *>(p);
}

Shared *CreateShared(std::string const &shm, int fd) {
    Shared *s = ftruncate(fd, sizeof(Shared)) == 0 ? MapShared(fd) : (close(fd), nullptr);
    if (s && InitShared(s, PTHREAD_PROCESS_SHARED)) {
        s->ready.store(kReady, std::memory_order_release);
        return s;
    }
    if (s) munmap(s, sizeof(Shared));
    shm_unlink(shm.c_str());
    return nullptr;
}

// Counts one more handle, unless the last one closed meanwhile and the name
// is being removed: then the caller opens the name afresh.
bool JoinShared(Shared *s) {
    LockGuard(s);
    bool live = !s->unlinked;
    if (live) ++s->handles;
    pthread_mutex_unlock(&s->guard);
    return live;
}

Shared *OpenExisting(int fd, bool &retry) {
    retry = false;
    if (!WaitForSize(fd)) return close(fd), nullptr;
    Shared *s = MapShared(fd);
    if (!s) return nullptr;
    if (WaitForReady(s) && JoinShared(s)) return s;
    retry = s->ready.load(std::memory_order_acquire) == kReady;
    munmap(s, sizeof(Shared));
    return nullptr;
}

Shared *OpenShared(std::string const &shm) {
    if (shm.size() >= NAME_MAX) return nullptr;
    for (int attempt = 0; attempt < kOpenAttempts; ++attempt) {
        int fd = shm_open(shm.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (fd >= 0) return CreateShared(shm, fd);
        if (errno != EEXIST) return nullptr;
        fd = shm_open(shm.c_str(), O_RDWR | O_CLOEXEC, 0);
        if (fd < 0 && errno == ENOENT) continue;
        if (fd < 0) return nullptr;
        bool retry = false;
        if (Shared *s = OpenExisting(fd, retry)) return s;
        if (!retry) return nullptr;
    }
    return nullptr;
}

#if defined(__SANITIZE_THREAD__)
// ThreadSanitizer's timed-lock hook loses EOWNERDEAD (the lock then looks
// never taken), while its try-lock hook keeps it: poll under the sanitizer.
int TimedLock(pthread_mutex_t *mutex, uint32_t timeout) {
    uint32_t const start = GetTickCount();
    for (;;) {
        int result = pthread_mutex_trylock(mutex);
        if (result != EBUSY || uint32_t(GetTickCount() - start) >= timeout) return result == EBUSY ? ETIMEDOUT : result;
        nanosleep(&kPollInterval, nullptr);
    }
}
#else
// The deadline is on the monotonic clock: a wall clock set back or forward
// meanwhile must not stretch or cut the wait.
struct timespec DeadlineAfter(uint32_t milliseconds) {
    struct timespec t {};
    clock_gettime(CLOCK_MONOTONIC, &t);
    t.tv_sec += time_t(milliseconds / 1000);
    t.tv_nsec += long(milliseconds % 1000) * 1000000;
    if (t.tv_nsec >= 1000000000) {
        t.tv_sec += 1;
        t.tv_nsec -= 1000000000;
    }
    return t;
}

int TimedLock(pthread_mutex_t *mutex, uint32_t timeout) {
    struct timespec deadline = DeadlineAfter(timeout);
    return pthread_mutex_clocklock(mutex, CLOCK_MONOTONIC, &deadline);
}
#endif

int Lock(pthread_mutex_t *mutex, uint32_t timeout) {
    if (timeout == kInfinite) return pthread_mutex_lock(mutex);
    if (timeout == 0) return pthread_mutex_trylock(mutex);
    return TimedLock(mutex, timeout);
}

void TakeOwnership(Shared *s, bool abandoned) {
    if (abandoned) s->depth = 0;
    if (s->depth++ == 0) {
        s->ownerThread.store(gettid(), std::memory_order_relaxed);
        s->ownerProcess.store(getpid(), std::memory_order_relaxed);
    }
}

// A thread of this process still owns it: the system keeps a pointer into
// the memory until that thread ends, so the memory must outlive this handle.
bool OwnedHere(Shared *s) {
    return s->ownerProcess.load(std::memory_order_relaxed) == getpid();
}

} // namespace

NamedMutex::NamedMutex(Shared *shared, std::string shmName) : shared(shared), shmName(std::move(shmName)) {}

NamedMutex *NamedMutex::Open(char const *utf8Name) {
    if (utf8Name && *utf8Name) {
        std::string shm = ShmNameOf(utf8Name);
        Shared *s = OpenShared(shm);
        return s ? new (std::nothrow) NamedMutex(s, shm) : nullptr;
    }
    Shared *s = new (std::nothrow) Shared{};
    if (s && InitShared(s, PTHREAD_PROCESS_PRIVATE)) return new (std::nothrow) NamedMutex(s, std::string());
    delete s;
    return nullptr;
}

NamedMutex::~NamedMutex() {
    bool const keepMemory = OwnedHere(shared);
    if (shmName.empty()) {
        if (keepMemory) return;
        pthread_mutex_destroy(&shared->mutex);
        pthread_mutex_destroy(&shared->guard);
        delete shared;
        return;
    }
    LockGuard(shared);
    if (--shared->handles == 0) {
        shared->unlinked = 1;
        shm_unlink(shmName.c_str());
    }
    pthread_mutex_unlock(&shared->guard);
    if (!keepMemory) munmap(shared, sizeof(Shared));
}

MutexWait NamedMutex::Wait(uint32_t timeout) {
    switch (Lock(&shared->mutex, timeout)) {
    case 0:
        TakeOwnership(shared, false);
        return MutexWait::Signaled;
    case EOWNERDEAD:
        pthread_mutex_consistent(&shared->mutex);
        TakeOwnership(shared, true);
        return MutexWait::Abandoned;
    case EBUSY:
    case ETIMEDOUT:
        return MutexWait::TimedOut;
    default:
        return MutexWait::Failed;
    }
}

bool NamedMutex::Release() {
    if (shared->ownerThread.load(std::memory_order_relaxed) != gettid()) return false;
    if (--shared->depth == 0) {
        shared->ownerProcess.store(0, std::memory_order_relaxed);
        shared->ownerThread.store(0, std::memory_order_relaxed);
    }
    return pthread_mutex_unlock(&shared->mutex) == 0;
}

} // namespace qv
