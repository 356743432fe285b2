/// @file
/// Builds a POD table's row index: one item per text line from `start` to the
/// end of the file, each beginning with an SPODRowSpan, the rest zeroed. The
/// file is read once in 512 KiB blocks and only LF bytes are looked for (memchr); nothing is
/// parsed. Items go to the index 64 KiB at a time. A final line without LF is
/// a row; a final LF makes no empty row. Positions are 64-bit and lengths
/// 32-bit, so neither files above 4 GiB nor long lines are cut.
///
/// Appends to `index` (its item size must hold an SPODRowSpan). False on a
/// failed read or index write; rows appended before stay. Memory: a block of
/// the file and 64 KiB of items.
/// Threads: one thread at a time per file and index.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"

namespace qv {

class IFile;
class CPersistedArray;

#pragma pack(push, 1)
/// @copydoc PODLineIndex.h
struct SPODRowSpan {
    int64_t position; ///< file offset of the line's first byte
    uint32_t length; ///< line end included
};
#pragma pack(pop)

/// Appends one item per line from start to the end of file to index; false
/// on a failed read or index write, or an item too small for a span.
QV_API bool IndexPODLines(IFile &file, int64_t start, CPersistedArray &index);

} // namespace qv
