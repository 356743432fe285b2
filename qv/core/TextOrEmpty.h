/// @file
/// Internal: a CString's text that is never null, since a null string (see
/// qv/core/String.h) answers a null pointer where callers want the empty text.
#pragma once

#include "qv/core/String.h"

namespace qv::detail {

inline char16_t const *TextOrEmpty(CString const &s) {
    char16_t const *p = s.GetTChar();
    return p ? p : u"";
}

} // namespace qv::detail
