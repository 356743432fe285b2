// The exported scanf family: thin shells over the one scan engine.
#include "qv/core/WideScan.h"

#include "qv/core/ScanEngine.h"

namespace qv {

namespace {

template <class Char> int Scan(Char const *s, Char const *fmt, va_list args) {
    detail::VaListTargets targets(args);
    return detail::ScanText(s, fmt, targets);
}

} // namespace

int vswscanf(char16_t const *s, char16_t const *fmt, va_list args) {
    return Scan(s, fmt, args);
}

int swscanf(char16_t const *s, char16_t const *fmt, ...) {
    va_list args;
    va_start(args, fmt);
    int n = vswscanf(s, fmt, args);
    va_end(args);
    return n;
}

int c_vsscanf(char const *s, char const *fmt, va_list args) {
    return Scan(s, fmt, args);
}

int c_sscanf(char const *s, char const *fmt, ...) {
    va_list args;
    va_start(args, fmt);
    int n = c_vsscanf(s, fmt, args);
    va_end(args);
    return n;
}

} // namespace qv
