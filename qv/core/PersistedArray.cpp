#include "qv/core/PersistedArray.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "qv/core/String.h"
#include "qv/files/File.h"
#include "qv/files/OpenFlags.h"
#include "qv/platform/TempFile.h"

namespace qv {

namespace {

constexpr uint32_t kSeekStart = 1;
constexpr uint32_t kTempOpenFlags =
    kOpenRead | kOpenWrite | kOpenCreateAlways | kOpenDeleteOnClose;

std::unique_ptr<IFile> OpenTempItemFile() {
    CString path;
    if (!CreateDiskTempFile(u"par", path)) return nullptr;
    auto file = std::make_unique<CFile>();
    if (!file->Open(path, kTempOpenFlags)) {
        CFile::Remove(path);
        return nullptr;
    }
    return file;
}

// Moves n items of oldSize each, in place, to newSize each: a grown item
// gets a zero tail, a shrunk one keeps its first bytes.
void Repack(uint8_t *items, uint32_t n, uint32_t oldSize, uint32_t newSize) {
    if (newSize > oldSize) {
        for (uint32_t j = n; j-- > 0;) {
            std::memmove(items + size_t(j) * newSize, items + size_t(j) * oldSize, oldSize);
            std::memset(items + size_t(j) * newSize + oldSize, 0, newSize - oldSize);
        }
    } else {
        for (uint32_t j = 0; j < n; ++j)
            std::memmove(items + size_t(j) * newSize, items + size_t(j) * oldSize, newSize);
    }
}

} // namespace

CPersistedArray::CPersistedArray(uint32_t itemSize, uint32_t windowBudget)
    : m_temporary(true), m_itemSize(std::max<uint32_t>(itemSize, 1)), m_budget(windowBudget) {
    AllocateWindow();
}

CPersistedArray::CPersistedArray(IFile &backing, uint32_t itemSize)
    : m_file(&backing), m_itemSize(std::max<uint32_t>(itemSize, 1)) {
    int64_t size = backing.GetSize();
    int64_t items = size > 0 ? size / m_itemSize : 0;
    m_count = uint32_t(std::min<int64_t>(items, UINT32_MAX - 1));
    AllocateWindow();
}

CPersistedArray::~CPersistedArray() {
    if (!m_temporary) Flush(); // a temporary file goes on close: writing it back is waste
    if (m_owned) m_owned->Close();
}

bool CPersistedArray::IsReady() const {
    return (m_file || m_temporary) && m_window && !m_broken;
}

// Opening a file costs more than most small arrays cost in all: the
// temporary one is made when the first item has to go to it.
bool CPersistedArray::HasFile() {
    if (!m_file && m_temporary) {
        m_owned = OpenTempItemFile();
        m_file = m_owned.get();
    }
    return m_file != nullptr;
}

bool CPersistedArray::AllocateWindow() {
    m_capacity = std::max<uint32_t>(m_budget / m_itemSize, 1);
    m_window.reset(new (std::nothrow) uint8_t[size_t(m_capacity) * m_itemSize]);
    m_loaded = false;
    m_dirtyLow = m_dirtyHigh = 0;
    return m_window != nullptr;
}

uint8_t *CPersistedArray::GetItem(uint32_t i) {
    if (!Locate(i)) return nullptr;
    uint32_t slot = i - m_first;
    if (m_dirtyHigh == m_dirtyLow) {
        m_dirtyLow = slot;
        m_dirtyHigh = slot + 1;
    } else {
        m_dirtyLow = std::min(m_dirtyLow, slot);
        m_dirtyHigh = std::max(m_dirtyHigh, slot + 1);
    }
    return m_window.get() + size_t(slot) * m_itemSize;
}

uint8_t const *CPersistedArray::ReadItem(uint32_t i) {
    if (!Locate(i)) return nullptr;
    return m_window.get() + size_t(i - m_first) * m_itemSize;
}

bool CPersistedArray::Locate(uint32_t i) {
    if (!IsReady() || i == UINT32_MAX) return false;
    if (m_loaded && i >= m_first && i - m_first < m_capacity) {
        if (i >= m_count) m_count = i + 1;
        return true;
    }
    // Keep an eighth of the window on the side we came from, so walking on
    // in the same direction reads every item once.
    uint32_t margin = m_capacity / 8;
    uint32_t first;
    if (!m_loaded || i >= m_first)
        first = i > margin ? i - margin : 0;
    else
        first = i + margin + 1 > m_capacity ? i + margin + 1 - m_capacity : 0;
    if (!LoadWindow(first)) return false;
    if (i >= m_count) m_count = i + 1;
    return true;
}

bool CPersistedArray::Flush() {
    if (!IsReady() || !m_loaded || m_dirtyHigh == m_dirtyLow) return true;
    uint32_t first = m_first + m_dirtyLow;
    if (first >= m_count) {
        m_dirtyLow = m_dirtyHigh = 0;
        return true;
    }
    uint32_t n = std::min(m_dirtyHigh - m_dirtyLow, m_count - first);
    if (!WriteItems(first, n, m_window.get() + size_t(m_dirtyLow) * m_itemSize)) return false;
    m_dirtyLow = m_dirtyHigh = 0;
    return true;
}

bool CPersistedArray::LoadWindow(uint32_t first) {
    if (!Flush()) return false;
    if (!ReadItems(first, m_capacity, m_window.get())) {
        m_loaded = false;
        return false;
    }
    m_first = first;
    m_loaded = true;
    return true;
}

bool CPersistedArray::ReadItems(uint32_t first, uint32_t n, uint8_t *out) {
    std::memset(out, 0, size_t(n) * m_itemSize);
    if (!m_file) return true; // nothing was ever written back
    int64_t const size = m_file->GetSize();
    if (size < 0) return false;
    // Items past the count, or past the file's end, read as zeros; every byte
    // the file holds of the others must arrive, or a failed read would pass
    // for items of zeros.
    uint64_t const counted = first < m_count ? uint64_t(std::min(n, m_count - first)) * m_itemSize : 0;
    uint64_t const wanted = size > Offset(first) ? std::min<uint64_t>(counted, uint64_t(size - Offset(first))) : 0;
    if (wanted == 0) return true;
    if (m_file->Seek(Offset(first), kSeekStart) != Offset(first)) return false;
    // An IFile transfers all it can: a short count is the failure.
    for (uint64_t done = 0; done < wanted;) {
        uint32_t const chunk = uint32_t(std::min<uint64_t>(wanted - done, 0x40000000));
        if (m_file->Read(out + done, chunk) != chunk) return false;
        done += chunk;
    }
    return true;
}

bool CPersistedArray::WriteItems(uint32_t first, uint32_t n, uint8_t const *in) {
    if (!MaterialiseUpToCount()) return false;
    if (m_file->Seek(Offset(first), kSeekStart) != Offset(first)) return false;
    uint64_t bytes = uint64_t(n) * m_itemSize;
    for (uint64_t done = 0; done < bytes;) {
        uint32_t const chunk = uint32_t(std::min<uint64_t>(bytes - done, 0x40000000));
        if (m_file->Write(in + done, chunk) != chunk) return false;
        done += chunk;
    }
    return true;
}

// Items created by reaching far past the end exist only as a count; give
// them zero bytes in the file so that cutting an item shifts the right ones.
bool CPersistedArray::MaterialiseUpToCount() {
    if (!HasFile()) return false;
    int64_t size = m_file->GetSize();
    if (size < 0) return false;
    if (size >= Offset(m_count)) return true;
    return m_file->SetSize(Offset(m_count));
}

bool CPersistedArray::Append(uint8_t const *items, uint32_t n) {
    if (!IsReady() || n > UINT32_MAX - 1 - m_count) return false;
    if (!Flush() || !WriteItems(m_count, n, items)) return false;
    // A window reaching past the old end holds zeros where the new items are.
    if (m_loaded && uint64_t(m_first) + m_capacity > m_count) m_loaded = false;
    m_count += n;
    return true;
}

bool CPersistedArray::Remove(uint32_t i) {
    if (!IsReady()) return false;
    if (i >= m_count) return true;
    if (!Flush() || !MaterialiseUpToCount()) return false;
    if (!m_file->Remove(Offset(i), m_itemSize)) return false;
    m_count--;
    // Every item behind i moved down by one, also those in the window: a
    // window left standing would show each of them one place too high. It
    // is clean, so it is dropped and read again when next needed: a failed
    // read here would report a removal that is done as not done.
    if (m_loaded && i < uint64_t(m_first) + m_capacity) m_loaded = false;
    return true;
}

bool CPersistedArray::Empty() {
    if (!m_file && !m_temporary) return false;
    m_dirtyLow = m_dirtyHigh = 0;
    m_loaded = false;
    m_count = 0;
    m_first = 0;
    return !m_file || m_file->SetSize(0);
}

bool CPersistedArray::SetItemSize(uint32_t itemSize) {
    if (!IsReady() || itemSize == 0) return false;
    if (itemSize == m_itemSize) return true;
    if (!Flush()) return false;
    if (m_count > 0 && m_temporary && !ResizeIntoNewFile(itemSize)) return false; // the items stay as they were
    if (m_count > 0 && !m_temporary && !ResizeItems(m_itemSize, itemSize)) {
        m_broken = true;
        return false;
    }
    m_itemSize = itemSize;
    if (!AllocateWindow()) return false;
    return true;
}

// Rewrites the items through the window's memory, a block of items at a time.
// Growing runs from the last block to the first and shrinking the other way,
// so no block overwrites bytes not yet read.
bool CPersistedArray::ResizeItems(uint32_t oldSize, uint32_t newSize) {
    if (!MaterialiseUpToCount()) return false;
    uint32_t big = std::max(oldSize, newSize);
    uint32_t block = std::max<uint32_t>(m_budget / big, 1);
    std::unique_ptr<uint8_t[]> buffer(new (std::nothrow) uint8_t[size_t(block) * big]);
    if (!buffer) return false;
    uint32_t blocks = (m_count + block - 1) / block;
    for (uint32_t k = 0; k < blocks; ++k) {
        uint32_t b = newSize > oldSize ? blocks - 1 - k : k;
        uint32_t first = b * block;
        uint32_t n = std::min(block, m_count - first);
        int64_t from = int64_t(first) * oldSize;
        uint64_t oldBytes = uint64_t(n) * oldSize;
        if (m_file->Seek(from, kSeekStart) != from || m_file->Read(buffer.get(), uint32_t(oldBytes)) != oldBytes)
            return false;
        Repack(buffer.get(), n, oldSize, newSize);
        int64_t to = int64_t(first) * newSize;
        uint64_t newBytes = uint64_t(n) * newSize;
        if (m_file->Seek(to, kSeekStart) != to || m_file->Write(buffer.get(), uint32_t(newBytes)) != newBytes)
            return false;
    }
    return m_file->SetSize(int64_t(m_count) * newSize);
}

// A temporary file is not rewritten in place: the items go into a new one,
// which replaces it only when whole, so a failure loses nothing.
bool CPersistedArray::ResizeIntoNewFile(uint32_t newSize) {
    if (!m_file) return true; // nothing was ever written back: the items are zeros at any size
    std::unique_ptr<IFile> fresh = OpenTempItemFile();
    uint32_t const block = std::max<uint32_t>(m_budget / std::max(m_itemSize, newSize), 1);
    std::unique_ptr<uint8_t[]> buffer(new (std::nothrow) uint8_t[size_t(block) * std::max(m_itemSize, newSize)]);
    if (!fresh || !buffer) return false;
    for (uint64_t first = 0; first < m_count; first += block) {
        uint32_t const n = uint32_t(std::min<uint64_t>(block, m_count - first));
        if (!ReadItems(uint32_t(first), n, buffer.get())) return false;
        Repack(buffer.get(), n, m_itemSize, newSize);
        uint64_t const bytes = uint64_t(n) * newSize;
        if (fresh->Write(buffer.get(), uint32_t(bytes)) != bytes) return false;
    }
    m_owned->Close();
    m_owned = std::move(fresh);
    m_file = m_owned.get();
    return true;
}

} // namespace qv
