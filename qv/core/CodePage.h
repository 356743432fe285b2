/// @file
/// Conversion between UTF-16 and byte code pages with the count rules of the
/// platform the library was designed on: a length of -1 converts up to and
/// including the terminator (and counts it); an output size of 0 asks for the
/// size needed; a too-small output gives 0. 65001 (UTF-8) and 1252 (Western,
/// also the "ANSI" code page 0 here) are built in; others go through iconv.
/// Bad input converts as that platform does: U+FFFD for invalid UTF-8 and lone
/// surrogates, the five undefined 1252 bytes map to the same code points, and
/// characters a code page lacks become '?' (one per character, so a surrogate
/// pair becomes one '?'). Other bad arguments (null text, a length of 0 or
/// below -1, a negative size, a null output with a nonzero size) and unknown
/// code pages give 0. Thread-safe; nothing is allocated for 65001 and 1252.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"

namespace qv {

constexpr uint32_t CP_ACP = 0;      ///< the "ANSI" code page: 1252 here
constexpr uint32_t CP_1252 = 1252;  ///< Western
constexpr uint32_t CP_UTF8 = 65001; ///< UTF-8

/// Converts length units (or bytes) of text into out, at most outSize bytes
/// (or units); returns the count written, the count needed when outSize is
/// 0, or 0 on failure (see above).
///@{
QV_API int WideCharToMultiByte(uint32_t codePage, char16_t const *text, int length, char *out, int outSize);
QV_API int MultiByteToWideChar(uint32_t codePage, char const *text, int length, char16_t *out, int outSize);
///@}

} // namespace qv
