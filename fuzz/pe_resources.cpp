// The PE resource reader on arbitrary files: headers, section tables and
// resource trees may lie in every way (past the end, looping, shared, RVAs
// nowhere), and every leaf found must lie inside the file, with room that
// stays inside it too. A version leaf is then parsed as Extract does.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "qv/core/PEResources.h"
#include "qv/core/VersionInfo.h"
#include "qv/files/MemFile.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    if (size > 0x100000) return 0;
    qv::CMemFile file;
    file.SetGrow(false);
    file.Attach(const_cast<uint8_t *>(data), uint32_t(size), false);
    qv::CPEResources tree;
    if (tree.Read(file)) {
        for (uint32_t i = 0; i < tree.Count(); ++i) {
            qv::SPEResource const &leaf = tree.Leaf(i);
            uint32_t const room = tree.Room(leaf);
            if (leaf.dataOffset < 0 || uint64_t(leaf.dataOffset) + leaf.size > size) std::abort();
            if (room && (room < leaf.size || uint64_t(leaf.dataOffset) + room > size)) std::abort();
            if (leaf.entryOffset < 0 || uint64_t(leaf.entryOffset) + 16 > size) std::abort();
        }
        uint16_t const languages[] = {0x0409, 0};
        if (qv::SPEResource const *leaf = tree.FindPreferred(16, 1, languages, 2)) {
            qv::CVersionInfo info;
            uint32_t const n = leaf->size < 0x10000 ? leaf->size : 0x10000;
            info.Parse(data + leaf->dataOffset, n);
        }
    }
    file.Attach(nullptr, 0, false);
    return 0;
}
