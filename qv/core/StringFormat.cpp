// CString's formatting through the library's wide printf grammar.
#include <cstdarg>

#include "qv/core/String.h"
#include "qv/core/StringBlock.h"
#include "qv/core/WideFormat.h"

namespace qv {

// The text is formatted into a fresh block of three units more than it needs,
// so arguments that point into this string's own text stay readable.
void CString::FormatV(char16_t const *fmt, va_list args) {
    if (!fmt) fmt = u"";
    va_list counting;
    va_copy(counting, args);
    int needed = _vscwprintf(fmt, counting);
    va_end(counting);
    int64_t capacity = int64_t(needed > 0 ? needed : 0) + 3;
    char16_t *block = detail::AllocateText(capacity);
    vswprintf(block, size_t(capacity) + 1, fmt, args);
    Adopt(block, capacity);
}

void CString::Format(char16_t const *fmt, ...) {
    va_list args;
    va_start(args, fmt);
    FormatV(fmt, args);
    va_end(args);
}

CString CString::FromFormat(char16_t const *fmt, ...) {
    CString text{NullTag{}};
    va_list args;
    va_start(args, fmt);
    text.FormatV(fmt, args);
    va_end(args);
    return text;
}

CString CString::FromInt(int value) {
    return FromFormat(u"%d", value);
}
CString CString::FromDouble(double value) {
    return FromFormat(u"%g", value);
}

} // namespace qv
