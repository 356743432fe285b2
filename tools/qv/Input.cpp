// Opening and reading the tool's inputs with the system's own messages.
#include "Input.h"

#include "Commands.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace qvtool {

std::string InputName(char const *path) {
    return std::strcmp(path, "-") == 0 ? "standard input" : path;
}

namespace {

// The temporary copy of standard input that CLibraryPath::Take made, if any.
std::string standardInputCopy;

} // namespace

std::string NameStandardInput(std::string message) {
    if (standardInputCopy.empty()) return message;
    for (size_t at; (at = message.find(standardInputCopy)) != std::string::npos;)
        message.replace(at, standardInputCopy.size(), "standard input");
    return message;
}

namespace {

std::string SystemFailure(char const *what, std::string const &name, int error) {
    return std::string("cannot ") + what + " " + name + ": " + std::strerror(error);
}

// Opens path ("-": standard input) for reading and refuses a directory.
// owned tells whether the descriptor is to be closed.
bool OpenInput(char const *path, int &fd, bool &owned, off_t &size, std::string &error) {
    std::string name = InputName(path);
    owned = std::strcmp(path, "-") != 0;
    fd = owned ? open(path, O_RDONLY | O_CLOEXEC) : 0;
    if (fd < 0) return error = SystemFailure("open", name, errno), false;
    struct stat status {};
    if (fstat(fd, &status) != 0 || S_ISDIR(status.st_mode)) {
        int code = S_ISDIR(status.st_mode) ? EISDIR : errno;
        if (owned) close(fd);
        return error = SystemFailure("read", name, code), false;
    }
    size = S_ISREG(status.st_mode) ? status.st_size : -1;
    return true;
}

ssize_t ReadSome(int fd, char *buffer, size_t size) {
    ssize_t got;
    do
        got = read(fd, buffer, size);
    while (got < 0 && errno == EINTR);
    return got;
}

std::string TooLarge(std::string const &name) {
    return name + " is larger than the " + std::to_string(kMaxTextInput >> 20) + " MiB an input may hold";
}

std::string Binary(std::string const &name) {
    return name + " is not a text file (it holds a NUL byte)";
}

// Reads up to limit bytes; with whole, more than limit is a failure; with
// text, a NUL byte is one at once (an endless device of zeros ends there).
bool ReadInput(char const *path, size_t limit, bool whole, bool text, std::string &bytes, std::string &error) {
    int fd = -1;
    bool owned = false;
    off_t size = 0;
    if (!OpenInput(path, fd, owned, size, error)) return false;
    std::string name = InputName(path);
    bool ok = true;
    if (whole && size > off_t(limit)) {
        error = TooLarge(name);
        ok = false;
    }
    bytes.clear();
    char buffer[65536];
    while (ok && bytes.size() <= limit) {
        ssize_t got = ReadSome(fd, buffer, sizeof(buffer));
        if (got == 0) break;
        if (got < 0) {
            error = SystemFailure("read", name, errno);
            ok = false;
        } else if (text && std::memchr(buffer, '\0', size_t(got))) {
            error = Binary(name);
            ok = false;
        } else {
            bytes.append(buffer, size_t(got));
        }
    }
    if (owned) close(fd);
    if (ok && bytes.size() > limit) {
        if (whole) {
            error = TooLarge(name);
            ok = false;
        }
        bytes.resize(limit);
    }
    return ok;
}

} // namespace

bool ReadInput(char const *path, qv::CMemFile &file) {
    std::string bytes, error;
    if (!ReadInput(path, kMaxWholeInput, true, false, bytes, error)) return Fail("%s", error.c_str()) == 0;
    if (file.Write(bytes.data(), uint32_t(bytes.size())) != bytes.size())
        return Fail("%s does not fit in memory", InputName(path).c_str()) == 0;
    file.SeekToBegin();
    return true;
}

bool ReadInputHead(char const *path, size_t limit, std::string &bytes, std::string &error) {
    return ReadInput(path, limit, false, false, bytes, error);
}

std::string OpenFailure(char const *path, bool write) {
    int fd = open(path, (write ? O_RDWR : O_RDONLY) | O_CLOEXEC);
    if (fd < 0) return SystemFailure("open", path, errno);
    struct stat status {};
    bool statted = fstat(fd, &status) == 0;
    close(fd);
    if (statted && S_ISDIR(status.st_mode)) return SystemFailure("open", path, EISDIR);
    if (statted && !S_ISREG(status.st_mode)) return std::string("cannot open ") + path + ": not a regular file";
    return std::string("cannot open ") + path + ": another program has it open without sharing";
}

bool CheckInputFile(char const *path) {
    int fd = -1;
    bool owned = false;
    off_t size = 0;
    std::string error;
    if (!OpenInput(path, fd, owned, size, error)) return Fail("%s", error.c_str()) == 0;
    if (owned) close(fd);
    return true;
}

