/// @file
/// Builds a POD table's row index: one item per text line from `start` to the
/// end of the file, each beginning with an SPODRowSpan, then the caller's tail
/// bytes (the per-cell part), the rest zeroed. The file is read once in
/// 512 KiB blocks and only LF bytes are looked for (memchr); nothing is
/// parsed. Items go to the index a block at a time. A final line without LF is
/// a row; a final LF makes no empty row. Positions are 64-bit and lengths
/// 32-bit, so neither files above 4 GiB nor long lines are cut.
///
/// Appends to `index` (its item size must hold an SPODRowSpan). False on a
/// failed read or index write; rows appended before stay. Memory: a block of
/// the file and one of items.
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

/// Appends one item per line from start to the end of file to index, each
/// with tailSize bytes of tail behind its span (none if tail is null); false
/// on a failed read or index write, or a tail that does not fit the item.
QV_API bool IndexPODLines(IFile &file, int64_t start, CPersistedArray &index, void const *tail = nullptr,
                          uint32_t tailSize = 0);

} // namespace qv
