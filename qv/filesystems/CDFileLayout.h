/// @file
/// The fixed numbers of the CDFS layout (see CDFileSystem.h). Internal.
#pragma once

#include <cstdint>

namespace qv::cdfs {

inline constexpr char kMagic[4] = {'C', 'D', 'F', 'S'}; ///< the first bytes of a composite
inline constexpr char kFootMagic[8] = {'C', 'D', 'F', 'S', 'F', 'O', 'O', 'T'}; ///< the last bytes of its foot
inline constexpr int64_t kHeaderSize = 6;      ///< "CDFS" and two zero bytes
inline constexpr int64_t kFootSize = 16;       ///< base and "CDFSFOOT"
inline constexpr int64_t kBlock = 0x1000;      ///< growth step and first table capacity
inline constexpr int64_t kMaxTable = 64 << 20; ///< largest table region read back
inline constexpr int64_t kMinRecord = 32;      ///< a record with empty texts and no properties
inline constexpr uint32_t kMaxProperties = 64; ///< properties of one record; more is a damaged table
inline constexpr int kNameLimit = 260;  ///< units of a name or path
inline constexpr int kValueLimit = 256; ///< units of a property key or value

inline constexpr char16_t kOffsetKey[] = u"Offset";     ///< property: where an entry's region starts
inline constexpr char16_t kCapacityKey[] = u"Capacity"; ///< property: the bytes reserved for that region

} // namespace qv::cdfs
