/// @file
/// The process's list of loaded resource tables. Internal to libqv: the public
/// face is ModuleResources.h and CResourceRegistration.
#pragma once

#include <cstdint>

#include "qv/core/ResourceTable.h"

namespace qv {

/// @copydoc ResourceRegistry.h
class CResourceRegistry {
public:
    /// Appends registration to the list (so earlier modules are found first)
    /// or takes it out; Remove of one not listed does nothing.
    ///@{
    static void Add(CResourceRegistration &registration);
    static void Remove(CResourceRegistration &registration);
    ///@}
    /// The first registered module that kind and, unless null, name (ignoring
    /// case) describe; null if none.
    static HINSTANCE Find(EResourceModuleKind kind, char16_t const *name);
    /// The first module whose name matches, of any kind.
    ///@{
    static HINSTANCE FindByName(char16_t const *name);
    static bool Contains(HINSTANCE module);
    ///@}
    /// The module's entries, or {nullptr, 0} when module is not registered.
    static SResourceEntry const *Entries(HINSTANCE module, uint32_t &count);
};

} // namespace qv
