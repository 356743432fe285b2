// Fuzzes opening a CDFS on an untrusted host: the input is the host's bytes
// (a copy, in a memory file system). Whatever opens is walked: every listed
// directory, every file read to its end, and then written: a write into the
// first file that grows it, and a flush. Nothing may crash, and reading must
// give exactly each entry's size.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "qv/files/IFile.h"
#include "qv/filesystems/CDFileSystem.h"
#include "qv/filesystems/MemFileSystem.h"

namespace {

void Require(bool condition) {
    if (!condition) __builtin_trap();
}

void Walk(qv::CCDFileSystem &cdfs) {
    qv::CDirectoryListing stack = cdfs.GetDirectoryListing(u"/", nullptr);
    char block[4096];
    for (uint32_t i = 0; i < stack.GetSize() && i < 10000; ++i) {
        qv::CDirectoryEntry const &entry = stack.GetAt(i);
        if (entry.IsDirectory()) {
            qv::CDirectoryListing below = cdfs.GetDirectoryListing(entry.path, nullptr);
            for (uint32_t k = 0; k < below.GetSize(); ++k)
                stack.Add(below.GetAt(k));
            continue;
        }
        std::unique_ptr<qv::IFile> file(cdfs.CreateFileW(entry.path, 0x12));
        Require(file != nullptr);
        int64_t read = 0;
        for (uint32_t n; (n = file->Read(block, sizeof block)) > 0;)
            read += n;
        Require(read == entry.size);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    std::vector<uint8_t> bytes(data, data + size);
    qv::CMemFileSystem hosts;
    hosts.AddFile(u"/host", bytes.data(), uint32_t(bytes.size()));
    qv::CCDFileSystem cdfs;
    if (!cdfs.Open(&hosts, u"/host", false)) return 0;
    Walk(cdfs);
    qv::CDirectoryListing top = cdfs.GetDirectoryListing(u"/", nullptr);
    for (uint32_t i = 0; i < top.GetSize(); ++i) {
        if (!top[i].IsFile()) continue;
        std::unique_ptr<qv::IFile> file(cdfs.CreateFileW(top[i].path, 0x32));
        file->Seek(0, 3);
        char const more[] = "grown past its capacity";
        for (int k = 0; k < 200; ++k)
            file->Write(more, sizeof more);
        break;
    }
    cdfs.Flush();
    Walk(cdfs);
    return 0;
}
