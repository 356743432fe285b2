/// @file
/// CPODLineIndex: finds the text lines of a POD table's body without holding
/// a position per line. Build reads the file once in 512 KiB blocks, looking
/// only for LF bytes (memchr; nothing is parsed), and keeps the start of every
/// kLinesPerCheckpoint-th line (a checkpoint) in a CPersistedArray, so opening
/// a table keeps 8 bytes per 64 lines, on disk only past a window of at most
/// kCheckpointWindow bytes (256 Ki lines). Line(i) reads forward from the
/// checkpoint at or before i, or from the end of the line found last when
/// that is nearer, so reading lines in order reads each byte about once. A final
/// line without LF is a line; a final LF makes no empty line. Positions are
/// 64-bit, so files above 4 GiB are not cut.
///
/// The file is not owned: the caller passes the same one, unchanged since
/// Build, to every Line call. Failures: false or null on a failed read,
/// checkpoint write or allocation, and Build refuses more lines than a row
/// number holds. Memory: a 512 KiB block during Build, then a window of
/// checkpoints and kBufferSize bytes of the file.
/// Threads: one thread at a time per index.
#pragma once

#include <cstdint>
#include <memory>

#include "qv/core/Export.h"
#include "qv/core/PersistedArray.h"

namespace qv {

class IFile;

/// @copydoc PODLineIndex.h
class QV_API CPODLineIndex {
public:
    static constexpr uint32_t kLinesPerCheckpoint = 64; ///< lines from one kept position to the next
    static constexpr uint32_t kBufferSize = 0x10000;    ///< bytes of the file held for Line, the longest line it gives
    /// The most bytes of checkpoints held in memory: a row far from the last
    /// one read loads a window, so small windows keep such reads cheap.
    static constexpr uint32_t kCheckpointWindow = 0x8000;

    /// No lines. windowBudget: bytes of checkpoints held in memory, at most kCheckpointWindow.
    explicit CPODLineIndex(uint32_t windowBudget = CPersistedArray::kWindowBudget);

    /// Indexes the lines from start to the end of file, replacing any
    /// earlier index; false (and no lines) on failure.
    bool Build(IFile &file, int64_t start);
    /// No lines; the checkpoint file is cut to nothing.
    void Empty();
    uint32_t GetCount() const { return m_count; } ///< lines found by Build
    uint64_t GetLongestLine() const { return m_longest; } ///< bytes of the longest line found by Build, its LF included

    /// Line i's bytes, its line end included, in a buffer of the index that
    /// stays good until the next call; length gets their count. Null when i
    /// is not below the count, the line is longer than kBufferSize, or a
    /// read fails.
    char const *Line(IFile &file, uint32_t i, uint32_t &length);

private:
    bool AddCheckpoint(uint32_t i, int64_t position);
    bool Fill(IFile &file, int64_t position, uint32_t atLeast);
    bool FindNextLine(IFile &file, int64_t position, int64_t &next);
    bool Holds(int64_t from, int64_t to) const {
        return from >= m_bufferPosition && to <= m_bufferPosition + m_bufferLength;
    }

    CPersistedArray m_checkpoints; ///< int64 start of lines 0, 64, 128, ...
    std::unique_ptr<char[]> m_buffer;
    int64_t m_bufferPosition = 0;
    uint32_t m_bufferLength = 0;
    int64_t m_end = 0; ///< the file's end at Build
    uint32_t m_count = 0;
    uint64_t m_longest = 0;
    uint32_t m_nextLine = 0; ///< the line behind the one found last, and its start
    int64_t m_nextPosition = 0;
};

} // namespace qv
