// Copying between two open disk files inside the system, without passing
// the bytes through the process. Internal to libqv.
#pragma once

#include <cstdint>

namespace qv {

struct DiskCopyResult {
    bool supported; // false: the system cannot copy between these two; nothing moved
    uint32_t moved; // bytes moved; 0 at the end of the source or on an error
};

// Moves up to n bytes from the present position of from to the present
// position of to (CFile handles), advancing both. On ext2/3/4 the target's
// space for the n bytes is claimed first (its size unchanged): a target that
// cannot hold them moves nothing. Thread-safe in itself.
DiskCopyResult CopyDiskFileRange(intptr_t from, intptr_t to, uint32_t n);

} // namespace qv
