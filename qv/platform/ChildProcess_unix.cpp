// OS binding: posix_spawn of a child in a directory of its own choosing,
// its output read from a pipe until it ends, then reaped.
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "qv/platform/ChildProcess.h"
#include "qv/platform/Syscalls.h"

extern char **environ;

namespace qv {

namespace {

constexpr int kPollMilliseconds = 50;

class CSpawnSetup {
public:
    CSpawnSetup() {
        ok = posix_spawn_file_actions_init(&actions) == 0;
        ok = posix_spawnattr_init(&attributes) == 0 && ok;
    }
    ~CSpawnSetup() {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    CSpawnSetup(CSpawnSetup const &) = delete;
    CSpawnSetup &operator=(CSpawnSetup const &) = delete;

    // Input from /dev/null, output and error into the pipe, the directory,
    // nothing else inherited, a session of its own, default signals.
    bool Prepare(char const *directory, int writeEnd) {
        sigset_t none, defaults;
        sigemptyset(&none);
        sigemptyset(&defaults);
        sigaddset(&defaults, SIGPIPE);
        sigaddset(&defaults, SIGINT);
        sigaddset(&defaults, SIGQUIT);
        sigaddset(&defaults, SIGTERM);
        sigaddset(&defaults, SIGCHLD);
        return ok && posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0) == 0 &&
               posix_spawn_file_actions_adddup2(&actions, writeEnd, 1) == 0 &&
               posix_spawn_file_actions_adddup2(&actions, writeEnd, 2) == 0 &&
               posix_spawn_file_actions_addclosefrom_np(&actions, 3) == 0 &&
               posix_spawn_file_actions_addchdir_np(&actions, directory) == 0 &&
               posix_spawnattr_setflags(&attributes,
                                        POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF) == 0 &&
               posix_spawnattr_setsigmask(&attributes, &none) == 0 &&
               posix_spawnattr_setsigdefault(&attributes, &defaults) == 0;
    }

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    bool ok;
};

int WaitForExit(pid_t pid, int options) {
    int status = 0;
    pid_t got;
    do
        got = waitpid(pid, &status, options);
    while (got < 0 && errno == EINTR);
    if (got == 0) return -2; // still running
    if (got < 0) return -1;
    if (WIFEXITED(status)) return WEXITSTATUS(status);
    if (WIFSIGNALED(status)) return 128 + WTERMSIG(status);
    return -1;
}

enum class EDrain { Waiting, Ended, Failed };

// Hands what waits in the pipe to sink, up to a bound so that a writer that
// never stops can't hold the caller here.
EDrain Drain(int fd, ChildOutputSink sink, void *context) {
    char block[4096];
    for (int blocks = 0; blocks < 256; ++blocks) {
        ssize_t n = SysRead(fd, block, sizeof block);
        if (n > 0) {
            sink(block, size_t(n), context);
            continue;
        }
        if (n == 0) return EDrain::Ended;
        return errno == EAGAIN || errno == EWOULDBLOCK ? EDrain::Waiting : EDrain::Failed;
    }
    return EDrain::Waiting;
}

// Reads until the child has ended (or the pipe closed), closes the pipe,
// then reaps the child. Output that could not be read makes the status
// unknown (-1), so that a caller scanning it never takes the part it saw for
// the whole; closing first ends a child that would otherwise wait on a full
// pipe for ever.
int Collect(pid_t pid, int readEnd, ChildOutputSink sink, void *context) {
    EDrain drained = EDrain::Waiting;
    int status = -2;
    while (drained == EDrain::Waiting && status == -2) {
        pollfd entry = {readEnd, POLLIN, 0};
        int ready = poll(&entry, 1, kPollMilliseconds);
        if (ready < 0 && errno != EINTR) drained = EDrain::Failed;
        if (ready > 0) drained = Drain(readEnd, sink, context);
        if (drained == EDrain::Waiting) status = WaitForExit(pid, WNOHANG);
    }
    if (drained == EDrain::Waiting) drained = Drain(readEnd, sink, context); // what it wrote just before it ended
    SysClose(readEnd);
    if (status == -2) status = WaitForExit(pid, 0);
    return drained == EDrain::Failed ? -1 : status;
}

} // namespace

SChildExit RunChildProcess(char const *program, char const *directory, ChildOutputSink sink, void *context) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return {false, -1};
    CSpawnSetup setup;
    pid_t pid = 0;
    char *argv[] = {const_cast<char *>(program), nullptr};
    bool started = setup.Prepare(directory, ends[1]) &&
                   posix_spawn(&pid, program, &setup.actions, &setup.attributes, argv, environ) == 0;
    SysClose(ends[1]);
    if (!started) {
        SysClose(ends[0]);
        return {false, -1};
    }
    int flags = SysGetFlags(ends[0]);
    if (flags >= 0) SysSetFlags(ends[0], flags | O_NONBLOCK);
    return {true, Collect(pid, ends[0], sink, context)};
}

} // namespace qv
