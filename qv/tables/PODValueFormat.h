/// @file
/// Value formats of POD cells: a cell is text, and a format string says how a
/// number is read from it and written back. A format is literal characters
/// and tokens "%f(scale)" or "%d(scale)"; "%d(3600):%d(60):%f(1)" reads
/// "01:02:03.5" as 3723.5.
///
/// ParsePODValue: the result is the sum of scale x number over the tokens;
/// literals must match the text; text left over is ignored. False (out then
/// holds the partial sum) on a mismatch, a malformed token, or a token whose
/// text (or scale) holds no digit: such a cell is no number, not 0.
///
/// FormatPODValue: writes value through the format into out (outSize units,
/// terminator included). Each token takes q = running value / scale, and the
/// running value keeps what is left over the whole part. "%f" writes q with
/// "%0.10g". "%d" writes the decimal of q's 64-bit floating-point bit pattern,
/// not of its whole part: existing files and callers carry that form. False on
/// a malformed token or when out is too small (out then holds a cut prefix).
///
/// Numbers in text and scales: optional sign, digits, '.', an exponent with an
/// optional sign; at most 63 units of one number are kept. Pure functions,
/// any thread.
#pragma once

#include <cstddef>

#include "qv/core/Export.h"

namespace qv {

/// Reads a number from text through format into out, and writes value
/// through format into out; false on a mismatch, a malformed token or (when
/// writing) too small an out. Rules in the file comment.
///@{
QV_API bool ParsePODValue(double &out, char16_t const *text, char16_t const *format);
QV_API bool FormatPODValue(double value, char16_t *out, size_t outSize, char16_t const *format);
///@}

} // namespace qv
