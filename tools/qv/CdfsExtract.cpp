// qv cdfs extract FILE NAME OUT: the entry NAME of the CDFS FILE into the
// disk file OUT ("-": standard output), written whole or not at all.
#include <memory>

#include "Commands.h"
#include "Input.h"
#include "Output.h"

namespace qvtool {

int RunCdfsExtract(char *const *args) {
    if (OutputIsAnInput(args[2], {args[0]})) return kExitFailed;
    qv::CCDFileSystem cdfs;
    if (!OpenCdfs(args[0], true, cdfs)) return kExitFailed;
    std::unique_ptr<qv::IFile> file(cdfs.CreateFileW(qv::CString(args[1]), 0x12));
    if (!file) return Fail("%s holds no file %s", args[0], args[1]);
    return CopyToOutput(*file, args[2]) ? 0 : kExitFailed;
}

} // namespace qvtool
