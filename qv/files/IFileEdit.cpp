// Editing a file in place: Remove closes a gap, Insert opens one, both by
// streaming the tail through one block, so multi-gigabyte files need neither
// a second file nor memory in proportion to their size.
//
// Safety. Insert takes the room it needs (SetSize, which on a disk reserves
// the blocks) before a byte moves, so a full disk stops it with the file
// untouched. No write ever covers the only copy of a byte that is not yet at
// its new place, so a write that dies half-way loses nothing:
// - Remove moves the tail down a whole block a write, from the bottom up: a
//   write that stops half-way has put every byte it covered at its new place
//   first;
// - Insert by a scratch block or more writes in pieces no longer than the
//   shift;
// - Insert by less than a scratch block first copies each block of the tail
//   to scratch room past the new end, then writes it to its new place in one
//   piece. Pieces as short as the shift would cost a system call per few
//   bytes (growing a block by 2 KiB before a gigabyte of data); the scratch
//   costs one more copy per block instead, and room for one block more. A
//   disk file lends a mapping of that room: each block is read straight into
//   it and written from there, so the copy costs no more than the move.
// After a failure the moved part goes back the same careful way (Remove's
// undo through scratch room too, when the file can grow for it); if that
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

// Insert by fewer bytes moves through scratch room in blocks this small, so
// that a block and its scratch copy stay in the processor's cache.
constexpr uint32_t kScratchBlockSize = 0x40000;

std::unique_ptr<unsigned char[]> EditBlock(uint32_t size) {
    return std::unique_ptr<unsigned char[]>(new (std::nothrow) unsigned char[size]);
}

bool SeekExactly(IFile &f, int64_t pos) {
    return f.Seek(pos, 1) == pos;
}

bool ReadAt(IFile &f, int64_t pos, unsigned char *p, uint32_t n) {
    return SeekExactly(f, pos) && f.Read(p, n) == n;
}

// The bytes written at pos: 0 if the seek fails, fewer than n if the write
// stops short.
uint32_t WrittenAt(IFile &f, int64_t pos, unsigned char const *p, uint32_t n) {
    return SeekExactly(f, pos) ? f.Write(p, n) : 0;
}

bool WriteAt(IFile &f, int64_t pos, unsigned char const *p, uint32_t n) {
    return WrittenAt(f, pos, p, n) == n;
}

// Moves length bytes from from to to: a block is read at a time, in the
// order that never overwrites a byte not yet copied: from the top down when
// moving up, from the bottom up when moving down. Moving down, a block goes
// back in one write: a write fills its range from the start, so each byte it
// covers has reached its new place before (an earlier block, or this write's
// own start). Moving up, a write would cover its own block's uncopied bytes
// first, so it goes in pieces no longer than the distance, the top piece
// first. Returns the bytes moved (the top ones moving up; the bottom ones
// moving down, with those a short write put in place); length itself on
// success. wrote tells whether any write was tried.
int64_t MoveRange(IFile &f, int64_t from, int64_t to, int64_t length, unsigned char *block, uint32_t blockSize,
                  bool &wrote) {
    bool up = to > from;
    uint32_t piece = up && to - from < blockSize ? uint32_t(to - from) : blockSize;
    for (int64_t moved = 0; moved < length;) {
        uint32_t n = length - moved < blockSize ? uint32_t(length - moved) : blockSize;
        int64_t offset = up ? length - moved - n : moved;
        if (!ReadAt(f, from + offset, block, n)) return moved;
        wrote = true;
        for (uint32_t done = 0; done < n;) {
            uint32_t m = n - done < piece ? n - done : piece;
            uint32_t at = up ? n - done - m : done;
            uint32_t written = WrittenAt(f, to + offset + at, block + at, m);
            if (written != m) return moved + done + (up ? 0 : written);
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
// from the top down is copied to the scratch room at scratch, then written to
// its new place in one write. With view, the file's own view of that room,
// the block is read straight into it and written from there; without, it is
// read into block and written to the scratch room too. Returns the bytes
// moved (the top ones). When the write to the new place fails, the block goes
// back to its old place from memory; damaged says that this failed too (its
// bytes are in the scratch).
int64_t MoveUpThroughScratch(IFile &f, int64_t from, int64_t distance, int64_t length, int64_t scratch,
                             unsigned char *view, unsigned char *block, uint32_t blockSize, bool &damaged) {
    unsigned char *copy = view ? view : block;
    for (int64_t moved = 0; moved < length;) {
        uint32_t n = length - moved < blockSize ? uint32_t(length - moved) : blockSize;
        int64_t at = from + length - moved - n;
        if (!ReadAt(f, at, copy, n) || (!view && !WriteAt(f, scratch, block, n))) return moved;
        if (!WriteAt(f, at + distance, copy, n)) {
            damaged = !WriteAt(f, at, copy, n);
            return moved;
        }
        moved += n;
    }
    return length;
}

// Remove's undo: length moved bytes at from go back up by distance. A
// distance shorter than a block goes through scratch room past the end of
// the file (size) when the file can grow for it, so that undoing a long move
// does not take a write per few bytes; otherwise in pieces no longer than the
// distance. True if all went back and the room was given back.
bool MoveBackUp(IFile &f, int64_t from, uint32_t distance, int64_t length, int64_t size, unsigned char *block,
                uint32_t blockSize) {
    uint32_t scratchSize = length < blockSize ? uint32_t(length) : blockSize;
    if (distance < scratchSize && f.SetSize(size + scratchSize)) {
        bool damaged = false;
        return MoveUpThroughScratch(f, from, distance, length, size, nullptr, block, blockSize, damaged) == length &&
               f.SetSize(size);
    }
    return MoveRange(f, from, from + distance, length, block, blockSize) == length;
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
    int64_t tail = size - pos;
    bool scratch = n < kScratchBlockSize && n < tail;
    uint32_t blockSize = scratch ? kScratchBlockSize : EditBlockSize(size);
    auto block = EditBlock(blockSize);
    if (!block) return false;
    uint32_t scratchSize = tail < blockSize ? uint32_t(tail) : blockSize;
    if (!SetSize(size + n + (scratch ? scratchSize : 0))) return false; // the room first, with the scratch
    bool damaged = false;
    int64_t moved;
    if (scratch) {
        auto view = static_cast<unsigned char *>(EditView(size + n, scratchSize));
        moved = MoveUpThroughScratch(*this, pos, n, tail, size + n, view, block.get(), blockSize, damaged);
        if (view) ReleaseEditView(view, scratchSize); // before the room is given back
    } else {
        moved = MoveRange(*this, pos, pos + n, tail, block.get(), blockSize);
    }
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
    bool restored = MoveBackUp(*this, pos, n, moved, size, block.get(), blockSize) && dropped &&
                    WriteAt(*this, pos, dropped.get(), n);
    outcome = restored ? EditOutcome::Unchanged : EditOutcome::Damaged;
    return false;
}

} // namespace qv
