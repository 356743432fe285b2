// CRegStore: the store contract straight over the registry helpers.
#include "qv/config/RegStore.h"

#include "qv/config/RegistryValue.h"
#include "qv/filesystems/Path.h"

namespace qv {

namespace {

constexpr uint32_t kNameUnits = 1024;

} // namespace

CRegStore::CRegStore() : basePath(u"") {}

CRegStore::~CRegStore() = default;

void CRegStore::SetRoot(HKEY rootKey, char16_t const *base) {
    root = rootKey;
    basePath = base ? base : u"";
}

bool CRegStore::KeyPath(char16_t const *name, CString &full) const {
    if (!root) return false;
    CString relative = path::ConvertSlashes(ExpandPath(name), u'\\');
    full = path::MakePath(basePath, relative, u'\\');
    if (!path::IsChildOfDirectory(basePath, full)) return false;
    // The registry takes items without a leading separator.
    full = path::ConvertSlashes(full, u'\\');
    while (full.GetLength() && full[0] == u'\\')
        full = full.Mid(1);
    return true;
}

bool CRegStore::ValuePath(char16_t const *name, CString &key, CString &value) const {
    CString full;
    if (!KeyPath(name, full)) return false;
    value = path::GetFilename(full);
    key = path::GetDirectory(full);
    return true;
}

CString CRegStore::GetString(char16_t const *name, char16_t const *defaultValue) {
    CString key, value, text;
    if (!ValuePath(name, key, value) || RegQueryString(root, key, value, text) != ERROR_SUCCESS)
        return CString(defaultValue ? defaultValue : u"");
    return text;
}

bool CRegStore::SetString(char16_t const *name, char16_t const *text) {
    CString key, value;
    return ValuePath(name, key, value) && RegSetValueStr(root, key, value, text) == ERROR_SUCCESS;
}

uint32_t CRegStore::GetDWORD(char16_t const *name, uint32_t defaultValue) {
    CString key, value;
    if (!ValuePath(name, key, value)) return defaultValue;
    return RegGetValueDWORD(root, key, value, defaultValue);
}

bool CRegStore::SetDWORD(char16_t const *name, uint32_t number) {
    CString key, value;
    return ValuePath(name, key, value) && RegSetValueDWORD(root, key, value, number) == ERROR_SUCCESS;
}

int32_t CRegStore::GetLong(char16_t const *name, int32_t defaultValue) {
    return int32_t(GetDWORD(name, uint32_t(defaultValue)));
}

bool CRegStore::SetLong(char16_t const *name, int32_t value) {
    return SetDWORD(name, uint32_t(value));
}

bool CRegStore::isLeaf(char16_t const *path) {
    CString key, value;
    uint32_t type = 0;
    return ValuePath(path, key, value) && RegGetValueType(root, key, value, type) == ERROR_SUCCESS;
}

bool CRegStore::isEntry(char16_t const *path) {
    CString full;
    HKEY opened = nullptr;
    if (!KeyPath(path, full) || RegOpenKeyExW(root, full, KEY_ALL_ACCESS, &opened) != ERROR_SUCCESS) return false;
    RegCloseKey(opened);
    return true;
}

bool CRegStore::unlink(char16_t const *path) {
    CString full, key, value;
    uint32_t type = 0;
    if (!KeyPath(path, full) || !ValuePath(path, key, value)) return false;
    if (RegGetValueType(root, key, value, type) == ERROR_SUCCESS)
        return RegDeleteValueEx(root, key, value) == ERROR_SUCCESS;
    return RegDeleteKeyExW(root, full) == ERROR_SUCCESS;
}

bool CRegStore::list(TArray<CString> &names, char16_t const *path) {
    names.Empty();
    CString full;
    HKEY opened = nullptr;
    if (!KeyPath(path, full) || RegOpenKeyExW(root, full, KEY_READ, &opened) != ERROR_SUCCESS) return false;
    char16_t name[kNameUnits];
    for (uint32_t index = 0;; ++index) {
        uint32_t units = kNameUnits;
        if (RegEnumKeyExW(opened, index, name, &units) != ERROR_SUCCESS) break;
        names.Add(CString(name));
    }
    for (uint32_t index = 0;; ++index) {
        uint32_t units = kNameUnits;
        if (RegEnumValueW(opened, index, name, &units, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
        names.Add(CString(name));
    }
    RegCloseKey(opened);
    return true;
}

bool CRegStore::copyValue(IConfigStore &target, char16_t const *targetPath, char16_t const *sourcePath) {
    CString key, value;
    uint32_t type = 0;
    if (!ValuePath(sourcePath, key, value) || RegGetValueType(root, key, value, type) != ERROR_SUCCESS) return false;
    if (type == REG_DWORD) return target.SetDWORD(targetPath, GetDWORD(sourcePath, 0));
    return target.SetString(targetPath, GetString(sourcePath, u""));
}

} // namespace qv
