// The open flags of CFile::Open and IFileSystem::CreateFileW, by name. The
// numbers are those stored callers and files use, and never change; combine
// them with |, e.g. kOpenExisting | kOpenRead | kOpenShareRead.
//
// Disposition (the first one set wins, in this order; none means must exist):
// kOpenAlways, kOpenExisting, kOpenCreateAlways, kOpenCreateNew.
// Sharing: without any of 0xF00 a reader shares read and a writer shares
// nothing; kOpenShareRead / kOpenShareWrite let others read / write
// meanwhile; kOpenDenyRead alone shares write, kOpenDenyWrite alone shares
// read. Attributes apply to a file the open creates; kOpenNormal overrides
// the other four.
#pragma once

#include <cstdint>

namespace qv {

inline constexpr uint32_t kOpenAlways = 0x01;       // open, or create if missing
inline constexpr uint32_t kOpenExisting = 0x02;     // the file must exist
inline constexpr uint32_t kOpenCreateNew = 0x04;    // the file must not exist
inline constexpr uint32_t kOpenCreateAlways = 0x08; // create, or truncate if present
inline constexpr uint32_t kOpenRead = 0x10;
inline constexpr uint32_t kOpenWrite = 0x20;
inline constexpr uint32_t kOpenAtEnd = 0x40; // start at the end of the file
inline constexpr uint32_t kOpenShareWrite = 0x100;
inline constexpr uint32_t kOpenShareRead = 0x200;
inline constexpr uint32_t kOpenDenyRead = 0x400;
inline constexpr uint32_t kOpenDenyWrite = 0x800;
inline constexpr uint32_t kOpenNormal = 0x1000;
inline constexpr uint32_t kOpenReadOnly = 0x2000;
inline constexpr uint32_t kOpenHidden = 0x4000;
inline constexpr uint32_t kOpenSystem = 0x8000;
inline constexpr uint32_t kOpenTemporary = 0x10000;
inline constexpr uint32_t kOpenDeleteOnClose = 0x100000;
inline constexpr uint32_t kOpenWriteThrough = 0x200000;

} // namespace qv
