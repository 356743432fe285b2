// CINIStore: the INI reader and writer over CMemStore.
#include "qv/config/INIStore.h"

#include <cstring>
#include <string>

#include "qv/files/IFile.h"
#include "qv/filesystems/Path.h"

namespace qv {

namespace {

constexpr size_t kLineLimit = 1024; // bytes, terminator included
constexpr uint32_t kReadBlock = 0x10000;
constexpr char kDelimiters[] = "=\t\r\n";

// Reads what remains of file; false if a read failed before the end.
bool ReadRest(IFile &file, std::string &text) {
    int64_t remaining = file.GetRemaining();
    if (remaining > 0 && uint64_t(remaining) < SIZE_MAX / 2) text.reserve(size_t(remaining));
    char block[kReadBlock];
    for (;;) {
        uint32_t got = file.Read(block, kReadBlock);
        if (got == 0) return file.GetRemaining() <= 0;
        text.append(block, got);
    }
}

// strtok's scan: skips delimiters, then takes the run up to the next one
// (which becomes a terminator). Null when nothing but delimiters remains.
char *NextToken(char *&cursor) {
    cursor += std::strspn(cursor, kDelimiters);
    if (!*cursor) return nullptr;
    char *token = cursor;
    cursor += std::strcspn(cursor, kDelimiters);
    if (*cursor) *cursor++ = 0;
    return token;
}

// Whether Load reads every line of text (each ending in CR LF) whole.
bool LinesReadBackWhole(std::string const &text) {
    for (size_t start = 0, end; start < text.size(); start = end + 1) {
        end = text.find('\n', start);
        if (end == std::string::npos || end - start > kLineLimit) return false; // kLineLimit - 1 bytes and the CR
    }
    return true;
}

// Whether a "name=value" line reads back as written: no
// separator of the load in either part ('=', tab, CR, LF), and a name neither
// empty nor opening with '[' (a section's header) nor holding '\' (read as
// a path's slash).
bool LeafReadsBack(std::string const &name, std::string const &value) {
    return !name.empty() && name[0] != '[' && name.find_first_of(kDelimiters) == std::string::npos &&
           name.find('\\') == std::string::npos && value.find_first_of(kDelimiters) == std::string::npos;
}

// Whether a section's path reads back from its "[path]" line.
bool SectionReadsBack(std::string const &path) {
    return path.find_first_of("\r\n\\") == std::string::npos;
}

} // namespace

// A plain key (no separator, no dot item) in a section whose path stays
// within the store's path length lands directly below the section's node,
// found once per section: SetString would walk the same way from the root
// for every key.
bool CINIStore::IsPlainKey(char const *key, SSection const &section) {
    if (std::strpbrk(key, "/\\") || std::strcmp(key, ".") == 0 || std::strcmp(key, "..") == 0) return false;
    return section.text.GetLength() + int(std::strlen(key)) + 2 < IConfigStore::PathSize;
}

void CINIStore::LoadLine(char *line, SSection &section) {
    if (line[0] == '[') {
        if (char *close = std::strrchr(line, ']')) *close = 0;
        section.text = CString(line + 1);
        section.node = -1;
        return;
    }
    char *cursor = line;
    char *key = NextToken(cursor);
    if (!key) return;
    char *value = NextToken(cursor);
    CString text = value ? CString(value) : CString(u"");
    if (IsPlainKey(key, section)) {
        if (section.node < 0)
            section.node = GetNode(path::ConvertSlashes(path::AppendLeadingSlash(section.text, u'/'), u'/'));
        CString name(key);
        int32_t last = -1;
        int32_t node = FindChild(section.node, name, &last);
        if (node < 0) node = AddChild(section.node, last, name);
        if (node >= 0) nodes[uint32_t(node)].value = text;
        return;
    }
    CString keyPath = path::MakePath(section.text, CString(key), u'/');
    keyPath = path::ConvertSlashes(path::AppendLeadingSlash(keyPath, u'/'), u'/');
    SetString(keyPath, text);
}

bool CINIStore::Load(IFile *file) {
    Reset();
    if (!file) return false;
    std::string text;
    bool complete = ReadRest(*file, text);
    SSection section;
    char line[kLineLimit];
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        size_t length = std::min(end - start, kLineLimit - 1);
        std::memcpy(line, text.data() + start, length);
        line[length] = 0;
        // A CR ends the line, as the line reader turns it into a terminator.
        if (char *cr = static_cast<char *>(std::memchr(line, '\r', length))) *cr = 0;
        if (line[0]) LoadLine(line, section);
        start = end + 1;
    }
    return complete;
}

bool CINIStore::SaveNode(int32_t node, CString const &parentPath, std::string &text) const {
    SNode const &self = nodes.GetAt(uint32_t(node));
    CString nodePath = node == 0 ? self.name : path::MakePath(parentPath, self.name, u'/');
    std::string const header = nodePath.GetUTF8();
    if (node != 0 && !SectionReadsBack(header)) return false;
    if (node != 0) text.append("[").append(header).append("]\r\n");
    // A node's leaves go before its sub-entries: written after a sub-entry's
    // header they would read back inside it, and the key would be lost from
    // its own path. Depth is bounded: paths are cut at IConfigStore::PathSize
    // units, so a tree holds at most PathSize / 2 levels.
    for (int32_t child = self.firstChild; child >= 0; child = nodes.GetAt(uint32_t(child)).nextSibling) {
        SNode const &leaf = nodes.GetAt(uint32_t(child));
        if (leaf.firstChild >= 0) continue;
        std::string const name = leaf.name.GetUTF8(), value = leaf.value.GetUTF8();
        if (!LeafReadsBack(name, value)) return false;
        text.append(name).append("=").append(value).append("\r\n");
    }
    for (int32_t child = self.firstChild; child >= 0; child = nodes.GetAt(uint32_t(child)).nextSibling)
        if (nodes.GetAt(uint32_t(child)).firstChild >= 0 && !SaveNode(child, nodePath, text)) return false;
    return true;
}

bool CINIStore::Save(IFile *file) {
    if (!file) return false;
    std::string text;
    // A line the load would cut or split would come back as another key or
    // value: such a text is not written, and a save by name keeps the old file.
    if (!SaveNode(0, CString(u""), text) || !LinesReadBackWhole(text)) return false;
    // One write: the text is formed in memory first.
    return text.size() <= UINT32_MAX && file->WriteBytes(text.data(), uint32_t(text.size()));
}

} // namespace qv
