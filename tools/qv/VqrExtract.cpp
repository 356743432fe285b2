// qv vqr/xdn extract FILE TYPE SUBTYPE ID OUT: the block's bytes into the disk
// file OUT ("-": standard output).
#include "Commands.h"
#include "Output.h"
#include "VqrFiles.h"

namespace qvtool {

int ExtractBlock(qv::CIndexedContainer &vqr, SBlockAddress const &address, char *const *args) {
    uint32_t place = FindBlock(vqr, address);
    if (place == qv::CIndexedContainer::kNoIndex)
        return Fail("%s holds no block %s %s %s", args[0], args[1], args[2], args[3]);
    return CopyToOutput(vqr.GetIndexAt(place)->m_file, args[4]) ? 0 : kExitFailed;
}

} // namespace qvtool
