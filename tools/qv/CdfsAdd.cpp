// qv cdfs add FILE PATH: stores the disk file PATH (or standard input for
// "-", as "/stdin") in the CDFS FILE under "/" and its name, replacing an
// entry of that name; FILE is made when it is missing.
#include <cstdio>
#include <cstring>
#include <memory>

#include "Commands.h"

namespace qvtool {

namespace {

// Copies all of in to out in blocks; false on a short write or a read error.
bool CopyStream(std::FILE *in, qv::IFile &out) {
    static char block[1 << 16];
    for (size_t n; (n = std::fread(block, 1, sizeof block, in)) > 0;)
        if (out.Write(block, uint32_t(n)) != n) return false;
    return !std::ferror(in);
}

} // namespace

int RunCdfsAdd(char *const *args) {
    bool fromStdin = std::strcmp(args[1], "-") == 0;
    qv::CString source(args[1]);
    qv::CString name = fromStdin ? qv::CString(u"stdin") : qv::CString(qv::IFileSystem::GetFilename(source.GetUTF16()));
    std::FILE *in = fromStdin ? stdin : std::fopen(args[1], "rb");
    if (!in) return Fail("cannot read %s", args[1]);
    qv::CCDFileSystem cdfs;
    bool ok = OpenCdfs(args[0], false, cdfs);
    if (ok) {
        std::unique_ptr<qv::IFile> file(cdfs.CreateFileW(qv::CString(u"/") + name, 0x28));
        ok = file && CopyStream(in, *file);
        if (!ok) Fail("cannot store %s in %s", args[1], args[0]);
        file.reset();
        ok = cdfs.Flush() && ok;
        if (!ok) Fail("cannot write the table of %s", args[0]);
    }
    if (!fromStdin) std::fclose(in);
    return ok ? 0 : kExitFailed;
}

} // namespace qvtool
