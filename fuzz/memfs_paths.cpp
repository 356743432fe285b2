// Fuzzes the memory file system's path operations: the input, read as
// char16_t text and split at NUL units, gives paths that are added as files
// and then looked up, listed, renamed and made current, in turns.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "qv/files/IFile.h"
#include "qv/filesystems/MemFileSystem.h"

namespace {

void Require(bool condition) {
    if (!condition) __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    std::vector<char16_t> text(size / 2 + 1, 0);
    std::memcpy(text.data(), data, size / 2 * 2);
    std::vector<char16_t const *> paths;
    for (size_t i = 0; i < text.size() && paths.size() < 16;) {
        paths.push_back(text.data() + i);
        while (text[i]) ++i;
        ++i;
    }
    static char const block[] = "block";
    qv::CMemFileSystem fs;
    char16_t out[512];
    for (size_t i = 0; i < paths.size(); ++i) {
        char16_t const *path = paths[i];
        bool added = fs.AddFile(path, block, 5);
        if (added && path[0] == u'/' && fs.GetFullPath(out, path, 512)) Require(fs.FileExists(path));
        qv::CDirectoryEntry info = fs.GetFileInfo(path);
        std::unique_ptr<qv::IFile> file(fs.CreateFileW(path, 0x12));
        Require((file != nullptr) == (info.attributes == qv::kAttributeFile));
        fs.GetDirectoryListing(path, i % 2 ? u"*" : path);
        fs.GetDirectoryListing(nullptr, nullptr);
        if (fs.SetCurrentWorkingDirectory(path)) Require(fs.GetCurrentWorkingDirectory(out, 512));
        fs.RenameFileW(path, paths[(i + 1) % paths.size()]);
        fs.GetFullPath(out, path, int(i % 40) + 1);
        fs.IsDirectory(path);
    }
    return 0;
}
