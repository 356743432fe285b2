// TypedSpan: d[i] = abs(b[i] - a[i]), one loop per (d, a, b) element types.
#include "qv/numerics/ElementCast.h"
#include "qv/numerics/TypedArithmetic.h"
#include "qv/numerics/TypedArray.h"
#include "qv/numerics/TypedDispatch.h"
#include "qv/numerics/TypedKernel.h"

namespace qv {

using namespace numerics_detail;

void TypedSpan(STypedData d, STypedData a, STypedData b, uint32_t n) {
    Dispatch(
        [&](auto dTag, auto aTag, auto bTag) {
            using D = typename decltype(dTag)::type;
            using A = typename decltype(aTag)::type;
            using B = typename decltype(bTag)::type;
            using C = TCommon<A, B>;
            void const *aData = a.Data;
            void const *bData = b.Data;
            ForEachElement<D>(
                d.Data, n,
                [=](size_t i) {
                    return ElementCast<D>(AbsOf(WrapSubtract(C(LoadElement<B>(bData, i)), C(LoadElement<A>(aData, i)))));
                },
                InputOf<A>(aData, n), InputOf<B>(bData, n));
        },
        d.Type, a.Type, b.Type);
}

} // namespace qv
