/// @file
/// Internal to the library: the text blocks of CString records.
/// A block records, in front of the text, how many units it has room for, so
/// that a string grown by appending can use spare room: the record's capacity
/// stays exactly what was asked for while the block may hold more. Blocks come
/// from operator new; an exhausted heap or an absurd size (counts saturate)
/// throws std::bad_alloc there.
#pragma once

#include <cstdint>

namespace qv::detail {

/// Room for room units plus a terminator; text[0] and text[room] are set to 0.
char16_t *AllocateText(int64_t room);
/// Null is ignored.
void FreeText(char16_t *text);
/// The units a block has room for, without its terminator; 0 for null.
int64_t TextRoom(char16_t const *text);

} // namespace qv::detail
