// TypedMin, TypedMax, TypedSum: a[i] = f(a[i], b[i]), one loop per (a, b)
// element type pair, compared or added in the pair's common type.
#include "qv/numerics/ElementCast.h"
#include "qv/numerics/TypedArithmetic.h"
#include "qv/numerics/TypedArray.h"
#include "qv/numerics/TypedDispatch.h"
#include "qv/numerics/TypedKernel.h"

namespace qv {

using namespace numerics_detail;

namespace {

// a[i] = f(a[i], b[i]); f returns a's element type.
template <class F> void CombineInto(STypedData a, STypedData b, uint32_t n, F f) {
    Dispatch(
        [&](auto aTag, auto bTag) {
            using A = typename decltype(aTag)::type;
            using B = typename decltype(bTag)::type;
            void const *bData = b.Data;
            void const *aData = a.Data;
            ForEachElement<A>(
                a.Data, n, [=](size_t i) { return f(LoadElement<A>(aData, i), LoadElement<B>(bData, i)); },
                InputOf<A>(aData, n), InputOf<B>(bData, n));
        },
        a.Type, b.Type);
}

// The choice is made in the common type, but a kept a[i] keeps its exact
// value (a round trip through float would not). a[i] stays only when b[i] is
// strictly greater (smaller), so ties and NaN take b[i].
template <class A, class B> A Smaller(A a, B b) {
    using C = TCommon<A, B>;
    return C(b) > C(a) ? a : ElementCast<A>(b);
}

template <class A, class B> A Greater(A a, B b) {
    using C = TCommon<A, B>;
    return C(b) < C(a) ? a : ElementCast<A>(b);
}

template <class A, class B> A Sum(A a, B b) {
    using C = TCommon<A, B>;
    return ElementCast<A>(WrapAdd(C(a), C(b)));
}

} // namespace

void TypedMin(STypedData a, STypedData b, uint32_t n) {
    CombineInto(a, b, n, [](auto x, auto y) { return Smaller(x, y); });
}

void TypedMax(STypedData a, STypedData b, uint32_t n) {
    CombineInto(a, b, n, [](auto x, auto y) { return Greater(x, y); });
}

void TypedSum(STypedData a, STypedData b, uint32_t n) {
    CombineInto(a, b, n, [](auto x, auto y) { return Sum(x, y); });
}

} // namespace qv
