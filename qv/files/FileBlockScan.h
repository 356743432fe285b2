/// @file
/// Streams the rest of a file through a function in blocks of 512 KiB: the
/// checksum helpers' common loop. Internal to the file layer.
#pragma once

#include <cstdint>
#include <memory>
#include <new>

#include "qv/files/IFile.h"

namespace qv {

constexpr uint32_t kFileScanBlock = 0x80000; ///< bytes read per step (512 KiB)

/// Calls step(bytes, n) for each block read from the present position until a
/// read gives nothing. False for a null file or when the block cannot be had.
template <class Step> bool ScanFileToEnd(IFile *f, Step step) {
    if (!f) return false;
    std::unique_ptr<uint8_t[]> block(new (std::nothrow) uint8_t[kFileScanBlock]);
    if (!block) return false;
    while (uint32_t got = f->Read(block.get(), kFileScanBlock))
        step(block.get(), got);
    return true;
}

} // namespace qv
