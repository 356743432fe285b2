// Editing a file in place: Remove closes a gap, Insert opens one, both by
// streaming the tail through one block, so multi-gigabyte files need neither
// a second file nor memory in proportion to their size.
//
// Safety. Insert takes the room it needs (SetSize, which on a disk reserves
// the blocks) before a byte moves, so a full disk stops it with the file
// untouched. No write ever covers the only copy of a byte that is not yet at
// its new place, so a write that dies half-way loses nothing:
// - Remove, and Insert by a block or more, write in pieces no longer than
//   the shift;
// - Insert by less than a block first copies each block of the tail to
//   scratch room past the new end, then writes it to its new place in one
//   piece. Pieces as short as the shift would cost a system call per few
//   bytes (growing a block by 2 KiB before a gigabyte of data); the scratch
//   costs one more write per block instead, and room for one block more.
// After a failure the moved part goes back the same careful way; if that
// fails too, the caller hears that the file is damaged.
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

bool SeekExactly(IFile &f, int64_t pos) {
    return f.Seek(pos, 1) == pos;
}

bool ReadAt(IFile &f, int64_t pos, unsigned char *p, uint32_t n) {
    return SeekExactly(f, pos) && f.Read(p, n) == n;
}

bool WriteAt(IFile &f, int64_t pos, unsigned char const *p, uint32_t n) {
    return SeekExactly(f, pos) && f.Write(p, n) == n;
}

// Moves length bytes from from to to: a block is read at a time, and written
// back in pieces no longer than the distance, in the order that never
// overwrites a byte not yet copied: from the top down when moving up, from
// the bottom up when moving down. Returns the bytes moved (the top ones
// moving up, the bottom ones moving down); length itself on success. wrote
// tells whether any write was tried.
int64_t MoveRange(IFile &f, int64_t from, int64_t to, int64_t length, unsigned char *block, uint32_t blockSize,
                  bool &wrote) {
    int64_t distance = to > from ? to - from : from - to;
    uint32_t piece = distance < blockSize ? uint32_t(distance) : blockSize;
    bool up = to > from;
    for (int64_t moved = 0; moved < length;) {
        uint32_t n = length - moved < blockSize ? uint32_t(length - moved) : blockSize;
        int64_t offset = up ? length - moved - n : moved;
        if (!ReadAt(f, from + offset, block, n)) return moved;
        wrote = true;
        for (uint32_t done = 0; done < n;) {
            uint32_t m = n - done < piece ? n - done : piece;
            uint32_t at = up ? n - done - m : done;
            if (!WriteAt(f, to + offset + at, block + at, m)) return moved + done;
            done += m;
        }
        moved += n;
    }
    return length;
}

int64_t MoveRange(IFile &f, int64_t from, int64_t to, int64_t length, unsigned char *block, uint32_t blockSize) {
    bool wrote = false;
    return MoveRange(f, from, to, length, block, blockSize, wrote);
}

// Moves length bytes at from up by distance (less than a block): each block
// from the top down is read, written to the scratch room at scratch, then to
// its new place in one write. Returns the bytes moved (the top ones). When
// the write to the new place fails, the block goes back to its old place from
// memory; damaged says that this failed too (its bytes are in the scratch).
int64_t MoveUpThroughScratch(IFile &f, int64_t from, int64_t distance, int64_t length, int64_t scratch,
                             unsigned char *block, uint32_t blockSize, bool &damaged) {
    for (int64_t moved = 0; moved < length;) {
        uint32_t n = length - moved < blockSize ? uint32_t(length - moved) : blockSize;
        int64_t at = from + length - moved - n;
        if (!ReadAt(f, at, block, n) || !WriteAt(f, scratch, block, n)) return moved;
        if (!WriteAt(f, at + distance, block, n)) {
            damaged = !WriteAt(f, at, block, n);
            return moved;
        }
        moved += n;
    }
    return length;
}

} // namespace

bool IFile::Insert(int64_t pos, uint32_t n) {
    EditOutcome outcome;
    return Insert(pos, n, outcome);
}

bool IFile::Remove(int64_t pos, uint32_t n) {
    EditOutcome outcome;
    return Remove(pos, n, outcome);
}

bool IFile::Insert(int64_t pos, uint32_t n, EditOutcome &outcome) {
    outcome = EditOutcome::Unchanged;
    if (pos < 0) return false;
    int64_t size = GetSize();
    if (size < 0) return false;
    if (size <= pos || n == 0) {
        outcome = EditOutcome::Done;
        return true; // an empty tail: nothing moves
    }
    uint32_t blockSize = EditBlockSize(size);
    auto block = EditBlock(blockSize);
    if (!block) return false;
    int64_t tail = size - pos;
    uint32_t scratchSize = tail < blockSize ? uint32_t(tail) : blockSize;
    bool scratch = n < scratchSize;
    if (!SetSize(size + n + (scratch ? scratchSize : 0))) return false; // the room first, with the scratch
    bool damaged = false;
    int64_t moved = scratch ? MoveUpThroughScratch(*this, pos, n, tail, size + n, block.get(), blockSize, damaged)
                            : MoveRange(*this, pos, pos + n, tail, block.get(), blockSize);
    if (moved == tail && (!scratch || SetSize(size + n))) {
        outcome = EditOutcome::Done;
        return true;
    }
    // The top moved bytes go back down, then the room is given back.
    int64_t start = pos + (tail - moved);
    bool restored = !damaged && MoveRange(*this, start + n, start, moved, block.get(), blockSize) == moved &&
                    SetSize(size);
    outcome = restored ? EditOutcome::Unchanged : EditOutcome::Damaged;
    return false;
}

bool IFile::Remove(int64_t pos, uint32_t n, EditOutcome &outcome) {
    outcome = EditOutcome::Unchanged;
    if (pos < 0) return false;
    int64_t size = GetSize();
    if (size < 0) return false;
    if (size <= pos || n == 0) {
        outcome = EditOutcome::Done;
        return true; // nothing behind pos: nothing to close
    }
    if (size - pos <= n) { // the whole tail goes: one cut
        if (!SetSize(pos)) return false;
        outcome = EditOutcome::Done;
        return true;
    }
    uint32_t blockSize = EditBlockSize(size);
    auto block = EditBlock(blockSize);
    // The bytes to drop are kept in memory (up to one block) so that a
    // failed move can put them back and leave the file as it was.
    auto dropped = n <= blockSize ? EditBlock(n) : nullptr;
    if (!block || (n <= blockSize && !dropped)) return false;
    if (dropped && !ReadAt(*this, pos, dropped.get(), n)) return false;
    int64_t tail = size - pos - n;
    bool wrote = false;
    int64_t moved = MoveRange(*this, pos + n, pos, tail, block.get(), blockSize, wrote);
    if (moved == tail && SetSize(size - n)) {
        outcome = EditOutcome::Done;
        return true;
    }
    if (!wrote) return false; // nothing was overwritten
    bool restored = MoveRange(*this, pos, pos + n, moved, block.get(), blockSize) == moved && dropped &&
                    WriteAt(*this, pos, dropped.get(), n);
    outcome = restored ? EditOutcome::Unchanged : EditOutcome::Damaged;
    return false;
}

} // namespace qv
