// Length-prefixed, unicode and archive strings.
//
// A failed string Put or Get seeks back over whatever of the field passed
// (bytes plus the 4-byte length), so the file stands where it stood. Length
// fields are untrusted: a length beyond the bytes that remain is refused
// before anything is allocated.
#include <climits>
#include <cstring>

#include "qv/core/CodePage.h"
#include "qv/core/WideChar.h"
#include "qv/files/IFile.h"
#include "qv/files/TempBlock.h"

namespace qv {

namespace {

constexpr size_t kInlineText = 256;
constexpr uint32_t kLengthField = 4;

// n bytes of codePage text into out; a NUL among them ends the text.
void DecodeText(uint32_t codePage, char const *bytes, uint32_t n, CString &out) {
    int units = n ? MultiByteToWideChar(codePage, bytes, int(n), nullptr, 0) : 0;
    char16_t *text = out.GetBuffer(units);
    if (units) MultiByteToWideChar(codePage, bytes, int(n), text, units);
    text[units] = 0;
    out.ReleaseBuffer();
}

// Seeks back over bytes that passed; false, for the failure paths.
bool Unread(IFile &file, int64_t bytes) {
    file.Seek(-bytes, 2);
    return false;
}

uint32_t TextLength(char const *s) {
    size_t n = s ? std::strlen(s) : 0;
    return n > UINT32_MAX ? UINT32_MAX : uint32_t(n);
}

} // namespace

bool IFile::PutCountedBytes(uint32_t length, void const *p, uint32_t n) {
    if (!PutDWORD(length)) return false;
    uint32_t written = n ? Write(p, n) : 0;
    if (written == n) return true;
    return Unread(*this, int64_t(written) + kLengthField);
}

bool IFile::GetCountedLength(uint32_t &length, uint32_t unitSize) {
    if (!GetDWORD(length)) return false;
    int64_t remaining = GetRemaining();
    uint64_t bytes = uint64_t(length) * unitSize;
    if (length <= INT_MAX && remaining >= 0 && bytes <= uint64_t(remaining)) return true;
    return Unread(*this, kLengthField);
}

bool IFile::ReadCountedBody(void *p, uint32_t n) {
    uint32_t got = n ? Read(p, n) : 0;
    if (got == n) return true;
    return Unread(*this, int64_t(got) + kLengthField);
}

bool IFile::PutString(char const *utf8) {
    uint32_t n = TextLength(utf8);
    return n != UINT32_MAX && PutCountedBytes(n, utf8, n);
}

bool IFile::PutString(char16_t const *s) {
    return PutString(CP_UTF8, s);
}

bool IFile::PutString(uint32_t codePage, char16_t const *s) {
    size_t units = s ? wcslen(s) : 0;
    if (units > INT_MAX) return false;
    int bytes = units ? WideCharToMultiByte(codePage, s, int(units), nullptr, 0) : 0;
    TempBlock<kInlineText> text{size_t(bytes)};
    if (!text.get()) return false;
    if (bytes) WideCharToMultiByte(codePage, s, int(units), text.get(), bytes);
    return PutCountedBytes(uint32_t(bytes), text.get(), uint32_t(bytes));
}

bool IFile::GetCodePageString(uint32_t codePage, CString &out) {
    uint32_t length;
    if (!GetCountedLength(length, 1)) return false;
    TempBlock<kInlineText> bytes(length);
    if (!bytes.get()) return Unread(*this, kLengthField);
    if (!ReadCountedBody(bytes.get(), length)) return false;
    DecodeText(codePage, bytes.get(), length, out);
    return true;
}

bool IFile::GetCodePageString(uint32_t codePage, char16_t *buf, int size) {
    uint32_t length;
    if (!GetCountedLength(length, 1)) return false;
    TempBlock<kInlineText> bytes(length);
    if (!bytes.get()) return Unread(*this, kLengthField);
    if (!ReadCountedBody(bytes.get(), length)) return false;
    int units = length ? MultiByteToWideChar(codePage, bytes.get(), int(length), nullptr, 0) : 0;
    if (units >= size) return Unread(*this, int64_t(length) + kLengthField);
    if (units) MultiByteToWideChar(codePage, bytes.get(), int(length), buf, units);
    buf[units] = 0;
    return true;
}

bool IFile::GetString(CString &out) {
    return GetCodePageString(CP_UTF8, out);
}

CString IFile::GetString() {
    CString out;
    GetCodePageString(CP_UTF8, out);
    return out;
}

bool IFile::GetString(char *buf, int size) {
    uint32_t length;
    if (!GetDWORD(length)) return false;
    if (int64_t(length) > int64_t(size) - 1) return Unread(*this, kLengthField);
    if (!ReadCountedBody(buf, length)) return false;
    buf[length] = 0;
    return true;
}

bool IFile::GetString(char16_t *buf, int size) {
    return GetCodePageString(CP_UTF8, buf, size);
}

bool IFile::GetString(uint32_t codePage, CString &out) {
    return GetCodePageString(codePage, out);
}

CString IFile::GetString(uint32_t codePage) {
    CString out;
    GetCodePageString(codePage, out);
    return out;
}

bool IFile::GetString(uint32_t codePage, char16_t *buf, int size) {
    return GetCodePageString(codePage, buf, size);
}

bool IFile::PutUnicodeString(char16_t const *s) {
    size_t units = s ? wcslen(s) : 0;
    if (units > INT_MAX) return false;
    return PutCountedBytes(uint32_t(units), s, uint32_t(units * sizeof(char16_t)));
}

bool IFile::GetUnicodeString(CString &out) {
    uint32_t length;
    if (!GetCountedLength(length, sizeof(char16_t))) return false;
    char16_t *text = out.GetBuffer(int(length));
    bool whole = ReadCountedBody(text, length * uint32_t(sizeof(char16_t)));
    text[whole ? length : 0] = 0;
    out.ReleaseBuffer();
    return whole;
}

CString IFile::GetUnicodeString() {
    CString out;
    GetUnicodeString(out);
    return out;
}

bool IFile::GetUnicodeString(char16_t *buf, int size) {
    uint32_t length;
    if (!GetDWORD(length)) return false;
    if (int64_t(length) > int64_t(size) - 1) return Unread(*this, kLengthField);
    if (!ReadCountedBody(buf, length * uint32_t(sizeof(char16_t)))) return false;
    buf[length] = 0;
    return true;
}

bool IFile::PutArchiveString(char const *utf8) {
    char const *text = utf8 ? utf8 : "";
    uint32_t n = TextLength(text);
    if (n < 0xFF) {
        PutBYTE(uint8_t(n));
    } else if (n <= 0xFFFD) {
        PutBYTE(0xFF);
        PutWORD(uint16_t(n));
    } else {
        PutBYTE(0xFF);
        PutWORD(0xFFFF);
        PutDWORD(n);
    }
    return Write(text, n) != 0; // the last write decides, as callers expect
}

bool IFile::GetArchiveString(CString &out) {
    uint32_t n = GetBYTE();
    if (n == 0xFF) n = GetWORD();
    if (n == 0xFFFF) n = GetDWORD();
    int64_t remaining = GetRemaining();
    if (remaining < int64_t(n)) n = remaining > 0 ? uint32_t(remaining) : 0;
    TempBlock<kInlineText> bytes(n);
    uint32_t got = bytes.get() && n ? Read(bytes.get(), n) : 0;
    DecodeText(CP_UTF8, bytes.get(), got, out);
    return true; // reads are not checked: existing callers expect true
}

CString IFile::GetArchiveString() {
    CString out;
    GetArchiveString(out);
    return out;
}

} // namespace qv
