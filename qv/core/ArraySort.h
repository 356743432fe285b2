/// @file
/// The sort behind TArray::Sort: a stable merge sort over elements that may be
/// relocated as raw bytes. Equal elements keep their order, so sorted output
/// that reaches files is deterministic. Uses a scratch block of count * size
/// bytes; if that cannot be had it sorts in place by insertion (slower, same
/// result). Never throws; thread-safe for distinct arrays.
#pragma once

#include <cstddef>

#include "qv/core/Export.h"

namespace qv::detail {

/// cmp(context, a, b) orders two elements like qsort's comparator.
using RelocatableCompare = int (*)(void *context, void const *a, void const *b);

QV_API void SortRelocatable(void *base, size_t count, size_t size, RelocatableCompare cmp, void *context);

} // namespace qv::detail
