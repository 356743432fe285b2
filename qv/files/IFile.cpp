// The contract's non-virtual core: positioning, raw bytes and arrays.
#include "qv/files/IFile.h"

#include <cstring>
#include <memory>
#include <new>

#include "qv/files/ByteOrder.h"

namespace qv {

namespace {
// WriteArray reverses through a bounded block rather than one of the whole
// array's size.
constexpr uint32_t kSwapBlockBytes = 0x10000;
} // namespace

IFile::~IFile() = default;

void *IFile::EditView(int64_t, uint32_t) {
    return nullptr;
}
void IFile::ReleaseEditView(void *, uint32_t) {}

int64_t IFile::SetPosition(int64_t p) {
    return Seek(p, 1);
}
int64_t IFile::SeekToBegin() {
    return Seek(0, 1);
}
int64_t IFile::SeekToEnd() {
    return Seek(0, 3);
}
int64_t IFile::GetLength() {
    return GetSize();
}
void IFile::SetLength(int64_t length) {
    SetSize(length);
}
int64_t IFile::GetRemaining() {
    return GetSize() - GetPosition();
}

bool IFile::ReadBytes(void *p, uint32_t n) {
    return n == 0 || Read(p, n) == n;
}
bool IFile::WriteBytes(void const *p, uint32_t n) {
    return n == 0 || Write(p, n) == n;
}

bool IFile::ReadArray(void *p, uint32_t count, uint32_t itemSize) {
    uint64_t total = uint64_t(count) * itemSize;
    if (total == 0) return true;
    if (total > UINT32_MAX || !ReadBytes(p, uint32_t(total))) return false;
    if (m_swap) ReverseItems(p, count, itemSize);
    return true;
}

bool IFile::WriteArray(void const *p, uint32_t count, uint32_t itemSize) {
    uint64_t total = uint64_t(count) * itemSize;
    if (total > UINT32_MAX) return false;
    if (!m_swap) return WriteBytes(p, uint32_t(total));
    if (total == 0) return false;
    uint32_t perBlock = itemSize < kSwapBlockBytes ? kSwapBlockBytes / itemSize : 1;
    std::unique_ptr<unsigned char[]> block(new (std::nothrow) unsigned char[size_t(perBlock) * itemSize]);
    if (!block) return false;
    auto source = static_cast<unsigned char const *>(p);
    for (uint32_t done = 0; done < count;) {
        uint32_t items = count - done < perBlock ? count - done : perBlock;
        uint32_t bytes = items * itemSize;
        std::memcpy(block.get(), source + size_t(done) * itemSize, bytes);
        ReverseItems(block.get(), items, itemSize);
        if (Write(block.get(), bytes) != bytes) break;
        done += items;
    }
    return false; // always, with m_swap: existing callers see this result
}

bool IFile::PutScalar(void const *p, uint32_t size) {
    unsigned char bytes[8];
    std::memcpy(bytes, p, size);
    if (m_swap) ReverseItems(bytes, 1, size);
    return WriteBytes(bytes, size);
}

bool IFile::GetScalar(void *p, uint32_t size) {
    unsigned char bytes[8];
    if (!ReadBytes(bytes, size)) return false;
    if (m_swap) ReverseItems(bytes, 1, size);
    std::memcpy(p, bytes, size);
    return true;
}

bool IFile::ClampedSeekTarget(int64_t offset, uint32_t origin, int64_t position, int64_t size, int64_t &target) {
    int64_t base;
    switch (origin) {
    case 1: base = 0; break;
    case 2: base = position; break;
    case 3: base = size; break;
    default: return false;
    }
    // base lies in 0 .. size, so only the offset can be extreme.
    target = offset < -base ? 0 : (offset > size - base ? size : base + offset);
    return true;
}

} // namespace qv
