#include "qv/filesystems/WatchTable.h"

#include "qv/core/StringFunctions.h"

namespace qv {

namespace {

// path is prefix itself or lies below it.
bool IsAtOrBelow(CString const &path, char16_t const *prefix) {
    size_t n = StrLen(prefix);
    if (n == 0) return true; // everything lies below the root
    if (StrNCmp(path.GetUTF16(), prefix, n) != 0) return false;
    char16_t next = path.GetUTF16()[n];
    return next == 0 || next == u'/';
}

} // namespace

void CWatchTable::Add(int32_t key, CString const &path) {
    directories[key] = path;
}

void CWatchTable::Remove(int32_t key) {
    directories.erase(key);
}

CString const *CWatchTable::Find(int32_t key) const {
    auto found = directories.find(key);
    return found == directories.end() ? nullptr : &found->second;
}

std::vector<int32_t> CWatchTable::KeysUnder(char16_t const *path) const {
    std::vector<int32_t> keys;
    for (auto const &[key, dir] : directories)
        if (IsAtOrBelow(dir, path)) keys.push_back(key);
    return keys;
}

void CWatchTable::Rename(char16_t const *from, char16_t const *to) {
    int fromLength = int(StrLen(from));
    for (auto &[key, dir] : directories) {
        if (!IsAtOrBelow(dir, from)) continue;
        CString moved(to);
        moved.Concatenate(dir.GetUTF16() + fromLength);
        dir = moved;
    }
}

bool CWatchTable::HasRoot() const {
    for (auto const &entry : directories)
        if (entry.second.IsEmpty()) return true;
    return false;
}

CString JoinWatchPath(CString const &dir, char16_t const *name) {
    if (dir.IsEmpty()) return CString(name);
    CString path(dir);
    path += u"/";
    path += name;
    return path;
}

} // namespace qv
