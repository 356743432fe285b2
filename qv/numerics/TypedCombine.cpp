// TypedMin, TypedMax, TypedSum: a[i] = f(a[i], b[i]), one loop per (a, b)
// element type pair, computed in the pair's common type.
#include "qv/numerics/ElementCast.h"
#include "qv/numerics/TypedArithmetic.h"
#include "qv/numerics/TypedArray.h"
#include "qv/numerics/TypedDispatch.h"
#include "qv/numerics/TypedKernel.h"

namespace qv {

using namespace numerics_detail;

namespace {

// a[i] = ElementCast<A>(f(a[i], b[i])) with both operands in their common type.
template <class F> void CombineInto(STypedData a, STypedData b, uint32_t n, F f) {
    Dispatch(
        [&](auto aTag, auto bTag) {
            using A = typename decltype(aTag)::type;
            using B = typename decltype(bTag)::type;
            using C = TCommon<A, B>;
            void const *bData = b.Data;
            void const *aData = a.Data;
            ForEachElement<A>(a.Data, n, [=](size_t i) {
                return ElementCast<A>(f(C(LoadElement<A>(aData, i)), C(LoadElement<B>(bData, i))));
            });
        },
        a.Type, b.Type);
}

} // namespace

// The kept element is chosen in the common type; a[i] stays only when b[i]
// is strictly greater (smaller), so ties and NaN take b[i].
void TypedMin(STypedData a, STypedData b, uint32_t n) {
    CombineInto(a, b, n, [](auto x, auto y) { return y > x ? x : y; });
}

void TypedMax(STypedData a, STypedData b, uint32_t n) {
    CombineInto(a, b, n, [](auto x, auto y) { return y < x ? x : y; });
}

void TypedSum(STypedData a, STypedData b, uint32_t n) {
    CombineInto(a, b, n, [](auto x, auto y) { return WrapAdd(x, y); });
}

} // namespace qv
