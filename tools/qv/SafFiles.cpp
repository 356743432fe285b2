// What the SAF sub-commands share: messages and opening a file's header.
#include <cstdarg>
#include <cstdio>

#include "Commands.h"
#include "Input.h"
#include "qv/core/String.h"

namespace qvtool {

int Fail(char const *format, ...) {
    va_list args;
    va_start(args, format);
    std::fputs("qv: ", stderr);
    std::vfprintf(stderr, format, args);
    std::fputc('\n', stderr);
    va_end(args);
    return kExitFailed;
}

bool OpenSaf(char const *path, uint32_t flags, qv::CFile &file, qv::CSAFFile &saf) {
    if (!file.Open(qv::CString(path).GetUTF16(), flags)) {
        Fail("%s", OpenFailure(path, (flags & qv::kOpenWrite) != 0).c_str());
        return false;
    }
    if (!saf.Load(&file)) {
        Fail("%s could not be read as a SAF file: a read failed, or it does not begin with an HdSize line", path);
        return false;
    }
    return true;
}

} // namespace qvtool
