// Writing a radiometric JPEG: the picture is copied segment by segment (the
// entropy-coded data of each scan in large pieces), its old chunk segments
// are dropped and the new ones go in their place. Nothing is decoded, so the
// picture keeps every bit.
#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "qv/filesystems/AtomicSave.h"
#include "qv/files/IFile.h"
#include "qv/images/Images.h"
#include "qv/images/RadiometricJPEG.h"

namespace qv {
namespace {

constexpr uint8_t kSOI = 0xD8, kEOI = 0xD9, kSOS = 0xDA, kTEM = 0x01, kRST0 = 0xD0, kRST7 = 0xD7;
constexpr uint8_t kAPP0 = 0xE0, kAPP15 = 0xEF;
constexpr uint32_t kMaxChunks = 0xFFFF;
// Marker, length, word and chunk header: the bytes before a chunk in the file.
constexpr uint32_t kChunkStart = 4 + kRadiometricChunkHeader;

// Forward reads of a file through one buffer that holds any whole segment.
class CForwardReader {
public:
    static constexpr size_t kSize = 0x20000;

    explicit CForwardReader(IFile &file) : file(file) {}

    /// Whether n (at most kSize) bytes stand in the buffer; reads more if not.
    /// False at the end of the file and when a read fails (see Failed).
    bool Have(size_t n) {
        if (end - start >= n) return true;
        std::memmove(buffer, buffer + start, end - start);
        end -= start;
        start = 0;
        while (end < n) {
            uint32_t got = file.Read(buffer + end, uint32_t(kSize - end));
            failed = got == 0 && file.GetRemaining() > 0;
            if (got == 0) return false;
            end += got;
        }
        return true;
    }
    uint8_t const *Data() const { return buffer + start; }
    size_t Available() const { return end - start; }
    void Skip(size_t n) { start += n; }
    bool Failed() const { return failed; } ///< the last read failed short of the end

private:
    IFile &file;
    bool failed = false;
    size_t start = 0, end = 0;
    uint8_t buffer[kSize];
};

bool WriteAll(IFile &out, void const *p, size_t n) { return n == 0 || out.Write(p, uint32_t(n)) == n; }

class CRadiometricCopy {
public:
    CRadiometricCopy(IFile &jpeg, IFile &payload, IFile &out) : in(jpeg), payload(payload), out(out) {}

    bool Run() {
        uint8_t const start[2] = {0xFF, kSOI};
        if (!in.Have(2) || std::memcmp(in.Data(), start, 2) != 0 || !Put(start, 2)) return false;
        in.Skip(2);
        while (true) {
            uint8_t marker = 0;
            if (!NextMarker(marker)) return false;
            if (marker == kEOI) return sawScan && CopyEnd();
            if (!CopyMarker(marker)) return false;
        }
    }

private:
    // Skips fill bytes (0xFF runs) before a marker code; the code follows.
    bool NextMarker(uint8_t &marker) {
        if (!in.Have(1) || in.Data()[0] != 0xFF) return false;
        do {
            in.Skip(1);
            if (!in.Have(1)) return false;
        } while (in.Data()[0] == 0xFF);
        marker = in.Data()[0];
        in.Skip(1);
        return marker != 0;
    }

    bool CopyMarker(uint8_t marker) {
        uint8_t code[2] = {0xFF, marker};
        if (marker == kTEM || (marker >= kRST0 && marker <= kRST7)) return Put(code, 2);
        if (marker == kSOI || !in.Have(2)) return false;
        size_t length = size_t(in.Data()[0]) << 8 | in.Data()[1];
        // The length counts itself; one past the file's end refuses the file.
        if (length < 2 || !in.Have(length)) return false;
        uint8_t const *segment = in.Data();
        bool chunk = marker == kRadiometricMarker && length >= 6 && std::memcmp(segment + 2, kRadiometricWord, 4) == 0;
        if (!inserted && (chunk || marker < kAPP0 || marker > kAPP15) && !PutChunks()) return false;
        in.Skip(length);
        if (chunk) return true;
        if (!Put(code, 2) || !Put(segment, length)) return false;
        if (marker != kSOS) return true;
        sawScan = true;
        return CopyScanData();
    }

    // Entropy-coded data ends at the first 0xFF that is followed by neither a
    // stuffed zero nor a restart marker.
    bool CopyScanData() {
        while (in.Have(2)) {
            uint8_t const *p = in.Data();
            size_t n = in.Available(), i = 0;
            for (; i + 1 < n; ++i) {
                if (p[i] != 0xFF) continue;
                uint8_t next = p[i + 1];
                if (next != 0 && (next < kRST0 || next > kRST7)) break;
                ++i;
            }
            if (!Put(p, i)) return false;
            in.Skip(i);
            if (i + 1 < n) return true; // a marker stands at the buffer's start
        }
        return false; // the file ends inside a scan
    }

    // The end marker and whatever the file holds after it, to its real end:
    // a failed read is not the end, or the copy would pass for whole.
    bool CopyEnd() {
        uint8_t code[2] = {0xFF, kEOI};
        if (!Put(code, 2)) return false;
        while (in.Available() > 0 || in.Have(1)) {
            if (!Put(in.Data(), in.Available())) return false;
            in.Skip(in.Available());
        }
        return !in.Failed();
    }

    bool PutChunks() {
        inserted = true;
        int64_t size = payload.GetSize();
        if (size < 0 || size > int64_t(kMaxChunks) * kMaxRadiometricChunk || payload.Seek(0, 1) != 0) return false;
        uint32_t count = uint32_t((size + kMaxRadiometricChunk - 1) / kMaxRadiometricChunk);
        std::unique_ptr<uint8_t[]> segment(new (std::nothrow) uint8_t[kChunkStart + kMaxRadiometricChunk]);
        if (!segment) return false;
        for (uint32_t number = 1; number <= count; ++number) {
            uint32_t n = uint32_t(std::min<int64_t>(size - int64_t(number - 1) * kMaxRadiometricChunk, kMaxRadiometricChunk));
            uint32_t length = 2 + kRadiometricChunkHeader + n;
            uint8_t *p = segment.get();
            uint8_t const head[] = {0xFF, uint8_t(kRadiometricMarker), uint8_t(length >> 8), uint8_t(length)};
            uint8_t const chunkHeader[] = {uint8_t(number >> 8), uint8_t(number), uint8_t(count >> 8), uint8_t(count)};
            std::memcpy(p, head, 4);
            std::memcpy(p + 4, kRadiometricWord, 4);
            std::memcpy(p + 8, chunkHeader, 4);
            if (payload.Read(p + kChunkStart, n) != n || !Put(p, kChunkStart + n)) return false;
        }
        return true;
    }

    bool Put(void const *p, size_t n) { return WriteAll(out, p, n); }

    CForwardReader in;
    IFile &payload;
    IFile &out;
    bool inserted = false;
    bool sawScan = false;
};

} // namespace

bool WriteRadiometricJPEG(IFile *jpeg, IFile *payload, IFile *out) {
    if (!jpeg || !payload || !out || !IsJPEG(jpeg)) return false;
    std::unique_ptr<CRadiometricCopy> copy(new (std::nothrow) CRadiometricCopy(*jpeg, *payload, *out));
    return copy && copy->Run();
}

bool SaveRadiometricJPEG(IFileSystem *fs, char16_t const *path, IFile *jpeg, IFile *payload) {
    if (!fs || !path || !jpeg || !payload) return false;
    return SaveAtomically(fs, path, [&](IFile &file) { return WriteRadiometricJPEG(jpeg, payload, &file); });
}

} // namespace qv
