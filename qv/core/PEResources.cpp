// Reading the resource tree of a PE32/PE32+ file from untrusted bytes: the
// published layout of the DOS stub header, the PE signature, the COFF file
// header, the optional header's data directories and the section table,
// then the three-level resource directory.
#include "qv/core/PEResources.h"

#include <algorithm>

#include "qv/core/ByteSpan.h"
#include "qv/files/IFile.h"

namespace qv {

namespace {

constexpr uint32_t kSubdirectory = 0x80000000; // entry points to a directory / has a name
constexpr uint32_t kResourceSlot = 2;           // IMAGE_DIRECTORY_ENTRY_RESOURCE
constexpr uint32_t kDirectoryBytes = 16;
constexpr uint32_t kEntryBytes = 8;
constexpr uint32_t kDataEntryBytes = 16;
constexpr uint32_t kSectionHeaderBytes = 40;

struct SSection {
    uint32_t virtualAddress;
    uint32_t mapped;   // bytes of the section that the file holds and the image maps
    int64_t rawOffset; // where they start in the file
};

bool ReadAt(IFile &file, int64_t at, void *p, uint32_t n) {
    return file.SetPosition(at) == at && file.ReadBytes(p, n);
}

// The file offset of n bytes at rva, if one section holds them all.
bool MapRva(TSimpleArray<SSection> const &sections, uint32_t rva, uint32_t n, int64_t &offset) {
    for (uint32_t i = 0; i < sections.GetSize(); ++i) {
        SSection const &s = sections.GetAt(i);
        if (rva < s.virtualAddress) continue;
        uint64_t const into = uint64_t(rva) - s.virtualAddress;
        // An empty span still has to start on bytes the file holds.
        if (into + n > s.mapped || (n == 0 && into >= s.mapped)) continue;
        offset = s.rawOffset + int64_t(into);
        return true;
    }
    return false;
}

// The section table and the RVA of the resource directory (0: none).
bool ReadHeaders(IFile &file, int64_t fileSize, TSimpleArray<SSection> &sections, uint32_t &resourceRva) {
    uint8_t dos[64];
    uint8_t pe[24];
    uint32_t peAt = 0;
    SByteSpan const dosSpan{dos, sizeof dos}, peSpan{pe, sizeof pe};
    if (!ReadAt(file, 0, dos, sizeof dos) || dos[0] != 'M' || dos[1] != 'Z' || !dosSpan.DWord(0x3C, peAt)) return false;
    if (!ReadAt(file, peAt, pe, sizeof pe) || pe[0] != 'P' || pe[1] != 'E' || pe[2] || pe[3]) return false;
    uint16_t sectionCount = 0, optionalSize = 0;
    peSpan.Word(6, sectionCount);
    peSpan.Word(20, optionalSize);

    TSimpleArray<uint8_t> optional;
    if (!optional.SetSize(optionalSize) || !ReadAt(file, int64_t(peAt) + 24, optional.GetData(), optionalSize))
        return false;
    SByteSpan const header{optional.GetData(), optionalSize};
    uint16_t magic = 0;
    header.Word(0, magic);
    uint32_t const directoriesAt = magic == 0x10B ? 96 : magic == 0x20B ? 112 : 0;
    uint32_t slots = 0;
    if (!directoriesAt || !header.DWord(directoriesAt - 4, slots) || slots <= kResourceSlot ||
        !header.DWord(directoriesAt + 8 * kResourceSlot, resourceRva))
        return false;

    int64_t const tableAt = int64_t(peAt) + 24 + optionalSize;
    uint32_t const tableBytes = uint32_t(sectionCount) * kSectionHeaderBytes;
    if (tableAt + tableBytes > fileSize) return false;
    TSimpleArray<uint8_t> table;
    if (!table.SetSize(tableBytes) || !ReadAt(file, tableAt, table.GetData(), tableBytes)) return false;
    SByteSpan const entries{table.GetData(), tableBytes};
    for (uint32_t i = 0; i < sectionCount; ++i) {
        uint32_t const at = i * kSectionHeaderBytes;
        uint32_t virtualSize = 0, virtualAddress = 0, rawSize = 0, rawOffset = 0;
        entries.DWord(at + 8, virtualSize);
        entries.DWord(at + 12, virtualAddress);
        entries.DWord(at + 16, rawSize);
        entries.DWord(at + 20, rawOffset);
        uint64_t mapped = virtualSize && virtualSize < rawSize ? virtualSize : rawSize;
        // Bytes the file does not have are no one's.
        mapped = rawOffset >= fileSize ? 0 : std::min<uint64_t>(mapped, uint64_t(fileSize) - rawOffset);
        if (!sections.Add(SSection{virtualAddress, uint32_t(mapped), rawOffset})) return false;
    }
    return true;
}

} // namespace

// Walks the tree held in the object's section bytes, gathering leaves and
// the ranges of every structure.
class CResourceTreeReader {
public:
    CResourceTreeReader(CPEResources &tree, TSimpleArray<SSection> const &sections)
        : tree(tree), sections(sections), bytes{tree.section.GetData(), tree.section.GetSize()},
          entriesLeft(tree.section.GetSize() / kEntryBytes) {}

