/// @file
/// Windows language and locale ids (LCIDs) for the user's language: the low 16
/// bits are the language id (primary language in bits 0-9, sublanguage in bits
/// 10-15), the high bits the sort order (0 here).
///
/// LcidFromLocaleName maps a POSIX locale name, "language[_TERRITORY][.codeset]
/// [@modifier]" such as "de_DE.UTF-8", to its LCID ("de_DE" is 0x0407). The
/// codeset and modifier are ignored, '-' may stand for '_', case does not
/// matter. A territory that the table does not know falls back to the
/// language's main one ("de_XX" is 0x0407). "C", "POSIX", empty, null and
/// unknown languages give 0.
///
/// LocaleTagFromLanguage gives the "de-DE" form of a language id, or false.
///
/// GetUserDefaultLCID: the user's language from the first non-empty of the
/// environment variables LC_ALL, LC_MESSAGES and LANG, and 0x0409 (US
/// English) when none names a known language. Read at each call.
///
/// Threads: all pure and safe, except that GetUserDefaultLCID reads the
/// environment, which a concurrent setenv must not change.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/core/String.h"

namespace qv {

constexpr uint32_t kDefaultLCID = 0x0409; ///< US English, when the environment names no known language

/// The LCID of a POSIX locale name such as "de_DE.UTF-8"; 0 if unknown.
QV_API uint32_t LcidFromLocaleName(char const *name);
/// Sets tag to the "de-DE" form of language; false (tag unchanged) if unknown.
QV_API bool LocaleTagFromLanguage(uint16_t language, CString &tag);
/// Arabic, Hebrew, Persian, Urdu and the other languages written right to left.
QV_API bool IsRightToLeftLanguage(uint16_t language);
/// The user's LCID from LC_ALL, LC_MESSAGES or LANG, else kDefaultLCID.
QV_API uint32_t GetUserDefaultLCID();

} // namespace qv
