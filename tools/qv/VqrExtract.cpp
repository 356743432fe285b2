// qv vqr/xdn extract FILE TYPE SUBTYPE ID OUT: the block's bytes into the disk
// file OUT ("-": standard output).
#include <cstdio>
#include <cstring>

#include "Commands.h"
#include "VqrFiles.h"

namespace qvtool {

bool CopyToOutput(qv::IFile &source, char const *path) {
    bool toStdout = std::strcmp(path, "-") == 0;
    std::FILE *out = toStdout ? stdout : std::fopen(path, "wb");
    if (!out) return false;
    static char buffer[1 << 16];
    source.Seek(0, 1);
    bool ok = true;
    for (int64_t left = source.GetSize(); ok && left > 0;) {
        uint32_t n = source.Read(buffer, uint32_t(left < int64_t(sizeof buffer) ? left : int64_t(sizeof buffer)));
        ok = n > 0 && std::fwrite(buffer, 1, n, out) == n;
        left -= n;
    }
    ok = (toStdout ? std::fflush(out) : std::fclose(out)) == 0 && ok;
    if (!ok && !toStdout) std::remove(path);
    return ok;
}

int ExtractBlock(qv::CIndexedContainer &vqr, SBlockAddress const &address, char *const *args) {
    uint32_t place = FindBlock(vqr, address);
    if (place == qv::CIndexedContainer::kNoIndex)
        return Fail("%s holds no block %s %s %s", args[0], args[1], args[2], args[3]);
    if (!CopyToOutput(vqr.GetIndexAt(place)->m_file, args[4]))
        return Fail("cannot extract the block %s %s %s from %s to %s", args[1], args[2], args[3], args[0], args[4]);
    return 0;
}

} // namespace qvtool
