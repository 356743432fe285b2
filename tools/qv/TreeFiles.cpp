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

bool ReadInput(char const *path, qv::CMemFile &f) {
    f.SetGrowthRate(0xFFFF);
    if (IsStandardStream(path)) {
        char block[65536];
        size_t n = 0;
        while ((n = std::fread(block, 1, sizeof(block), stdin)) > 0) f.Write(block, uint32_t(n));
        f.SeekToBegin();
        if (!std::ferror(stdin)) return true;
        Fail("cannot read standard input");
        return false;
    }
    qv::CFile file;
    if (!file.Open(qv::CString(path).GetUTF16(), 0x02 | 0x10 | 0x200)) {
        Fail("cannot open %s (missing, not a regular file, no permission, or in use)", path);
        return false;
    }
    bool read = qv::IFileSystem::CopyFileW(&file, &f, nullptr, nullptr);
    f.SeekToBegin();
    if (!read) Fail("cannot read %s", path);
    return read;
}

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
