/// @file
/// SResourceId: the type or the name of a module resource, either a 16-bit
/// number or a text.
///
/// The Win32-style calls (CLocale::FindResourceW and the resource file system)
/// pass types and names as char16_t const *, in the convention their callers
/// depend on: a pointer value without bits above the low 16 is a number
/// (MakeIntResource), a text "#123" is the number 123, and any other text is a
/// name. FromText decodes that convention; the text is not copied, so it must
/// outlive the id.
///
/// Names compare without regard to case (towlower folding), numbers by value;
/// a number never equals a name.
///
/// Well-known numeric types of the Windows table, used by the resource tool and
/// the string tables: kResourceTypeString (6) holds blocks of 16 strings,
/// kResourceTypeRCData (10) raw bytes.
///
/// Threads: plain values, pure functions.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"

namespace qv {

constexpr uint16_t kResourceTypeString = 6;  ///< blocks of 16 strings
constexpr uint16_t kResourceTypeRCData = 10; ///< raw bytes

/// The pointer form of a numeric identifier; never dereferenced.
///@{
inline char16_t const *MakeIntResource(uint16_t id) {
    return reinterpret_cast<char16_t const *>(static_cast<uintptr_t>(id));
}
inline bool IsIntResource(char16_t const *p) {
    return (reinterpret_cast<uintptr_t>(p) >> 16) == 0;
}
///@}

/// @copydoc ResourceId.h
struct QV_API SResourceId {
    uint16_t id = 0;                ///< the number when name is null
    char16_t const *name = nullptr; ///< the name, not owned; null for a number

    static SResourceId Number(uint16_t id) { return SResourceId{id, nullptr}; } ///< a numeric id
    /// A named id; text is kept, not copied, and must outlive the id.
    static SResourceId Name(char16_t const *text) { return SResourceId{0, text}; }
    /// Decodes the pointer convention above.
    static SResourceId FromText(char16_t const *text);

    bool IsNumeric() const { return name == nullptr; } ///< true for a number
    /// Numbers by value, names without regard to case; a number never matches a name.
    bool Matches(SResourceId const &other) const;
};

} // namespace qv
