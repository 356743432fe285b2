// CVersionInfo: the record, the version numbers, the prerelease flag and the
// entries of the first string table.
#include "qv/core/VersionInfo.h"

#include "qv/core/WideChar.h"
#include "qv/files/MemFile.h"

namespace qv {

CVersionInfo::CVersionInfo() = default;
CVersionInfo::CVersionInfo(CVersionInfo const &other) = default;
CVersionInfo &CVersionInfo::operator=(CVersionInfo const &other) = default;
CVersionInfo::~CVersionInfo() = default;

void CVersionInfo::Destroy() {
    *this = CVersionInfo();
}

bool CVersionInfo::GetVersion(uint16_t &a, uint16_t &b, uint16_t &c, uint16_t &d) {
    a = uint16_t(Value.dwProductVersionMS >> 16);
    b = uint16_t(Value.dwProductVersionMS);
    c = uint16_t(Value.dwProductVersionLS >> 16);
    d = uint16_t(Value.dwProductVersionLS);
    return true;
}

bool CVersionInfo::SetVersion(uint16_t a, uint16_t b, uint16_t c, uint16_t d) {
    if (wLength == 0) return false;
    CVersionInfo const before(*this);
    Value.dwFileVersionMS = Value.dwProductVersionMS = uint32_t(a) << 16 | b;
    Value.dwFileVersionLS = Value.dwProductVersionLS = uint32_t(c) << 16 | d;
    CString const text = CString::FromFormat(u"%d, %d, %d, %d", int(a), int(b), int(c), int(d));
    for (char16_t const *name : {u"FileVersion", u"ProductVersion"})
        if (VS_STRING *entry = FindString(name)) SetValue(*entry, text);
    return KeepIfItFits(before);
}

void CVersionInfo::SetValue(VS_STRING &entry, CString const &value) {
    entry.value = value;
    entry.wValueLength = uint16_t(value.GetLength() + 1);
}

bool CVersionInfo::KeepIfItFits(CVersionInfo const &before) {
    CMemFile measured;
    if (Serialize(measured)) return true;
    *this = before;
    return false;
}

bool CVersionInfo::GetBeta(bool &beta) {
    beta = (Value.dwFileFlags & kPrerelease) != 0;
    return true;
}

bool CVersionInfo::SetBeta(bool beta) {
    Value.dwFileFlags = beta ? Value.dwFileFlags | kPrerelease : Value.dwFileFlags & ~kPrerelease;
    return true;
}

VS_STRING *CVersionInfo::FindString(char16_t const *name) {
    if (!name || stringTables.GetSize() == 0) return nullptr;
    TArray<VS_STRING> &strings = stringTables[0].strings;
    for (uint32_t i = 0; i < strings.GetSize(); ++i)
        if (_wcsicmp(strings[i].key.GetUTF16(), name) == 0) return &strings[i];
    return nullptr;
}

char16_t const *CVersionInfo::GetString(char16_t const *name) {
    VS_STRING const *entry = FindString(name);
    return entry ? entry->value.GetUTF16() : nullptr;
}

bool CVersionInfo::SetString(char16_t const *name, char16_t const *value) {
    if (!name || !*name || stringTables.GetSize() == 0) return false;
    size_t const length = value ? wcslen(value) : 0;
    if (length >= 0xFFFF) return false;
    CVersionInfo const before(*this);
    VS_STRING *entry = FindString(name);
    if (!entry) {
        VS_STRING added;
        added.key = name;
        if (!stringTables[0].strings.Add(added)) return false;
        entry = FindString(name);
    }
    SetValue(*entry, CString(value ? value : u""));
    return KeepIfItFits(before);
}

} // namespace qv
