#include "qv/files/TGZFHeader.h"

#include <cstring>

namespace qv {

namespace {
constexpr char kMagic[4] = {'T', 'G', 'Z', 'F'};
}

bool WriteTGZFHeader(IFile &f) {
    return f.WriteBytes(kMagic, 4) && f.PutUInt8(0) && f.PutUInt8(0) && f.PutInt64(0);
}

bool ReadTGZFHeader(IFile &f, int64_t &size) {
    char magic[4];
    if (!f.ReadBytes(magic, 4) || std::memcmp(magic, kMagic, 4) != 0) return false;
    uint8_t reserved[2];
    if (!f.ReadBytes(reserved, 2) || !f.GetInt64(size) || size < 0) size = 0;
    return true;
}

bool PatchTGZFSize(IFile &f, int64_t size) {
    int64_t here = f.GetPosition();
    bool patched = here >= 0 && f.Seek(kTGZFSizeOffset, 1) == kTGZFSizeOffset && f.PutInt64(size);
    return f.Seek(here, 1) == here && patched;
}

} // namespace qv
