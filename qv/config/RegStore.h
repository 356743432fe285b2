/// @file
/// CRegStore: settings in the registry (qv/config/Registry.h). It keeps no
/// memory of its own: every call goes to the registry at once, and no key
/// stays open between calls.
///
/// SetRoot(root, basePath) must come before use. A path is expanded against
/// the current path, its '/' become '\', and it is joined to basePath; it must
/// then lie below basePath, so ".." cannot climb above it: such a path gives
/// the default from a Get and false from everything else (also the base path
/// itself, so list("/") is refused). For values the last item is the value
/// name and the rest the key.
///
/// Types: DWORD and long are REG_DWORD; strings and every other type (which
/// the contract turns into text) are REG_SZ. A Get reads a value of another
/// type where it can: GetString gives a REG_DWORD as decimal text, GetDWORD
/// reads a REG_SZ as a number. A write creates the keys on the way.
/// isLeaf: a value of that name exists (false for a missing path, unlike
/// CMemStore); isEntry: a key of that name exists. list empties names first,
/// then gives the subkeys, then the values. unlink deletes the value of that
/// name, or else the key with its contents (see RegDeleteKeyExW for why a key
/// with several subkeys may need more than one call). copyValue copies a
/// REG_DWORD as a DWORD and anything else as a string.
///
/// Failures: Gets give the default, the rest false. Threads: one thread at a
/// time per store; the registry itself may be used from any thread.
#pragma once

#include "qv/config/IConfigStore.h"
#include "qv/config/Registry.h"

namespace qv {

/// @copydoc RegStore.h
class QV_API CRegStore : public IConfigStore {
public:
    CRegStore();
    ~CRegStore() override;

    /// Works under the key basePath (null: "") of root; the handle is not
    /// owned. With no root set every operation fails.
    void SetRoot(HKEY root, char16_t const *basePath);

    bool copyValue(IConfigStore &target, char16_t const *targetPath, char16_t const *sourcePath) override;
    bool list(TArray<CString> &names, char16_t const *path) override;
    bool unlink(char16_t const *path) override;
    bool isLeaf(char16_t const *path) override;
    bool isEntry(char16_t const *path) override;
    int32_t GetLong(char16_t const *name, int32_t defaultValue) override;
    bool SetLong(char16_t const *name, int32_t value) override;
    uint32_t GetDWORD(char16_t const *name, uint32_t defaultValue) override;
    bool SetDWORD(char16_t const *name, uint32_t value) override;
    CString GetString(char16_t const *name, char16_t const *defaultValue) override;
    bool SetString(char16_t const *name, char16_t const *value) override;

private:
    /// The full key path of name, '\'-separated; false when it is not below
    /// the base path.
    bool KeyPath(char16_t const *name, CString &full) const;
    /// The same, split into the key and the value name.
    bool ValuePath(char16_t const *name, CString &key, CString &value) const;

    HKEY root = nullptr;
    CString basePath;
};

} // namespace qv
