#include "qv/formats/indexed/XDNFile.h"

#include <cstring>

#include "qv/files/OpenFlags.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/filesystems/IFileSystem.h"
#include "qv/formats/indexed/IndexedBytes.h"

namespace qv {

using namespace indexed;

namespace {

constexpr int64_t kLargestBlock = 0xFFFFFFFF; // sizes are stored in 32 bits

} // namespace

CXDNFile::~CXDNFile() {
    Close();
}

bool CXDNFile::TakeHost(IFileSystem *fs, char16_t const *path, IFile *host) {
    m_fileSystem = fs;
    m_fileName = CString(path);
    return host != nullptr;
}

bool CXDNFile::Open(IFileSystem *fs, char16_t const *path, bool readOnly) {
    Close();
    if (!fs || !path) return false;
    // Unlike CVQRFile, the argument picks the flags.
    IFile *host = fs->CreateFileW(path, readOnly ? kOpenForRead : kOpenForWrite);
    if (!host || !Attach(host, readOnly, true)) return false; // Attach closes and deletes a refused host
    return TakeHost(fs, path, host);
}

bool CXDNFile::Open(char16_t const *path, bool readOnly) {
    return Open(&qv::GetFileSystem(), path, readOnly);
}

bool CXDNFile::Create(IFileSystem *fs, char16_t const *path) {
    Close();
    if (!fs || !path) return false;
    IFile *host = fs->CreateFileW(path, kOpenNew);
    m_userValue = 0;
    if (!host || !AttachNew(host, true, 100)) return false;
    return TakeHost(fs, path, host);
}

bool CXDNFile::Create(char16_t const *path) {
    return Create(&qv::GetFileSystem(), path);
}

bool CXDNFile::ReadHeader() {
    unsigned char header[kHeaderSize];
    if (!ReadAt(m_host, 0, header, kHeaderSize)) return false;
    if (Get32(header, true) != kMagic) return false;
    std::memcpy(m_opaque, header + 4, sizeof m_opaque);
    m_version = Get32(header + 20, false);
    m_indexOffset = Get32(header + 24, false);
    m_slots = Get32(header + 28, false);
    m_nextId = Get32(header + 32, false);
    m_userValue = Get32(header + 52, false);
    if (m_slots > kMaxSlots || !ReadTable(false)) return false;
    for (uint32_t i = 0; i < m_indices.GetSize(); ++i)
        if (m_indices[i]->m_size > kLargestBlock) return false;
    return true;
}

void CXDNFile::EncodeHeader(unsigned char *header) const {
    Put32(header, 0);
    std::memcpy(header, "XDN", 3);
    std::memcpy(header + 4, m_opaque, sizeof m_opaque);
    Put32(header + 20, m_version);
    Put32(header + 24, m_indexOffset);
    Put32(header + 28, m_slots);
    Put32(header + 32, m_nextId);
    Put32(header + 52, m_userValue);
}

int64_t CXDNFile::LiveSize(CIndex const &index) const {
    uint64_t count = index.m_spare2 == 0 ? 1 : index.m_spare2;
    uint64_t size = uint64_t(index.m_storedSize) * count;
    return size > uint64_t(kLargestBlock) ? kLargestBlock + 1 : int64_t(size); // over the limit: refused
}

void CXDNFile::StoreSize(CIndex &index) const {
    if (index.m_size == 0) {
        // An empty block keeps its item count, as existing files carry it, but
        // never a stale size: that would claim other blocks' bytes.
        index.m_storedSize = 0;
        return;
    }
    index.m_storedSize = uint32_t(index.m_size);
    index.m_spare2 = 1;
}

} // namespace qv
