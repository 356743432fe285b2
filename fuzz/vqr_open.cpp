// Fuzzes opening a VQR container from untrusted bytes (a memory copy); what
// opens goes through fuzz_indexed::ExerciseBlocks. Nothing may crash.
#include <cstddef>
#include <cstdint>

#include "IndexedFuzz.h"
#include "qv/files/MemFile.h"
#include "qv/formats/indexed/VQRFile.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    qv::CMemFile host;
    if (size) host.Write(data, uint32_t(size));
    qv::CVQRFile vqr;
    if (vqr.Open(&host, false)) fuzz_indexed::ExerciseBlocks(vqr);
    return 0;
}
