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
// The fixed-length inner loop lets g++ vectorise the integer cases at -O2;
// floating-point ones stay in order (their selects do not reassociate).
template <class T> void Extremes(STypedData a, uint32_t n, T &min, T &max) {
    if (n == 0) return;
    Dispatch(
        [&](auto aTag) {
            using A = typename decltype(aTag)::type;
            void const *data = a.Data;
            T lo = ElementCast<T>(LoadElement<A>(data, 0)), hi = lo;
            auto visit = [&](size_t first, auto count) {
                for (size_t k = 0; k < count; ++k) {
                    T v = ElementCast<T>(LoadElement<A>(data, first + k));
                    lo = v < lo ? v : lo;
                    hi = v > hi ? v : hi;
                }
            };
            size_t i = 1;
            for (; n - i >= kBlock; i += kBlock)
                visit(i, FullBlock{});
            visit(i, n - i);
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
