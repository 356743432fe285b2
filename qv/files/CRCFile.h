/// @file
/// CCalcCRC16File, CCalcCRC32File: write-only IFile sinks that checksum what is
/// written without storing it, so a format writer computes a file's checksum
/// by saving to one.
///
/// Write runs the CRC over the bytes, counts them and returns n. GetCRC gives
/// the checksum of everything written since construction or Reset (for CRC-32
/// the finished, complemented value). GetSize and GetPosition are the byte
/// count; GetFilename gives "none"; GetFileSystem the disk file system; Flush
/// and Close do nothing. A sink cannot Read, Seek or SetSize: each sends the
/// debug text "<class>::<operation>: Not Implemented." and Read gives 0, Seek
/// the count, SetSize false.
///
/// The CRC-32 sink uses the process-wide CRC-32 table (see CRC.h).
/// Threads: an object belongs to one thread at a time.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/files/IFile.h"

namespace qv {

/// What both sinks share: the count and the operations a sink refuses.
class QV_API CCalcCRCFile : public IFile {
public:
    char16_t *GetFilename(char16_t *buf, int size) override;
    IFileSystem &GetFileSystem() override;
    uint32_t Read(void *p, uint32_t n) override;
    int64_t GetSize() override;
    int64_t GetPosition() override;
    int64_t Seek(int64_t offset, uint32_t origin) override;
    bool SetSize(int64_t size) override;
    void Flush() override;
    void Close() override;

protected:
    /// className names the sink in the debug texts; it is not copied.
    explicit CCalcCRCFile(char16_t const *className) : className(className) {}
    int64_t count = 0; ///< bytes written since construction or Reset

private:
    void NotImplemented(char16_t const *operation) const;
    char16_t const *className;
};

/// @copydoc CRCFile.h
class QV_API CCalcCRC16File : public CCalcCRCFile {
public:
    CCalcCRC16File();
    uint32_t Write(void const *p, uint32_t n) override;
    uint16_t GetCRC() const; ///< of everything written since construction or Reset
    void Reset();            ///< starts over: count 0, a fresh CRC

protected:
    uint16_t crc; ///< the running CRC-16
};

/// @copydoc CRCFile.h
class QV_API CCalcCRC32File : public CCalcCRCFile {
public:
    CCalcCRC32File();
    uint32_t Write(void const *p, uint32_t n) override;
    uint32_t GetCRC() const; ///< finished (complemented)
    void Reset();            ///< starts over: count 0, a fresh CRC

protected:
    uint32_t crc; ///< the running CRC-32, before FiniCRC32
};

} // namespace qv
