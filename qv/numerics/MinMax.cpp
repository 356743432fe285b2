// MinMax: the extremes of a typed buffer, one loop per (element type, T).
#include "qv/numerics/ElementCast.h"
#include "qv/numerics/TypedArray.h"
#include "qv/numerics/TypedDispatch.h"
#include "qv/numerics/TypedKernel.h"

namespace qv {

using namespace numerics_detail;

namespace {

// In order, comparing in T: the selects keep a NaN start and the first of
// equal values, as the compare-and-assign loop existing callers rely on does.
template <class T> void Extremes(STypedData a, uint32_t n, T &min, T &max) {
    if (n == 0) return;
    Dispatch(
        [&](auto aTag) {
            using A = typename decltype(aTag)::type;
            T lo = ElementCast<T>(LoadElement<A>(a.Data, 0)), hi = lo;
            for (size_t i = 1; i < n; ++i) {
                T v = ElementCast<T>(LoadElement<A>(a.Data, i));
                lo = v < lo ? v : lo;
                hi = v > hi ? v : hi;
            }
            min = lo;
            max = hi;
        },
        a.Type);
}

} // namespace

void MinMax(STypedData a, uint32_t n, uint8_t &min, uint8_t &max) { Extremes(a, n, min, max); }
void MinMax(STypedData a, uint32_t n, int16_t &min, int16_t &max) { Extremes(a, n, min, max); }
void MinMax(STypedData a, uint32_t n, uint16_t &min, uint16_t &max) { Extremes(a, n, min, max); }
void MinMax(STypedData a, uint32_t n, int32_t &min, int32_t &max) { Extremes(a, n, min, max); }
void MinMax(STypedData a, uint32_t n, uint32_t &min, uint32_t &max) { Extremes(a, n, min, max); }
void MinMax(STypedData a, uint32_t n, int64_t &min, int64_t &max) { Extremes(a, n, min, max); }
void MinMax(STypedData a, uint32_t n, float &min, float &max) { Extremes(a, n, min, max); }
void MinMax(STypedData a, uint32_t n, double &min, double &max) { Extremes(a, n, min, max); }

} // namespace qv
