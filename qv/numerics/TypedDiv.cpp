// TypedDiv: a[i] = a[i] / divisor, one loop per (element type, divisor type).
#include <type_traits>

#include "qv/numerics/ElementCast.h"
#include "qv/numerics/TypedArithmetic.h"
#include "qv/numerics/TypedArray.h"
#include "qv/numerics/TypedDispatch.h"
#include "qv/numerics/TypedKernel.h"

namespace qv {

using namespace numerics_detail;

namespace {

template <class T> void DivideInto(STypedData a, T divisor, uint32_t n) {
    Dispatch(
        [&](auto aTag) {
            using A = typename decltype(aTag)::type;
            using C = TCommon<A, T>;
            C by = C(divisor);
            void const *aData = a.Data;
            auto element = [aData](size_t i) { return C(LoadElement<A>(aData, i)); };
            if constexpr (std::is_integral_v<C>) {
                if (by == 0) return; // the hardware would fault; leave the buffer as it was
                if constexpr (std::is_signed_v<C>)
                    if (by == C(-1)) { // the most negative value would overflow
                        ForEachInPlace<A>(a.Data, n, [=](size_t i) { return ElementCast<A>(WrapSubtract(C(0), element(i))); });
                        return;
                    }
            }
            ForEachInPlace<A>(a.Data, n, [=](size_t i) { return ElementCast<A>(element(i) / by); });
        },
        a.Type);
}

} // namespace

void TypedDiv(STypedData a, int8_t divisor, uint32_t n) { DivideInto(a, divisor, n); }
void TypedDiv(STypedData a, uint8_t divisor, uint32_t n) { DivideInto(a, divisor, n); }
void TypedDiv(STypedData a, int16_t divisor, uint32_t n) { DivideInto(a, divisor, n); }
void TypedDiv(STypedData a, uint16_t divisor, uint32_t n) { DivideInto(a, divisor, n); }
void TypedDiv(STypedData a, int32_t divisor, uint32_t n) { DivideInto(a, divisor, n); }
void TypedDiv(STypedData a, uint32_t divisor, uint32_t n) { DivideInto(a, divisor, n); }
void TypedDiv(STypedData a, int64_t divisor, uint32_t n) { DivideInto(a, divisor, n); }
void TypedDiv(STypedData a, float divisor, uint32_t n) { DivideInto(a, divisor, n); }
void TypedDiv(STypedData a, double divisor, uint32_t n) { DivideInto(a, divisor, n); }

} // namespace qv
