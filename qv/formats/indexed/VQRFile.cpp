#include "qv/formats/indexed/VQRFile.h"

#include <cstring>

#include "qv/files/OpenFlags.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/filesystems/IFileSystem.h"
#include "qv/formats/indexed/IndexedBytes.h"

namespace qv {

using namespace indexed;

CVQRFile::~CVQRFile() {
    Close();
}

bool CVQRFile::Open(IFile *file, bool readOnly) {
    if (!Attach(file, readOnly, false)) return false;
    m_dirty = true; // a writer's Close rewrites the header in big-endian order
    m_fileSystem = nullptr;
    m_fileName = CString();
    return true;
}

bool CVQRFile::Open(IFileSystem *fs, char16_t const *path, bool readOnly) {
    if (!fs || !path) return false;
    // The field, not the argument, picks the flags: a new or closed object is
    // read-only, so a first open reads; callers then ReOpenForWrite.
    IFile *host = fs->CreateFileW(path, m_readOnly ? kOpenForRead : kOpenForWrite);
    if (!host) return false;
    if (!Open(host, readOnly)) {
        host->Close();
        delete host;
        return false;
    }
    m_owned = true;
    m_fileSystem = fs;
    m_fileName = CString(path);
    return true;
}

bool CVQRFile::Open(char16_t const *path, bool readOnly) {
    return Open(&qv::GetFileSystem(), path, readOnly);
}

bool CVQRFile::Create(IFile *file) {
    m_magic = kMagic;
    if (!AttachNew(file, false, 100)) return false;
    m_fileName = CString();
    m_fileSystem = nullptr;
    return true;
}

bool CVQRFile::Create(IFileSystem *fs, char16_t const *path) {
    if (!fs || !path) return false;
    IFile *host = fs->CreateFileW(path, kOpenNew);
    if (!host) return false;
    if (!Create(host)) {
        host->Close();
        delete host;
        return false;
    }
    m_owned = true;
    m_fileSystem = fs;
    m_fileName = CString(path);
    return true;
}

bool CVQRFile::Create(char16_t const *path) {
    return Create(&qv::GetFileSystem(), path);
}

bool CVQRFile::ReadHeader() {
    unsigned char header[kHeaderSize];
    if (!ReadAt(m_host, 0, header, kHeaderSize)) return false;
    if (Get32(header, true) != kMagic) return false;
    bool little = Get16(header + 36, true) == 1;
    m_magic = kMagic;
    std::memcpy(m_opaque, header + 4, sizeof m_opaque);
    m_version = Get32(header + 20, little);
    m_indexOffset = Get32(header + 24, little);
    m_slots = Get32(header + 28, little);
    m_nextId = Get32(header + 32, little);
    if (m_slots > kMaxSlots) return false;
    return ReadTable(little);
}

void CVQRFile::EncodeHeader(unsigned char *header) const {
    std::memcpy(header, &m_magic, 4); // as it stands in memory
    std::memcpy(header + 4, m_opaque, sizeof m_opaque);
    Put32(header + 20, m_version);
    Put32(header + 24, m_indexOffset);
    Put32(header + 28, m_slots);
    Put32(header + 32, m_nextId);
}

int64_t CVQRFile::NewBlockOffset() const {
    int64_t largest = -1, end = int64_t(m_slots + 2) * kSlotSize;
    for (uint32_t i = 0; i < m_indices.GetSize(); ++i) {
        CIndex const *index = m_indices.GetAt(i);
        if (index->m_offset > largest) {
            largest = index->m_offset;
            end = index->m_offset + index->m_size;
        }
    }
    // With no blocks the usual place is behind the table; never inside it.
    int64_t tableEnd = int64_t(m_indexOffset) + int64_t(m_slots) * kSlotSize;
    if (end > m_indexOffset && end < tableEnd) end = tableEnd;
    return end;
}

} // namespace qv
