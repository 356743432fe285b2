// Line and token handling of the curve file readers.
#include "qv/numerics/CurveText.h"

#include <cstring>

#include "qv/filesystems/FileSystem.h"

namespace qv::numerics_detail {

namespace {

constexpr uint32_t kOpenForReading = 0x10;

bool IsWhiteSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

} // namespace

char *TrimLine(char *line) {
    while (IsWhiteSpace(*line))
        ++line;
    char *end = line + std::strlen(line);
    while (end > line && IsWhiteSpace(end[-1]))
        --end;
    *end = '\0';
    return line;
}

char *NextToken(char **cursor, char const *separators) {
    char *start = *cursor + std::strspn(*cursor, separators);
    if (*start == '\0') {
        *cursor = start;
        return nullptr;
    }
    char *end = start + std::strcspn(start, separators);
    *cursor = *end ? end + 1 : end;
    *end = '\0';
    return start;
}

std::unique_ptr<IFile> OpenCurveFile(IFileSystem *fs, char16_t const *path) {
    if (!path) return nullptr;
    return std::unique_ptr<IFile>((fs ? *fs : GetFileSystem()).CreateFileW(path, kOpenForReading));
}

} // namespace qv::numerics_detail
