// What the vqr sub-commands share: opening a container and naming a block.
#pragma once

#include <cstdint>

#include "qv/formats/indexed/VQRFile.h"

namespace qvtool {

// A block's address on the command line: TYPE SUBTYPE ID (decimal or 0x hex).
struct SBlockAddress {
    uint16_t type = 0;
    uint16_t subtype = 0;
    uint32_t id = 0;
};

// Reads TYPE SUBTYPE ID from args; false, with the message printed, for a
// word that is not a number in range or a type of 0 (the empty-slot mark).
bool ParseBlockAddress(char *const *args, SBlockAddress &address);

// Opens the container at path for reading, or for writing (made when
// missing); false with the message printed.
bool OpenVqr(char const *path, bool write, qv::CVQRFile &vqr);

// The place of the block with this type, subtype and id, or kNoIndex.
uint32_t FindVqrBlock(qv::CVQRFile const &vqr, SBlockAddress const &address);

} // namespace qvtool
