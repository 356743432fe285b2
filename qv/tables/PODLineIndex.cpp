#include "qv/tables/PODLineIndex.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "qv/files/IFile.h"

namespace qv {

namespace {

constexpr uint32_t kBlock = 0x80000;
constexpr uint32_t kSeekStart = 1;
// Reads for Line: a checkpoint's 64 lines of typical length, without making a
// random row cost a read of the whole buffer.
constexpr uint32_t kReadAhead = 0x4000;
constexpr uint64_t kMaxLines = UINT32_MAX - 1; // the last number means "no row"

} // namespace

CPODLineIndex::CPODLineIndex(uint32_t windowBudget)
    : m_checkpoints(sizeof(int64_t), std::min(windowBudget, kCheckpointWindow)),
      m_buffer(new (std::nothrow) char[kBufferSize]) {}

void CPODLineIndex::Empty() {
    if (m_checkpoints.GetCount() != 0) m_checkpoints.Empty(); // cutting a file costs even when it is empty
    m_bufferPosition = m_end = m_nextPosition = 0;
    m_bufferLength = m_count = m_nextLine = 0;
    m_longest = 0;
}

// Checkpoints go through the window, so the file sees them a window at a
// time, and a table of up to 256 Ki lines none at all.
bool CPODLineIndex::AddCheckpoint(uint32_t i, int64_t position) {
    uint8_t *item = m_checkpoints.GetItem(i);
    if (!item) return false;
    std::memcpy(item, &position, sizeof position);
    return true;
}

// The hot loop of opening a table: per line only a count and, every 64th
// line, a checkpoint.
bool CPODLineIndex::Build(IFile &file, int64_t start) {
    Empty();
    std::unique_ptr<char[]> block(new (std::nothrow) char[kBlock]);
    if (!block || !m_buffer || !m_checkpoints.IsReady() || file.Seek(start, kSeekStart) != start) return false;
    if (!AddCheckpoint(0, start)) return Empty(), false;
    uint64_t lines = 0;
    int64_t blockPosition = start;
    uint64_t longest = 0;
    int64_t carried = 0; // bytes of the line still open at the end of the last block
    for (uint32_t got; (got = file.Read(block.get(), kBlock)) != 0; blockPosition += got) {
        char const *p = block.get();
        char const *const end = p + got;
        while (char const *lf = static_cast<char const *>(std::memchr(p, '\n', size_t(end - p)))) {
            longest = std::max(longest, uint64_t(lf + 1 - p + carried));
            carried = 0;
            p = lf + 1;
            if (++lines % kLinesPerCheckpoint == 0 &&
                (lines > kMaxLines ||
                 !AddCheckpoint(uint32_t(lines / kLinesPerCheckpoint), blockPosition + (p - block.get()))))
                return Empty(), false;
        }
        carried += end - p;
    }
    lines += carried != 0;
    longest = std::max(longest, uint64_t(carried));
    // A read that fails short of the end must not pass for the end.
    if (blockPosition < file.GetSize() || lines > kMaxLines) return Empty(), false;
    m_end = blockPosition;
    m_count = uint32_t(lines);
    m_longest = longest;
    m_nextPosition = start;
    return true;
}

bool CPODLineIndex::Fill(IFile &file, int64_t position, uint32_t atLeast) {
    m_bufferLength = 0;
    if (position < 0 || position >= m_end) return false;
    uint32_t const n = uint32_t(std::min<int64_t>(std::max(kReadAhead, atLeast), m_end - position));
    if (file.Seek(position, kSeekStart) != position || file.Read(m_buffer.get(), n) != n) return false;
    m_bufferPosition = position;
    m_bufferLength = n;
    return true;
}

// next: the start of the line behind the one at position (the end of file
// for the last line). Lines longer than the buffer are crossed a buffer at a time.
bool CPODLineIndex::FindNextLine(IFile &file, int64_t position, int64_t &next) {
    if (position < 0 || position >= m_end) return false; // a checkpoint read back wrong
    for (int64_t at = position; at < m_end;) {
        if (!Holds(at, at + 1) && !Fill(file, at, 0)) return false;
        char const *p = m_buffer.get() + (at - m_bufferPosition);
        size_t const n = size_t(m_bufferPosition + m_bufferLength - at);
        if (auto const *lf = static_cast<char const *>(std::memchr(p, '\n', n))) {
            next = at + (lf - p) + 1;
            return true;
        }
        at += int64_t(n);
    }
    next = m_end;
    return true;
}

char const *CPODLineIndex::Line(IFile &file, uint32_t i, uint32_t &length) {
    if (i >= m_count || !m_buffer) return nullptr;
    uint32_t const checkpoint = i / kLinesPerCheckpoint;
    uint32_t line = m_nextLine;
    int64_t position = m_nextPosition;
    if (line > i || line < checkpoint * kLinesPerCheckpoint) {
        uint8_t const *item = m_checkpoints.ReadItem(checkpoint);
        if (!item) return nullptr;
        std::memcpy(&position, item, sizeof position);
        line = checkpoint * kLinesPerCheckpoint;
    }
    int64_t next = 0;
    for (; FindNextLine(file, position, next); position = next, ++line) {
        if (line != i) continue;
        if (next - position > kBufferSize ||
            (!Holds(position, next) && !Fill(file, position, uint32_t(next - position))))
            return nullptr;
        m_nextLine = i + 1;
        m_nextPosition = next;
        length = uint32_t(next - position);
        return m_buffer.get() + (position - m_bufferPosition);
    }
    return nullptr;
}

} // namespace qv
