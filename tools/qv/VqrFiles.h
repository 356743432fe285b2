// What the vqr and xdn sub-commands share: opening a container, naming a
// block, and the list / extract / put work on an open container.
#pragma once

#include <cstdint>

#include "qv/files/MemFile.h"

#include "qv/formats/indexed/VQRFile.h"
#include "qv/formats/indexed/XDNFile.h"

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
///@{
bool OpenContainer(char const *path, bool write, qv::CVQRFile &container);
bool OpenContainer(char const *path, bool write, qv::CXDNFile &container);
///@}

// The place of the block with this type, subtype and id, or kNoIndex.
uint32_t FindBlock(qv::CIndexedContainer const &container, SBlockAddress const &address);

// The bodies of list, extract (args: FILE TYPE SUBTYPE ID OUT) and put
// (args: FILE TYPE SUBTYPE ID IN, address already parsed); exit codes.
///@{
int ListBlocks(qv::CIndexedContainer &container);
int ExtractBlock(qv::CIndexedContainer &container, SBlockAddress const &address, char *const *args);
int PutBlock(qv::CIndexedContainer &container, SBlockAddress const &address, qv::CMemFile &input, char *const *args);
///@}

} // namespace qvtool
