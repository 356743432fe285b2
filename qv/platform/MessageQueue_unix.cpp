// OS binding: the eventfd, timerfd and epoll descriptor that expose a thread queue to outside event loops.
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <cstdint>

#include "qv/platform/QueueSignal.h"

namespace qv {

namespace {

bool Watch(int pollFd, int fd) {
    struct epoll_event interest {};
    interest.events = EPOLLIN;
    interest.data.fd = fd;
    return epoll_ctl(pollFd, EPOLL_CTL_ADD, fd, &interest) == 0;
}

void CloseIfOpen(int &fd) {
    if (fd >= 0) close(fd);
    fd = -1;
}

} // namespace

CQueueSignal::~CQueueSignal() {
    Close();
}

void CQueueSignal::Close() {
    CloseIfOpen(pollFd);
    CloseIfOpen(eventFd);
    CloseIfOpen(timerFd);
}

int CQueueSignal::Open() {
    if (pollFd >= 0) return pollFd;
    pollFd = epoll_create1(EPOLL_CLOEXEC);
    eventFd = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    timerFd = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK);
    bool const made = pollFd >= 0 && eventFd >= 0 && timerFd >= 0;
    if (!made || !Watch(pollFd, eventFd) || !Watch(pollFd, timerFd)) {
        Close();
        return -1;
    }
    pendingShown = false;
    return pollFd;
}

// The eventfd's counter is kept non-zero exactly while messages wait.
void CQueueSignal::SetPending(bool pending) {
    if (eventFd < 0 || pending == pendingShown) return;
    uint64_t value = 1;
    ssize_t done = pending ? write(eventFd, &value, sizeof value) : read(eventFd, &value, sizeof value);
    if (done == ssize_t(sizeof value)) pendingShown = pending;
}

// Setting a timerfd also clears the expirations it counted, so a delivered
// timer stops showing until it is due again.
void CQueueSignal::ArmTimer(std::optional<std::chrono::nanoseconds> delay) {
    if (timerFd < 0) return;
    struct itimerspec when {};
    if (delay) {
        int64_t const ns = delay->count() > 0 ? int64_t(delay->count()) : 1;
        when.it_value.tv_sec = time_t(ns / 1000000000);
        when.it_value.tv_nsec = long(ns % 1000000000);
    }
    timerfd_settime(timerFd, 0, &when, nullptr);
}

} // namespace qv
