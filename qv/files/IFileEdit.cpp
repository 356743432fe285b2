// Editing a file in place: Remove closes a gap, Insert opens one, both by
// streaming the tail through one block, so multi-gigabyte files need neither
// a second file nor memory in proportion to their size.
#include <memory>
#include <new>

#include "qv/files/IFile.h"

namespace qv {

namespace {

// Larger files move in larger blocks, up to five mebibytes.
uint32_t EditBlockSize(int64_t fileSize) {
    if (fileSize > 52428800) return 0x500000;
    if (fileSize > 26214400) return 0x200000;
    if (fileSize > 0xA00000) return 0x100000;
    return 0x80000;
}

std::unique_ptr<unsigned char[]> EditBlock(uint32_t size) {
    return std::unique_ptr<unsigned char[]>(new (std::nothrow) unsigned char[size]);
}

} // namespace

bool IFile::Remove(int64_t pos, uint32_t n) {
    if (pos < 0) return false;
    int64_t size = GetSize();
    if (size <= pos) return true; // nothing behind pos: nothing to close
    uint32_t blockSize = EditBlockSize(size);
    auto block = EditBlock(blockSize);
    if (!block) return false;
    int64_t source = pos + n, target = pos;
    for (;;) {
        Seek(source, 1);
        uint32_t got = Read(block.get(), blockSize);
        if (got == 0) break;
        Seek(target, 1);
        if (Write(block.get(), got) != got) return false;
        source += got;
        target += got;
    }
    return SetSize(target);
}

bool IFile::Insert(int64_t pos, uint32_t n) {
    if (pos < 0) return false;
    int64_t size = GetSize();
    if (size <= pos) return true; // an empty tail: nothing moves
    uint32_t blockSize = EditBlockSize(size);
    auto block = EditBlock(blockSize);
    if (!block) return false;
    // From the last block to the first, so nothing is overwritten unread.
    for (int64_t rest = size - pos; rest > 0;) {
        uint32_t chunk = rest < blockSize ? uint32_t(rest) : blockSize;
        rest -= chunk;
        Seek(pos + rest, 1);
        if (Read(block.get(), chunk) != chunk) return false;
        Seek(pos + rest + n, 1);
        if (Write(block.get(), chunk) != chunk) return false;
    }
    return true;
}

} // namespace qv
