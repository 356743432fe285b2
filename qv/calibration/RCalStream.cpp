#include "qv/calibration/RCalStream.h"

#include <cstdint>
#include <cstring>
#include <string>

#include "qv/files/ByteOrder.h"

namespace qv::calibration_detail {

namespace {

constexpr uint8_t kArchiveWide = 0xFF;    // a 16-bit length follows
constexpr uint16_t kArchiveLong = 0xFFFF; // a 32-bit length follows
constexpr uint16_t kArchiveMaxWide = 0xFFFD;

} // namespace

// Works on the exponent bits rather than calling isfinite per value, so that
// the loop has no branch and runs over whole vectors: one more than an
// all-ones exponent (NaN, infinity) carries into the top bit.
bool AllFinite(TArray<double> const &values) {
    constexpr uint64_t kExponent = 0x7FF0000000000000ull, kExponentOne = 0x0010000000000000ull;
    double const *v = values.GetData();
    uint64_t carried = 0;
    for (uint32_t i = 0; i < values.GetSize(); ++i) {
        uint64_t bits;
        std::memcpy(&bits, v + i, sizeof bits);
        carried |= (bits & kExponent) + kExponentOne;
    }
    return (carried >> 63) == 0;
}

// ---- Reader ----

CRCalReader::CRCalReader(IFile &file) : file_(file) {
    int64_t remaining = file.GetRemaining();
    unread_ = remaining > 0 ? remaining : 0;
}

bool CRCalReader::More() {
    return ok_ && unread_ > 0;
}

bool CRCalReader::Finish() {
    HandBack();
    return ok_;
}

// A seek that fails leaves the file elsewhere than the reader: it fails the read.
void CRCalReader::HandBack() {
    if (end_ > at_ && file_.Seek(-int64_t(end_ - at_), 2) < 0) ok_ = false;
    at_ = end_ = 0;
}

// A short read fails, as it did field by field: the bytes that remain are
// known, so the reader never asks the file for more than it has.
bool CRCalReader::Take(void *data, uint32_t n) {
    if (!ok_ || int64_t(n) > unread_) {
        ok_ = false;
        return false;
    }
    auto *out = static_cast<unsigned char *>(data);
    uint32_t buffered = end_ - at_;
    uint32_t first = n < buffered ? n : buffered;
    if (first) std::memcpy(out, ahead_ + at_, first);
    at_ += first;
    unread_ -= first;
    if (first == n) return true;
    out += first;
    n -= first;
    at_ = end_ = 0;
    if (n >= kAheadBytes) {
        ok_ = file_.Read(out, n) == n;
        unread_ -= n;
        return ok_;
    }
    uint32_t ahead = unread_ < kAheadBytes ? uint32_t(unread_) : kAheadBytes;
    if (file_.Read(ahead_, ahead) != ahead) {
        ok_ = false;
        return false;
    }
    std::memcpy(out, ahead_, n);
    at_ = n;
    end_ = ahead;
    unread_ -= n;
    return true;
}

template <class T> T CRCalReader::Typed() {
    unsigned char bytes[sizeof(T)];
    T v{};
    if (!Take(bytes, sizeof bytes)) return v;
    if (file_.m_swap) ReverseItems(bytes, 1, sizeof bytes);
    std::memcpy(&v, bytes, sizeof v);
    return v;
}

uint16_t CRCalReader::U16() {
    return Typed<uint16_t>();
}

uint32_t CRCalReader::U32() {
    return Typed<uint32_t>();
}

int32_t CRCalReader::I32() {
    return int32_t(U32());
}

bool CRCalReader::Bool() {
    return Typed<uint8_t>() == 1;
}

bool CRCalReader::BOOL() {
    return U32() != 0;
}

double CRCalReader::F64() {
    return Typed<double>();
}

void CRCalReader::Bytes(void *data, uint32_t n) {
    if (!Take(data, n)) std::memset(data, 0, n);
}

// Read here rather than with IFile::GetArchiveString, which takes a short
// text as it comes: a cut file must fail.
CString CRCalReader::ArchiveString() {
    uint32_t n = Typed<uint8_t>();
    if (n == kArchiveWide) {
        n = U16();
        if (n == kArchiveLong) n = U32();
    }
    if (!ok_ || int64_t(n) > unread_) {
        ok_ = false;
        return CString();
    }
    std::string bytes(n, '\0');
    return Take(bytes.data(), n) ? CString(bytes.c_str()) : CString();
}

// The file's own reading, from the reader's position; what remains is asked
// again after it, as the string's length is its business.
CString CRCalReader::String() {
    CString text;
    if (!ok_) return text;
    HandBack();
    if (!file_.GetString(text)) ok_ = false;
    int64_t remaining = file_.GetRemaining();
    unread_ = remaining > 0 ? remaining : 0;
    return text;
}

uint32_t CRCalReader::Count(uint32_t bytesEach) {
    uint32_t n = U32();
    if (ok_ && double(n) * bytesEach > double(unread_)) ok_ = false;
    return ok_ ? n : 0;
}

void CRCalReader::Doubles(TArray<double> &values, uint32_t n, bool finite) {
    values.Empty();
    if (!ok_ || n == 0) return;
    // One read moves at most 4 GiB; beyond it a count is refused, not wrapped.
    if (n > UINT32_MAX / 8 || double(n) * 8 > double(unread_) || !values.SetSize(n) || !Take(values.GetData(), n * 8)) {
        values.Empty();
        ok_ = false;
        return;
    }
    if (finite && !AllFinite(values)) ok_ = false;
}

void CRCalReader::CountedDoubles(TArray<double> &values, bool finite) {
    Doubles(values, Count(8), finite);
}

void CRCalReader::Skip(int64_t bytes) {
    if (!ok_) return;
    if (bytes > unread_) {
        ok_ = false;
        return;
    }
    uint32_t buffered = end_ - at_;
    if (bytes <= int64_t(buffered)) {
        at_ += uint32_t(bytes);
    } else {
        if (file_.Seek(bytes - buffered, 2) < 0) ok_ = false;
        at_ = end_ = 0;
    }
    unread_ -= bytes;
}

// ---- Writer ----

bool CRCalWriter::Finish() {
    Flush();
    return ok_;
}

void CRCalWriter::Flush() {
    if (ok_ && staged_ && file_.Write(stage_, staged_) != staged_) ok_ = false;
    staged_ = 0;
}

void CRCalWriter::Bytes(void const *data, uint32_t n) {
    if (!ok_ || n == 0) return;
    if (n > kStageBytes - staged_) {
        Flush();
        if (n >= kStageBytes) {
            if (ok_ && file_.Write(data, n) != n) ok_ = false;
            return;
        }
    }
    if (!ok_) return;
    std::memcpy(stage_ + staged_, data, n);
    staged_ += n;
}

template <class T> void CRCalWriter::Typed(T v) {
    unsigned char bytes[sizeof(T)];
    std::memcpy(bytes, &v, sizeof bytes);
    if (file_.m_swap) ReverseItems(bytes, 1, sizeof bytes);
    Bytes(bytes, sizeof bytes);
}

void CRCalWriter::U16(uint16_t v) {
    Typed(v);
}

void CRCalWriter::U32(uint32_t v) {
    Typed(v);
}

void CRCalWriter::I32(int32_t v) {
    U32(uint32_t(v));
}

void CRCalWriter::Bool(bool v) {
    Typed(uint8_t(v ? 1 : 0));
}

void CRCalWriter::BOOL(bool v) {
    U32(v ? 1 : 0);
}

void CRCalWriter::F64(double v) {
    Typed(v);
}

// The layout of IFile::PutArchiveString, written here so that an empty text
// (which that function reports as a failed write) counts as written.
void CRCalWriter::ArchiveString(CString const &text) {
    char const *utf8 = text.GetUTF8();
    uint32_t n = uint32_t(std::strlen(utf8));
    if (n < kArchiveWide) {
        uint8_t b = uint8_t(n);
        Bytes(&b, 1);
    } else {
        uint8_t b = kArchiveWide;
        Bytes(&b, 1);
        U16(n <= kArchiveMaxWide ? uint16_t(n) : kArchiveLong);
        if (n > kArchiveMaxWide) U32(n);
    }
    Bytes(utf8, n);
}

// The file writes the string itself, behind what is staged.
void CRCalWriter::String(CString const &text) {
    Flush();
    if (ok_ && !file_.PutString(text.GetUTF8())) ok_ = false;
}

void CRCalWriter::Doubles(TArray<double> const &values) {
    Bytes(values.GetData(), values.GetSize() * 8);
}

void CRCalWriter::CountedDoubles(TArray<double> const &values) {
    U32(values.GetSize());
    Doubles(values);
}

} // namespace qv::calibration_detail
