#include "qv/files/BoundedFile.h"

#include <algorithm>
#include <limits>

#include "qv/core/StringFunctions.h"
#include "qv/filesystems/FileSystem.h"

namespace qv {

CBoundedFile::CBoundedFile(CBoundedFile const &other)
    : IFile(other), file(other.file), start(other.start), end(other.end), length(other.length),
      position(other.position), owned(false) {}

CBoundedFile &CBoundedFile::operator=(CBoundedFile const &other) {
    if (&other == this) return *this;
    // Taking a window of our own file keeps what we own.
    Create(other.file, other.start, other.length, owned && other.file == file);
    IFile::operator=(other);
    position = other.position;
    return *this;
}

CBoundedFile::~CBoundedFile() {
    ReleaseFile();
}

void CBoundedFile::ReleaseFile() {
    if (owned) delete file;
    file = nullptr;
    owned = false;
}

void CBoundedFile::Create(IFile *f, int64_t startPos, int64_t len, bool own) {
    if (f != file) ReleaseFile();
    file = f;
    owned = own;
    start = std::max<int64_t>(startPos, 0);
    // The window never reaches past the largest offset.
    length = std::clamp<int64_t>(len, 0, std::numeric_limits<int64_t>::max() - start);
    end = start + length;
    position = 0;
}

int64_t CBoundedFile::GetStartPos() {
    return start;
}

char16_t *CBoundedFile::GetFilename(char16_t *buf, int size) {
    return StrCpy(buf, u"", size > 0 ? size_t(size) : 0);
}

IFileSystem &CBoundedFile::GetFileSystem() {
    return qv::GetFileSystem();
}

uint32_t CBoundedFile::PrepareTransfer(uint32_t n) {
    if (!file || position >= length) return 0;
    n = uint32_t(std::min<int64_t>(n, length - position));
    if (n) file->Seek(start + position, 1);
    return n;
}

uint32_t CBoundedFile::Write(void const *p, uint32_t n) {
    n = PrepareTransfer(n);
    if (!n) return 0;
    uint32_t done = file->Write(p, n);
    position += done;
    return done;
}

uint32_t CBoundedFile::Read(void *p, uint32_t n) {
    n = PrepareTransfer(n);
    if (!n) return 0;
    uint32_t done = file->Read(p, n);
    position += done;
    return done;
}

int64_t CBoundedFile::GetSize() {
    return length;
}

int64_t CBoundedFile::GetPosition() {
    return position;
}

int64_t CBoundedFile::Seek(int64_t offset, uint32_t origin) {
    int64_t target;
    if (ClampedSeekTarget(offset, origin, position, length, target)) position = target;
    return position;
}

bool CBoundedFile::SetSize(int64_t) {
    return false;
}

void CBoundedFile::Flush() {
    if (file) file->Flush();
}

void CBoundedFile::Close() {}

} // namespace qv
