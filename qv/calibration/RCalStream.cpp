#include "qv/calibration/RCalStream.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>

namespace qv::calibration_detail {

namespace {

constexpr uint8_t kArchiveWide = 0xFF;    // a 16-bit length follows
constexpr uint16_t kArchiveLong = 0xFFFF; // a 32-bit length follows
constexpr uint16_t kArchiveMaxWide = 0xFFFD;

} // namespace

bool CRCalReader::More() {
    return ok_ && file_.GetRemaining() > 0;
}

uint16_t CRCalReader::U16() {
    uint16_t v = 0;
    if (ok_ && !file_.GetWORD(v)) ok_ = false;
    return v;
}

uint32_t CRCalReader::U32() {
    uint32_t v = 0;
    if (ok_ && !file_.GetDWORD(v)) ok_ = false;
    return v;
}

int32_t CRCalReader::I32() {
    return int32_t(U32());
}

bool CRCalReader::Bool() {
    bool v = false;
    if (ok_ && !file_.GetBool(v)) ok_ = false;
    return v;
}

bool CRCalReader::BOOL() {
    return U32() != 0;
}

double CRCalReader::F64() {
    double v = 0;
    if (ok_ && !file_.GetDouble(v)) ok_ = false;
    return v;
}

// Read here rather than with IFile::GetArchiveString, which takes a short
// text as it comes: a cut file must fail.
CString CRCalReader::ArchiveString() {
    uint8_t first = 0;
    if (ok_ && !file_.GetBYTE(first)) ok_ = false;
    uint32_t n = first;
    if (first == kArchiveWide) {
        n = U16();
        if (n == kArchiveLong) n = U32();
    }
    if (!ok_ || int64_t(n) > file_.GetRemaining()) {
        ok_ = false;
        return CString();
    }
    std::string bytes(n, '\0');
    if (n && file_.Read(bytes.data(), n) != n) ok_ = false;
    return ok_ ? CString(bytes.c_str()) : CString();
}

CString CRCalReader::String() {
    CString text;
    if (ok_ && !file_.GetString(text)) ok_ = false;
    return text;
}

uint32_t CRCalReader::Count(uint32_t bytesEach) {
    uint32_t n = U32();
    if (ok_ && double(n) * bytesEach > double(file_.GetRemaining())) ok_ = false;
    return ok_ ? n : 0;
}

void CRCalReader::Doubles(TArray<double> &values, uint32_t n, bool finite) {
    values.Empty();
    if (!ok_ || n == 0) return;
    // One Read moves at most 4 GiB; beyond it a count is refused, not wrapped.
    if (n > UINT32_MAX / 8 || double(n) * 8 > double(file_.GetRemaining()) || !values.SetSize(n) ||
        file_.Read(values.GetData(), n * 8) != n * 8) {
        values.Empty();
        ok_ = false;
        return;
    }
    if (!finite) return;
    for (uint32_t i = 0; i < n; ++i)
        if (!std::isfinite(values.GetAt(i))) {
            ok_ = false;
            return;
        }
}

void CRCalReader::CountedDoubles(TArray<double> &values, bool finite) {
    Doubles(values, Count(8), finite);
}

void CRCalReader::Skip(int64_t bytes) {
    if (!ok_) return;
    if (bytes > file_.GetRemaining()) {
        ok_ = false;
        return;
    }
    file_.Seek(bytes, 2);
}

void CRCalWriter::Bytes(void const *data, uint32_t n) {
    if (ok_ && n && file_.Write(data, n) != n) ok_ = false;
}

void CRCalWriter::U16(uint16_t v) {
    if (ok_ && !file_.PutWORD(v)) ok_ = false;
}

void CRCalWriter::U32(uint32_t v) {
    if (ok_ && !file_.PutDWORD(v)) ok_ = false;
}

void CRCalWriter::I32(int32_t v) {
    U32(uint32_t(v));
}

void CRCalWriter::Bool(bool v) {
    if (ok_ && !file_.PutBool(v)) ok_ = false;
}

void CRCalWriter::BOOL(bool v) {
    U32(v ? 1 : 0);
}

void CRCalWriter::F64(double v) {
    if (ok_ && !file_.PutDouble(v)) ok_ = false;
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

void CRCalWriter::String(CString const &text) {
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
