// RunModtran: deck out, tool run, table in.
#include "qv/modtran/RunModtran.h"

#include <cstring>
#include <string_view>

#include "qv/core/WideChar.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/modtran/ModtranTape5File.h"
#include "qv/modtran/ModtranTape7File.h"
#include "qv/platform/ChildProcess.h"

namespace qv {

namespace {

constexpr int kPathUnits = 512;
constexpr std::string_view kErrorMarker = "*ERR*";

// Copies path cut at kPathUnits - 1 units.
void StorePath(char16_t *to, char16_t const *path) {
    size_t n = wcslen(path);
    if (n > size_t(kPathUnits - 1)) n = size_t(kPathUnits - 1);
    std::memcpy(to, path, n * sizeof(char16_t));
    to[n] = 0;
}

char16_t *ExePath() {
    static char16_t path[kPathUnits] = {};
    if (!path[0]) StorePath(path, kDefaultModtranExePath);
    return path;
}

// Looks for the marker in each block and across the seam with the block
// before it.
struct SErrorScan {
    bool seen = false;
    char tail[8] = {};
    size_t tailLength = 0;

    static void Take(char const *data, size_t n, void *context) {
        static_cast<SErrorScan *>(context)->Scan(std::string_view(data, n));
    }

    void Scan(std::string_view block) {
        char seam[16];
        size_t head = block.size() < kErrorMarker.size() - 1 ? block.size() : kErrorMarker.size() - 1;
        std::memcpy(seam, tail, tailLength);
        std::memcpy(seam + tailLength, block.data(), head);
        seen = seen || std::string_view(seam, tailLength + head).find(kErrorMarker) != std::string_view::npos ||
               block.find(kErrorMarker) != std::string_view::npos;
        std::string_view last = std::string_view(seam, tailLength + head);
        if (block.size() >= kErrorMarker.size() - 1) last = block;
        size_t keep = last.size() < kErrorMarker.size() - 1 ? last.size() : kErrorMarker.size() - 1;
        std::memmove(tail, last.data() + last.size() - keep, keep);
        tailLength = keep;
    }
};

} // namespace

bool SetModtranExePath(char16_t const *path) {
    if (!path || !GetFileSystem().FileExists(path)) return false;
    StorePath(ExePath(), path);
    return GetFileSystem().FileExists(ExePath());
}

CString GetModtranExePath() {
    return CString(ExePath());
}

bool RunModtran(CModtranTape5File &tape5, CModtranTape7File &tape7, uint64_t columns) {
    IFileSystem &disk = GetFileSystem();
    CString tool = disk.GetFullPath(CString(ExePath()));
    char16_t directory[kPathUnits];
    if (tool.IsEmpty() || !CPathAlgebra::GetDirectory(directory, tool, kPathUnits)) return false;
    CString input = CPathAlgebra::MakePath(CString(directory), CString(u"tape5"), u'/');
    CString output = CPathAlgebra::MakePath(CString(directory), CString(u"tape7"), u'/');
    if (!tape5.Save(input)) return false;
    if (disk.FileExists(output) && !disk.DeleteFileW(output)) return false;
    SErrorScan scan;
    CString directoryText(directory);
    SChildExit exit = RunChildProcess(tool.GetUTF8(), directoryText.GetUTF8(), SErrorScan::Take, &scan);
    if (!exit.started || scan.seen || exit.status != 0) return false;
    return tape7.Load(output, columns);
}

} // namespace qv
