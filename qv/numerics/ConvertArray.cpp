// ConvertArray: one loop per (destination, source) element type pair;
// floating point to integers through the block kernels of FloatTruncate.h.
#include <cstring>
#include <type_traits>

#include "qv/numerics/ElementCast.h"
#include "qv/numerics/FloatTruncate.h"
#include "qv/numerics/TypedArray.h"
#include "qv/numerics/TypedDispatch.h"
#include "qv/numerics/TypedKernel.h"

namespace qv {

using namespace numerics_detail;

namespace {

constexpr uint32_t kTruncateBlock = 256;

template <class D, class Part, uint32_t N>
inline void StoreParts(unsigned char *out, size_t first, Part const *parts, std::integral_constant<uint32_t, N>) {
    for (size_t k = 0; k < N; ++k)
        StoreElement<D>(out, first + k, static_cast<D>(parts[k]));
}

template <class D, class Part> inline void StoreParts(unsigned char *out, size_t first, Part const *parts, size_t count) {
    for (size_t k = 0; k < count; ++k)
        StoreElement<D>(out, first + k, static_cast<D>(parts[k]));
}

// Floating point to an integer: a block is truncated to 32 bits (64 for a
// 64-bit target) by the kernel of the machine, then wrapped to D. Each block
// is read whole before any of it is written, so a call in place works.
template <class D, class S> void TruncateKernel(void *dst, void const *src, uint32_t n) {
    constexpr bool kWide = sizeof(D) == 8;
    using Part = std::conditional_t<kWide, int64_t, int32_t>;
    auto const kernel = [] {
        if constexpr (kWide)
            return PickInt64Kernel<S>();
        else
            return PickLow32Kernel<S>();
    }();
    Part parts[kTruncateBlock];
    auto *out = static_cast<unsigned char *>(dst);
    auto const *in = static_cast<unsigned char const *>(src);
    size_t first = 0;
    for (; n - first >= kTruncateBlock; first += kTruncateBlock) {
        kernel(parts, in + first * sizeof(S), kTruncateBlock);
        StoreParts<D>(out, first, parts, std::integral_constant<uint32_t, kTruncateBlock>{});
    }
    if (first == n) return;
    kernel(parts, in + first * sizeof(S), n - first);
    StoreParts<D>(out, first, parts, n - first);
}

template <class D, class S> void ConvertKernel(void *dst, void const *src, uint32_t n) {
    if constexpr (kIsFloat<S> && !kIsFloat<D>) {
        TruncateKernel<D, S>(dst, src, n);
    } else if constexpr (std::is_same_v<D, S>) {
        if (n) std::memmove(dst, src, size_t(n) * sizeof(D));
    } else {
        ForEachElement<D>(
            dst, n, [src](size_t i) { return ElementCast<D>(LoadElement<S>(src, i)); }, InputOf<S>(src, n));
    }
}

} // namespace

void ConvertArray(STypedData dst, STypedData src, uint32_t n) {
    Dispatch(
        [&](auto d, auto s) { ConvertKernel<typename decltype(d)::type, typename decltype(s)::type>(dst.Data, src.Data, n); },
        dst.Type, src.Type);
}

} // namespace qv
