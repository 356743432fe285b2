// Running a program as a hidden child process with its output captured.
// Internal to libqv and its tests; never installed.
//
// The child runs in directory with standard input from /dev/null, standard
// output and error together on one pipe, in a session of its own, and
// inherits no descriptor of the caller's besides those three. Every block of
// its output goes to sink as it comes. The call returns when the child has
// ended and has been reaped (no zombie is left); output that a grandchild
// still writes to an inherited pipe after that is not waited for.
//
// A process that ignores SIGCHLD has its children reaped by the system: the
// status is then -1 (not known). So is it when reading the output failed:
// the pipe is then closed and the child reaped.
//
// Threads: any thread; blocks it for as long as the child runs, without a
// time limit.
#pragma once

#include <cstddef>

namespace qv {

using ChildOutputSink = void (*)(char const *data, size_t n, void *context);

struct SChildExit {
    bool started; // false: no pipe, or the program could not be started
    int status;   // exit code, 128 + the signal that ended it, or -1 when not known
};

// program: an absolute path (UTF-8), run with itself as the only argument
// and the caller's environment.
SChildExit RunChildProcess(char const *program, char const *directory, ChildOutputSink sink, void *context);

} // namespace qv
