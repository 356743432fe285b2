// The tool's inputs: a path, or "-" for standard input, wherever a file is
// read. Failures come back as one sentence that names the input and, where
// the system refused, the system's message ("cannot open x.csv: No such file
// or directory").
//
// Bounds: a text input read whole is refused above kMaxTextInput bytes,
// before anything is read when its size is known; a streamed input is read
// in a fixed buffer, one line of at most kMaxLineBytes at a time. Text holds
// no NUL byte: one refuses the input as binary.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>

#include "qv/files/MemFile.h"

namespace qvtool {

constexpr size_t kMaxTextInput = size_t(16) << 20; // 16 MiB
constexpr size_t kMaxLineBytes = 4096;

// "standard input" for "-", else the path.
std::string InputName(char const *path);

// message with the path of the temporary copy of standard input (made by
// CLibraryPath::Take) written as "standard input", so that a message names
// what the user gave.
std::string NameStandardInput(std::string message);

// Reads a whole text input into text.
bool ReadTextInput(char const *path, std::string &text, std::string &error);

// Reads a whole input, binary or not, of at most kMaxWholeInput bytes into
// file, positioned at its start. On a failure the sentence goes to standard
// error and the result is false.
constexpr size_t kMaxWholeInput = size_t(256) << 20; // 256 MiB
bool ReadInput(char const *path, qv::CMemFile &file);

// Reads at most limit bytes from the start of an input, binary or not.
bool ReadInputHead(char const *path, size_t limit, std::string &bytes, std::string &error);

// Why a library open of path failed, as a sentence: the system's message
// when the system refuses the path too ("cannot open x: Permission denied"),
// else what the library refuses (a directory, a device, a file in use).
std::string OpenFailure(char const *path, bool write);

// Whether path ("-": standard input) can be opened for reading as a file;
// when not, the sentence with the system's message ("cannot open x: Is a
// directory") goes to standard error and the result is false. For commands
// whose library loader would only say that the file is not of its kind.
bool CheckInputFile(char const *path);

// Whether the output path names the same file as one of the others (the
// same existing file, or the same words; "-" is never one). Then a sentence
// goes to standard error and the result is true: writing there would destroy
// an input that the command is still reading, or another of its outputs.
bool OutputIsAnInput(char const *output, std::initializer_list<char const *> others);

// Why a whole-file write of path failed, as a sentence: the system's message
// for the path or its directory where the system refuses them ("cannot write
// x/y: No such file or directory"), else that the write failed.
std::string WriteFailure(char const *path);

// Reads a text input line by line, in constant memory.
class CLineReader {
public:
    CLineReader() = default;
    ~CLineReader();
    CLineReader(CLineReader const &) = delete;
    CLineReader &operator=(CLineReader const &) = delete;

    bool Open(char const *path, std::string &error);
    // The next line without its LF (a CR before it is dropped too). False at
    // the end, and on a failure, which sets error.
    bool Next(std::string &line, std::string &error);
    int LineNumber() const { return number_; }

private:
    bool Fill(std::string &error);
    int fd_ = -1;
    bool owned_ = false;
    std::string name_;
    char buffer_[65536];
    size_t start_ = 0, end_ = 0;
    bool atEnd_ = false;
    int number_ = 0;
};

// A path that a library loader can open for an input: the path itself, or
// for "-" a temporary file holding what was read (removed again by the
// destructor).
class CLibraryPath {
public:
    CLibraryPath() = default;
    ~CLibraryPath();
    CLibraryPath(CLibraryPath const &) = delete;
    CLibraryPath &operator=(CLibraryPath const &) = delete;

    bool Make(char const *path, std::string const &text, std::string &error);
    // As Make, reading standard input for "-" (at most kMaxWholeInput bytes,
    // binary or not); on a failure the sentence goes to standard error.
    bool Take(char const *path);
    char const *Path() const { return path_.c_str(); }

private:
    std::string path_;
    bool temporary_ = false;
};

} // namespace qvtool
