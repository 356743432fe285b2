#include "qv/filesystems/CWDFixer.h"

#include "qv/filesystems/DiskFileSystem.h"

namespace qv {

namespace {

constexpr int kDirectorySize = 1024;

} // namespace

CCWDFixer::CCWDFixer() {
    char16_t buffer[kDirectorySize];
    if (FileSystem->GetCurrentWorkingDirectory(buffer, kDirectorySize)) directory = buffer;
}

CCWDFixer::~CCWDFixer() {
    if (!directory.IsEmpty()) FileSystem->SetCurrentWorkingDirectory(directory.GetUTF16());
}

} // namespace qv
