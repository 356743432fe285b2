// What the SAF sub-commands share: messages and opening a file's header.
#include <algorithm>
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

namespace {

// The text of the line of f that ends at byte end (its line break dropped),
// at most the 511 bytes a header line may hold.
std::string LineBefore(qv::IFile &f, int64_t end) {
    char bytes[512];
    int64_t const from = std::max<int64_t>(0, end - int64_t(sizeof bytes));
    if (f.Seek(from, 1) != from) return "";
    std::string text(bytes, f.Read(bytes, uint32_t(end - from)));
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.pop_back();
    return text.substr(text.find_last_of('\n') + 1);
}

bool NameIs(std::string const &line, char16_t const *name) {
    return qv::CString(line.substr(0, line.find(' ')).c_str()).CompareNoCase(name) == 0;
}

} // namespace

bool HeaderCutShort(qv::IFile &f, qv::CSAFFile &saf) {
    std::string first;
    char bytes[64];
    if (f.Seek(0, 1) == 0) first.assign(bytes, f.Read(bytes, sizeof bytes));
    first = first.substr(0, first.find_first_of("\r\n"));
    std::string const value = first.substr(std::min(first.size(), first.find(' ') + 1));
    bool const fixedSize = qv::CString(value.c_str()).CompareNoCase(u"auto") != 0;
    return !fixedSize && saf.GetDataPosition() == f.GetSize() && !NameIs(LineBefore(f, f.GetSize()), u"DATA");
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
    if (HeaderCutShort(file, saf)) return Fail(kCutShort, path), false;
    return true;
}

} // namespace qvtool
