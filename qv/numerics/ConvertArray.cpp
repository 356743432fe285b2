// ConvertArray: one loop per (destination, source) element type pair.
#include <cstring>
#include <type_traits>

#include "qv/numerics/ElementCast.h"
#include "qv/numerics/TypedArray.h"
#include "qv/numerics/TypedDispatch.h"
#include "qv/numerics/TypedKernel.h"

namespace qv {

using namespace numerics_detail;

namespace {

template <class D, class S> void ConvertKernel(void *dst, void const *src, uint32_t n) {
    if constexpr (std::is_same_v<D, S>) {
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
