// OS side: asking the system for the working directory (getcwd).
#include "qv/platform/WorkingDirectory.h"

#include <climits>
#include <cstring>
#include <unistd.h>

#include "qv/core/CodePage.h"

namespace qv {

bool GetWorkingDirectory(CString &out) {
    char path[PATH_MAX];
    if (!::getcwd(path, sizeof path)) return false;
    int bytes = int(std::strlen(path));
    int units = MultiByteToWideChar(CP_UTF8, path, bytes, nullptr, 0);
    char16_t *text = out.GetBuffer(units);
    MultiByteToWideChar(CP_UTF8, path, bytes, text, units);
    text[units] = 0;
    out.ReleaseBuffer();
    return true;
}

} // namespace qv
