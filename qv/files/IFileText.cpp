// Plain text and fixed-length fields: no length prefix, no terminator in the file.
#include <cstdarg>
#include <cstring>

#include "qv/core/WideFormat.h"
#include "qv/files/IFile.h"
#include "qv/files/TempBlock.h"

namespace qv {

namespace {
constexpr size_t kFormatBuffer = 2048;
constexpr uint32_t kZeroPiece = 512;
} // namespace

bool IFile::WriteString(char const *s) {
    return !s || WriteBytes(s, uint32_t(std::strlen(s)));
}

bool IFile::WriteFormattedString(char const *fmt, ...) {
    va_list args, again;
    va_start(args, fmt);
    va_copy(again, args);
    int length = c_vscprintf(fmt, args);
    va_end(args);
    bool written = false;
    if (length >= 0) {
        TempBlock<kFormatBuffer> text(size_t(length) + 1);
        if (text.get()) {
            c_vsnprintf(text.get(), size_t(length) + 1, fmt, again);
            written = WriteBytes(text.get(), uint32_t(length));
        }
    }
    va_end(again);
    return written;
}

bool IFile::ReadString(char *buf, uint32_t n) {
    bool whole = ReadBytes(buf, n);
    buf[n] = 0;
    return whole;
}

bool IFile::GetFixedLengthString(char *buf, uint32_t n) {
    return ReadString(buf, n);
}

bool IFile::PutFixedLengthString(char const *s, uint32_t n) {
    uint32_t length = s ? uint32_t(strnlen(s, n)) : 0;
    if (!WriteBytes(s, length)) return false;
    WriteZeros(n - length);
    return true;
}

bool IFile::WriteZeros(uint32_t n) {
    static char const zeros[kZeroPiece] = {};
    while (n) {
        uint32_t piece = n < kZeroPiece ? n : kZeroPiece;
        if (Write(zeros, piece) != piece) return false;
        n -= piece;
    }
    return true;
}

} // namespace qv
