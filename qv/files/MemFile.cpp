#include "qv/files/MemFile.h"

#include <cstring>

#include "qv/core/StringFunctions.h"
#include "qv/filesystems/FileSystem.h"

namespace qv {

namespace {
constexpr int64_t kMaxMemFileSize = 0x40000000;
}

CMemFile::CMemFile() = default;

CMemFile::CMemFile(CMemFile const &other)
    : IFile(other), TArray<unsigned char>(), position(other.position), grow(other.grow) {
    CopyBytes(other);
}

CMemFile &CMemFile::operator=(CMemFile const &other) {
    if (&other == this) return *this;
    IFile::operator=(other);
    ReleaseBlock();
    owned = true;
    CopyBytes(other);
    position = other.position;
    grow = other.grow;
    return *this;
}

CMemFile::~CMemFile() {
    ReleaseBlock();
}

void CMemFile::ReleaseBlock() {
    if (owned) {
        Destroy();
        return;
    }
    data = nullptr;
    capacity = 0;
    count = 0;
}

// One block copy instead of the array's item-by-item one.
bool CMemFile::CopyBytes(CMemFile const &other) {
    if (!Dimension(other.count)) return false;
    if (other.count) std::memcpy(data, other.data, other.count);
    count = other.count;
    return true;
}

bool CMemFile::Reserve(uint32_t n) {
    if (n <= capacity) return true;
    if (!owned && !AdoptCopy()) return false;
    return Dimension(n);
}

// Growing reallocates, which must never happen to memory that belongs to
// someone else: the bytes move to a block of our own first.
bool CMemFile::AdoptCopy() {
    auto *copy = static_cast<unsigned char *>(Alloc(count ? count : 1));
    if (!copy) return false;
    if (count) std::memcpy(copy, data, count);
    data = copy;
    capacity = count;
    owned = true;
    return true;
}

void CMemFile::SetGrow(bool value) {
    grow = value;
}

void CMemFile::Attach(unsigned char *p, uint32_t n, bool takeOwnership) {
    ReleaseBlock();
    data = p;
    capacity = n;
    count = n;
    owned = takeOwnership;
}

void CMemFile::Reset() {
    SetSize(0);
    SetPosition(0);
}

int64_t CMemFile::ConstGetSize() const {
    return count;
}

char16_t *CMemFile::GetFilename(char16_t *buf, int size) {
    return StrCpy(buf, u"", size > 0 ? size_t(size) : 0);
}

IFileSystem &CMemFile::GetFileSystem() {
    return qv::GetFileSystem();
}

uint32_t CMemFile::Write(void const *p, uint32_t n) {
    uint64_t end = uint64_t(position) + n;
    if (end > UINT32_MAX) return 0;
    if (!grow && end > count) return 0;
    if (grow && !Reserve(uint32_t(end))) return 0;
    if (position > count) std::memset(data + count, 0, position - count);
    if (n) std::memcpy(data + position, p, n);
    position = uint32_t(end);
    if (position > count) count = position;
    return n;
}

uint32_t CMemFile::Read(void *p, uint32_t n) {
    if (position >= count) return 0;
    uint32_t available = count - position;
    uint32_t taken = n < available ? n : available;
    std::memcpy(p, data + position, taken);
    position += taken;
    return taken;
}

int64_t CMemFile::GetSize() {
    return count;
}

int64_t CMemFile::GetPosition() {
    return position;
}

int64_t CMemFile::Seek(int64_t offset, uint32_t origin) {
    auto low = uint32_t(offset);
    if (origin == 1) position = low;
    if (origin == 2) position += low;
    if (origin == 3) position = count + low;
    return position;
}

bool CMemFile::SetSize(int64_t size) {
    if (size < 0 || size > kMaxMemFileSize) return false;
    return Reserve(uint32_t(size)) && TArray<unsigned char>::SetSize(uint32_t(size));
}

void CMemFile::Flush() {}

void CMemFile::Close() {}

} // namespace qv
