// Checked standard output, escaping, and the JSON writer.
#include "Output.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>

#include "Commands.h"
#include "Input.h"
#include "qv/core/String.h"
#include "qv/files/IFile.h"
#include "qv/filesystems/AtomicSave.h"

namespace qvtool {

namespace {

// The length of the valid UTF-8 sequence at text[0] (1 to 4), or 0.
size_t Utf8Length(std::string_view text) {
    unsigned char c = static_cast<unsigned char>(text[0]);
    size_t length = c < 0x80                 ? 1
                    : c >= 0xC2 && c <= 0xDF ? 2
                    : c >= 0xE0 && c <= 0xEF ? 3
                    : c >= 0xF0 && c <= 0xF4 ? 4
                                             : 0;
    if (length == 0 || length > text.size()) return 0;
    for (size_t i = 1; i < length; ++i)
        if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) return 0;
    unsigned char next = static_cast<unsigned char>(text.size() > 1 ? text[1] : 0);
    // Overlong forms, surrogates and code points past U+10FFFF.
    if ((c == 0xE0 && next < 0xA0) || (c == 0xED && next > 0x9F) || (c == 0xF0 && next < 0x90) ||
        (c == 0xF4 && next > 0x8F))
        return 0;
    return length;
}

// The code of a control character at text[0] of a sequence of length, or -1.
int ControlCode(std::string_view text, size_t length) {
    unsigned char c = static_cast<unsigned char>(text[0]);
    if (length == 1 && (c < 0x20 || c == 0x7F)) return c;
    if (length == 2 && c == 0xC2 && static_cast<unsigned char>(text[1]) < 0xA0)
        return static_cast<unsigned char>(text[1]); // C1: U+0080..U+009F
    return -1;
}

void AppendHex(std::string &out, char const *prefix, int code, int digits) {
    char buffer[16];
    std::snprintf(buffer, sizeof(buffer), "%s%0*X", prefix, digits, unsigned(code));
    out += buffer;
}

// The reason the first failed write to standard output gave, or 0.
int standardOutputError = 0;

// Reads source from its start to its end, giving each block to put.
template <class Put> bool CopyBlocks(qv::IFile &source, Put &&put) {
    static char buffer[1 << 16];
    source.SeekToBegin();
    for (int64_t left = source.GetSize(); left > 0;) {
        uint32_t n = source.Read(buffer, uint32_t(left < int64_t(sizeof buffer) ? left : int64_t(sizeof buffer)));
        if (n == 0 || !put(buffer, n)) return false;
        left -= n;
    }
    return true;
}

} // namespace

bool FinishStandardOutput() {
    errno = 0;
    bool written = std::fflush(stdout) == 0 && !std::ferror(stdout);
    if (written) return true;
    int code = standardOutputError ? standardOutputError : errno ? errno : EIO;
    std::fprintf(stderr, "qv: cannot write to standard output: %s\n", std::strerror(code));
    return false;
}

bool WriteStandardOutput(void const *bytes, size_t size) {
    errno = 0;
    if (std::fwrite(bytes, 1, size, stdout) == size) return true;
    if (!standardOutputError) standardOutputError = errno ? errno : EIO;
    return false;
}

bool CopyToOutput(qv::IFile &source, char const *path) {
    if (std::strcmp(path, "-") == 0)
        return CopyBlocks(source, [](char const *bytes, uint32_t n) { return WriteStandardOutput(bytes, n); });
    bool written = qv::SaveAtomically(nullptr, qv::CString(path).GetUTF16(), [&](qv::IFile &out) {
        return CopyBlocks(source, [&](char const *bytes, uint32_t n) { return out.WriteBytes(bytes, n); });
    });
    if (!written) Fail("%s", WriteFailure(path).c_str());
    return written;
}

std::string Escaped(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    while (!bytes.empty()) {
        size_t length = Utf8Length(bytes);
        int control = length ? ControlCode(bytes, length) : -1;
        if (length == 0) {
            AppendHex(out, "\\x", static_cast<unsigned char>(bytes[0]), 2);
            length = 1;
        } else if (control >= 0) {
            AppendHex(out, "\\x", control, 2);
        } else if (bytes[0] == '\\') {
            out += "\\\\";
        } else {
            out.append(bytes.data(), length);
        }
        bytes.remove_prefix(length);
    }
    return out;
}

std::string JsonString(std::string_view bytes) {
    std::string out = "\"";
    while (!bytes.empty()) {
        size_t length = Utf8Length(bytes);
        unsigned char c = static_cast<unsigned char>(bytes[0]);
        if (length == 0) {
            out += "\xEF\xBF\xBD"; // U+FFFD for a byte that is no UTF-8
            length = 1;
        } else if (c == '"' || c == '\\') {
            out += '\\';
            out += char(c);
        } else if (length == 1 && c < 0x20) {
            AppendHex(out, "\\u", c, 4);
        } else {
            out.append(bytes.data(), length);
        }
        bytes.remove_prefix(length);
    }
    return out + "\"";
}

void CJsonWriter::Key(char const *key) {
    if (!first_) std::fputc(',', out_);
    first_ = false;
    if (key) std::fprintf(out_, "%s:", JsonString(key).c_str());
}

void CJsonWriter::BeginObject(char const *key) {
    if (depth_ > 0) Key(key);
    std::fputc('{', out_);
    ++depth_;
    first_ = true;
}

void CJsonWriter::EndObject() {
    std::fputc('}', out_);
    first_ = false;
    if (--depth_ == 0) std::fputc('\n', out_);
}

void CJsonWriter::BeginArray(char const *key) {
    Key(key);
    std::fputc('[', out_);
    ++depth_;
    first_ = true;
}

void CJsonWriter::EndArray() {
    std::fputc(']', out_);
    --depth_;
    first_ = false;
}

void CJsonWriter::String(char const *key, std::string_view value) {
    Key(key);
    std::fputs(JsonString(value).c_str(), out_);
}

void CJsonWriter::Number(char const *key, double value) {
    Key(key);
    char buffer[32];
    std::to_chars_result end = std::to_chars(buffer, buffer + sizeof(buffer) - 1, value);
    *end.ptr = '\0';
    std::fputs(std::isfinite(value) ? buffer : "null", out_);
}

void CJsonWriter::Integer(char const *key, long long value) {
    Key(key);
    std::fprintf(out_, "%lld", value);
}

void CJsonWriter::Bool(char const *key, bool value) {
    Key(key);
    std::fputs(value ? "true" : "false", out_);
}

} // namespace qvtool
