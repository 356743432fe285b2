// CVersionInfo on files: a file that holds only the block, and the version
// resource of a Windows executable, read and patched in place.
#include <algorithm>

#include "qv/core/PEResources.h"
#include "qv/core/VersionInfo.h"
#include "qv/files/File.h"
#include "qv/files/MemFile.h"
#include "qv/filesystems/AtomicSave.h"

namespace qv {

namespace {

constexpr uint32_t kVersionType = 16; // RT_VERSION
constexpr uint32_t kVersionId = 1;
constexpr uint16_t kUpdateLanguage = 0x0409;
constexpr uint16_t kExtractLanguages[] = {0x0409, 0x0000};
constexpr uint32_t kMaxBlockBytes = 0x10000;

// Bytes of a file rewritten in place, with the old bytes kept to put back.
class CInPlaceWrite {
public:
    bool Apply(IFile &file, int64_t at, uint8_t const *p, uint32_t n) {
        if (!old.SetSize(n) || file.SetPosition(at) != at || !file.ReadBytes(old.GetData(), n)) return false;
        position = at;
        read = true;
        return file.SetPosition(at) == at && file.WriteBytes(p, n);
    }
    // Puts the old bytes back; a write that never started has nothing to undo.
    void Undo(IFile &file) {
        if (read && file.SetPosition(position) == position) file.WriteBytes(old.GetData(), old.GetSize());
    }

private:
    TSimpleArray<uint8_t> old;
    int64_t position = 0;
    bool read = false;
};

} // namespace

bool CVersionInfo::Load(char16_t const *path) {
    Destroy();
    CFile file;
    return path && file.Open(path, 0x02 | 0x10 | 0x200) && Load(file);
}

bool CVersionInfo::Save(char16_t const *path) {
    CMemFile block;
    return path && Serialize(block) && SaveAtomically(nullptr, path, [&](IFile &file) {
               return file.WriteBytes(block.GetData(), uint32_t(block.GetSize()));
           });
}

bool CVersionInfo::ParseResource(IFile &file, SPEResource const &leaf) {
    uint32_t const n = std::min(leaf.size, kMaxBlockBytes);
    TSimpleArray<uint8_t> bytes;
    return bytes.SetSize(n) && file.SetPosition(leaf.dataOffset) == leaf.dataOffset &&
           file.ReadBytes(bytes.GetData(), n) && Parse(bytes.GetData(), n);
}

bool CVersionInfo::Extract(char16_t const *path) {
    Destroy();
    CFile file;
    CPEResources tree;
    if (!path || !file.Open(path, 0x02 | 0x10 | 0x200) || !tree.Read(file)) return false;
    SPEResource const *leaf = tree.FindPreferred(kVersionType, kVersionId, kExtractLanguages, 2);
    return leaf && ParseResource(file, *leaf);
}

bool CVersionInfo::Update(char16_t const *path) {
    CMemFile block;
    CFile file;
    CPEResources tree;
    if (!path || !Serialize(block) || !file.Open(path, 0x02 | 0x10 | 0x20) || !tree.Read(file)) return false;
    SPEResource const *leaf = tree.Find(kVersionType, kVersionId, kUpdateLanguage);
    uint32_t const size = uint32_t(block.GetSize());
    // The block it replaces must be well formed too: a file is only written
    // where all of it that matters could be read.
    CVersionInfo present;
    if (!leaf || size > tree.Room(*leaf) || !present.ParseResource(file, *leaf)) return false;
    // The new block, then zeros over what the old one held beyond it.
    block.SeekToEnd();
    if (leaf->size > size && !block.WriteZeros(leaf->size - size)) return false;
    uint8_t const sizeField[4] = {uint8_t(size), uint8_t(size >> 8), 0, 0};
    CInPlaceWrite data, entry;
    bool const done = data.Apply(file, leaf->dataOffset, block.GetData(), uint32_t(block.GetSize())) &&
                      entry.Apply(file, leaf->entryOffset + 4, sizeField, sizeof sizeField) && file.Sync();
    if (done) return true;
    entry.Undo(file);
    data.Undo(file);
    file.Sync();
    return false;
}

} // namespace qv
