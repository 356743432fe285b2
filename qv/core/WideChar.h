/// @file
/// The wide (UTF-16, char16_t) C runtime helpers the library is written
/// against, with the semantics of the runtime it was designed on: lengths and
/// compares by unsigned code unit, case-insensitive compares that fold to lower
/// case first (sort orders that reach files depend on it), and number parsers
/// that never look at the process locale.
/// All functions are pure and thread-safe; a null pointer is never accepted
/// unless stated.
///
/// towlower/towupper apply the one-to-one Unicode case mappings of the whole
/// BMP (Latin, Greek, Coptic, Cyrillic, Armenian, Georgian, Cherokee,
/// Glagolitic, full-width forms and the rest; generated from Unicode 14 by
/// scripts/gen_casemap.py). A character whose case mapping takes several
/// characters (U+00DF), surrogates and everything else map to themselves.
/// iswspace is the Unicode White_Space set of the BMP (ASCII 0x09-0x0D and
/// 0x20, U+0085, U+00A0, U+1680, U+2000-U+200A, U+2028, U+2029, U+202F,
/// U+205F, U+3000); iswdigit is '0'..'9' only.
#pragma once

#include <cstddef>
#include <cstdint>

#include "qv/core/Export.h"

namespace qv {

QV_API size_t wcslen(char16_t const *s); ///< units before the terminator
/// Negative, 0 or positive by unsigned code unit, over the whole texts or at
/// most n units; the _wcsi forms compare after towlower.
///@{
QV_API int wcscmp(char16_t const *a, char16_t const *b);
QV_API int wcsncmp(char16_t const *a, char16_t const *b, size_t n);
QV_API int _wcsicmp(char16_t const *a, char16_t const *b);
QV_API int _wcsnicmp(char16_t const *a, char16_t const *b, size_t n);
///@}
/// The one-to-one case mapping of c, or c itself.
///@{
QV_API char16_t towlower(char16_t c);
QV_API char16_t towupper(char16_t c);
///@}
QV_API bool iswspace(char16_t c); ///< Unicode White_Space of the BMP
QV_API bool iswdigit(char16_t c); ///< '0'..'9' only
/// A letter of the "C" locale: 'a'..'z' and 'A'..'Z' only.
inline bool IsAsciiLetter(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

/// Narrow twins used on file text: fold ASCII only, locale-free.
///@{
QV_API int _stricmp(char const *a, char const *b);
QV_API int _strnicmp(char const *a, char const *b, size_t n);
///@}

/// _wtol saturates to 32 bits (LONG_MIN/LONG_MAX of the designed runtime);
/// _wtoi64 saturates to 64 bits; _wtof reads like strtod in the "C" locale.
/// Leading white space is skipped; parsing stops at the first unusable unit.
/// Floating point: optional sign, digits with one '.', optional exponent, or
/// "inf", "infinity", "nan", "nan(...)" in any case; no hexadecimal form.
/// Results are correctly rounded; overflow gives +-infinity, underflow 0; errno
/// is left alone. These four (and the narrow parsers) accept null as "" and
/// give 0.
///@{
QV_API int32_t _wtol(char16_t const *s);
QV_API int64_t _wtoi64(char16_t const *s);
QV_API double _wtof(char16_t const *s);
///@}
/// Wide strtod in the "C" locale; *end (if given) receives the first unused unit.
QV_API double wcstod(char16_t const *s, char16_t const **end);

/// Locale-free narrow number parsers for file readers ('.' is always the point).
///@{
QV_API double c_strtod(char const *s, char const **end);
QV_API double c_atof(char const *s);
///@}

} // namespace qv
