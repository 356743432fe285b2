/// @file
/// Text from a run of UTF-8 bytes that need not be terminated, as the tree
/// formats cut it out of their buffers. Internal to the library.
#pragma once

#include <cstdint>

#include "qv/core/CodePage.h"
#include "qv/core/String.h"

namespace qv::tagged {

/// Bad bytes become U+FFFD; a NUL among the bytes ends the text.
inline CString TextFromUtf8(char const *bytes, uint32_t n) {
    CString text;
    if (n == 0) return text;
    int units = MultiByteToWideChar(CP_UTF8, bytes, int(n), nullptr, 0);
    char16_t *buffer = text.GetBuffer(units);
    MultiByteToWideChar(CP_UTF8, bytes, int(n), buffer, units);
    buffer[units] = 0;
    text.ReleaseBuffer();
    return text;
}

} // namespace qv::tagged
