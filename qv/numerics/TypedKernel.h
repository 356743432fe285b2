/// @file
/// The element loops every typed operation runs (internal header of
/// qv/numerics).
///
/// Elements are read and written through memcpy, so buffers need no
/// alignment (frames inside file images often sit at odd offsets); the
/// compiler makes plain unaligned loads and stores of them.
///
/// Full blocks of kBlock elements have a fixed trip count, so g++ vectorises
/// them even at -O2, whose cost model refuses remainders and run-time alias
/// checks. Aliasing is settled once per call instead: when the output overlaps
/// no input, the loop stores straight through a restrict pointer; otherwise
/// each block is computed into a local array and stored whole, so a call in
/// place (the output is an input of the same element width) sees every
/// element's old value, as a plain loop would.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace qv::numerics_detail {

inline constexpr uint32_t kBlock = 16; ///< elements per block of an element loop
using FullBlock = std::integral_constant<uint32_t, kBlock>; ///< a block length known at compile time

/// Element i of type T at base, which may be unaligned.
template <class T> inline T LoadElement(void const *base, size_t i) {
    T v;
    std::memcpy(&v, static_cast<unsigned char const *>(base) + i * sizeof(T), sizeof(T));
    return v;
}

/// Stores v as element i of type T at base, which may be unaligned.
template <class T> inline void StoreElement(unsigned char *base, size_t i, T v) {
    std::memcpy(base + i * sizeof(T), &v, sizeof(T));
}

/// One input of an element loop: where it is and how many bytes it covers.
struct SInput {
    void const *data; ///< first byte
    size_t bytes;     ///< bytes covered
};

/// The input of n elements of type T at data.
template <class T> SInput InputOf(void const *data, uint32_t n) { return {data, size_t(n) * sizeof(T)}; }

/// Whether outBytes bytes at out share any byte with in.
inline bool Overlaps(void const *out, size_t outBytes, SInput in) {
    auto o = reinterpret_cast<uintptr_t>(out), i = reinterpret_cast<uintptr_t>(in.data);
    return o < i + in.bytes && i < o + outBytes;
}

/// fill(block, first, count) computes elements first .. first + count - 1
/// into block[0 .. count - 1]; count is a FullBlock except for the last,
/// shorter block. Then the block goes to out.
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

/// out[i] = element(i), storing straight to out, which no input overlaps.
/// Plain loops on the restrict parameter: a lambda here would hide the
/// restrict from the vectoriser.
///@{
template <class Out, class Element>
inline void StoreDisjoint(unsigned char *__restrict out, uint32_t n, Element element) {
    size_t i = 0;
    for (; n - i >= kBlock; i += kBlock)
        for (size_t k = 0; k < kBlock; ++k)
            StoreElement<Out>(out, i + k, element(i + k));
    for (; i < n; ++i)
        StoreElement<Out>(out, i, element(i));
}
///@}

/// out[i] = element(i) through local blocks, for an output that may be an
/// input (i is a size_t, so that the compiler sees addresses that cannot wrap).
template <class Out, class Element> inline void ForEachInPlace(void *out, uint32_t n, Element element) {
    ForEachBlock<Out>(out, n, [&](Out *block, size_t first, auto count) {
        for (size_t k = 0; k < count; ++k)
            block[k] = element(first + k);
    });
}

/// out[i] = element(i) for i in 0 .. n - 1, where element reads the inputs.
///@{
template <class Out, class Element, std::same_as<SInput>... Inputs>
inline void ForEachElement(void *out, uint32_t n, Element element, Inputs... inputs) {
    if ((Overlaps(out, size_t(n) * sizeof(Out), inputs) || ...))
        ForEachInPlace<Out>(out, n, element);
    else
        StoreDisjoint<Out>(static_cast<unsigned char *>(out), n, element);
}
///@}

} // namespace qv::numerics_detail
