// The version block parser on arbitrary bytes: lengths, keys and values may
// pass their blocks. A block that parses must write back into a block that
// parses to the same bytes again.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "qv/core/VersionInfo.h"
#include "qv/files/MemFile.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    if (size > 0x10000) return 0;
    qv::CVersionInfo info;
    if (!info.Parse(data, uint32_t(size))) return 0;
    qv::CMemFile first;
    if (!info.Serialize(first)) return 0; // a block that grows past 65535 bytes when its padding is redone
    qv::CVersionInfo again;
    if (!again.Parse(first.GetData(), uint32_t(first.GetSize()))) std::abort();
    qv::CMemFile second;
    if (!again.Serialize(second) || second.GetSize() != first.GetSize() ||
        std::memcmp(first.GetData(), second.GetData(), size_t(first.GetSize())) != 0)
        std::abort();
    info.SetVersion(1, 2, 3, 4);
    info.SetString(u"Comments", u"fuzz");
    return 0;
}
