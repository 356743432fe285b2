// The registry primitives over the library's own root files.
#include "qv/config/Registry.h"

#include <cstring>
#include <vector>

#include "qv/config/RegistryRoot.h"
#include "qv/filesystems/Path.h"

namespace qv {

struct SRegKeyHandle {
    CRegistryRoot *(*root)();
    CString path; // '\'-separated items below the root; empty for the root
    uint32_t access;
    bool predefined;
};

namespace {

CRegistryRoot *User() {
    return &UserRoot();
}
CRegistryRoot *Machine() {
    return &MachineRoot();
}

SRegKeyHandle userHandle{User, CString(u""), KEY_ALL_ACCESS, true};
SRegKeyHandle machineHandle{Machine, CString(u""), KEY_ALL_ACCESS, true};

// The items of the handle's path and subKey; false when too deep.
bool KeyItems(HKEY key, char16_t const *subKey, TArray<CString> &items) {
    TArray<CString> more;
    path::SplitPath(items, key->path);
    path::SplitPath(more, CString(subKey ? subKey : u""));
    for (uint32_t i = 0; i < more.GetSize(); ++i)
        items.Add(more[i]);
    return items.GetSize() <= kMaxKeyDepth;
}

SRegNode *Find(SRegNode &root, TArray<CString> const &items) {
    SRegNode *node = &root;
    for (uint32_t i = 0; i < items.GetSize() && node; ++i)
        node = node->FindKey(items.GetAt(i));
    return node;
}

// The key the handle names, or null when it was deleted meanwhile.
SRegNode *Own(SRegNode &root, HKEY key) {
    TArray<CString> items;
    KeyItems(key, nullptr, items);
    return Find(root, items);
}

HKEY NewHandle(HKEY key, TArray<CString> const &items, uint32_t access) {
    CString joined = CString::Join(items, u"\\");
    return new SRegKeyHandle{key->root, joined, access, false};
}

// Copies text (with its terminator) into out of *size units; the size
// needed goes back in *size.
int32_t CopyName(CString const &text, char16_t *out, uint32_t *size) {
    uint32_t need = uint32_t(text.GetLength()) + 1;
    if (!size) return ERROR_INVALID_PARAMETER;
    if (!out || *size < need) {
        *size = need;
        return ERROR_MORE_DATA;
    }
    std::memcpy(out, text.GetUTF16(), need * sizeof(char16_t));
    *size = need - 1;
    return ERROR_SUCCESS;
}

int32_t CopyData(SRegValue const &value, uint32_t *type, uint8_t *data, uint32_t *size) {
    if (type) *type = value.type;
    uint32_t need = uint32_t(value.data.size());
    if (!size) return data ? ERROR_INVALID_PARAMETER : ERROR_SUCCESS;
    bool fits = *size >= need;
    *size = need;
    if (!data) return ERROR_SUCCESS;
    if (!fits) return ERROR_MORE_DATA;
    if (need) std::memcpy(data, value.data.data(), need);
    return ERROR_SUCCESS;
}

bool Valid(HKEY key) {
    return key != nullptr && key->root != nullptr;
}

} // namespace

HKEY const HKEY_CURRENT_USER = &userHandle;
HKEY const HKEY_LOCAL_MACHINE = &machineHandle;

bool RegSetRootDirectory(HKEY root, char16_t const *directory) {
    if (root != HKEY_CURRENT_USER && root != HKEY_LOCAL_MACHINE) return false;
    root->root()->SetDirectory(directory);
    return true;
}

bool RegGetRootFile(HKEY root, char16_t *out, uint32_t size) {
    if ((root != HKEY_CURRENT_USER && root != HKEY_LOCAL_MACHINE) || !out || size == 0) return false;
    CString file = root->root()->File();
    if (uint32_t(file.GetLength()) >= size) return false;
    std::memcpy(out, file.GetUTF16(), (size_t(file.GetLength()) + 1) * sizeof(char16_t));
    return true;
}

int32_t RegOpenKeyExW(HKEY key, char16_t const *subKey, uint32_t access, HKEY *result) {
    if (!Valid(key) || !result) return ERROR_INVALID_HANDLE;
    *result = nullptr;
    TArray<CString> items;
    if (!KeyItems(key, subKey, items)) return ERROR_INVALID_PARAMETER;
    int32_t status =
        key->root()->Read([&](SRegNode &root) { return Find(root, items) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND; });
    if (status == ERROR_SUCCESS) *result = NewHandle(key, items, access);
    return status;
}

int32_t RegCreateKeyExW(HKEY key, char16_t const *subKey, uint32_t access, HKEY *result, bool *created) {
    if (!Valid(key) || !result) return ERROR_INVALID_HANDLE;
    *result = nullptr;
    if (created) *created = false;
    TArray<CString> items;
    if (!KeyItems(key, subKey, items)) return ERROR_INVALID_PARAMETER;
    int32_t status = key->root()->Write([&](SRegNode &root, bool &changed) {
        SRegNode *node = &root;
        for (uint32_t i = 0; i < items.GetSize(); ++i) {
            SRegNode *next = node->FindKey(items[i]);
            if (!next) {
                next = node->AddKey(items[i]);
                changed = true;
            }
            node = next;
        }
        if (created) *created = changed;
        return ERROR_SUCCESS;
    });
    if (status == ERROR_SUCCESS) *result = NewHandle(key, items, access);
    return status;
}

int32_t RegCloseKey(HKEY key) {
    if (!Valid(key)) return ERROR_INVALID_HANDLE;
    if (!key->predefined) delete key;
    return ERROR_SUCCESS;
}

int32_t RegQueryValueExW(HKEY key, char16_t const *valueName, uint32_t *type, uint8_t *data, uint32_t *size) {
    if (!Valid(key)) return ERROR_INVALID_HANDLE;
    return key->root()->Read([&](SRegNode &root) {
        SRegNode *node = Own(root, key);
        if (!node) return ERROR_KEY_DELETED;
        SRegValue *value = node->FindValue(valueName);
        return value ? CopyData(*value, type, data, size) : ERROR_FILE_NOT_FOUND;
    });
}

int32_t RegSetValueExW(HKEY key, char16_t const *valueName, uint32_t type, uint8_t const *data, uint32_t size) {
    if (!Valid(key)) return ERROR_INVALID_HANDLE;
    if (!(key->access & KEY_SET_VALUE)) return ERROR_ACCESS_DENIED;
    if (size && !data) return ERROR_INVALID_PARAMETER;
    std::vector<uint8_t> bytes(data, data + size);
    return key->root()->Write([&](SRegNode &root, bool &changed) {
        SRegNode *node = Own(root, key);
        if (!node) return ERROR_KEY_DELETED;
        node->SetValue(valueName, type, std::move(bytes));
        changed = true;
        return ERROR_SUCCESS;
    });
}

int32_t RegEnumKeyExW(HKEY key, uint32_t index, char16_t *name, uint32_t *nameSize) {
    if (!Valid(key)) return ERROR_INVALID_HANDLE;
    return key->root()->Read([&](SRegNode &root) {
        SRegNode *node = Own(root, key);
        if (!node) return ERROR_KEY_DELETED;
        if (index >= node->keys.size()) return ERROR_NO_MORE_ITEMS;
        return CopyName(node->keys[index]->name, name, nameSize);
    });
}

int32_t RegEnumValueW(HKEY key, uint32_t index, char16_t *name, uint32_t *nameSize, uint32_t *type, uint8_t *data,
                      uint32_t *dataSize) {
    if (!Valid(key)) return ERROR_INVALID_HANDLE;
    return key->root()->Read([&](SRegNode &root) {
        SRegNode *node = Own(root, key);
        if (!node) return ERROR_KEY_DELETED;
        if (index >= node->values.size()) return ERROR_NO_MORE_ITEMS;
        int32_t status = CopyName(node->values[index].name, name, nameSize);
        int32_t dataStatus = CopyData(node->values[index], type, data, dataSize);
        return status != ERROR_SUCCESS ? status : dataStatus;
    });
}

int32_t RegDeleteKeyW(HKEY key, char16_t const *subKey) {
    if (!Valid(key)) return ERROR_INVALID_HANDLE;
    TArray<CString> items;
    if (!KeyItems(key, subKey, items)) return ERROR_INVALID_PARAMETER;
    if (items.GetSize() == 0) return ERROR_ACCESS_DENIED; // a root stays
    CString last = items[items.GetSize() - 1];
    items.SetSize(items.GetSize() - 1);
    return key->root()->Write([&](SRegNode &root, bool &changed) {
        SRegNode *parent = Find(root, items);
        SRegNode *child = parent ? parent->FindKey(last) : nullptr;
        if (!child) return ERROR_FILE_NOT_FOUND;
        if (!child->keys.empty()) return ERROR_ACCESS_DENIED;
        changed = parent->RemoveKey(last);
        return ERROR_SUCCESS;
    });
}

int32_t RegDeleteValueW(HKEY key, char16_t const *valueName) {
    if (!Valid(key)) return ERROR_INVALID_HANDLE;
    if (!(key->access & KEY_SET_VALUE)) return ERROR_ACCESS_DENIED;
    return key->root()->Write([&](SRegNode &root, bool &changed) {
        SRegNode *node = Own(root, key);
        if (!node) return ERROR_KEY_DELETED;
        changed = node->RemoveValue(valueName);
        return changed ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
    });
}

} // namespace qv
