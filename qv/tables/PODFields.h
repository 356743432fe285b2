/// @file
/// The field rules of POD text lines (UTF-8 bytes).
///
/// Reading (SplitPODLine): separators are tab, space, comma, ';', '|', CR and
/// LF, and a run of them counts as one, so an empty field can only be spelled
/// as "". A final LF, and a CR before it, end the line and are never data. A double-quote byte restarts the token just behind it and switches
/// quoting on; the next one ends the token there; separators inside quotes
/// are data. Splitting stops after `count` fields; missing fields are empty.
/// The line is cut in place: line[length] must exist and is set to 0, and
/// every fields[i] points into line (or at an empty string). Returns the
/// number of fields the line really held (at most count).
///
/// Writing (AppendPODField): an empty value becomes "" (two quote bytes); a
/// value holding a tab, comma, '|', ';', space or CR is wrapped in quote bytes;
/// anything else is written bare. There is no escape for a quote byte or an LF
/// inside a value, so such a value does not read back the same (existing
/// readers of the format know no escape either): table writers refuse it.
///
/// Pure functions, any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "qv/core/Export.h"

namespace qv {

/// Cuts line (length bytes) into at most count fields in place; the number
/// of fields the line held. Rules in the file comment.
QV_API uint32_t SplitPODLine(char *line, size_t length, char const **fields, uint32_t count);
/// Appends value to out as one field, quoted when it must be.
QV_API void AppendPODField(std::string &out, std::string_view value);

} // namespace qv
