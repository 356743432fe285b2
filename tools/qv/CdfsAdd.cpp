// qv cdfs add FILE PATH: stores the disk file PATH (or standard input for
// "-", as "/stdin") in the CDFS FILE under "/" and its name, replacing an
// entry of that name; FILE is made when it is missing.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "Commands.h"
#include "Input.h"

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
    // A source that cannot be read is refused before the CDFS is made or
    // given an entry.
    if (!CheckInputFile(args[1])) return kExitFailed;
    std::FILE *in = fromStdin ? stdin : std::fopen(args[1], "rb");
    if (!in) return Fail("cannot open %s: %s", args[1], std::strerror(errno));
    qv::CCDFileSystem cdfs;
    bool ok = OpenCdfs(args[0], false, cdfs);
    if (ok) {
        std::unique_ptr<qv::IFile> file(cdfs.CreateFileW(qv::CString(u"/") + name, 0x28));
        bool stored = file && CopyStream(in, *file);
        file.reset();
        bool flushed = cdfs.Flush();
        if (!stored)
            Fail("cannot store %s in %s", args[1], args[0]);
        else if (!flushed)
            Fail("cannot write the table of %s", args[0]);
        ok = stored && flushed;
    }
    if (!fromStdin) std::fclose(in);
    return ok ? 0 : kExitFailed;
}

} // namespace qvtool
