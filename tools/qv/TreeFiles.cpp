// Inputs and outputs of the tree-format sub-commands.
#include "TreeFiles.h"

#include <cstdio>

#include "Commands.h"
#include "qv/core/String.h"
#include "qv/filesystems/AtomicSave.h"
#include "qv/filesystems/DiskFileSystem.h"

namespace qvtool {

namespace {

bool IsStandardStream(char const *path) {
    return path[0] == '-' && path[1] == '\0';
}

} // namespace

bool WriteOutput(char const *path, qv::CMemFile &f) {
    uint32_t size = uint32_t(f.GetSize());
    if (IsStandardStream(path)) {
        if (std::fwrite(f.GetData(), 1, size, stdout) == size && std::fflush(stdout) == 0) return true;
        Fail("cannot write standard output");
        return false;
    }
    bool written = qv::SaveAtomically(nullptr, qv::CString(path).GetUTF16(),
                                      [&](qv::IFile &out) { return out.WriteBytes(f.GetData(), size); });
    if (!written) Fail("cannot write %s (the old file, if any, is unchanged)", path);
    return written;
}

std::string Indent(unsigned depth) {
    return std::string(size_t(depth) * 2, ' ');
}

} // namespace qvtool
