// What the SAF sub-commands share: messages and opening a file's header.
#include <cstdarg>
#include <cstdio>
#include <string>

#include "Commands.h"
#include "Input.h"
#include "qv/core/String.h"

namespace qvtool {

int Fail(char const *format, ...) {
    va_list args;
    va_start(args, format);
    va_list again;
    va_copy(again, args);
    std::string message(size_t(std::vsnprintf(nullptr, 0, format, args)), '\0');
    std::vsnprintf(message.data(), message.size() + 1, format, again);
    va_end(again);
    va_end(args);
    std::fprintf(stderr, "qv: %s\n", NameStandardInput(message).c_str());
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
