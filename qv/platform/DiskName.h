// Disk names between the library's UTF-16 text and the system's bytes.
// Internal to libqv.
//
// Names are UTF-8 on the disk. A name that is not valid UTF-8 still round
// trips: each byte of an invalid sequence becomes one unit U+DC80..U+DCFF
// (lone low surrogates, which valid text never holds), and such a unit turns
// back into its byte. Other lone surrogates become U+FFFD on the disk. Both
// '/' and '\' separate in the library; the disk gets '/'. Pure, thread-safe.
#pragma once

#include <string>

#include "qv/core/String.h"

namespace qv {

std::string ToDiskName(char16_t const *text);
CString FromDiskName(char const *name);

} // namespace qv
