/// @file
/// Checked reading and writing of the RCAL types (internal to qv/calibration).
/// Both sides remember the first failure and do nothing after it, so the
/// section code reads as the layout does and asks once at the end.
///
/// The reader treats the file as untrusted: a short read fails, a count is
/// refused when its items could not fit in the bytes that remain (nothing is
/// allocated for it), and arrays that must be finite are checked.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/String.h"
#include "qv/files/IFile.h"

namespace qv::calibration_detail {

/// @copydoc RCalStream.h
class CRCalReader {
public:
    explicit CRCalReader(IFile &file) : file_(file) {} ///< reads from file's position; file must outlive the reader

    bool Ok() const { return ok_; } ///< false once anything failed
    void Fail() { ok_ = false; }    ///< marks the read failed (a value the caller refuses)
    /// Whether a later section is present: bytes remain behind this one.
    bool More();

    /// Typed values; 0 after a failure.
    ///@{
    uint16_t U16();
    uint32_t U32();
    int32_t I32();
    ///@}
    bool Bool();  ///< 1 byte
    bool BOOL();  ///< 4 bytes, any non-zero value
    double F64(); ///< byte-reversed under m_swap like every typed value
    /// A string with a length prefix of 1 byte (escaping to 2, then 4 bytes)
    /// and UTF-8 text; empty after a failure or a length beyond the file.
    CString ArchiveString();
    CString String(); ///< a string as IFile::GetString reads it; empty after a failure
    /// A count whose items take at least bytesEach bytes each.
    uint32_t Count(uint32_t bytesEach);
    /// n raw doubles in one Read, never byte-reversed; finite: NaN and the
    /// infinities fail the read.
    void Doubles(TArray<double> &values, uint32_t n, bool finite);
    /// A count, then that many raw doubles.
    ///@{
    void CountedDoubles(TArray<double> &values, bool finite);
    void Skip(int64_t bytes);
    ///@}

private:
    IFile &file_;
    bool ok_ = true;
};

/// @copydoc RCalStream.h
class CRCalWriter {
public:
    explicit CRCalWriter(IFile &file) : file_(file) {} ///< writes at file's position; file must outlive the writer

    bool Ok() const { return ok_; } ///< false once any write failed

    /// Each writes what the reader's function of that name reads (Bytes: n raw
    /// bytes); nothing after a failure.
    ///@{
    void Bytes(void const *data, uint32_t n);
    void U16(uint16_t v);
    void U32(uint32_t v);
    void I32(int32_t v);
    void Bool(bool v);
    void BOOL(bool v);
    void F64(double v);
    void ArchiveString(CString const &text);
    void String(CString const &text);
    ///@}
    void Doubles(TArray<double> const &values); ///< raw, the caller writes the count
    void CountedDoubles(TArray<double> const &values); ///< the count, then the raw doubles

private:
    IFile &file_;
    bool ok_ = true;
};

} // namespace qv::calibration_detail
