// What the sub-commands write: standard output checked once at the end, text
// from files shown escaped, and JSON objects with escaped strings.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace qv {
class IFile;
}

namespace qvtool {

// Flushes standard output. False, with the system's message on standard
// error, when any write to it failed (a full disk, a closed pipe): main then
// exits non-zero, so that output cut short never passes for whole.
bool FinishStandardOutput();

// Writes bytes to standard output. On a failure the system's reason is kept
// for FinishStandardOutput, which reports it once, and the result is false.
bool WriteStandardOutput(void const *bytes, size_t size);

// Copies the whole of source, from its start, to path ("-": standard
// output). A file is written beside path and renamed over it, so that a
// failure leaves the old file whole (or none). False when a read or write
// failed; for a file the sentence goes to standard error, for standard
// output FinishStandardOutput reports it.
bool CopyToOutput(qv::IFile &source, char const *path);

// Bytes from a file as safe terminal text: valid UTF-8 passes except control
// characters (C0, DEL, C1), which become \xNN (C1 characters by their code,
// e.g. \x9B); invalid bytes become \xNN; a backslash becomes \\. Plain text
// thus shows unchanged.
std::string Escaped(std::string_view bytes);

// A JSON string literal, quotes included. Valid UTF-8 passes, control
// characters become \u00XX, and each invalid byte becomes U+FFFD, so that
// the result is always valid JSON in UTF-8.
std::string JsonString(std::string_view bytes);

// Writes one JSON object to out, members in the order they are given; nested
// objects and arrays by Begin/End. Numbers print in their shortest form that
// reads back as the same double; a non-finite number prints as null.
class CJsonWriter {
public:
    explicit CJsonWriter(std::FILE *out) : out_(out) {}
    void BeginObject(char const *key = nullptr);
    void EndObject(); // the outermost one ends the line
    void BeginArray(char const *key = nullptr);
    void EndArray();
    void String(char const *key, std::string_view value);
    void Number(char const *key, double value);
    void Integer(char const *key, long long value);
    void Bool(char const *key, bool value);

private:
    void Key(char const *key);
    std::FILE *out_;
    int depth_ = 0;
    bool first_ = true;
};

} // namespace qvtool
