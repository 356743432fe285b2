#include "qv/filesystems/HostMove.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "qv/files/IFile.h"

namespace qv {

namespace {

constexpr int64_t kMoveBlock = 0x100000;

struct FreeBlock {
    void operator()(void *p) const { std::free(p); }
};

bool ReadAt(IFile &file, int64_t at, void *p, uint32_t n) {
    return file.Seek(at, 1) == at && file.Read(p, n) == n;
}

bool WriteAt(IFile &file, int64_t at, void const *p, uint32_t n) {
    return file.Seek(at, 1) == at && file.Write(p, n) == n;
}

// Copies [at + delta, end + delta) down to [at, end), lowest block first, so
// no source is overwritten before it is read.
bool MoveBack(IFile &file, int64_t at, int64_t end, int64_t delta, unsigned char *block) {
    for (int64_t y = at; y < end;) {
        uint32_t n = uint32_t(std::min(kMoveBlock, end - y));
        if (!ReadAt(file, y + delta, block, n) || !WriteAt(file, y, block, n)) return false;
        y += n;
    }
    return true;
}

bool WriteZerosAt(IFile &file, int64_t at, int64_t count, unsigned char *block, int64_t blockSize) {
    std::fill(block, block + blockSize, 0);
    for (int64_t done = 0; done < count;) {
        uint32_t n = uint32_t(std::min(blockSize, count - done));
        if (!WriteAt(file, at + done, block, n)) return false;
        done += n;
    }
    return true;
}

} // namespace

bool MoveTailUp(IFile &file, int64_t from, int64_t delta) {
    int64_t end = file.GetSize();
    if (from < 0 || delta < 0 || from >= end || delta == 0) return from >= 0 && delta >= 0;
    if (delta > INT64_MAX - end) return false;
    int64_t blockSize = std::min(kMoveBlock, std::max(end - from, std::min(delta, kMoveBlock)));
    std::unique_ptr<unsigned char, FreeBlock> block(static_cast<unsigned char *>(std::malloc(size_t(blockSize))));
    if (!block || !file.SetSize(end + delta)) return false;
    int64_t moved = end; // [moved, end) now also stands at [moved + delta, end + delta)
    while (moved > from) {
        uint32_t n = uint32_t(std::min(blockSize, moved - from));
        int64_t at = moved - n;
        if (!ReadAt(file, at, block.get(), n)) break;
        if (!WriteAt(file, at + delta, block.get(), n)) {
            // A short write may have reached this block's own source bytes.
            WriteAt(file, at, block.get(), n);
            break;
        }
        moved = at;
    }
    if (moved == from) {
        // The gap holds no entry's bytes yet, so a failure here loses nothing.
        WriteZerosAt(file, from, delta, block.get(), blockSize);
        return true;
    }
    MoveBack(file, moved, end, delta, block.get());
    file.SetSize(end);
    return false;
}

} // namespace qv
