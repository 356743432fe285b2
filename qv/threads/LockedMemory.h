/// @file
/// Memory kept out of swap, for secrets and buffers that must not page.
///
/// virtAlloc(size) gives a zero-filled, page-aligned block of size bytes (at
/// least one page), locked in memory where the system allows; a lock the
/// system refuses (the user's lock limit) is ignored and the block is given
/// all the same. Null when no memory is left or size is 0. virtFree(block,
/// size) unlocks and frees a block from virtAlloc, with the same size; a null
/// block does nothing.
///
/// lockAlloc(size) and lockFree(size) would make room for such locks in the
/// process's working set. Linux has no working-set quota to raise (the lock
/// limit is the user's, set by the administrator), so they do nothing; they
/// stay for callers that pair them with virtAlloc.
///
/// Threads: all four may be called from any thread.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"

namespace qv {

QV_API void *virtAlloc(uint32_t size);           ///< a locked, zero-filled block; null on failure
QV_API void virtFree(void *block, uint32_t size); ///< frees a block of virtAlloc
/// Do nothing on Linux (see the file comment).
///@{
QV_API void lockAlloc(uint32_t size);
QV_API void lockFree(uint32_t size);
///@}

} // namespace qv