bool OutputIsAnInput(char const *output, std::initializer_list<char const *> others) {
    struct stat out {};
    bool exists = stat(output, &out) == 0;
    for (char const *input : others) {
        struct stat in {};
        bool same = exists && stat(input, &in) == 0 ? in.st_dev == out.st_dev && in.st_ino == out.st_ino
                                                    : std::strcmp(input, output) == 0;
        if (same && std::strcmp(output, "-") != 0)
            return Fail("%s would overwrite another file of the command; give the output its own path", output) != 0;
    }
    return false;
}

std::string WriteFailure(char const *path) {
    std::string directory = path;
    size_t slash = directory.rfind('/');
    directory = slash == std::string::npos ? "." : slash == 0 ? "/" : directory.substr(0, slash);
    struct stat status {};
    int code = 0;
    if (stat(path, &status) == 0)
        code = S_ISDIR(status.st_mode) ? EISDIR : access(path, W_OK) != 0 ? errno : 0;
    else if (errno != ENOENT)
        code = errno;
    else if (access(directory.c_str(), W_OK) != 0)
        code = errno;
    if (code) return SystemFailure("write", path, code);
    return std::string("cannot write ") + path + " (the old file, if any, is unchanged)";
}

bool ReadTextInput(char const *path, std::string &text, std::string &error) {
    return ReadInput(path, kMaxTextInput, true, true, text, error);
}

CLineReader::~CLineReader() {
    if (owned_) close(fd_);
}

bool CLineReader::Open(char const *path, std::string &error) {
    off_t size = 0;
    name_ = InputName(path);
    return OpenInput(path, fd_, owned_, size, error);
}

bool CLineReader::Fill(std::string &error) {
    if (start_ > 0) {
        std::memmove(buffer_, buffer_ + start_, end_ - start_);
        end_ -= start_;
        start_ = 0;
    }
    ssize_t got = ReadSome(fd_, buffer_ + end_, sizeof(buffer_) - end_);
    if (got < 0) return error = SystemFailure("read", name_, errno), false;
    if (got == 0) atEnd_ = true;
    if (std::memchr(buffer_ + end_, '\0', size_t(got))) return error = Binary(name_), false;
    end_ += size_t(got);
    return true;
}

bool CLineReader::Next(std::string &line, std::string &error) {
    error.clear();
    for (;;) {
        char *newline = static_cast<char *>(std::memchr(buffer_ + start_, '\n', end_ - start_));
        size_t length = newline ? size_t(newline - (buffer_ + start_)) : end_ - start_;
        if (length > kMaxLineBytes) {
            error = name_ + ":" + std::to_string(number_ + 1) + ": the line is longer than " +
                    std::to_string(kMaxLineBytes) + " bytes";
            return false;
        }
        if (newline || (atEnd_ && length > 0)) {
            line.assign(buffer_ + start_, length);
            if (!line.empty() && line.back() == '\r') line.pop_back();
            start_ += length + (newline ? 1 : 0);
            ++number_;
            return true;
        }
        if (atEnd_ || !Fill(error)) return false;
    }
}

bool CLibraryPath::Take(char const *path) {
    std::string bytes, error;
    if (std::strcmp(path, "-") == 0 && !ReadInput(path, kMaxWholeInput, true, false, bytes, error))
        return Fail("%s", error.c_str()) == 0;
    if (!Make(path, bytes, error)) return Fail("%s", error.c_str()) == 0;
    if (temporary_) standardInputCopy = path_;
    return true;
}

CLibraryPath::~CLibraryPath() {
    if (!temporary_) return;
    unlink(path_.c_str());
    if (standardInputCopy == path_) standardInputCopy.clear();
}

bool CLibraryPath::Make(char const *path, std::string const &text, std::string &error) {
    if (std::strcmp(path, "-") != 0) {
        path_ = path;
        return true;
    }
    char const *directory = std::getenv("TMPDIR");
    std::string pattern = std::string(directory && *directory ? directory : "/tmp") + "/qv-stdin-XXXXXX";
    int fd = mkstemp(pattern.data());
    if (fd < 0) return error = SystemFailure("create a temporary copy of", "standard input", errno), false;
    path_ = pattern;
    temporary_ = true;
    size_t done = 0;
    while (done < text.size()) {
        ssize_t wrote = write(fd, text.data() + done, text.size() - done);
        if (wrote < 0 && errno == EINTR) continue;
        if (wrote <= 0) {
            int code = wrote < 0 ? errno : EIO;
            close(fd);
            return error = SystemFailure("copy", "standard input to " + path_, code), false;
        }
        done += size_t(wrote);
    }
    if (close(fd) != 0) return error = SystemFailure("copy", "standard input to " + path_, errno), false;
    return true;
}

} // namespace qvtool
