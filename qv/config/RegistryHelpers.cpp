// The Reg helpers: one value or one key at a time over the primitives.
#include <cstring>
#include <vector>

#include "qv/config/Registry.h"
#include "qv/config/RegistryValue.h"
#include "qv/core/IntegerConversions.h"
#include "qv/core/WideChar.h"

namespace qv {

namespace {

constexpr uint32_t kNameUnits = 1024;
constexpr uint32_t kCopyDataBytes = 2048;

bool Empty(char16_t const *s) {
    return !s || !*s;
}

// Opens subKey below key (key itself when subKey is empty) and runs use on
// it; the key opened here is closed again.
template <class Use> int32_t WithKey(HKEY key, char16_t const *subKey, uint32_t access, Use &&use) {
    HKEY opened = nullptr;
    int32_t status = RegOpenKeyExW(key, subKey, access, &opened);
    if (status != ERROR_SUCCESS) return status;
    status = use(opened);
    RegCloseKey(opened);
    return status;
}

CString TextOfData(uint32_t type, std::vector<uint8_t> const &data, bool &ok) {
    ok = true;
    if (type == REG_DWORD && data.size() == 4) {
        uint32_t v = uint32_t(data[0]) | uint32_t(data[1]) << 8 | uint32_t(data[2]) << 16 | uint32_t(data[3]) << 24;
        return CUInt32::ToString(v);
    }
    if (type == REG_QWORD && data.size() == 8) {
        uint64_t v = 0;
        for (int i = 7; i >= 0; --i)
            v = v << 8 | data[size_t(i)];
        return CUInt64::ToString(v);
    }
    if (type != REG_SZ && type != REG_EXPAND_SZ) {
        ok = false;
        return CString(u"");
    }
    std::u16string text;
    for (size_t i = 0; i + 1 < data.size(); i += 2) {
        char16_t c = char16_t(data[i] | data[i + 1] << 8);
        if (!c) break;
        text += c;
    }
    return CString(text.c_str());
}

} // namespace

int32_t RegQueryString(HKEY key, char16_t const *subKey, char16_t const *valueName, CString &out) {
    return WithKey(key, subKey, KEY_READ, [&](HKEY opened) {
        uint32_t type = 0, size = 0;
        int32_t status = RegQueryValueExW(opened, valueName, &type, nullptr, &size);
        if (status != ERROR_SUCCESS) return status;
        std::vector<uint8_t> data(size);
        status = RegQueryValueExW(opened, valueName, &type, data.data(), &size);
        if (status != ERROR_SUCCESS) return status; // changed between the calls
        data.resize(size);
        bool ok = false;
        out = TextOfData(type, data, ok);
        return ok ? ERROR_SUCCESS : ERROR_UNSUPPORTED_TYPE;
    });
}

int32_t RegGetValueStr(HKEY key, char16_t const *subKey, char16_t const *valueName, char16_t *buffer, uint32_t size,
                       char16_t const *defaultValue) {
    CString text;
    int32_t status = RegQueryString(key, subKey, valueName, text);
    if (status != ERROR_SUCCESS) text = defaultValue ? defaultValue : u"";
    if (buffer && size) {
        uint32_t units = std::min(uint32_t(text.GetLength()), size - 1);
        std::memcpy(buffer, text.GetUTF16(), units * sizeof(char16_t));
        buffer[units] = 0;
    }
    return status;
}

int32_t RegGetValueDWORD(HKEY key, char16_t const *subKey, char16_t const *valueName, uint32_t &out,
                         uint32_t defaultValue) {
    CString text;
    int32_t status = RegQueryString(key, subKey, valueName, text);
    out = status == ERROR_SUCCESS ? uint32_t(_wtoi64(text)) : defaultValue;
    return status;
}

uint32_t RegGetValueDWORD(HKEY key, char16_t const *subKey, char16_t const *valueName, uint32_t defaultValue) {
    uint32_t out = defaultValue;
    RegGetValueDWORD(key, subKey, valueName, out, defaultValue);
    return out;
}

namespace {

template <class Use> int32_t WithCreatedKey(HKEY key, char16_t const *subKey, Use &&use) {
    HKEY created = nullptr;
    int32_t status = RegCreateKeyExW(key, subKey, KEY_ALL_ACCESS, &created, nullptr);
    if (status != ERROR_SUCCESS) return status;
    status = use(created);
    RegCloseKey(created);
    return status;
}

} // namespace

int32_t RegSetValueStr(HKEY key, char16_t const *subKey, char16_t const *valueName, char16_t const *value) {
    char16_t const *text = value ? value : u"";
    uint32_t bytes = uint32_t((wcslen(text) + 1) * sizeof(char16_t));
    std::vector<uint8_t> data(bytes);
    for (uint32_t i = 0; i < bytes / 2; ++i) {
        data[2 * i] = uint8_t(text[i] & 0xFF);
        data[2 * i + 1] = uint8_t(text[i] >> 8);
    }
    return WithCreatedKey(key, subKey,
                          [&](HKEY k) { return RegSetValueExW(k, valueName, REG_SZ, data.data(), bytes); });
}

int32_t RegSetValueDWORD(HKEY key, char16_t const *subKey, char16_t const *valueName, uint32_t value) {
    uint8_t data[4] = {uint8_t(value), uint8_t(value >> 8), uint8_t(value >> 16), uint8_t(value >> 24)};
    return WithCreatedKey(key, subKey, [&](HKEY k) { return RegSetValueExW(k, valueName, REG_DWORD, data, 4); });
}

int32_t RegGetValueType(HKEY key, char16_t const *subKey, char16_t const *valueName, uint32_t &type) {
    return WithKey(key, subKey, KEY_READ,
                   [&](HKEY k) { return RegQueryValueExW(k, valueName, &type, nullptr, nullptr); });
}

int32_t RegDeleteValueEx(HKEY key, char16_t const *subKey, char16_t const *valueName) {
    if (Empty(subKey)) return RegDeleteValueW(key, valueName);
    return WithKey(key, subKey, KEY_QUERY_VALUE | KEY_SET_VALUE | KEY_ENUMERATE_SUB_KEYS,
                   [&](HKEY k) { return RegDeleteValueW(k, valueName); });
}

namespace {

// The contents of key: values, then subkeys, with an index that rises after
// each deletion (see Registry.h: every second entry stays).
void DeleteContents(HKEY key) {
    std::vector<char16_t> buffer(kNameUnits); // on the heap: this recurses with the key depth
    char16_t *name = buffer.data();
    for (uint32_t index = 0;; ++index) {
        uint32_t units = kNameUnits;
        if (RegEnumValueW(key, index, name, &units, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
        RegDeleteValueW(key, name);
    }
    for (uint32_t index = 0;; ++index) {
        uint32_t units = kNameUnits;
        if (RegEnumKeyExW(key, index, name, &units) != ERROR_SUCCESS) break;
        RegDeleteKeyExW(key, name);
    }
}

} // namespace

int32_t RegDeleteKeyExW(HKEY key, char16_t const *subKey) {
    if (Empty(subKey)) return ERROR_INVALID_PARAMETER;
    std::u16string text(subKey);
    size_t split = text.find_first_of(u"\\/");
    HKEY parent = key;
    std::u16string child = text;
    if (split != std::u16string::npos) {
        int32_t status = RegOpenKeyExW(key, text.substr(0, split).c_str(), KEY_ALL_ACCESS, &parent);
        if (status != ERROR_SUCCESS) return status;
        child = text.substr(split + 1);
    }
    int32_t status = WithKey(parent, child.c_str(), KEY_ALL_ACCESS, [](HKEY opened) {
        DeleteContents(opened);
        return ERROR_SUCCESS;
    });
    if (status == ERROR_SUCCESS) status = RegDeleteKeyW(parent, child.c_str());
    if (parent != key) RegCloseKey(parent);
    return status;
}

int32_t RegCopy(HKEY source, char16_t const *sourceSubKey, HKEY target, char16_t const *targetSubKey) {
    HKEY from = source;
    if (!Empty(sourceSubKey)) {
        int32_t status = RegOpenKeyExW(source, sourceSubKey, KEY_READ, &from);
        if (status != ERROR_SUCCESS) return status;
    }
    HKEY to = target;
    int32_t status = ERROR_SUCCESS;
    if (!Empty(targetSubKey)) status = RegCreateKeyExW(target, targetSubKey, KEY_WRITE, &to, nullptr);
    std::vector<char16_t> nameBuffer(kNameUnits); // on the heap: this recurses with the key depth
    std::vector<uint8_t> dataBuffer(kCopyDataBytes);
    char16_t *name = nameBuffer.data();
    uint8_t *data = dataBuffer.data();
    for (uint32_t index = 0; status == ERROR_SUCCESS; ++index) {
        uint32_t units = kNameUnits, bytes = kCopyDataBytes, type = 0;
        int32_t got = RegEnumValueW(from, index, name, &units, &type, data, &bytes);
        if (got != ERROR_SUCCESS) break; // the end, or a value above the data buffer
        status = RegSetValueExW(to, name, type, data, bytes);
    }
    for (uint32_t index = 0; status == ERROR_SUCCESS; ++index) {
        uint32_t units = kNameUnits;
        if (RegEnumKeyExW(from, index, name, &units) != ERROR_SUCCESS) break;
        status = RegCopy(from, name, to, name);
    }
    if (from != source) RegCloseKey(from);
    if (to != target && to) RegCloseKey(to);
    return status;
}

} // namespace qv
