/// @file
/// Floating point to integers a block at a time, by the rule of ElementCast
/// (internal header of qv/numerics).
///
/// The hardware truncates to 32 bits in one vector instruction and is exact
/// for every value below 2^31 in magnitude; anything else (NaN, infinities,
/// large values) comes back as the "integer indefinite" 0x80000000. So a block
/// is converted that way, and only a block in which some lane came back
/// indefinite is converted again, exactly, value by value. The 64-bit scalar
/// truncation gives the rule itself for every input (indefinite is INT64_MIN).
/// The kernel is chosen once per call from the CPU path (qv/core/CpuPath.h);
/// the portable path is ElementCast's own loop. Every path gives the same bits.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qv::numerics_detail {

/// out[k] = the low 32 bits of the rule's 64-bit result for in[k], k < n.
/// in may be unaligned; out (a block of the caller) must not overlap it.
using Low32Kernel = void (*)(int32_t *out, void const *in, size_t n);
/// out[k] = the rule's 64-bit result for in[k].
using Int64Kernel = void (*)(int64_t *out, void const *in, size_t n);

template <class S> Low32Kernel PickLow32Kernel(); ///< S is float or double
template <class S> Int64Kernel PickInt64Kernel(); ///< S is float or double

} // namespace qv::numerics_detail
