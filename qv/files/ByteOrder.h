/// @file
/// Reversing the bytes of items in place, for files of the other byte order.
/// Internal to the file layer.
#pragma once

#include <cstdint>

namespace qv {

/// Reverses the bytes of each of count items of itemSize bytes at p.
void ReverseItems(void *p, uint32_t count, uint32_t itemSize);

} // namespace qv
