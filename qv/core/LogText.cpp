#include "qv/core/LogText.h"

#include <cstring>

namespace qv {

CString FormatLogTimePrefix(CDateTime const &time) {
    char16_t text[CDateTime::kTextSize];
    return CString(time.Format(text, u"[%m-%D-%Y %H:%M:%S]: ", CDateTime::kTextSize));
}

CString LogTimePrefixNow() {
    return FormatLogTimePrefix(CDateTime::NewNow());
}

std::string ToLogBytes(CString const &text) {
    char const *utf8 = text.GetUTF8();
    size_t length = std::strlen(utf8);
    std::string bytes;
    bytes.reserve(length + length / 8 + 2);
    for (size_t i = 0; i < length; ++i) {
        char c = utf8[i];
        if (c != '\r' && c != '\n') {
            bytes += c;
            continue;
        }
        bytes += "\r\n";
        if (c == '\r' && utf8[i + 1] == '\n') ++i;
    }
    return bytes;
}

CString ResolvePercentEscapes(CString const &text) {
    char16_t const *units = text.GetUTF16();
    std::u16string resolved;
    resolved.reserve(size_t(text.GetLength()));
    for (int i = 0, n = text.GetLength(); i < n; ++i) {
        resolved += units[i];
        if (units[i] == u'%' && units[i + 1] == u'%') ++i;
    }
    return CString(resolved.c_str());
}

} // namespace qv
