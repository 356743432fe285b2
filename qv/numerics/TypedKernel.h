// The element loop every typed operation runs (internal header of
// qv/numerics).
//
// Elements are read and written through memcpy, so buffers need no
// alignment (frames inside file images often sit at odd offsets); the
// compiler turns that into plain unaligned loads and stores.
//
// The loop works in blocks of kBlock elements: each block is computed into a
// local array and then stored whole. Full blocks have a fixed trip count and
// their output cannot alias an input, so g++ vectorises them even at -O2,
// whose cost model refuses remainders and run-time alias checks. A call in
// place (the output is one of the inputs, same element width) sees every
// element's old value, as a plain loop would.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace qv::numerics_detail {

inline constexpr uint32_t kBlock = 16;
using FullBlock = std::integral_constant<uint32_t, kBlock>;

template <class T> inline T LoadElement(void const *base, size_t i) {
    T v;
    std::memcpy(&v, static_cast<unsigned char const *>(base) + i * sizeof(T), sizeof(T));
    return v;
}

template <class T> inline void StoreElement(void *base, size_t i, T v) {
    std::memcpy(static_cast<unsigned char *>(base) + i * sizeof(T), &v, sizeof(T));
}

// fill(block, first, count) computes elements first .. first + count - 1
// into block[0 .. count - 1]; count is a FullBlock except for the last,
// shorter block. Then the block goes to out.
template <class Out, class Fill> inline void ForEachBlock(void *out, uint32_t n, Fill fill) {
    Out block[kBlock];
    auto *bytes = static_cast<unsigned char *>(out);
    size_t i = 0;
    for (; n - i >= kBlock; i += kBlock) {
        fill(block, i, FullBlock{});
        std::memcpy(bytes + i * sizeof(Out), block, sizeof block);
    }
    if (i == n) return;
    fill(block, i, size_t(n - i));
    std::memcpy(bytes + i * sizeof(Out), block, (n - i) * sizeof(Out));
}

// out[i] = element(i) for i in 0 .. n - 1 (i is a size_t, so that the
// compiler sees addresses that cannot wrap).
template <class Out, class Element> inline void ForEachElement(void *out, uint32_t n, Element element) {
    ForEachBlock<Out>(out, n, [&](Out *block, size_t first, auto count) {
        for (size_t k = 0; k < count; ++k)
            block[k] = element(first + k);
    });
}

} // namespace qv::numerics_detail
