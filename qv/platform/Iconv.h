// Code pages that qv does not build in, converted by the system's iconv.
// Both functions write at most outSize units to out (which may be null when
// outSize is 0) and return the units the whole text needs, or -1 if the system
// does not know the code page. Characters the code page lacks become '?',
// bytes that are not valid in it become U+FFFD. Thread-safe.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qv::platform {

int64_t IconvFromUtf16(uint32_t codePage, char16_t const *text, size_t length, char *out, size_t outSize);
int64_t IconvToUtf16(uint32_t codePage, char const *text, size_t length, char16_t *out, size_t outSize);

} // namespace qv::platform
