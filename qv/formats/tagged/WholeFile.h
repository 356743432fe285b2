// The binary tree formats parse from and build into memory: the rest of a
// file comes in with one read of exactly its own size, and a new file goes
// out with one write. Internal to the library.
#pragma once

#include <cstdint>

#include "qv/files/IFile.h"
#include "qv/files/MemFile.h"

namespace qv::tagged {

// The bytes from f's position to its end into mem (positioned at 0); f is
// left at its end. False on a short read or a file of 4 GiB or more.
inline bool ReadRest(IFile *f, CMemFile &mem) {
    int64_t remaining = f->GetRemaining();
    if (remaining < 0 || remaining >= int64_t(UINT32_MAX)) return false;
    if (!static_cast<IFile &>(mem).SetSize(remaining)) return false;
    bool read = f->ReadBytes(mem.GetData(), uint32_t(remaining));
    mem.SeekToBegin();
    return read;
}

// All of mem to f at its position; false on a short write.
inline bool WriteWhole(IFile *f, CMemFile &mem) {
    return f->WriteBytes(mem.GetData(), uint32_t(mem.GetSize()));
}

} // namespace qv::tagged
