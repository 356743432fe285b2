/// @file
/// The open flags of CFile::Open and IFileSystem::CreateFileW, by name. The
/// numbers are those stored callers and files use, and never change; combine
/// them with |, e.g. kOpenExisting | kOpenRead | kOpenShareRead.
///
/// Disposition (the first one set wins, in this order; none means must exist):
/// kOpenAlways, kOpenExisting, kOpenCreateAlways, kOpenCreateNew.
/// Sharing: without any of 0xF00 a reader shares read and a writer shares
/// nothing; kOpenShareRead / kOpenShareWrite let others read / write
/// meanwhile; kOpenDenyRead alone shares write, kOpenDenyWrite alone shares
/// read. Attributes apply to a file the open creates; kOpenNormal overrides
/// the other four.
#pragma once

#include <cstdint>

namespace qv {

inline constexpr uint32_t kOpenAlways = 0x01;       ///< open, or create if missing
inline constexpr uint32_t kOpenExisting = 0x02;     ///< the file must exist
inline constexpr uint32_t kOpenCreateNew = 0x04;    ///< the file must not exist
inline constexpr uint32_t kOpenCreateAlways = 0x08; ///< create, or truncate if present
inline constexpr uint32_t kOpenRead = 0x10; ///< read access
inline constexpr uint32_t kOpenWrite = 0x20; ///< write access
inline constexpr uint32_t kOpenAtEnd = 0x40; ///< start at the end of the file
inline constexpr uint32_t kOpenShareWrite = 0x100; ///< others may write meanwhile
inline constexpr uint32_t kOpenShareRead = 0x200; ///< others may read meanwhile
inline constexpr uint32_t kOpenDenyRead = 0x400; ///< alone: others may write, not read
inline constexpr uint32_t kOpenDenyWrite = 0x800; ///< alone: others may read, not write
inline constexpr uint32_t kOpenNormal = 0x1000; ///< a created file gets no special attribute (overrides the next four)
inline constexpr uint32_t kOpenReadOnly = 0x2000; ///< a created file is read-only
inline constexpr uint32_t kOpenHidden = 0x4000; ///< a created file is hidden
inline constexpr uint32_t kOpenSystem = 0x8000; ///< a created file is a system file
inline constexpr uint32_t kOpenTemporary = 0x10000; ///< a created file is temporary
inline constexpr uint32_t kOpenDeleteOnClose = 0x100000; ///< the file is deleted when closed
inline constexpr uint32_t kOpenWriteThrough = 0x200000; ///< writes go through to the disk, not held in a cache

} // namespace qv
