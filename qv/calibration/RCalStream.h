/// @file
/// Checked reading and writing of the RCAL types (internal to qv/calibration).
/// Both sides remember the first failure and do nothing after it, so the
/// section code reads as the layout does and asks once at the end.
///
/// The reader treats the file as untrusted: a short read fails, a count is
/// refused when its items could not fit in the bytes that remain (nothing is
/// allocated for it), and arrays that must be finite are checked.
///
/// A file holds thousands of small fields, so neither side calls the file per
/// field: the writer stages them and writes a block at a time (Finish writes
/// the rest), the reader reads a block ahead (Finish hands back what it did
/// not use, leaving the file just behind the last field read). Large arrays
/// go straight between the file and the caller's array.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/String.h"
#include "qv/files/IFile.h"

namespace qv::calibration_detail {

/// Whether no value is NaN or an infinity.
bool AllFinite(TArray<double> const &values);

/// @copydoc RCalStream.h
class CRCalReader {
public:
    /// Reads from file's position; file must outlive the reader and is not
    /// touched by others until Finish.
    explicit CRCalReader(IFile &file);

    bool Ok() const { return ok_; } ///< false once anything failed
    void Fail() { ok_ = false; }    ///< marks the read failed (a value the caller refuses)
    /// Whether a later section is present: bytes remain behind this one.
    bool More();
    /// Seeks the file back over what was read ahead and not used; returns Ok().
    bool Finish();

    /// Typed values; 0 after a failure.
    ///@{
    uint16_t U16();
    uint32_t U32();
    int32_t I32();
    ///@}
    bool Bool();  ///< 1 byte
    bool BOOL();  ///< 4 bytes, any non-zero value
    double F64(); ///< byte-reversed under m_swap like every typed value
    void Bytes(void *data, uint32_t n); ///< n raw bytes; zeros after a failure
    /// A string with a length prefix of 1 byte (escaping to 2, then 4 bytes)
    /// and UTF-8 text; empty after a failure or a length beyond the file.
    CString ArchiveString();
    CString String(); ///< a string as IFile::GetString reads it; empty after a failure
    /// A count whose items take at least bytesEach bytes each.
    uint32_t Count(uint32_t bytesEach);
    /// n raw doubles, never byte-reversed; finite: NaN and the infinities
    /// fail the read.
    void Doubles(TArray<double> &values, uint32_t n, bool finite);
    /// A count, then that many raw doubles.
    ///@{
    void CountedDoubles(TArray<double> &values, bool finite);
    void Skip(int64_t bytes);
    ///@}

private:
    static constexpr uint32_t kAheadBytes = 4096;

    template <class T> T Typed();
    bool Take(void *data, uint32_t n); ///< from the block read ahead, then the file
    void HandBack();                   ///< the file back at the reader's position, nothing ahead

    IFile &file_;
    bool ok_ = true;
    int64_t unread_ = 0; ///< bytes from the reader's position to the end of the file
    uint32_t at_ = 0, end_ = 0; ///< the unused part of ahead_
    unsigned char ahead_[kAheadBytes];
};

/// @copydoc RCalStream.h
class CRCalWriter {
public:
    explicit CRCalWriter(IFile &file) : file_(file) {} ///< writes at file's position; file must outlive the writer

    /// Writes what is staged; false once any write failed. Nothing staged
    /// reaches the file without it.
    bool Finish();

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
    static constexpr uint32_t kStageBytes = 4096;

    template <class T> void Typed(T v);
    void Flush();

    IFile &file_;
    bool ok_ = true;
    uint32_t staged_ = 0;
    unsigned char stage_[kStageBytes];
};

} // namespace qv::calibration_detail
