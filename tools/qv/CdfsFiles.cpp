// What the cdfs sub-commands share: opening a composite with a message.
#include "Commands.h"
#include "Input.h"
#include "qv/core/String.h"

namespace qvtool {

bool OpenCdfs(char const *path, bool readOnly, qv::CCDFileSystem &cdfs) {
    qv::CString name(path);
    if (readOnly && !CheckInputFile(path)) return false;
    if (cdfs.Open(name, readOnly)) return true;
    if (!readOnly && !qv::GetFileSystem().FileExists(name)) return Fail("%s", WriteFailure(path).c_str()) == 0;
    qv::CString problem;
    qv::CCDFileSystem::Check(&qv::GetFileSystem(), name, problem);
    Fail("%s is not a usable CDFS: %s", path, problem.IsEmpty() ? "it cannot be written" : problem.GetUTF8());
    return false;
}

} // namespace qvtool
