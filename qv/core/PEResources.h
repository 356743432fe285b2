/// @file
/// CPEResources: the resource tree of a Windows PE32 or PE32+ executable,
/// read through IFile on any platform, so that version resources can be
/// extracted and stamped without the platform's loader. Internal to libqv;
/// exported for its tests and fuzz targets.
///
/// Read checks the whole file structure it walks and refuses (false) what is
/// not well formed: a missing "MZ" or "PE\0\0" signature, headers or a
/// section table past the end of the file, an optional header that is neither
/// PE32 (0x10B) nor PE32+ (0x20B) or has no resource directory slot, a
/// resource directory outside every section, directories, entries, names or
/// data entries past the resource section, a tree deeper than its three
/// levels (type, name, language) or holding more entries than its bytes can
/// (shared or looping directories), and data whose RVA lies outside every
/// section's bytes in the file. A file without resources reads as an empty
/// tree. The resource section is read into memory whole (at most 256 MiB).
///
/// Room. A leaf may be rewritten in place in its own bytes and in the zero
/// bytes behind it up to the next structure of the resource section (or the
/// end of the section's bytes). Data that lies outside the resource section
/// has no more room than its size; data that overlaps another structure has
/// none (0): writing it would damage the tree.
///
/// Threads: an object belongs to one thread at a time.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"

namespace qv {

class IFile;

/// One leaf of the tree. Named types and names are kept with named set and
/// the id 0.
struct SPEResource {
    uint32_t type = 0;      ///< numeric type; 0 for a named type
    uint32_t name = 0;      ///< numeric name; 0 for a named one
    uint16_t language = 0;  ///< language id
    bool named = false;     ///< the type or the name is a text
    uint32_t size = 0;        ///< bytes of the data
    int64_t dataOffset = 0;   ///< where the data starts in the file
    int64_t entryOffset = 0;  ///< where its IMAGE_RESOURCE_DATA_ENTRY starts
};

/// @copydoc PEResources.h
class QV_API CPEResources {
public:
    static constexpr uint32_t kMaxSectionBytes = 256u << 20; ///< largest resource section Read takes in

    /// Reads file's headers and resource tree; false (and empty) if malformed.
    bool Read(IFile &file);
    /// The leaf of numeric type and name in language; null if none.
    SPEResource const *Find(uint32_t type, uint32_t name, uint16_t language) const;
    /// The leaf of numeric type and name in the first language of prefer
    /// that the file has, else its first; null if none.
    ///@{
    SPEResource const *FindPreferred(uint32_t type, uint32_t name, uint16_t const *prefer, int count) const;
    uint32_t Count() const { return leaves.GetSize(); }
    SPEResource const &Leaf(uint32_t i) const { return leaves.GetAt(i); }
    ///@}
    /// The bytes that may hold the leaf's data in place (see above).
    uint32_t Room(SPEResource const &leaf) const;

private:
    struct SRange {
        int64_t start;
        int64_t end;
    };
    TArray<SPEResource> leaves;
    TSimpleArray<SRange> structures; ///< file ranges of directories, names, data entries and data
    TSimpleArray<uint8_t> section;   ///< the resource section from the root directory on
    int64_t sectionStart = 0;        ///< where section starts in the file

    friend class CResourceTreeReader;
};

} // namespace qv
