// qv cdfs check FILE: walks the table and says what is wrong, or "ok" with
// the count of entries and the bytes they hold. Exit 1 when it is not usable.
#include <cstdio>
#include <memory>

#include "Commands.h"
#include "Input.h"

namespace qvtool {

int RunCdfsCheck(char *const *args) {
    qv::CString name(args[0]), problem;
    if (!CheckInputFile(args[0])) return kExitFailed;
    if (!qv::CCDFileSystem::Check(&qv::GetFileSystem(), name, problem))
        return Fail("%s: %s", args[0], problem.GetUTF8());
    qv::CCDFileSystem cdfs;
    if (!cdfs.Open(name, true)) return Fail("%s cannot be opened", args[0]);
    // Every entry must read back whole.
    qv::CDirectoryListing stack = cdfs.GetDirectoryListing(u"/", nullptr);
    int64_t files = 0, bytes = 0;
    static char block[1 << 16];
    for (uint32_t i = 0; i < stack.GetSize(); ++i) {
        qv::CDirectoryEntry const &entry = stack.GetAt(i);
        if (entry.IsDirectory()) {
            qv::CDirectoryListing below = cdfs.GetDirectoryListing(entry.path, nullptr);
            for (uint32_t k = 0; k < below.GetSize(); ++k)
                stack.Add(below.GetAt(k));
            continue;
        }
        std::unique_ptr<qv::IFile> file(cdfs.CreateFileW(entry.path, 0x12));
        int64_t read = 0;
        for (uint32_t n; file && (n = file->Read(block, sizeof block)) > 0;)
            read += n;
        if (read != entry.size)
            return Fail("%s: %s reads %lld of its %lld bytes", args[0], qv::CString(entry.path).GetUTF8(),
                        (long long)read, (long long)entry.size);
        ++files;
        bytes += read;
    }
    std::printf("ok: %lld files, %lld bytes, next offset %lld\n", (long long)files, (long long)bytes,
                (long long)cdfs.NextFileOffset());
    return 0;
}

} // namespace qvtool
