// Fuzzes opening an XDN container from untrusted bytes (a private copy served
// by a memory file system); what opens goes through
// fuzz_indexed::ExerciseBlocks. Nothing may crash.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "IndexedFuzz.h"
#include "qv/filesystems/MemFileSystem.h"
#include "qv/formats/indexed/XDNFile.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    std::vector<uint8_t> copy(data, data + size); // writes inside the size land here
    qv::CMemFileSystem fs;
    if (!fs.AddFile(u"/in.xdn", copy.data(), uint32_t(copy.size()))) return 0;
    qv::CXDNFile xdn;
    if (xdn.Open(&fs, u"/in.xdn", false)) fuzz_indexed::ExerciseBlocks(xdn);
    return 0;
}
