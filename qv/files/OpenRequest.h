// The open flag word of CFile::Open and IFileSystem::CreateFileW, decoded
// into an explicit request that the platform's disk file opens. Internal;
// callers name the flags with qv/files/OpenFlags.h.
//
// Flags: 0x01 open or create; 0x02 must exist; 0x08 create or truncate;
// 0x04 must not exist (earlier ones win; none of them: must exist).
// 0x10 read, 0x20 write, 0x40 start at the end. Sharing: 0x100 share write,
// 0x200 share read; without either, 0x400 denies read (shares write), 0x800
// denies write (shares read), both share nothing; with none of 0xF00 a reader
// shares read and a writer shares nothing. Attributes at creation: 0x1000
// normal (overrides 0x2000..0x10000), 0x2000 read-only, 0x4000 hidden, 0x8000
// system, 0x10000 temporary. 0x100000 delete on close, 0x200000 write-through.
#pragma once

#include <cstdint>

namespace qv {

enum class Disposition {
    OpenAlways,   // open or create
    OpenExisting, // must exist
    CreateAlways, // create or truncate
    CreateNew,    // must not exist
};

struct OpenRequest {
    Disposition disposition = Disposition::OpenExisting;
    bool read = false; // desired access
    bool write = false;
    bool shareRead = false; // what other opens may do meanwhile
    bool shareWrite = false;
    bool seekToEnd = false;
    bool readOnly = false; // attributes of a file this open creates
    bool hidden = false;
    bool system = false;
    bool temporary = false;
    bool deleteOnClose = false;
    bool writeThrough = false;
};

OpenRequest DecodeOpenFlags(uint32_t flags);

} // namespace qv
