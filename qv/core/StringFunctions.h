/// @file
/// Free text helpers on NUL-terminated char and char16_t arrays. Pure
/// functions, thread-safe; pointers must not be null.
///
/// White space and digits are judged per code unit: narrow text by the ASCII
/// rules (never the process locale), wide text by qv::iswspace and
/// qv::iswdigit (see WideChar.h: Unicode white space of the BMP, '0'..'9').
#pragma once

#include <cstddef>

#include "qv/core/Export.h"

namespace qv {

/// Copies min(n, StrLen(src) + 1) - 1 units and always terminates (n is the
/// size of dst in units; n of 0 writes nothing). Returns dst.
///@{
QV_API char *StrCpy(char *dst, char const *src, size_t n);
QV_API char16_t *StrCpy(char16_t *dst, char16_t const *src, size_t n);
///@}
/// Appends as much of src as fits in dst, whose whole size is n units; always
/// terminates (n of 0 writes nothing). Returns dst.
///@{
QV_API char *StrCat(char *dst, char const *src, size_t n);
QV_API char16_t *StrCat(char16_t *dst, char16_t const *src, size_t n);
///@}

/// -1, 0 or 1 by unsigned unit.
///@{
QV_API int StrCmp(char const *a, char const *b);
QV_API int StrCmp(char16_t const *a, char16_t const *b);
///@}
/// Case-insensitive compares fold to lower case (_stricmp/_wcsicmp); the N
/// forms compare at most n units (strncmp/wcsncmp, _strnicmp/_wcsnicmp).
///@{
QV_API int StrICmp(char const *a, char const *b);
QV_API int StrICmp(char16_t const *a, char16_t const *b);
QV_API int StrNCmp(char const *a, char const *b, size_t n);
QV_API int StrNCmp(char16_t const *a, char16_t const *b, size_t n);
QV_API int StrNICmp(char const *a, char const *b, size_t n);
QV_API int StrNICmp(char16_t const *a, char16_t const *b, size_t n);
QV_API size_t StrLen(char const *s);
QV_API size_t StrLen(char16_t const *s);
///@}

/// In place. LTrim returns the first unit that is no white space. Trim also
/// overwrites the trailing white space with terminators (the text never
/// moves) and returns the same pointer as LTrim.
///@{
QV_API char *LTrim(char *s);
QV_API char16_t *LTrim(char16_t *s);
QV_API char *Trim(char *s);
QV_API char16_t *Trim(char16_t *s);
///@}

/// Number syntax checks. On success *end (if end is not null) receives the
/// index of the first unit not consumed; trailing text is no error.
/// IsFloat: optional sign, digits, then optionally "." digits and only after a
/// point an exponent (e or E, optional sign, at least one digit, else false).
/// Without a point no exponent is read: "1e5" succeeds with *end 1. At least
/// one digit before or after the point.
QV_API bool IsFloat(char16_t const *s, int *end = nullptr);
/// Optional sign and at least one digit.
QV_API bool IsInteger(char16_t const *s, int *end = nullptr);
/// At least one digit, no sign.
QV_API bool IsULong(char16_t const *s, int *end = nullptr);

} // namespace qv
