#include "qv/formats/indexed/IndexedContainer.h"

#include <cstring>

#include "qv/files/OpenFlags.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/filesystems/IFileSystem.h"
#include "qv/formats/indexed/IndexedBytes.h"

namespace qv {

using namespace indexed;

namespace {

constexpr uint32_t kSlotsPerGrowth = 4;

} // namespace

CIndexedContainer::~CIndexedContainer() {
    DropHost();
    DeleteIndices();
}

void CIndexedContainer::Close() {
    if (m_host) {
        if (m_dirty) Save(); // an unchanged table is not written again
        DropHost();
    }
    DeleteIndices();
    m_open = false;
    m_readOnly = true;
}

void CIndexedContainer::DeleteIndices() {
    for (uint32_t i = 0; i < m_indices.GetSize(); ++i)
        delete m_indices[i];
    m_indices.Empty();
}

bool CIndexedContainer::Attach(IFile *file, bool readOnly, bool owned) {
    Close();
    if (!file) return false;
    m_readOnly = readOnly;
    m_host = file;
    m_owned = owned;
    if (!ReadHeader() || !LayoutIsSound(m_host->GetSize())) {
        Close();
        return false;
    }
    m_open = true;
    return true;
}

bool CIndexedContainer::AttachNew(IFile *file, bool owned, uint32_t version) {
    Close();
    if (!file) return false;
    m_version = version;
    m_indexOffset = kHeaderSize;
    m_slots = kSlotsPerGrowth;
    m_nextId = 1;
    std::memset(m_opaque, 0, sizeof m_opaque);
    m_host = file;
    m_owned = owned;
    m_open = true;
    m_readOnly = false;
    m_endOfData = int64_t(m_slots + 2) * kSlotSize;
    if (!file->SetSize(0) || !Save()) {
        m_readOnly = true; // nothing worth saving again at Close
        Close();
        return false;
    }
    return true;
}

void CIndexedContainer::DropHost() {
    if (m_host && m_owned) {
        m_host->Close();
        delete m_host;
    }
    m_host = nullptr;
    m_owned = false;
}

bool CIndexedContainer::ReadTable(bool little) {
    if (m_indexOffset < kHeaderSize) return false; // the table would overlay the header
    unsigned char table[kMaxSlots * kSlotSize];
    if (!ReadAt(m_host, m_indexOffset, table, m_slots * kSlotSize)) return false;
    m_endOfData = int64_t(m_slots + 2) * kSlotSize;
    int64_t largest = -1;
    for (uint32_t slot = 0; slot < m_slots; ++slot) {
        unsigned char const *p = table + slot * kSlotSize;
        uint16_t type = Get16(p, little);
        if (type == 0) continue; // empty slots are dropped; Save puts them last
        auto *index = new CIndex(this);
        index->m_type = type;
        index->m_subtype = Get16(p + 2, little);
        index->m_version = Get32(p + 4, little);
        index->m_id = Get32(p + 8, little);
        index->m_offset = Get32(p + 12, little);
        index->m_storedSize = Get32(p + 16, little);
        index->m_spare1 = Get32(p + 20, little);
        index->m_spare2 = Get32(p + 24, little);
        index->m_size = LiveSize(*index);
        if (!m_indices.Add(index)) {
            delete index;
            return false;
        }
        if (index->m_offset > largest) {
            largest = index->m_offset;
            m_endOfData = index->m_offset + index->m_size;
        }
    }
    return true;
}

bool CIndexedContainer::LayoutIsSound(int64_t fileSize) const {
    int64_t tableStart = m_indexOffset;
    int64_t tableEnd = tableStart + int64_t(m_slots) * kSlotSize;
    if (tableEnd > fileSize) return false;
    uint32_t count = m_indices.GetSize();
    for (uint32_t i = 0; i < count; ++i) {
        CIndex const *a = m_indices.GetAt(i);
        int64_t aEnd = a->m_offset + a->m_size;
        if (a->m_offset < kHeaderSize || aEnd > fileSize) return false;
        if (a->m_offset < tableEnd && aEnd > tableStart && !(a->m_size == 0 && a->m_offset == tableStart))
            return false; // in the table (an empty block may stand at its start)
        for (uint32_t j = 0; j < count; ++j) {
            CIndex const *b = m_indices.GetAt(j);
            if (i == j || b->m_size == 0) continue;
            // a starts strictly inside b, or a covers b's start
            if (a->m_offset > b->m_offset && a->m_offset < b->m_offset + b->m_size) return false;
            if (a->m_size > 0 && a->m_offset <= b->m_offset && aEnd > b->m_offset) return false;
        }
    }
    return true;
}

bool CIndexedContainer::Save() {
    if (!m_open || m_readOnly || !m_host) return false;
    unsigned char header[kHeaderSize] = {};
    EncodeHeader(header);
    unsigned char table[kMaxSlots * kSlotSize] = {}; // CreateIndex never grows past kMaxSlots
    uint32_t slots = m_slots;
    for (uint32_t i = 0; i < m_indices.GetSize() && i < slots; ++i) {
        CIndex *index = m_indices[i];
        StoreSize(*index);
        unsigned char *p = table + i * kSlotSize;
        Put16(p, index->m_type);
        Put16(p + 2, index->m_subtype);
        Put32(p + 4, index->m_version);
        Put32(p + 8, index->m_id);
        Put32(p + 12, uint32_t(index->m_offset));
        Put32(p + 16, index->m_storedSize);
        Put32(p + 20, index->m_spare1);
        Put32(p + 24, index->m_spare2);
    }
    bool written = WriteAt(m_host, 0, header, kHeaderSize) && WriteAt(m_host, m_indexOffset, table, slots * kSlotSize);
    if (written) m_dirty = false;
    return written;
}

bool CIndexedContainer::OpenHost(uint32_t flags) {
    DropHost();
    if (!m_fileSystem) return false;
    m_host = m_fileSystem->CreateFileW(m_fileName, flags);
    m_owned = m_host != nullptr;
    return m_host != nullptr;
}

bool CIndexedContainer::ReOpenForRead() {
    if (m_readOnly) return true;
    if (!m_host) return false;
    if (m_owned && !OpenHost(kOpenForRead)) return false;
    m_readOnly = true;
    return true;
}

bool CIndexedContainer::ReOpenForWrite() {
    if (!m_readOnly) return true;
    if (!m_host) return false;
    if (m_owned && !OpenHost(kOpenForWrite)) {
        OpenHost(kOpenForRead);
        return false;
    }
    m_readOnly = false;
    return true;
}

uint32_t CIndexedContainer::CreateIndex(uint16_t type, uint16_t subtype, uint32_t version, uint32_t id) {
    if (!m_open || m_readOnly) return kNoIndex;
    bool const grows = m_indices.GetSize() >= m_slots;
    if (grows && m_slots + kSlotsPerGrowth > kMaxSlots) return kNoIndex;
    // A new block starts at most at the host's end, which a grown table
    // pushes on: past 32 bits its offset, or a moved block's, cannot be stored.
    if (m_host->GetSize() + (grows ? kSlotsPerGrowth * kSlotSize : 0) > 0xFFFFFFFF) return kNoIndex;
    if (id == 0xFFFFFFFF) id = m_nextId;
    auto *index = new CIndex(this);
    index->m_type = type;
    index->m_subtype = subtype;
    index->m_version = version;
    index->m_id = id;
    index->m_offset = NewBlockOffset();
    if (grows) {
        int64_t tableEnd = int64_t(m_indexOffset) + int64_t(m_slots) * kSlotSize;
        if (!m_host->Insert(tableEnd, kSlotsPerGrowth * kSlotSize)) {
            delete index;
            return kNoIndex;
        }
        if (index->m_offset >= tableEnd) index->m_offset += kSlotsPerGrowth * kSlotSize;
        MoveBlocksFrom(tableEnd, kSlotsPerGrowth * kSlotSize);
        m_slots += kSlotsPerGrowth;
        m_dirty = true;
        // Blocks have moved: the table on disk must say so at once. When it
        // cannot, the caller hears it: no index is made (the grown table is
        // written again at the next Save). The new block is empty, so it
        // joins the table only then.
        if (SavesWhenTableGrows() && !Save()) {
            delete index;
            return kNoIndex;
        }
        if (!m_indices.Add(index)) {
            delete index;
            return kNoIndex;
        }
    } else if (!m_indices.Add(index)) {
        delete index;
        return kNoIndex;
    }
    if (m_nextId < id + 1u && id != 0xFFFFFFFF) m_nextId = id + 1;
    m_dirty = true;
    return m_indices.GetSize() - 1;
}

uint32_t CIndexedContainer::FindIndex(uint16_t type, uint16_t subtype, uint32_t minVersion, uint32_t maxVersion,
                             uint32_t start) const {
    for (uint32_t i = start; i < m_indices.GetSize(); ++i) {
        CIndex const *index = m_indices.GetAt(i);
        if (index->m_type == type && (subtype == 0xFFFF || subtype == index->m_subtype) &&
            minVersion <= index->m_version && index->m_version <= maxVersion)
            return i;
    }
    return kNoIndex;
}

CIndexedContainer::CIndex *CIndexedContainer::GetIndex(uint16_t type, uint16_t subtype, uint32_t minVersion, uint32_t maxVersion,
                                     uint32_t start) const {
    uint32_t i = FindIndex(type, subtype, minVersion, maxVersion, start);
    return i == kNoIndex ? nullptr : m_indices.GetAt(i);
}

// The table grew at from: everything at or behind it moves.
void CIndexedContainer::MoveBlocksFrom(int64_t from, int64_t delta) {
    for (uint32_t i = 0; i < m_indices.GetSize(); ++i)
        if (m_indices[i]->m_offset >= from) m_indices[i]->m_offset += delta;
    m_endOfData += delta;
}

// A block changed size at its end. Later blocks move: those starting behind
// it, and at its own offset those holding bytes (it was empty), or, when both
// are empty, those after it in the array. The table moves when it lies
// behind the block's start, including one that begins where the block ends.
void CIndexedContainer::MoveBlocksBehind(CIndex *changed, int64_t delta) {
    int64_t at = changed->m_offset;
    bool wasEmpty = changed->m_size == 0;
    bool passedChanged = false;
    for (uint32_t i = 0; i < m_indices.GetSize(); ++i) {
        CIndex *other = m_indices[i];
        if (other == changed) {
            passedChanged = true;
            continue;
        }
        bool behind = other->m_offset > at ||
                      (other->m_offset == at && (other->m_size > 0 || (wasEmpty && passedChanged)));
        if (behind) other->m_offset += delta;
    }
    if (int64_t(m_indexOffset) >= at) m_indexOffset = uint32_t(m_indexOffset + delta);
    m_endOfData += delta;
}

// Opens delta bytes at pos. Insert changes nothing at the end of the file,
// so a block there is given its bytes by lengthening the host: a table must
// never name bytes the file lacks.
bool CIndexedContainer::GrowHost(int64_t pos, int64_t delta) {
    int64_t size = m_host->GetSize();
    if (pos < size) return m_host->Insert(pos, uint32_t(delta));
    return m_host->SetSize(pos + delta) && m_host->GetSize() == pos + delta;
}

int64_t CIndexedContainer::SetIndexSize(CIndex *index, int64_t size) {
    int64_t old = index->m_size;
    if (!m_open || m_readOnly || size < 0 || size == old) return old;
    int64_t delta = size - old;
    if (delta > 0xFFFFFFFF) return old;
    if (delta > 0 && m_host->GetSize() + delta > 0xFFFFFFFF) return old; // offsets are 32-bit
    bool done = delta > 0 ? GrowHost(index->m_offset + old, delta)
                          : m_host->Remove(index->m_offset + size, uint32_t(-delta));
    if (!done) return old;
    MoveBlocksBehind(index, delta);
    index->m_size = size;
    m_dirty = true;
    return size;
}

uint32_t CIndexedContainer::ReadIndex(CIndex *index, int64_t position, void *buffer, uint32_t n) {
    if (!m_host || position < 0 || position >= index->m_size) return 0;
    if (int64_t(n) > index->m_size - position) n = uint32_t(index->m_size - position);
    if (m_host->Seek(index->m_offset + position, 1) != index->m_offset + position) return 0;
    return m_host->Read(buffer, n);
}

uint32_t CIndexedContainer::WriteIndex(CIndex *index, int64_t position, void const *buffer, uint32_t n) {
    if (!m_host || m_readOnly || position < 0 || position > INT64_MAX - n) return 0; // the end must not wrap
    int64_t end = position + n;
    if (end > index->m_size && SetIndexSize(index, end) != end) return 0;
    if (m_host->Seek(index->m_offset + position, 1) != index->m_offset + position) return 0;
    return m_host->Write(buffer, n);
}

// ---- CIndexDataFile ----

char16_t *CIndexedContainer::CIndexDataFile::GetFilename(char16_t *buf, int size) {
    IFile *host = m_index->m_owner->m_host;
    if (host) return host->GetFilename(buf, size);
    if (buf && size > 0) buf[0] = 0;
    return buf;
}

IFileSystem &CIndexedContainer::CIndexDataFile::GetFileSystem() {
    return qv::GetFileSystem();
}

uint32_t CIndexedContainer::CIndexDataFile::Write(void const *p, uint32_t n) {
    uint32_t written = m_index->m_owner->WriteIndex(m_index, m_position, p, n);
    m_position += written;
    return written;
}

uint32_t CIndexedContainer::CIndexDataFile::Read(void *p, uint32_t n) {
    uint32_t got = m_index->m_owner->ReadIndex(m_index, m_position, p, n);
    m_position += got;
    return got;
}

int64_t CIndexedContainer::CIndexDataFile::GetSize() {
    return m_index->m_size;
}

int64_t CIndexedContainer::CIndexDataFile::GetPosition() {
    return m_position;
}

int64_t CIndexedContainer::CIndexDataFile::Seek(int64_t offset, uint32_t origin) {
    int64_t base = origin == 1 ? 0 : origin == 2 ? m_position : origin == 3 ? m_index->m_size : -1;
    if (base < 0) return m_position;
    int64_t target = offset > INT64_MAX - base ? INT64_MAX : base + offset;
    m_position = target < 0 ? 0 : target;
    return m_position;
}

bool CIndexedContainer::CIndexDataFile::SetSize(int64_t size) {
    return m_index->m_owner->SetIndexSize(m_index, size) == size;
}

} // namespace qv
