// What the container fuzz targets check once a hostile container has opened:
// each block reads to exactly its size; then the first block grows and the
// last one shrinks, and every other block must keep its bytes.
#pragma once

#include <cstdint>
#include <vector>

#include "qv/files/IFile.h"

namespace fuzz_indexed {

inline void Require(bool condition) {
    if (!condition) __builtin_trap();
}

template <class Index> std::vector<uint8_t> Content(Index *index) {
    std::vector<uint8_t> bytes(size_t(index->m_size));
    index->m_file.Seek(0, 1);
    if (!bytes.empty()) Require(index->m_file.Read(bytes.data(), uint32_t(bytes.size())) == bytes.size());
    return bytes;
}

template <class Container> void ExerciseBlocks(Container &container) {
    uint32_t count = container.GetIndexCount();
    std::vector<std::vector<uint8_t>> blocks;
    for (uint32_t i = 0; i < count; ++i)
        blocks.push_back(Content(container.GetIndexAt(i)));
    if (count == 0) return;
    static uint8_t const more[100] = {1, 2, 3};
    qv::IFile &first = container.GetIndexAt(0)->m_file;
    first.Seek(0, 3);
    Require(first.Write(more, sizeof more) == sizeof more);
    auto *last = container.GetIndexAt(count - 1);
    Require(last->m_file.SetSize(last->m_size / 2));
    for (uint32_t i = 1; i + 1 < count; ++i)
        Require(Content(container.GetIndexAt(i)) == blocks[i]);
}

} // namespace fuzz_indexed
