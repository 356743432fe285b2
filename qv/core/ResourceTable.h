/// @file
/// The resource table of one module (the program or a shared library), as the
/// resource tool qvrc compiles it: constant records in the module's read-only
/// data, and one CResourceRegistration object that enters the table into the
/// process's registry while the module is loaded.
///
/// A table is written by qvrc; code of the library only reads it. Entries are
/// sorted as the Windows resource directory sorts them: by type, then name,
/// then language, where names come before numbers (names by upper-cased text,
/// numbers ascending). So "the first found" of a lookup is the lowest language.
///
/// A module is named by its handle, HINSTANCE: the address of its
/// SResourceModule. The registry checks a handle before it reads through it,
/// so the handle of a module that was unloaded finds nothing.
///
/// Threads: the records are constant. Registration and unregistration happen
/// while the module is loaded and unloaded and are safe from any thread.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/core/ResourceId.h"

namespace qv {

/// @copydoc ResourceTable.h
struct SResourceEntry {
    SResourceId type; ///< resource type, a number (6: string block) or a name
    SResourceId name; ///< resource name, a number or a name
    uint16_t language; ///< a Windows language id; 0 is neutral
    uint32_t size;    ///< bytes at data
    unsigned char const *data; ///< size bytes, constant, in the module
};

/// Whether a module's resources belong to the program or to a library.
enum class EResourceModuleKind : uint32_t { Program = 0, Library = 1 };

/// @copydoc ResourceTable.h
struct SResourceModule {
    char16_t const *name; ///< the build target's name, e.g. u"qv" for libqv.so
    EResourceModuleKind kind;      ///< program or library
    SResourceEntry const *entries; ///< count entries, constant
    uint32_t count;                ///< number of entries
};

using HINSTANCE = SResourceModule const *; ///< a module handle: its registered record
using HRSRC = SResourceEntry const *;      ///< a resource handle: its entry

/// Enters module into the registry on construction and removes it on
/// destruction. One static object per module (qvrc writes it); the module
/// record must outlive the object. Not copyable.
class QV_API CResourceRegistration {
public:
    explicit CResourceRegistration(SResourceModule const &module); ///< enters module
    ~CResourceRegistration();
    CResourceRegistration(CResourceRegistration const &) = delete;
    CResourceRegistration &operator=(CResourceRegistration const &) = delete;

private:
    friend class CResourceRegistry;
    SResourceModule const *module;
    CResourceRegistration *next = nullptr;
};

} // namespace qv
