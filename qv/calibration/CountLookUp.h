/// @file
/// Table lookups of 16-bit counts for CFrameTemperatures (internal header of
/// libqv): out[i] = table[in[i] - low], four counts to a 64-bit load.
///
/// The caller owns every buffer; table covers every count of in (from low
/// on); in and out may be unaligned and may not overlap. Nothing fails.
/// Threads: pure functions of their arguments.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "qv/numerics/TypedKernel.h"

namespace qv::calibration_detail {

// Four 16-bit counts as their places in a table that starts at count low,
// one 16-bit place each. Signed counts are first moved to unsigned order (sign
// bit flipped), so that no lane's difference borrows from the next: every
// count is at least low, and its place is below 65536.
template <class C> struct SFourPlaces {
    static_assert(sizeof(C) == 2);
    static constexpr uint64_t kOrder = std::is_signed_v<C> ? 0x8000800080008000u : 0;
    static constexpr uint64_t kLanes = 0x0001000100010001u;
    uint64_t first;
    explicit SFourPlaces(int64_t low) : first((uint64_t(uint16_t(low)) ^ (kOrder & 0xffff)) * kLanes) {}
    uint64_t operator()(void const *counts) const {
        uint64_t four;
        std::memcpy(&four, counts, sizeof four);
        return (four ^ kOrder) - first;
    }
};

/// The table's entry for count i of in.
template <class C, class O> inline O EntryOf(void const *in, size_t i, O const *table, int64_t low) {
    return table[size_t(int64_t(numerics_detail::LoadElement<C>(in, i)) - low)];
}

/// Outputs at least this large are written around the caches (see
/// LookUpStreamed): a frame that outgrows the core's own cache leaves it
/// anyway, and its write-back would evict what the next frame needs.
inline constexpr size_t kStreamedBytes = size_t(1) << 20;

/// out[i] = table[in[i] - low] for i in 0..n-1 with 16-bit counts C and
/// entries O (float or double), stored a cache line at a time with
/// non-temporal stores, on a CPU with AVX-512 (the caller checks). Gives the
/// number of leading outputs done, the rest being the caller's: 0 when out is
/// not aligned to its element, else all but fewer than 16.
template <class C, class O>
size_t LookUpStreamed(void const *in, O const *table, int64_t low, unsigned char *out, size_t n);

} // namespace qv::calibration_detail
