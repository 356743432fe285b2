/// @file
/// CDirectoryEntry: what every file system tells about one name, as a plain
/// value that is freely copied (reached as IFileSystem::CDirectoryEntry).
///
/// Fields: name (the last item of the path), path (the full path in the
/// owning file system), attributes (the bits below; kAttributeNone after
/// construction), size in bytes (0), modified (zeroed), and properties: named
/// extras a file system keeps per entry ("Offset", "Data", "FileSystem", ...).
/// Texts longer than 511 units are cut.
///
/// Threads: a value; one thread at a time.
#pragma once

#include <cstdint>

#include "qv/core/DateTime.h"
#include "qv/core/Export.h"
#include "qv/core/PropertyArray.h"

namespace qv {

/// Attribute bits of CDirectoryEntry and IFileSystem::SetFileAttributesW.
///@{
inline constexpr uint32_t kAttributeDirectory = 0x00000001;
inline constexpr uint32_t kAttributeFile = 0x00000002;
inline constexpr uint32_t kAttributeReadOnly = 0x00000004; ///< honoured by SetFileAttributesW only
inline constexpr uint32_t kAttributeHidden = 0x00000008;   ///< honoured by SetFileAttributesW only
inline constexpr uint32_t kAttributeNone = 0x80000000;     ///< no such entry
///@}

/// Units in the name and path buffers, terminator included.
inline constexpr int kDirectoryEntryTextSize = 512;

/// @copydoc DirectoryEntry.h
class QV_API CDirectoryEntry {
public:
    CDirectoryEntry();

    /// Fills name and path (cut to fit), leaving the rest as it is.
    ///@{
    void SetName(char16_t const *newName);
    void SetPath(char16_t const *newPath);
    ///@}
    bool IsDirectory() const { return (attributes & kAttributeDirectory) != 0; } ///< kAttributeDirectory is set
    bool IsFile() const { return (attributes & kAttributeFile) != 0; }           ///< kAttributeFile is set

    char16_t name[kDirectoryEntryTextSize]; ///< the last item of the path
    char16_t path[kDirectoryEntryTextSize]; ///< the full path in the owning file system
    uint32_t attributes;                    ///< kAttribute bits; kAttributeNone: no such entry
    int64_t size;                           ///< in bytes
    CDateTime modified;                     ///< last write time
    CPropertyArray properties;              ///< named extras of the file system
};

} // namespace qv
