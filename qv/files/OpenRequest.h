/// @file
/// The open flag word of CFile::Open and IFileSystem::CreateFileW, decoded
/// into an explicit request that the platform's disk file opens. Internal;
/// callers name the flags with qv/files/OpenFlags.h.
///
/// Flags: 0x01 open or create; 0x02 must exist; 0x08 create or truncate;
/// 0x04 must not exist (earlier ones win; none of them: must exist).
/// 0x10 read, 0x20 write, 0x40 start at the end. Sharing: 0x100 share write,
/// 0x200 share read; without either, 0x400 denies read (shares write), 0x800
/// denies write (shares read), both share nothing; with none of 0xF00 a reader
/// shares read and a writer shares nothing. Attributes at creation: 0x1000
/// normal (overrides 0x2000..0x10000), 0x2000 read-only, 0x4000 hidden, 0x8000
/// system, 0x10000 temporary. 0x100000 delete on close, 0x200000 write-through.
#pragma once

#include <cstdint>

namespace qv {

/// What to do about the file's existence (see the flags above).
enum class Disposition {
    OpenAlways,   ///< open or create
    OpenExisting, ///< must exist
    CreateAlways, ///< create or truncate
    CreateNew,    ///< must not exist
};

/// @copydoc OpenRequest.h
struct OpenRequest {
    Disposition disposition = Disposition::OpenExisting; ///< must exist unless a flag says otherwise
    bool read = false; ///< desired access
    bool write = false;     ///< desired access
    bool shareRead = false; ///< what other opens may do meanwhile
    bool shareWrite = false; ///< what other opens may do meanwhile
    bool seekToEnd = false;  ///< start at the end of the file (0x40)
    bool readOnly = false; ///< attributes of a file this open creates
    bool hidden = false;        ///< attribute of a file this open creates
    bool system = false;        ///< attribute of a file this open creates
    bool temporary = false;     ///< attribute of a file this open creates
    bool deleteOnClose = false; ///< delete the file when it is closed (0x100000)
    bool writeThrough = false;  ///< write through any cache (0x200000)
};

/// The request the flag word asks for, by the rules at the top of this file.
/// Never fails: unknown bits are ignored.
OpenRequest DecodeOpenFlags(uint32_t flags);

} // namespace qv
