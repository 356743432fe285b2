// Helpers of the indexed-container tests: hand-built container bytes, block
// contents through the blocks' own IFile, CRCs.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "qv/files/CRC.h"
#include "qv/files/MemFile.h"
#include "qv/formats/indexed/VQRFile.h"

namespace qv::test {

using Bytes = std::vector<uint8_t>;

struct Record {
    uint16_t type = 1, subtype = 0;
    uint32_t version = 0, id = 0, offset = 0, size = 0, spare1 = 0, spare2 = 0;
};

// n bytes of v (zero beyond 8 bytes), growing b as needed.
inline void Put(Bytes &b, size_t at, uint64_t v, int n, bool little) {
    if (b.size() < at + size_t(n)) b.resize(at + size_t(n));
    for (int i = 0; i < n; ++i) {
        int shift = 8 * (little ? i : n - 1 - i);
        b[at + size_t(i)] = shift < 64 ? uint8_t(v >> shift) : 0;
    }
}

// A VQR file: header, table at tableOffset with slots slots, records in the
// first slots; the file is at least fileSize bytes (filled with 0xEE).
inline Bytes BuildVQR(std::vector<Record> const &records, uint32_t slots = 4, uint32_t tableOffset = 0x40,
                      size_t fileSize = 0, bool little = false) {
    Bytes b(fileSize, 0xEE);
    Put(b, 0, 0x00525156, 4, true);
    Put(b, 4, 0, 60, true); // opaque bytes and reserved words zero
    Put(b, 20, 100, 4, little);
    Put(b, 24, tableOffset, 4, little);
    Put(b, 28, slots, 4, little);
    Put(b, 32, 7, 4, little);
    Put(b, 36, little ? 1 : 0, 2, true);
    for (uint32_t s = 0; s < slots; ++s) {
        size_t at = tableOffset + s * 32u;
        Put(b, at, 0, 32, little);
        if (s >= records.size()) continue;
        Record const &r = records[s];
        Put(b, at, r.type, 2, little);
        Put(b, at + 2, r.subtype, 2, little);
        Put(b, at + 4, r.version, 4, little);
        Put(b, at + 8, r.id, 4, little);
        Put(b, at + 12, r.offset, 4, little);
        Put(b, at + 16, r.size, 4, little);
        Put(b, at + 20, r.spare1, 4, little);
        Put(b, at + 24, r.spare2, 4, little);
    }
    return b;
}

inline CMemFile MemOf(Bytes const &bytes) {
    CMemFile f;
    if (!bytes.empty()) f.Write(bytes.data(), uint32_t(bytes.size()));
    f.SeekToBegin();
    return f;
}

inline Bytes HostBytes(IFile &f) {
    Bytes out(size_t(f.GetSize()));
    f.Seek(0, 1);
    if (!out.empty()) f.Read(out.data(), uint32_t(out.size()));
    return out;
}

inline Bytes BlockBytes(CVQRFile::CIndex *index) {
    Bytes out(size_t(index->m_size));
    index->m_file.Seek(0, 1);
    if (!out.empty()) {
        EXPECT_EQ(index->m_file.Read(out.data(), uint32_t(out.size())), out.size());
    }
    return out;
}

// Replaces a block's content: the size first (grow or shrink), then the bytes.
inline bool SetBlock(CVQRFile::CIndex *index, Bytes const &bytes) {
    if (!index->m_file.SetSize(int64_t(bytes.size()))) return false;
    index->m_file.Seek(0, 1);
    return bytes.empty() || index->m_file.Write(bytes.data(), uint32_t(bytes.size())) == bytes.size();
}

inline uint32_t Crc(Bytes const &b) {
    return CalcBlockCRC32(b.data(), uint32_t(b.size()));
}

inline Bytes Pattern(size_t n, int seed) {
    Bytes b(n);
    for (size_t i = 0; i < n; ++i)
        b[i] = uint8_t(i * 7 + size_t(seed) * 13 + 1);
    return b;
}

} // namespace qv::test
