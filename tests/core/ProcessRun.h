// Running another program from a test: its standard output and error go to
// files in a scratch directory (no pipe to fill up), and come back as text
// with the exit status.
#pragma once

#include <gtest/gtest.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern char **environ;

namespace qv::test {

struct SProcessRun {
    int status = -1; // the exit code, 128 + the signal that ended it, -1 if it never ran
    std::string out, err;
};

// Runs program (a path, or a name found on PATH) with args; scratch is a
// directory for the captured streams.
inline SProcessRun RunProcess(std::string const &program, std::vector<std::string> const &args,
                              std::string const &scratch) {
    std::string const out = scratch + "/run.stdout", err = scratch + "/run.stderr";
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    std::vector<char *> argv{const_cast<char *>(program.c_str())};
    for (std::string const &arg : args)
        argv.push_back(const_cast<char *>(arg.c_str()));
    argv.push_back(nullptr);
    pid_t pid = 0;
    int const spawned = posix_spawnp(&pid, program.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    SProcessRun run;
    int status = 0;
    if (spawned != 0 || waitpid(pid, &status, 0) != pid) return run;
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    auto read = [](std::string const &path) {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    run.out = read(out);
    run.err = read(err);
    return run;
}

// Whether an executable file exists at path.
inline bool HasProgram(char const *path) {
    return access(path, X_OK) == 0;
}

} // namespace qv::test