    // The directory at offset on level 0 (types), 1 (names) or 2 (languages).
    bool Directory(uint32_t offset, int level, SPEResource path) {
        uint16_t namedCount = 0, idCount = 0;
        if (!bytes.Word(uint64_t(offset) + 12, namedCount) || !bytes.Word(uint64_t(offset) + 14, idCount))
            return false;
        uint32_t const count = uint32_t(namedCount) + idCount;
        uint64_t const entriesAt = uint64_t(offset) + kDirectoryBytes;
        // A tree cannot hold more entries than its bytes: more means shared
        // or looping directories.
        if (!bytes.Holds(entriesAt, uint64_t(count) * kEntryBytes) || count > entriesLeft) return false;
        entriesLeft -= count;
        if (!AddRange(offset, kDirectoryBytes + count * kEntryBytes)) return false;
        for (uint32_t i = 0; i < count; ++i) {
            uint32_t id = 0, target = 0;
            bytes.DWord(entriesAt + i * kEntryBytes, id);
            bytes.DWord(entriesAt + i * kEntryBytes + 4, target);
            SPEResource leaf = path;
            if (!Identify(id, level, leaf)) return false;
            bool const subdirectory = (target & kSubdirectory) != 0;
            if (subdirectory != (level < 2)) return false;
            if (!(subdirectory ? Directory(target & ~kSubdirectory, level + 1, leaf) : Leaf(target, leaf)))
                return false;
        }
        return true;
    }

private:
    CPEResources &tree;
    TSimpleArray<SSection> const &sections;
    SByteSpan bytes;
    uint64_t entriesLeft;

    bool AddRange(uint64_t offset, uint64_t n) {
        int64_t const start = tree.sectionStart + int64_t(offset);
        return tree.structures.Add({start, start + int64_t(n)});
    }

    // The entry's id on its level; a name must lie in the section.
    bool Identify(uint32_t id, int level, SPEResource &leaf) {
        if (id & kSubdirectory) {
            uint32_t const at = id & ~kSubdirectory;
            uint16_t length = 0;
            if (level == 2 || !bytes.Word(at, length) || !bytes.Holds(uint64_t(at) + 2, 2 * uint64_t(length)))
                return false;
            leaf.named = true;
            id = 0;
            if (!AddRange(at, 2 + 2 * uint64_t(length))) return false;
        }
        if (level == 0) leaf.type = id;
        if (level == 1) leaf.name = id;
        if (level == 2) leaf.language = uint16_t(id);
        return true;
    }

    bool Leaf(uint32_t offset, SPEResource leaf) {
        uint32_t rva = 0;
        if (!bytes.DWord(offset, rva) || !bytes.DWord(uint64_t(offset) + 4, leaf.size) ||
            !bytes.Holds(offset, kDataEntryBytes))
            return false;
        if (!MapRva(sections, rva, leaf.size, leaf.dataOffset)) return false;
        leaf.entryOffset = tree.sectionStart + offset;
        return AddRange(offset, kDataEntryBytes) &&
               tree.structures.Add({leaf.dataOffset, leaf.dataOffset + int64_t(leaf.size)}) && tree.leaves.Add(leaf);
    }
};

bool CPEResources::Read(IFile &file) {
    *this = CPEResources();
    int64_t const fileSize = file.GetSize();
    TSimpleArray<SSection> sections;
    uint32_t rva = 0;
    if (fileSize < 64 || !ReadHeaders(file, fileSize, sections, rva)) return false;
    if (rva == 0) return true;
    // The root directory's section, from the root to the section's end.
    for (uint32_t i = 0; i < sections.GetSize(); ++i) {
        SSection const &s = sections.GetAt(i);
        if (rva < s.virtualAddress || uint64_t(rva) - s.virtualAddress >= s.mapped) continue;
        uint32_t const into = rva - s.virtualAddress;
        uint32_t const n = s.mapped - into;
        if (n > kMaxSectionBytes || !section.SetSize(n)) break;
        sectionStart = s.rawOffset + into;
        CResourceTreeReader reader(*this, sections);
        if (ReadAt(file, sectionStart, section.GetData(), n) && reader.Directory(0, 0, SPEResource())) return true;
        break;
    }
    *this = CPEResources();
    return false;
}

SPEResource const *CPEResources::Find(uint32_t type, uint32_t name, uint16_t language) const {
    for (uint32_t i = 0; i < leaves.GetSize(); ++i) {
        SPEResource const &leaf = leaves.GetAt(i);
        if (!leaf.named && leaf.type == type && leaf.name == name && leaf.language == language) return &leaf;
    }
    return nullptr;
}

SPEResource const *CPEResources::FindPreferred(uint32_t type, uint32_t name, uint16_t const *prefer,
                                               int count) const {
    for (int i = 0; i < count; ++i)
        if (SPEResource const *leaf = Find(type, name, prefer[i])) return leaf;
    for (uint32_t i = 0; i < leaves.GetSize(); ++i) {
        SPEResource const &leaf = leaves.GetAt(i);
        if (!leaf.named && leaf.type == type && leaf.name == name) return &leaf;
    }
    return nullptr;
}

uint32_t CPEResources::Room(SPEResource const &leaf) const {
    int64_t const start = leaf.dataOffset, end = start + leaf.size;
    int64_t const sectionEnd = sectionStart + int64_t(section.GetSize());
    if (start < sectionStart || end > sectionEnd) return leaf.size;
    int64_t limit = sectionEnd;
    bool ownSeen = false;
    for (uint32_t i = 0; i < structures.GetSize(); ++i) {
        SRange const &r = structures.GetAt(i);
        if (!ownSeen && r.start == start && r.end == end) {
            ownSeen = true;
            continue;
        }
        if (r.start == r.end) continue;
        if (r.start < end && r.end > start) return 0; // overlaps another structure
        if (r.start >= end && r.start < limit) limit = r.start;
    }
    int64_t zeros = end;
    while (zeros < limit && section.GetAt(uint32_t(zeros - sectionStart)) == 0)
        ++zeros;
    return uint32_t(zeros - start);
}

} // namespace qv
