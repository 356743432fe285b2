// Fuzzes opening an XDN container from untrusted bytes (a private copy served
// by a memory file system). What opens is read block by block, each to
// exactly its size; then the first block grows and the last one shrinks, and
// every other block must keep its bytes. Nothing may crash.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "qv/filesystems/MemFileSystem.h"
#include "qv/formats/indexed/XDNFile.h"

namespace {

void Require(bool condition) {
    if (!condition) __builtin_trap();
}

std::vector<uint8_t> Content(qv::CXDNFile::CIndex *index) {
    std::vector<uint8_t> bytes(size_t(index->m_size));
    index->m_file.Seek(0, 1);
    if (!bytes.empty()) Require(index->m_file.Read(bytes.data(), uint32_t(bytes.size())) == bytes.size());
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    std::vector<uint8_t> copy(data, data + size); // writes inside the size land here
    qv::CMemFileSystem fs;
    if (!fs.AddFile(u"/in.xdn", copy.data(), uint32_t(copy.size()))) return 0;
    qv::CXDNFile xdn;
    if (!xdn.Open(&fs, u"/in.xdn", false)) return 0;
    uint32_t count = xdn.GetIndexCount();
    std::vector<std::vector<uint8_t>> blocks;
    for (uint32_t i = 0; i < count; ++i)
        blocks.push_back(Content(xdn.GetIndexAt(i)));
    if (count == 0) return 0;
    static uint8_t const more[100] = {1, 2, 3};
    qv::IFile &first = xdn.GetIndexAt(0)->m_file;
    first.Seek(0, 3);
    Require(first.Write(more, sizeof more) == sizeof more);
    Require(xdn.GetIndexAt(count - 1)->m_file.SetSize(xdn.GetIndexAt(count - 1)->m_size / 2));
    for (uint32_t i = 1; i + 1 < count; ++i)
        Require(Content(xdn.GetIndexAt(i)) == blocks[i]);
    return 0;
}
