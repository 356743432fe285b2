/// @file
/// Checksums: CRC-16 (CCITT polynomial 0x1021, most significant bit first,
/// initial 0, no final complement) and CRC-32 (the reflected IEEE polynomial
/// 0x04C11DB7, initial all ones, final complement). "123456789" gives 0x31C3
/// and 0xCBF43926.
///
/// The Mult forms continue a running value over one more block, so a checksum
/// over many blocks is Init, Mult..., Fini; the Block forms do all three over
/// one block. The IFile forms checksum from the file's present position to its
/// end, read in blocks of 512 KiB; they are false for a null file or when the
/// block cannot be allocated (crc then holds the start value, finished). The
/// path forms open path in fs (null: the disk file system) with flags 0x12
/// (read, must exist) and checksum the whole file; a path that cannot be
/// opened gives false and crc 0.
///
/// The CRC-32 table is process-wide and starts out built for 0x04C11DB7.
/// InitCRC32Table(poly) rebuilds it for another polynomial (given in the
/// normal, most-significant-bit-first notation; the table is the reflected
/// one) and does nothing when poly is already in use. CalcCRC32 on a file
/// switches back to 0x04C11DB7 first.
///
/// Threads: every function may run on any thread at once, except that the
/// CRC-32 table must not be rebuilt with another polynomial while any thread
/// computes a CRC-32.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/core/String.h"

namespace qv {

class IFile;
class IFileSystem;

QV_API uint16_t InitCRC16();                                                    ///< 0
QV_API uint16_t CalcMultBlockCRC16(uint8_t const *p, uint32_t n, uint16_t crc); ///< null p or n 0: crc
QV_API uint16_t FiniCRC16(uint16_t crc);                                        ///< crc unchanged
QV_API uint16_t CalcBlockCRC16(uint8_t const *p, uint32_t n); ///< Init, Mult and Fini over one block
QV_API bool CalcCRC16(uint16_t &crc, IFile *f); ///< from f's position to its end
QV_API bool CalcCRC16(uint16_t &crc, IFileSystem *fs, CString path); ///< the whole file at path

QV_API void InitCRC32Table(uint32_t polynomial); ///< rebuilds the shared table (see the top of this file)
QV_API uint32_t InitCRC32();                                                    ///< all ones
QV_API uint32_t CalcMultBlockCRC32(uint8_t const *p, uint32_t n, uint32_t crc); ///< null p or n 0: crc
QV_API uint32_t FiniCRC32(uint32_t crc);                                        ///< the complement
QV_API uint32_t CalcBlockCRC32(uint8_t const *p, uint32_t n);                   ///< n 0: 0
QV_API bool CalcCRC32(uint32_t &crc, IFile *f); ///< from f's position to its end
QV_API bool CalcCRC32(uint32_t &crc, IFileSystem *fs, CString path); ///< the whole file at path

} // namespace qv
