/// @file
/// Module resources: the registry of the resource tables that modules carry
/// (see ResourceTable.h; the tool qvrc compiles them from resource scripts),
/// and the lookups that the locale and the resource file system build on.
///
/// Modules. GetProgramModule is the program's table (the first registered
/// program table), GetLibraryModule libqv.so's own; either is null when there
/// is no such table. FindResourceModule finds a table by its module name,
/// ignoring case; a null name means the program.
///
/// Entries. A module's entries are listed in table order (see ResourceTable.h)
/// by index. FindResourceExact wants type, name and language to match;
/// FindResource falls back as the Windows loader does, taking the first of:
///   1. the exact language;
///   2. the same primary language: its neutral form (sublanguage 0), then its
///      default form (sublanguage 1), then any other sublanguage;
///   3. the neutral language 0;
///   4. US English, 0x0409;
///   5. the first entry of that type and name.
/// Within a step, table order decides.
///
/// Failure: an unknown or unloaded handle, a null handle or a missing resource
/// give null (counts 0). An HRSRC and the bytes it points to stay valid while
/// its module is loaded; the bytes are constant.
///
/// Threads: every call is safe from any thread (the registry has one lock).
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/core/ResourceTable.h"

namespace qv {

QV_API HINSTANCE GetProgramModule(); ///< the first registered program table, or null
QV_API HINSTANCE GetLibraryModule(); ///< libqv.so's own table, or null
/// The table of that module name (case ignored; null: the program), or null.
QV_API HINSTANCE FindResourceModule(char16_t const *name);
/// Whether module is a registered (loaded) table.
QV_API bool IsResourceModule(HINSTANCE module);

QV_API uint32_t GetResourceCount(HINSTANCE module); ///< entries of module; 0 for an unknown one
/// The entry at index in table order; null past the end.
QV_API HRSRC GetResourceAt(HINSTANCE module, uint32_t index);

/// The entry of that type and name: FindResourceExact in exactly that
/// language, FindResource with the fallback described above. Null if none.
///@{
QV_API HRSRC FindResourceExact(HINSTANCE module, SResourceId type, SResourceId name, uint16_t language);
QV_API HRSRC FindResource(HINSTANCE module, SResourceId type, SResourceId name, uint16_t language);
///@}

/// Appends the languages in which type and name exist, in table order; the
/// number appended.
QV_API uint32_t GetResourceLanguages(HINSTANCE module, SResourceId type, SResourceId name, TArray<uint16_t> &out);

} // namespace qv
