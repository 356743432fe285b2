/// @file
/// The registry's keys and values in memory, as one root file holds them.
/// Internal to libqv.
///
/// Subkeys are kept sorted without regard to case (qv::_wcsicmp, which folds
/// to lower case), as the registry enumerates them; values keep the order in
/// which they were made. Names compare without regard to case and keep the
/// case they were made with. Value data are the bytes as the registry stores
/// them: REG_SZ as UTF-16LE with its terminator, REG_DWORD as 4 bytes
/// little-endian. Keys nest at most kMaxKeyDepth deep, so walks may recurse.
/// Threads: none of its own; the engine guards each root.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "qv/core/String.h"

namespace qv {

/// The deepest key path accepted, counted in keys.
inline constexpr size_t kMaxKeyDepth = 512;

/// @copydoc RegistryTree.h
struct SRegValue {
    CString name; ///< The value name.
    uint32_t type = 0; ///< REG_SZ, REG_DWORD and so on.
    std::vector<uint8_t> data; ///< The raw bytes of the value.
};

/// @copydoc RegistryTree.h
struct SRegNode {
    CString name; ///< The key name.
    std::vector<SRegValue> values; ///< The key's values.
    std::vector<std::unique_ptr<SRegNode>> keys; ///< The subkeys, owned.

    /// The subkey named keyName (case ignored), or null.
    SRegNode *FindKey(char16_t const *keyName) const;
    /// The subkey named keyName, made in its sorted place if missing.
    SRegNode *AddKey(char16_t const *keyName);
    /// Removes the subkey (with everything under it); false if missing.
    ///@{
    bool RemoveKey(char16_t const *keyName);
    SRegValue *FindValue(char16_t const *valueName);
    void SetValue(char16_t const *valueName, uint32_t type, std::vector<uint8_t> data);
    bool RemoveValue(char16_t const *valueName);
    ///@}
};

} // namespace qv
