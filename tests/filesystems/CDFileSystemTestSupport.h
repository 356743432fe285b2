// Helpers of the CDFS tests: the expected bytes of tables and feet, written
// out field by field, and the regions of entries.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "qv/core/PropertyArray.h"
#include "qv/core/String.h"
#include "qv/filesystems/CDFileSystem.h"

namespace qv::test {

inline std::string SeededBytes(size_t size, int seed) {
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; ++i)
        bytes[i] = char(i * 31 + size_t(seed) * 17 + i / 253);
    return bytes;
}

inline std::u16string Number(int i) {
    std::string text = std::to_string(i);
    return std::u16string(text.begin(), text.end());
}

inline std::string Le(uint64_t value, int bytes) {
    std::string out;
    for (int i = 0; i < bytes; ++i)
        out += char((value >> (8 * i)) & 0xFF);
    return out;
}

inline std::string Str(std::string const &text) {
    return Le(text.size(), 4) + text;
}

inline std::string Count(uint32_t n) {
    return Le(n, 4);
}

inline std::string Foot(int64_t base) {
    return Le(uint64_t(base), 8) + "CDFSFOOT";
}

// A record: name, path, attributes, size, timestamp, then the properties.
inline std::string RecordOf(std::string const &name, std::string const &path, uint32_t attributes, int64_t size,
                            int64_t stamp, std::vector<std::pair<std::string, std::string>> const &properties) {
    std::string out = Str(name) + Str(path) + Le(attributes, 4) + Le(uint64_t(size), 8) + Le(uint64_t(stamp), 8) +
                      Le(properties.size(), 4);
    for (auto const &[key, value] : properties)
        out += Str(key) + Str(value);
    return out;
}

inline std::string Record(CDirectoryEntry const &entry) {
    std::vector<std::pair<std::string, std::string>> properties;
    for (uint32_t i = 0; i < entry.properties.GetSize(); ++i)
        properties.emplace_back(entry.properties.GetAt(i).name.GetUTF8(), entry.properties.GetAt(i).value.GetUTF8());
    return RecordOf(CString(entry.name).GetUTF8(), CString(entry.path).GetUTF8(), entry.attributes, entry.size,
                    entry.modified.GetTimestamp(0), properties);
}

// The whole table: header, the root's record (its size is the table's
// length), then the rest as given.
inline std::string ExpectedTable(int64_t stamp, int64_t capacity, std::string const &rest) {
    auto root = [&](int64_t size) {
        return RecordOf("/", "/", 1, size, stamp, {{"Offset", "0"}, {"Capacity", std::to_string(capacity)}});
    };
    int64_t size = int64_t(6 + root(0).size() + rest.size());
    return std::string("CDFS\0\0", 6) + root(size) + rest;
}

// The timestamp of the root record of a CDFS that starts at base in bytes.
inline int64_t StoredStamp(std::string const &bytes, size_t base) {
    int64_t stamp = 0;
    for (int i = 7; i >= 0; --i)
        stamp = (stamp << 8) | uint8_t(bytes[base + 6 + 22 + size_t(i)]);
    return stamp;
}

inline int64_t Offset(CCDFileSystem &cdfs, char16_t const *path) {
    return cdfs.GetFileInfo(path).properties[u"Offset"];
}

inline int64_t Capacity(CCDFileSystem &cdfs, char16_t const *path) {
    return cdfs.GetFileInfo(path).properties[u"Capacity"];
}

} // namespace qv::test
