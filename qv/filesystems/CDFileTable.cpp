// The CDFS table: records, reading it back from an untrusted host, writing it.
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "qv/core/String.h"
#include "qv/core/WideChar.h"
#include "qv/files/MemFile.h"
#include "qv/filesystems/CDFileLayout.h"
#include "qv/filesystems/CDFileSystem.h"
#include "qv/threads/AutoLock.h"
#include "qv/filesystems/HostMove.h"

namespace qv {

using namespace cdfs;

namespace {

// A decimal text of at most 18 digits, nothing else.
bool ParseCount(char16_t const *text, int64_t &value) {
    if (!text || !*text) return false;
    value = 0;
    int digits = 0;
    for (char16_t const *p = text; *p; ++p) {
        if (*p < u'0' || *p > u'9' || ++digits > 18) return false;
        value = value * 10 + (*p - u'0');
    }
    return true;
}

bool ReadHostAt(IFile &host, int64_t at, CMemFile &into, int64_t n) {
    into.Reset();
    if (!into.SetSize(n)) return false;
    into.SetPosition(0);
    return host.Seek(at, 1) == at && host.ReadBytes(into.GetData(), uint32_t(n));
}

std::u16string Folded(char16_t const *path) {
    std::u16string text(path);
    for (char16_t &c : text)
        c = towlower(c);
    return text;
}

// No two paths alike, and no file standing where another has a directory.
bool PathsAreDistinct(TArray<CDirectoryEntry> const &loaded) {
    std::vector<std::u16string> paths;
    paths.reserve(loaded.GetSize());
    for (uint32_t i = 0; i < loaded.GetSize(); ++i)
        paths.push_back(Folded(loaded.GetAt(i).path));
    std::sort(paths.begin(), paths.end());
    for (size_t i = 0; i < paths.size(); ++i) {
        if (i && paths[i - 1] == paths[i]) return false;
        std::u16string below = paths[i] + u'/';
        auto next = std::lower_bound(paths.begin(), paths.end(), below);
        if (next != paths.end() && next->compare(0, below.size(), below) == 0) return false;
    }
    return true;
}

} // namespace

bool CCDFileSystem::Refuse(char const *why) {
    refusal = why;
    return false;
}

bool CCDFileSystem::GetDirectoryEntry(IFile *file, CDirectoryEntry *entry) {
    if (!file || !entry) return false;
    char16_t name[kNameLimit + 1], path[kNameLimit + 1];
    uint32_t attributes = 0, count = 0;
    int64_t size = 0, stamp = 0;
    if (!file->GetString(name, kNameLimit + 1) || !file->GetString(path, kNameLimit + 1) ||
        !file->GetDWORD(attributes) || !file->GetInt64(size) || !file->GetInt64(stamp) || !file->GetDWORD(count) ||
        count > kMaxProperties)
        return false;
    CDirectoryEntry read;
    read.SetName(name);
    read.SetPath(path);
    read.attributes = attributes;
    read.size = size;
    read.modified.SetTimestamp(stamp, 0);
    for (uint32_t i = 0; i < count; ++i) {
        char16_t key[kValueLimit + 1], value[kValueLimit + 1];
        if (!file->GetString(key, kValueLimit + 1) || !file->GetString(value, kValueLimit + 1)) return false;
        read.properties.SetValue(key, value);
    }
    *entry = read;
    return true;
}

bool CCDFileSystem::PutDirectoryEntry(IFile *file, CDirectoryEntry *entry) {
    if (!file || !entry) return false;
    CPropertyArray const &properties = entry->properties;
    bool ok = file->PutString(entry->name) && file->PutString(entry->path) && file->PutDWORD(entry->attributes) &&
              file->PutInt64(entry->size) && file->PutInt64(entry->modified.GetTimestamp(0)) &&
              file->PutDWORD(properties.GetSize());
    for (uint32_t i = 0; ok && i < properties.GetSize(); ++i)
        ok = file->PutString(properties.GetAt(i).name) && file->PutString(properties.GetAt(i).value);
    return ok;
}

bool CCDFileSystem::Serialize(CMemFile &table) {
    table.Reset();
    bool ok = table.WriteBytes(kMagic, 4) && table.PutBYTE(0) && table.PutBYTE(0) && PutDirectoryEntry(&table, &root) &&
              table.PutDWORD(entries.GetSize());
    for (uint32_t i = 0; ok && i < entries.GetSize(); ++i)
        ok = PutDirectoryEntry(&table, &entries.GetItem(i));
    return ok;
}

bool CCDFileSystem::SaveFileTable() {
    CAutoCriticalSection guard(&lock);
    if (!host || readOnly) return false;
    int64_t previous = root.size; // bytes of the last table, cleared below where the new one is shorter
    CMemFile table;
    table.SetGrowthRate(0x1000);
    // The record of the table holds the table's own size and capacity: grow
    // the region until the whole table fits, then write it once.
    for (;;) {
        root.size = 0;
        if (!Serialize(table)) return false;
        root.size = table.GetSize();
        if (!Serialize(table)) return false;
        if (table.GetSize() <= rootRegion.capacity) break;
        if (!GrowRegion(-1, table.GetSize())) return false;
    }
    if (host->Seek(base, 1) != base || !host->WriteBytes(table.GetData(), uint32_t(table.GetSize()))) return false;
    return previous <= root.size || ZeroEntry(-1, root.size, previous);
}

bool CCDFileSystem::LoadFileTable() {
    CAutoCriticalSection guard(&lock);
    if (!host) return false;
    int64_t available = host->GetSize() - base;
    CMemFile table;
    if (available < kHeaderSize || !ReadHostAt(*host, base, table, std::min(available, kBlock)))
        return Refuse("the header cannot be read");
    CDirectoryEntry stored;
    table.SetPosition(kHeaderSize);
    if (!GetDirectoryEntry(&table, &stored)) return Refuse("the table's own record cannot be read");
    int64_t capacity = 0, recordEnd = table.GetPosition();
    if (!ParseCount(stored.properties.GetValue(kCapacityKey), capacity) || capacity < recordEnd + 4 ||
        capacity > available || capacity > kMaxTable)
        return Refuse("the table's capacity does not fit the table or the host");
    if (!ReadHostAt(*host, base, table, capacity)) return Refuse("the table cannot be read");
    table.SetPosition(recordEnd);
    uint32_t count = 0;
    if (!table.GetDWORD(count) || count > (capacity - table.GetPosition()) / kMinRecord)
        return Refuse("the count of entries is more than the table can hold");
    TArray<CDirectoryEntry> loaded;
    for (uint32_t i = 0; i < count; ++i) {
        CDirectoryEntry entry;
        // Doubling keeps a long table's load linear (the array grows linearly
        // by its rate); the memory follows the records actually read.
        if (i == loaded.GetCapacity()) loaded.SetGrowthRate(uint16_t(std::clamp<uint32_t>(i, 5, 0xFFFF)));
        if (!GetDirectoryEntry(&table, &entry) || !loaded.Add(entry)) return Refuse("an entry's record is cut short");
    }
    rootRegion = {0, capacity};
    if (!AcceptTable(stored, loaded)) return false;
    root.properties.Clear();
    SetRegion(-1, 0, capacity);
    root.size = table.GetPosition();
    return true;
}

// Checks every record against the host and the others, then takes them.
bool CCDFileSystem::AcceptTable(CDirectoryEntry const &stored, TArray<CDirectoryEntry> &loaded) {
    int64_t available = host->GetSize() - base;
    TArray<SRegion> found;
    if (!found.SetCapacity(loaded.GetSize())) return Refuse("the table is too large for memory");
    std::vector<SRegion> used;
    for (uint32_t i = 0; i < loaded.GetSize(); ++i) {
        CDirectoryEntry &entry = loaded.GetItem(i);
        int64_t offset = 0, capacity = entry.size;
        char16_t const *capacityText = entry.properties.GetValue(kCapacityKey);
        if (entry.attributes != kAttributeFile || entry.path[0] != u'/' || entry.size < 0 ||
            !ParseCount(entry.properties.GetValue(kOffsetKey), offset) ||
            (*capacityText && !ParseCount(capacityText, capacity)))
            return Refuse("an entry is not a file with an absolute path, a size and a numeric offset");
        if (capacity < entry.size || offset < rootRegion.capacity || offset > available ||
            capacity > available - offset)
            return Refuse("an entry's region lies outside the host or inside the table, or is smaller than its size");
        entry.SetName(GetFilename(entry.path));
        found.Add(SRegion{offset, capacity});
        if (capacity > 0) used.push_back(SRegion{offset, capacity});
    }
    std::sort(used.begin(), used.end(), [](SRegion a, SRegion b) { return a.offset < b.offset; });
    for (size_t i = 1; i < used.size(); ++i)
        if (used[i].offset < used[i - 1].offset + used[i - 1].capacity) return Refuse("two entries' regions overlap");
    if (!PathsAreDistinct(loaded)) return Refuse("a path is there twice, or a file stands where a directory is");
    root.modified = stored.modified;
    entries = loaded;
    regions = found;
    for (uint32_t i = 0; i < entries.GetSize(); ++i)
        SetRegion(int(i), regions.GetAt(i).offset, regions.GetAt(i).capacity);
    return true;
}

} // namespace qv
