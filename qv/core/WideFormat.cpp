// The exported printf family: thin shells over the one format engine.
#include "qv/core/WideFormat.h"

#include "qv/core/FormatEngine.h"

namespace qv {

namespace {

template <class Char> int Format(Char *buf, size_t size, Char const *fmt, va_list args) {
    detail::VaListArgs source(args);
    return detail::FormatText(buf, size, fmt, source);
}

} // namespace

int _vscwprintf(char16_t const *fmt, va_list args) {
    return Format<char16_t>(nullptr, 0, fmt, args);
}

int _scwprintf(char16_t const *fmt, ...) {
    va_list args;
    va_start(args, fmt);
    int n = _vscwprintf(fmt, args);
    va_end(args);
    return n;
}

int vswprintf(char16_t *buf, size_t size, char16_t const *fmt, va_list args) {
    return Format(buf, size, fmt, args);
}

int swprintf(char16_t *buf, size_t size, char16_t const *fmt, ...) {
    va_list args;
    va_start(args, fmt);
    int n = vswprintf(buf, size, fmt, args);
    va_end(args);
    return n;
}

int c_vscprintf(char const *fmt, va_list args) {
    return Format<char>(nullptr, 0, fmt, args);
}

int c_vsnprintf(char *buf, size_t size, char const *fmt, va_list args) {
    return Format(buf, size, fmt, args);
}

int c_snprintf(char *buf, size_t size, char const *fmt, ...) {
    va_list args;
    va_start(args, fmt);
    int n = c_vsnprintf(buf, size, fmt, args);
    va_end(args);
    return n;
}

} // namespace qv
