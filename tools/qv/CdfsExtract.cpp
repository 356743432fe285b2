// qv cdfs extract FILE NAME OUT: the entry NAME of the CDFS FILE into the
// disk file OUT ("-": standard output).
#include <cstdio>
#include <cstring>
#include <memory>

#include "Commands.h"

namespace qvtool {

int RunCdfsExtract(char *const *args) {
    qv::CCDFileSystem cdfs;
    if (!OpenCdfs(args[0], true, cdfs)) return kExitFailed;
    std::unique_ptr<qv::IFile> file(cdfs.CreateFileW(qv::CString(args[1]), 0x12));
    if (!file) return Fail("%s holds no file %s", args[0], args[1]);
    bool toStdout = std::strcmp(args[2], "-") == 0;
    std::FILE *out = toStdout ? stdout : std::fopen(args[2], "wb");
    if (!out) return Fail("cannot write %s", args[2]);
    static char block[1 << 16];
    int64_t left = file->GetSize();
    bool ok = true;
    while (ok && left > 0) {
        uint32_t n = file->Read(block, uint32_t(left < int64_t(sizeof block) ? left : int64_t(sizeof block)));
        ok = n > 0 && std::fwrite(block, 1, n, out) == n;
        left -= n;
    }
    ok = (toStdout ? std::fflush(out) : std::fclose(out)) == 0 && ok;
    if (!ok) {
        if (!toStdout) std::remove(args[2]);
        return Fail("cannot extract %s from %s", args[1], args[0]);
    }
    return 0;
}

} // namespace qvtool
