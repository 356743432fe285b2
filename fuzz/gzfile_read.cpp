// CGZFile reading arbitrary bytes from a memory file: whole reads in uneven
// pieces, then seeks backward, forward, past the end and from every origin.
// Damaged or truncated streams and lying size fields must end reads early
// and stop seeks, never overrun, spin or allocate by the size field.
#include <cstddef>
#include <cstdint>

#include "qv/files/GZFile.h"
#include "qv/files/MemFile.h"

namespace {

void ReadSome(qv::CGZFile &gz, uint32_t piece, int rounds) {
    static uint8_t sink[70000];
    for (int i = 0; i < rounds && gz.Read(sink, piece); ++i) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    qv::CMemFile mem;
    if (size && mem.Write(data, uint32_t(size)) != size) return 0;
    qv::CGZFile gz(&mem, 0x10, false);
    ReadSome(gz, 977, 1 << 20);
    int64_t const total = gz.GetSize();
    gz.Seek(total / 2, 1);
    ReadSome(gz, 65536, 4);
    gz.Seek(-100, 2);
    ReadSome(gz, 13, 8);
    gz.Seek(-1, 3);
    gz.Seek(INT64_MAX, 2);
    gz.Seek(INT64_MIN, 3);
    ReadSome(gz, 1, 64);
    qv::CGZFile copy(gz);
    ReadSome(copy, 4096, 4);
    return 0;
}
