#include "qv/files/GZFile.h"

// next_in is const: the input is never written.
#define ZLIB_CONST
#include <zlib.h>

#include <algorithm>
#include <new>

#include "qv/core/StringFunctions.h"
#include "qv/files/TGZFHeader.h"
#include "qv/filesystems/FileSystem.h"

namespace qv {

namespace {

constexpr uint32_t kReadFlag = 0x10;
constexpr uint32_t kWriteFlag = 0x20;
constexpr uint32_t kBufferSize = 16384;
constexpr int kWindowBits = 15;
constexpr int kMemoryLevel = 8;


} // namespace

CGZFile::CGZFile(IFile *f, uint32_t mode, bool own) {
    Open(f, mode, own);
}

CGZFile::CGZFile(CGZFile const &other) : IFile(other) {
    CopyFrom(other);
}

CGZFile &CGZFile::operator=(CGZFile const &other) {
    if (&other == this) return *this;
    Clear();
    IFile::operator=(other);
    CopyFrom(other);
    return *this;
}

CGZFile::~CGZFile() {
    Close();
    ReleaseStream();
}

void CGZFile::Open(IFile *f, uint32_t mode, bool own) {
    file = f;
    owned = own;
    mode &= kReadFlag | kWriteFlag;
    bool usable = f && (mode == kWriteFlag ? f->GetSize() == 0 : mode == kReadFlag && f->GetSize() > 0);
    if (usable) {
        flags = mode;
        usable = f->Seek(0, 1) == 0 && (mode == kWriteFlag ? StartWriting() : StartReading());
    }
    if (usable) return;
    if (owned) delete file;
    file = nullptr;
    owned = false;
    flags = 0;
    size = 0;
}

bool CGZFile::StartWriting() {
    if (!WriteTGZFHeader(*file) || !AllocateStream(1)) return false;
    if (deflateInit2(stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kWindowBits, kMemoryLevel, Z_DEFAULT_STRATEGY) !=
        Z_OK) {
        ReleaseStream();
        return false;
    }
    stream->next_out = buffer;
    stream->avail_out = bufferSize;
    raw = false;
    dataStart = kTGZFDataStart;
    return true;
}

bool CGZFile::StartReading() {
    if (!ReadTGZFHeader(*file, size)) {
        size = file->GetSize();
        return true; // plain bytes pass through
    }
    // Room for the input and, behind it, for output that a seek discards.
    if (!AllocateStream(2)) return false;
    if (inflateInit2(stream, kWindowBits) != Z_OK) {
        ReleaseStream();
        return false;
    }
    raw = false;
    dataStart = kTGZFDataStart;
    inputOffset = dataStart;
    return true;
}

bool CGZFile::AllocateStream(uint32_t bufferBlocks) {
    buffer = new (std::nothrow) uint8_t[size_t(kBufferSize) * bufferBlocks];
    stream = new (std::nothrow) z_stream{};
    bufferSize = kBufferSize;
    if (buffer && stream) return true;
    delete[] buffer;
    delete stream;
    buffer = nullptr;
    stream = nullptr;
    return false;
}

// Only a stream that was set up exists (raw is then false).
void CGZFile::ReleaseStream() {
    if (stream && !raw) {
        if (flags == kWriteFlag)
            deflateEnd(stream);
        else
            inflateEnd(stream);
    }
    delete stream;
    delete[] buffer;
    stream = nullptr;
    buffer = nullptr;
    raw = true;
}

void CGZFile::Clear() {
    Close();
    ReleaseStream();
    bufferSize = 0;
    position = 0;
    size = 0;
    flags = 0;
    dataStart = 0;
    inputOffset = 0;
    writeFailed = false;
    ended = false;
}

void CGZFile::CopyFrom(CGZFile const &other) {
    if (!other.file) return;
    if (other.raw) {
        file = other.file;
        flags = other.flags;
        size = other.size;
        return;
    }
    if (other.flags != kReadFlag) return;
    Open(other.file, kReadFlag, false);
    Seek(other.position, 1);
}

bool CGZFile::Reading() const {
    return file && !raw && flags == kReadFlag;
}

bool CGZFile::Writing() const {
    return file && !raw && flags == kWriteFlag;
}

char16_t *CGZFile::GetFilename(char16_t *buf, int n) {
    if (file) return file->GetFilename(buf, n);
    return StrCpy(buf, u"", n > 0 ? size_t(n) : 0);
}

IFileSystem &CGZFile::GetFileSystem() {
    return file ? file->GetFileSystem() : qv::GetFileSystem();
}

// ---- Reading ----

void CGZFile::Refill() {
    // A failed seek gives no input, which ends the transfer.
    uint32_t got = file->Seek(inputOffset, 1) == inputOffset ? file->Read(buffer, bufferSize) : 0;
    inputOffset += got;
    stream->next_in = buffer;
    stream->avail_in = got;
}

uint32_t CGZFile::Inflate(uint8_t *p, uint32_t n) {
    stream->next_out = p;
    stream->avail_out = n;
    while (stream->avail_out) {
        if (!stream->avail_in) Refill();
        // Z_STREAM_END, a damaged stream and input that ran out (Z_BUF_ERROR:
        // no progress possible) all end the transfer.
        if (inflate(stream, Z_NO_FLUSH) != Z_OK) break;
    }
    return n - stream->avail_out;
}

uint32_t CGZFile::Read(void *p, uint32_t n) {
    if (file && raw) return file->Read(p, n);
    if (!Reading() || position >= size) return 0;
    n = uint32_t(std::min<int64_t>(n, size - position));
    uint32_t got = n ? Inflate(static_cast<uint8_t *>(p), n) : 0;
    position += got;
    return got;
}

void CGZFile::Restart() {
    stream->avail_in = 0;
    inflateReset(stream);
    inputOffset = dataStart;
    position = 0;
}

void CGZFile::Discard(int64_t n) {
    uint8_t *scratch = buffer + bufferSize;
    while (n > 0) {
        uint32_t got = Inflate(scratch, uint32_t(std::min<int64_t>(n, bufferSize)));
        if (!got) return; // the stream ends before the target
        position += got;
        n -= got;
    }
}

int64_t CGZFile::Seek(int64_t offset, uint32_t origin) {
    if (file && raw) return file->Seek(offset, origin);
    if (!Reading()) return position;
    int64_t target;
    if (!ClampedSeekTarget(offset, origin, position, size, target)) return position;
    if (target < position) Restart();
    Discard(target - position);
    return position;
}

// ---- Writing ----

bool CGZFile::WriteOutput() {
    uint32_t pending = bufferSize - stream->avail_out;
    if (!file->WriteBytes(buffer, pending)) writeFailed = true;
    stream->next_out = buffer;
    stream->avail_out = bufferSize;
    return !writeFailed;
}

uint32_t CGZFile::Write(void const *p, uint32_t n) {
    if (file && raw) return file->Write(p, n);
    if (!Writing() || writeFailed || ended) return 0;
    stream->next_in = static_cast<uint8_t const *>(p);
    stream->avail_in = n;
    while (stream->avail_in) {
        if (deflate(stream, Z_NO_FLUSH) == Z_STREAM_ERROR) break;
        if (!stream->avail_out && !WriteOutput()) break;
    }
    uint32_t taken = n - stream->avail_in;
    stream->avail_in = 0;
    position += taken;
    size += taken;
    // Output of this call and of earlier ones was lost with the refused write.
    return writeFailed ? 0 : taken;
}

void CGZFile::FinishWriting() {
    while (!writeFailed) {
        int status = deflate(stream, Z_FINISH);
        bool done = status == Z_STREAM_END;
        if (!done && status != Z_OK) writeFailed = true;
        else if ((done || !stream->avail_out) && !WriteOutput()) break;
        if (done) break;
    }
    // A broken stream keeps the size 0, so that it reads as empty.
    if (!writeFailed && !PatchTGZFSize(*file, size)) writeFailed = true;
}

bool CGZFile::Finish() {
    if (!Writing()) return false;
    if (!ended) FinishWriting();
    ended = true;
    return !writeFailed;
}

int64_t CGZFile::GetSize() {
    return size;
}

int64_t CGZFile::GetPosition() {
    if (file && raw) return file->GetPosition();
    return position;
}

bool CGZFile::SetSize(int64_t) {
    return false;
}

void CGZFile::Flush() {
    if (file) file->Flush();
}

void CGZFile::Close() {
    if (!file) return;
    if (Writing()) Finish();
    file->Close();
    if (owned) delete file;
    file = nullptr;
    owned = false;
}

} // namespace qv
