#include "qv/core/LogEntry.h"

#include <utility>

#include "qv/core/Log.h"
#include "qv/core/LogText.h"

namespace qv {

CLogEntry::CLogEntry(CLog *log, CString text, bool verbose) : log(log), text(std::move(text)), verbose(verbose) {}

CLogEntry::CLogEntry(CLogEntry &other) : log(other.log), text(other.text), verbose(other.verbose) {
    other.log = nullptr;
}

CLogEntry &CLogEntry::operator=(CLogEntry &other) {
    if (this == &other) return *this;
    Finish();
    log = other.log;
    text = other.text;
    verbose = other.verbose;
    other.log = nullptr;
    return *this;
}

CLogEntry::~CLogEntry() = default;

bool CLogEntry::Append(char16_t const *fmt, va_list args, char16_t const *end) {
    if (!log) return false;
    CString piece;
    piece.FormatV(fmt, args);
    text += piece.GetUTF16();
    text += end;
    return true;
}

bool CLogEntry::Write(char16_t const *fmt, ...) {
    va_list args;
    va_start(args, fmt);
    bool added = Append(fmt, args, u"");
    va_end(args);
    return added;
}

bool CLogEntry::WriteLine(char16_t const *fmt, ...) {
    va_list args;
    va_start(args, fmt);
    bool added = Append(fmt, args, u"\n");
    va_end(args);
    return added;
}

bool CLogEntry::Finish() {
    if (!log) return false;
    CLog *target = log;
    log = nullptr;
    return target->Put(ResolvePercentEscapes(text));
}

bool CLogEntry::getVerbose() {
    return verbose;
}

} // namespace qv
