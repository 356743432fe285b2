/// @file
/// A registry value read as text whatever its length. Internal to libqv.
#pragma once

#include "qv/config/Registry.h"
#include "qv/core/String.h"

namespace qv {

/// REG_SZ and REG_EXPAND_SZ as their text, REG_DWORD and REG_QWORD as decimal
/// text; another type gives ERROR_UNSUPPORTED_TYPE. out is untouched on failure.
int32_t RegQueryString(HKEY key, char16_t const *subKey, char16_t const *valueName, CString &out);

} // namespace qv
