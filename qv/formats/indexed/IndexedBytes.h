/// @file
/// Byte helpers of the indexed containers: header and table fields.
#pragma once

#include <cstdint>

#include "qv/files/IFile.h"

namespace qv::indexed {

/// A 32-bit field at p, little- or big-endian.
inline uint32_t Get32(unsigned char const *p, bool little) {
    return little ? uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24
                  : uint32_t(p[3]) | uint32_t(p[2]) << 8 | uint32_t(p[1]) << 16 | uint32_t(p[0]) << 24;
}

/// A 16-bit field at p, little- or big-endian.
inline uint16_t Get16(unsigned char const *p, bool little) {
    return little ? uint16_t(p[0] | p[1] << 8) : uint16_t(p[1] | p[0] << 8);
}

/// A 32-bit field at p, big-endian, as every save writes.
inline void Put32(unsigned char *p, uint32_t v) {
    p[0] = uint8_t(v >> 24);
    p[1] = uint8_t(v >> 16);
    p[2] = uint8_t(v >> 8);
    p[3] = uint8_t(v);
}

/// A 16-bit field at p, big-endian.
inline void Put16(unsigned char *p, uint16_t v) {
    p[0] = uint8_t(v >> 8);
    p[1] = uint8_t(v);
}

/// Reads all n bytes at offset of host; false if any is missing.
inline bool ReadAt(IFile *host, int64_t offset, void *p, uint32_t n) {
    return host->Seek(offset, 1) == offset && host->ReadBytes(p, n);
}

/// Writes all n bytes at offset of host; false if any did not pass.
inline bool WriteAt(IFile *host, int64_t offset, void const *p, uint32_t n) {
    return host->Seek(offset, 1) == offset && host->WriteBytes(p, n);
}

} // namespace qv::indexed
